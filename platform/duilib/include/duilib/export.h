#pragma once

// Marks what the duilib library exports; everything else in it is hidden.
#if defined(_WIN32)
#if defined(DUILIB_BUILD)
#define DUILIB_API __declspec(dllexport)
#else
#define DUILIB_API __declspec(dllimport)
#endif
#else
#define DUILIB_API __attribute__((visibility("default")))
#endif
