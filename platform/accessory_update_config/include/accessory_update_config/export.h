#pragma once

// Marks what the accessory_update_config library exports; everything else in it is hidden.
#if defined(_WIN32)
#if defined(ACCESSORY_UPDATE_CONFIG_BUILD)
#define ACCESSORY_UPDATE_CONFIG_API __declspec(dllexport)
#else
#define ACCESSORY_UPDATE_CONFIG_API __declspec(dllimport)
#endif
#else
#define ACCESSORY_UPDATE_CONFIG_API __attribute__((visibility("default")))
#endif
