#include "base/reason.h"

#include <cerrno>

namespace base {

std::string Reason(int error) { return std::generic_category().message(error); }

std::string LastReason() { return Reason(errno); }

std::string Reason(const std::error_code& error) { return error.message(); }

std::string Reason(const std::exception& error) { return error.what(); }

}  // namespace base
