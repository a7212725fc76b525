#pragma once

// Marks what the kernel library exports; everything else in it is hidden.
#if defined(_WIN32)
#if defined(KERNEL_BUILD)
#define KERNEL_API __declspec(dllexport)
#else
#define KERNEL_API __declspec(dllimport)
#endif
#else
#define KERNEL_API __attribute__((visibility("default")))
#endif
