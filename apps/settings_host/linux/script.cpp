#include "script.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace settings_host::script {

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

// A read may find nothing although the file was readable: another process that shares it was faster, or a signal came.
std::optional<std::size_t> Input::ReadIfReady(int file, char* buffer, std::size_t size) {
    if (!IsReadable(file)) return std::nullopt;
    const ssize_t got = read(file, buffer, size);
    if (got >= 0) return static_cast<std::size_t>(got);
    if (errno != EAGAIN && errno != EINTR) ThrowUnreadable(errno);
    return std::nullopt;
}

}  // namespace settings_host::script
