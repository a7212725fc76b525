#pragma once

// Marks what the kernel library exports; everything else in it is hidden. Whoever compiles its sources into a module of
// their own defines KERNEL_API as nothing.
#if defined(KERNEL_API)
#elif defined(_WIN32)
#if defined(KERNEL_BUILD)
#define KERNEL_API __declspec(dllexport)
#else
#define KERNEL_API __declspec(dllimport)
#endif
#else
#define KERNEL_API __attribute__((visibility("default")))
#endif
