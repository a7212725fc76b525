#pragma once

#include <windows.h>

#include <string>

// Which user a process of this system belongs to, and pipes for only one user.
namespace ipc_client {

// The user of the process, as the text of a security identifier ("S-1-5-21-..."). Throws std::system_error.
std::wstring UserOf(HANDLE process);

// Security attributes with which only the user of this process may open an object; not handed on to other processes.
class OwnUserAlone {
public:
    OwnUserAlone();  // throws std::system_error
    ~OwnUserAlone();
    OwnUserAlone(const OwnUserAlone&) = delete;
    OwnUserAlone& operator=(const OwnUserAlone&) = delete;

    SECURITY_ATTRIBUTES* Get() { return &m_attributes; }

private:
    SECURITY_ATTRIBUTES m_attributes{};
};

}  // namespace ipc_client
