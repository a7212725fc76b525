#pragma once

// Marks what the qx_logger library exports; everything else in it is hidden.
#if defined(_WIN32)
#if defined(QX_LOGGER_BUILD)
#define QX_LOGGER_API __declspec(dllexport)
#else
#define QX_LOGGER_API __declspec(dllimport)
#endif
#else
#define QX_LOGGER_API __attribute__((visibility("default")))
#endif
