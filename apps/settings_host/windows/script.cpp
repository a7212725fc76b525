#include "script.h"

#include <io.h>
#include <windows.h>

#include <cerrno>
#include <system_error>

namespace settings_host::script {

namespace {

// Whether a key was pressed in the console; takes other events (the mouse, the window's size) off its queue, on which a
// read would wait.
bool HasKey(HANDLE console) {
    INPUT_RECORD event{};
    DWORD count = 0;
    while (PeekConsoleInputW(console, &event, 1, &count) && count != 0) {
        if (event.EventType == KEY_EVENT && event.Event.KeyEvent.bKeyDown) return true;
        ReadConsoleInputW(console, &event, 1, &count);
    }
    return false;
}

// True when a read would not wait: there is something, or the end has come, or an error that the read will tell. In a
// console it may wait for the rest of a line that somebody types.
bool IsReadable(int file) {
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(file));
    switch (GetFileType(handle)) {
        case FILE_TYPE_PIPE: {
            DWORD available = 0;
            return !PeekNamedPipe(handle, nullptr, 0, nullptr, &available, nullptr) || available != 0;
        }
        case FILE_TYPE_CHAR: {
            DWORD mode = 0;
            return !GetConsoleMode(handle, &mode) || HasKey(handle);
        }
        default:
            return true;
    }
}

}  // namespace

// Texts are read as on other systems, except for carriage returns, which the C library takes off in text mode.
std::optional<std::size_t> Input::ReadIfReady(int file, char* buffer, std::size_t size) {
    if (!IsReadable(file)) return std::nullopt;
    const int got = _read(file, buffer, static_cast<unsigned>(size));
    if (got < 0) throw std::system_error(errno, std::generic_category(), "the script cannot be read");
    return static_cast<std::size_t>(got);
}

}  // namespace settings_host::script
