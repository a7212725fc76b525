#include <windows.h>

#include <algorithm>
#include <memory>
#include <optional>

#include "app_system/command_line_win32.h"
#include "base/reason.h"
#include "installer.h"

namespace update_service {
namespace {

using Clock = std::chrono::steady_clock;

struct HandleCloser {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const {
        if (handle != nullptr && handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
    }
};
using OwnedHandle = std::unique_ptr<void, HandleCloser>;

// A crash anywhere among the installer's processes ends that process, instead of asking a user who is not there. The
// job ends nothing by itself: an installer that is abandoned runs on.
OwnedHandle MakeJob() {
    OwnedHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_DIE_ON_UNHANDLED_EXCEPTION;
    if (job) SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

// A handle that the child inherits; null when there is none, and the child then has none.
OwnedHandle Inheritable(HANDLE handle) {
    HANDLE copy = nullptr;
    const HANDLE self = GetCurrentProcess();
    if (handle != nullptr && handle != INVALID_HANDLE_VALUE) {
        DuplicateHandle(self, handle, self, &copy, 0, TRUE, DUPLICATE_SAME_ACCESS);
    }
    return OwnedHandle(copy);
}

// The list of the handles that a child inherits, and no other.
class InheritedHandles {
public:
    explicit InheritedHandles(std::vector<HANDLE> handles) : m_handles(std::move(handles)) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        m_memory.resize(size);
        InitializeProcThreadAttributeList(List(), 1, 0, &size);
        UpdateProcThreadAttribute(List(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, m_handles.data(),
                                  m_handles.size() * sizeof(HANDLE), nullptr, nullptr);
    }
    ~InheritedHandles() { DeleteProcThreadAttributeList(List()); }
    InheritedHandles(const InheritedHandles&) = delete;
    InheritedHandles& operator=(const InheritedHandles&) = delete;

    LPPROC_THREAD_ATTRIBUTE_LIST List() { return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_memory.data()); }

private:
    std::vector<HANDLE> m_handles;
    std::vector<char> m_memory;
};

// The child's process: no input, output where the log goes, a process group of its own. Null with the error set when it
// cannot be started.
OwnedHandle Start(const InstallerCall& call) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    const OwnedHandle nothing(CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          &inherit, OPEN_EXISTING, 0, nullptr));
    const OwnedHandle errors = Inheritable(GetStdHandle(STD_ERROR_HANDLE));
    const HANDLE output = errors ? errors.get() : nothing.get();
    InheritedHandles inherited(errors ? std::vector{nothing.get(), output} : std::vector{output});
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = nothing.get();
    startup.StartupInfo.hStdOutput = output;
    startup.StartupInfo.hStdError = output;
    startup.lpAttributeList = inherited.List();

    const std::wstring program = app_system::ProgramPath(call.command[0], call.folder);
    std::wstring commandLine = app_system::CommandLineOf(call.command);
    std::wstring environment = app_system::EnvironmentWith(call.environment);
    constexpr DWORD kFlags =
        CREATE_SUSPENDED | CREATE_NEW_PROCESS_GROUP | CREATE_UNICODE_ENVIRONMENT | EXTENDED_STARTUPINFO_PRESENT;
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(program.empty() ? nullptr : program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, kFlags,
                        environment.data(), call.folder.c_str(), &startup.StartupInfo, &made)) {
        return nullptr;
    }
    OwnedHandle process(made.hProcess);
    const OwnedHandle thread(made.hThread);
    const OwnedHandle job = MakeJob();
    if (job) AssignProcessToJobObject(job.get(), process.get());  // without one it runs all the same
    ResumeThread(thread.get());
    return process;
}

// Waits for the child's end and looks for a stop meanwhile. Nothing when it is abandoned.
std::optional<DWORD> WaitFor(HANDLE process, const std::stop_token& stop, std::chrono::milliseconds grace) {
    constexpr DWORD kLookAgain = 20;  // [ms] how late a stop may be seen
    std::optional<Clock::time_point> deadline;
    for (;;) {
        DWORD code = 0;
        if (WaitForSingleObject(process, kLookAgain) == WAIT_OBJECT_0 && GetExitCodeProcess(process, &code))
            return code;
        if (stop.stop_requested() && !deadline) deadline = Clock::now() + grace;
        if (deadline && Clock::now() >= *deadline) return std::nullopt;
    }
}

// Exceptions end a process with their code, a large number that is known in hexadecimal digits.
InstallerResult Judge(DWORD code) {
    if (code == 0) return {InstallerEnd::kSucceeded, ""};
    if (code < 0xC0000000) return {InstallerEnd::kFailed, "exit status " + std::to_string(code)};
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = "exception 0x";
    for (int shift = 28; shift >= 0; shift -= 4) text += kDigits[(code >> shift) & 15];
    return {InstallerEnd::kFailed, text};
}

}  // namespace

InstallerResult RunInstaller(const InstallerCall& call, const std::stop_token& stop, std::chrono::milliseconds grace) {
    const OwnedHandle process = Start(call);
    if (!process) return {InstallerEnd::kFailed, "cannot be started: " + base::LastReason()};
    const std::optional<DWORD> code = WaitFor(process.get(), stop, grace);
    return code ? Judge(*code) : InstallerResult{InstallerEnd::kAbandoned, ""};
}

}  // namespace update_service
