#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "script_input.h"

namespace settings_host {

namespace {

[[noreturn]] void ThrowUnreadable(int error) {
    throw std::system_error(error, std::generic_category(), "the script cannot be read");
}

// True when a read would not wait: there is something, or the end has come.
bool IsReadable(int file) {
    pollfd look{file, POLLIN, 0};
    const int ready = poll(&look, 1, 0);
    if (ready < 0 && errno != EINTR) ThrowUnreadable(errno);
    return ready > 0;
}

}  // namespace

ScriptInput::ScriptInput(int file, std::function<void()> idle)
    : m_file(file), m_idle(std::move(idle)), m_stream(static_cast<std::streambuf*>(this)) {
    m_stream.exceptions(std::ios_base::badbit);
}

// A read may find nothing although the file was readable: another process that shares it was faster, or a signal came.
ScriptInput::int_type ScriptInput::underflow() {
    for (;;) {
        if (!IsReadable(m_file)) {
            m_idle();
            continue;
        }
        const ssize_t size = read(m_file, m_buffer.data(), m_buffer.size());
        if (size == 0) return traits_type::eof();
        if (size > 0) {
            setg(m_buffer.data(), m_buffer.data(), m_buffer.data() + size);
            return traits_type::to_int_type(m_buffer[0]);
        }
        if (errno == EAGAIN) m_idle();
        if (errno != EAGAIN && errno != EINTR) ThrowUnreadable(errno);
    }
}

}  // namespace settings_host
