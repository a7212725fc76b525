#include <io.h>
#include <windows.h>

#include <cerrno>
#include <system_error>

#include "script_input.h"

namespace settings_host {

namespace {

[[noreturn]] void ThrowUnreadable(int error) {
    throw std::system_error(error, std::generic_category(), "the script cannot be read");
}

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

ScriptInput::ScriptInput(int file, std::function<void()> idle)
    : m_file(file), m_idle(std::move(idle)), m_stream(static_cast<std::streambuf*>(this)) {
    m_stream.exceptions(std::ios_base::badbit);
}

// Texts are read as other systems read them but for carriage returns, which the C library takes off in text mode.
ScriptInput::int_type ScriptInput::underflow() {
    while (!IsReadable(m_file)) m_idle();
    const int size = _read(m_file, m_buffer.data(), static_cast<unsigned>(m_buffer.size()));
    if (size == 0) return traits_type::eof();
    if (size < 0) ThrowUnreadable(errno);
    setg(m_buffer.data(), m_buffer.data(), m_buffer.data() + size);
    return traits_type::to_int_type(m_buffer[0]);
}

}  // namespace settings_host
