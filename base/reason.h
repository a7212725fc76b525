#pragma once

#include <exception>
#include <string>
#include <system_error>

// Why something failed, as the system says it: in UTF-8 on every system, for logs and messages. What the standard
// library says instead (message(), what()) is text of the system's code page on Windows. Any thread.
namespace base {

// `error` is a number of the system's own: errno, or what GetLastError gives. On Windows one line without a full stop.
std::string Reason(int error);

// The reason of the calling thread's last failed call. Ask at once: the next call may change it.
std::string LastReason();

// Of a code of any category, those of the pipe library too.
std::string Reason(const std::error_code& error);

// What an exception says. Those of files tell the reason and the paths; other system errors what() with the reason as
// above.
std::string Reason(const std::exception& error);

}  // namespace base
