#include <fcntl.h>
#include <unistd.h>

#include "append_line.h"

bool AppendWhole(const std::filesystem::path& file, const std::string& text) {
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (descriptor < 0) return false;
    const ssize_t written = write(descriptor, text.data(), text.size());
    const bool closed = close(descriptor) == 0;
    return closed && written == static_cast<ssize_t>(text.size());
}
