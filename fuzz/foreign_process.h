#pragma once

#include <filesystem>

#include "base/handle.h"

namespace fuzz {

// Another process, whose connections are foreign to this one's broker. It ends with this one.
class ForeignProcess {
public:
    // Before this process has threads.
    explicit ForeignProcess(const std::filesystem::path& socket);

    // A connection to the socket that the other process has made and given away: to whoever accepts it, it is the
    // other's.
    base::OwnedHandle Connect() const;

private:
    base::OwnedHandle m_line;  // a byte each asks for one more
};

}  // namespace fuzz
