#pragma once

// Marks what the qx_data_report library exports; everything else in it is hidden.
#if defined(_WIN32)
#if defined(QX_DATA_REPORT_BUILD)
#define QX_DATA_REPORT_API __declspec(dllexport)
#else
#define QX_DATA_REPORT_API __declspec(dllimport)
#endif
#else
#define QX_DATA_REPORT_API __attribute__((visibility("default")))
#endif
