#include "script_input.h"

namespace settings_host {

ScriptInput::ScriptInput(int file, std::function<void()> idle)
    : m_file(file), m_idle(std::move(idle)), m_stream(static_cast<std::streambuf*>(this)) {
    m_stream.exceptions(std::ios_base::badbit);
}

ScriptInput::int_type ScriptInput::underflow() {
    std::optional<std::size_t> size;
    while (!(size = ReadIfReady(m_file, m_buffer.data(), m_buffer.size()))) m_idle();
    if (*size == 0) return traits_type::eof();
    setg(m_buffer.data(), m_buffer.data(), m_buffer.data() + *size);
    return traits_type::to_int_type(m_buffer[0]);
}

}  // namespace settings_host
