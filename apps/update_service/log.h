#pragma once

#include <functional>
#include <string>

#include "qx_logger/qx_logger.h"

namespace update_service {

// Where the service's log lines go [UTF-8, no line end]. Called on any thread, on several at once.
class Log {
public:
    using Write = std::function<void(LOG_MESSAGE_LEVEL level, const std::string& line)>;
    explicit Log(Write write) : m_write(std::move(write)) {}

    // A line that cannot be written is dropped, whatever the function throws.
    void operator()(LOG_MESSAGE_LEVEL level, const std::string& line) const noexcept {
        try {
            m_write(level, line);
        } catch (...) {
        }
    }

private:
    Write m_write;
};

}  // namespace update_service
