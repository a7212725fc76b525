#include <windows.h>

#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "child_programs.h"

namespace settings_host {

// A program that runs, and the pipe that is its standard input.
struct ChildPrograms::Child {
    HANDLE process = nullptr;
    HANDLE input = nullptr;  // our end; nobody writes to it
};

namespace {

constexpr DWORD kPatience = 2000;  // [ms] for a program that has lost its input to end by itself

std::string LastReason() { return std::error_code(static_cast<int>(GetLastError()), std::system_category()).message(); }

std::filesystem::path ProgramFolder() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) return std::filesystem::path(path.substr(0, length)).parent_path();
        path.resize(path.size() * 2);
    }
}

std::filesystem::path FileOf(const std::string& program) {
    std::filesystem::path file = ProgramFolder() / std::filesystem::path(std::u8string(program.begin(), program.end()));
    if (!file.has_extension()) file += ".exe";
    return file;
}

// Ends with this process, however that ends, what was put into it. Never closed by hand.
HANDLE Job() {
    static const HANDLE job = [] {
        const HANDLE made = CreateJobObjectW(nullptr, nullptr);
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
        SetInformationJobObject(made, JobObjectExtendedLimitInformation, &limits, sizeof limits);
        return made;
    }();
    return job;
}

// Starts the program on that input, without output. False with the error set when it cannot be started.
bool StartOn(const std::filesystem::path& file, HANDLE input, PROCESS_INFORMATION& made) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    const HANDLE nothing =
        CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit, OPEN_EXISTING, 0, nullptr);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input;
    startup.hStdOutput = nothing;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    std::wstring commandLine = L'"' + file.wstring() + L'"';
    const BOOL started = CreateProcessW(file.c_str(), commandLine.data(), nullptr, nullptr, TRUE,
                                        CREATE_SUSPENDED | CREATE_NEW_PROCESS_GROUP, nullptr, nullptr, &startup, &made);
    const DWORD error = GetLastError();
    CloseHandle(nothing);
    SetLastError(error);
    return started != 0;
}

}  // namespace

ChildPrograms::~ChildPrograms() {
    while (!m_running.empty()) Stop(std::string(m_running.begin()->first));
}

void ChildPrograms::Start(const std::string& program) {
    if (m_running.count(program) != 0) throw std::runtime_error(program + " runs already");
    const std::filesystem::path file = FileOf(program);
    HANDLE theirs = nullptr;
    HANDLE ours = nullptr;
    if (!CreatePipe(&theirs, &ours, nullptr, 0)) throw std::runtime_error(file.string() + ": " + LastReason());
    SetHandleInformation(theirs, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    PROCESS_INFORMATION made{};
    const bool started = StartOn(file, theirs, made);
    const std::string reason = started ? "" : LastReason();
    CloseHandle(theirs);
    if (!started) {
        CloseHandle(ours);
        throw std::runtime_error(file.string() + ": cannot be started: " + reason);
    }
    AssignProcessToJobObject(Job(), made.hProcess);
    ResumeThread(made.hThread);
    CloseHandle(made.hThread);
    m_running[program] = std::make_shared<Child>(Child{made.hProcess, ours});
}

// There is no signal to send: the end of its input asks the program to end.
void ChildPrograms::Stop(const std::string& program) {
    const auto found = m_running.find(program);
    if (found == m_running.end()) throw std::runtime_error(program + " was not started by the script");
    const Child child = *found->second;
    m_running.erase(found);
    CloseHandle(child.input);
    if (WaitForSingleObject(child.process, kPatience) != WAIT_OBJECT_0) {
        TerminateProcess(child.process, 1);
        WaitForSingleObject(child.process, INFINITE);
    }
    CloseHandle(child.process);
}

}  // namespace settings_host
