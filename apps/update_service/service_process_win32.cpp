#include <windows.h>

#include <stdexcept>

#include "app_system/command_line_win32.h"
#include "base/reason.h"
#include "service_process.h"

namespace update_service {

namespace {

HANDLE HandleOf(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

void Close(std::intptr_t& handle) {
    if (handle != 0) CloseHandle(HandleOf(handle));
    handle = 0;
}

}  // namespace

// It ends with its input, of which this process has the other end.
ServiceProcess::ServiceProcess(std::vector<std::string> options, const std::filesystem::path& errors) {
    options.insert(options.begin(), {UPDATE_SERVICE_PROGRAM, "--end-with-input"});
    HANDLE theirs = nullptr;
    HANDLE ours = nullptr;
    if (!CreatePipe(&theirs, &ours, nullptr, 0)) throw std::runtime_error("a pipe: " + base::LastReason());
    m_input = reinterpret_cast<std::intptr_t>(ours);
    SetHandleInformation(theirs, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    const HANDLE file = CreateFileW(errors.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                                    CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = theirs;
    startup.hStdOutput = file;
    startup.hStdError = file;
    std::wstring line = app_system::CommandLineOf(options);
    PROCESS_INFORMATION made{};
    const BOOL started =
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &made);
    const std::string reason = started ? "" : base::LastReason();
    CloseHandle(theirs);
    CloseHandle(file);
    if (!started) {
        Close(m_input);
        throw std::runtime_error(options[0] + ": " + reason);
    }
    CloseHandle(made.hThread);
    m_process = reinterpret_cast<std::intptr_t>(made.hProcess);
}

ServiceProcess::~ServiceProcess() {
    if (m_process != 0) Kill();
    Close(m_input);
}

std::vector<std::string> ServiceProcess::WaysToEnd() { return {"stops: end of input"}; }

void ServiceProcess::AskToEnd(std::size_t) { Close(m_input); }

void ServiceProcess::Kill() {
    TerminateProcess(HandleOf(m_process), 1);
    Wait();
}

int ServiceProcess::Wait() {
    DWORD code = 0;
    WaitForSingleObject(HandleOf(m_process), INFINITE);
    GetExitCodeProcess(HandleOf(m_process), &code);
    Close(m_process);
    return static_cast<int>(code);
}

}  // namespace update_service
