#include <windows.h>

#include "ipc/pipe_test.h"

namespace ipc_test {
namespace {

HANDLE HandleOf(std::intptr_t file) { return reinterpret_cast<HANDLE>(file); }

// Waits for a read or write that was begun; the bytes that it moved, 0 when it failed or patience ended.
DWORD Finish(HANDLE pipe, BOOL begun, OVERLAPPED& operation) {
    DWORD bytes = 0;
    const DWORD error = begun ? ERROR_SUCCESS : GetLastError();
    if (error == ERROR_SUCCESS || error == ERROR_IO_PENDING) {
        constexpr DWORD kMilliseconds = static_cast<DWORD>(kPatience.count() * 1000);
        if (WaitForSingleObject(operation.hEvent, kMilliseconds) != WAIT_OBJECT_0) CancelIoEx(pipe, &operation);
        if (!GetOverlappedResult(pipe, &operation, &bytes, TRUE)) bytes = 0;
    } else {
        SetLastError(error);
    }
    const DWORD result = GetLastError();
    CloseHandle(operation.hEvent);
    SetLastError(result);
    return bytes;
}

DWORD ReadSome(HANDLE pipe, char* buffer, std::size_t size) {
    OVERLAPPED operation{};
    operation.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const BOOL begun = ReadFile(pipe, buffer, static_cast<DWORD>(size), nullptr, &operation);
    return Finish(pipe, begun, operation);
}

DWORD WriteSome(HANDLE pipe, std::string_view bytes) {
    OVERLAPPED operation{};
    operation.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const BOOL begun = WriteFile(pipe, bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &operation);
    return Finish(pipe, begun, operation);
}

// All instances may have their peers at the moment: more will listen.
HANDLE Open(const std::filesystem::path& path) {
    HANDLE pipe = INVALID_HANDLE_VALUE;
    const auto isOpen = [&] {
        pipe = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED,
                           nullptr);
        return pipe != INVALID_HANDLE_VALUE || GetLastError() != ERROR_PIPE_BUSY;
    };
    EXPECT_TRUE(WaitUntil(isOpen)) << path;
    return pipe;
}

}  // namespace

RawPeer::RawPeer(const std::filesystem::path& socketPath) : m_fd(reinterpret_cast<std::intptr_t>(Open(socketPath))) {
    EXPECT_NE(HandleOf(m_fd), INVALID_HANDLE_VALUE) << GetLastError();
}

RawPeer::~RawPeer() { CloseHandle(HandleOf(m_fd)); }

bool RawPeer::Write(std::string_view bytes) {
    while (!bytes.empty()) {
        const DWORD written = WriteSome(HandleOf(m_fd), bytes);
        if (written == 0) return false;
        bytes.remove_prefix(written);
    }
    return true;
}

std::string RawPeer::Read(std::size_t bytes) {
    std::string all(bytes, '\0');
    std::size_t have = 0;
    while (have < bytes) {
        const DWORD got = ReadSome(HandleOf(m_fd), all.data() + have, bytes - have);
        if (got == 0) break;
        have += got;
    }
    all.resize(have);
    return all;
}

bool RawPeer::IsClosedByPeer() {
    char buffer[4096];
    while (ReadSome(HandleOf(m_fd), buffer, sizeof buffer) > 0) {
    }
    return GetLastError() == ERROR_BROKEN_PIPE || GetLastError() == ERROR_PIPE_NOT_CONNECTED;
}

RawBroker::RawBroker(const std::filesystem::path& socketPath, std::string answer)
    : m_listener(reinterpret_cast<std::intptr_t>(CreateNamedPipeW(socketPath.c_str(),
                                                                  PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED,
                                                                  PIPE_TYPE_BYTE, 1, 65536, 65536, 0, nullptr))) {
    EXPECT_NE(HandleOf(m_listener), INVALID_HANDLE_VALUE) << GetLastError();
    m_thread = std::thread([this, answer = std::move(answer)] {
        const HANDLE pipe = HandleOf(m_listener);
        OVERLAPPED operation{};
        operation.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        const BOOL begun = ConnectNamedPipe(pipe, &operation);
        const bool isThere = !begun && GetLastError() == ERROR_PIPE_CONNECTED;
        if (isThere) {
            CloseHandle(operation.hEvent);
        } else {
            Finish(pipe, begun, operation);
        }
        WriteSome(pipe, answer);
        char buffer[4096];
        while (ReadSome(pipe, buffer, sizeof buffer) > 0) {
        }
    });
}

RawBroker::~RawBroker() {
    CancelIoEx(HandleOf(m_listener), nullptr);  // wakes a connection or read that still waits
    m_thread.join();
    CloseHandle(HandleOf(m_listener));
}

}  // namespace ipc_test
