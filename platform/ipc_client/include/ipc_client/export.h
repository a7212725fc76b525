#pragma once

// Marks what the ipc_client library exports; everything else in it is hidden.
#if defined(_WIN32)
#if defined(IPC_CLIENT_BUILD)
#define IPC_CLIENT_API __declspec(dllexport)
#else
#define IPC_CLIENT_API __declspec(dllimport)
#endif
#else
#define IPC_CLIENT_API __attribute__((visibility("default")))
#endif
