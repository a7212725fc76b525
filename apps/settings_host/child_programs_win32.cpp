#include <windows.h>

#include <stdexcept>

#include "app_system/command_line_win32.h"
#include "base/path.h"
#include "base/reason.h"
#include "child_programs.h"

namespace settings_host {

// A program that runs, and the pipe that is its standard input.
struct ChildPrograms::Child {
    HANDLE process = nullptr;
    HANDLE input = nullptr;  // our end; nobody writes to it
};

namespace {

using base::LastReason;
using base::Utf8FromPath;

// [ms] for a program that has lost its input to end by itself: the update service waits ten seconds for an installer
constexpr DWORD kPatience = 15000;

std::filesystem::path FileOf(const std::string& program) {
    std::filesystem::path file = base::ProgramFolder() / base::PathFromUtf8(program);
    if (!file.has_extension()) file += ".exe";
    return file;
}

// Ends with this process, however that ends, what was put into it; not what that starts in its turn: an installer that
// a service began runs on. Never closed by hand.
HANDLE Job() {
    static const HANDLE job = [] {
        const HANDLE made = CreateJobObjectW(nullptr, nullptr);
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
        limits.BasicLimitInformation.LimitFlags =
            JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_SILENT_BREAKAWAY_OK;
        SetInformationJobObject(made, JobObjectExtendedLimitInformation, &limits, sizeof limits);
        return made;
    }();
    return job;
}

// A new file, or "NUL" for nothing, for a child to inherit; others may read it meanwhile. INVALID_HANDLE_VALUE with the
// error set when it cannot be made.
HANDLE OpenOutput(const std::filesystem::path& file) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    return CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                       file == L"NUL" ? OPEN_EXISTING : CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

struct Streams {
    HANDLE input;
    HANDLE output;
    HANDLE errors;
};

// False with the error set when it cannot be started.
bool StartOn(const Streams& streams, const std::filesystem::path& file, std::wstring commandLine,
             PROCESS_INFORMATION& made) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = streams.input;
    startup.hStdOutput = streams.output;
    startup.hStdError = streams.errors;
    return CreateProcessW(file.c_str(), commandLine.data(), nullptr, nullptr, TRUE,
                          CREATE_SUSPENDED | CREATE_NEW_PROCESS_GROUP, nullptr, nullptr, &startup, &made) != 0;
}

}  // namespace

ChildPrograms::~ChildPrograms() {
    while (!m_running.empty()) Stop(std::string(m_running.begin()->first));
}

void ChildPrograms::Start(const std::string& program, const std::vector<std::string>& arguments,
                          const std::filesystem::path& output) {
    if (m_running.count(program) != 0) throw std::runtime_error(program + " runs already");
    const std::filesystem::path file = FileOf(program);
    HANDLE theirs = nullptr;
    HANDLE ours = nullptr;
    if (!CreatePipe(&theirs, &ours, nullptr, 0)) throw std::runtime_error(Utf8FromPath(file) + ": " + LastReason());
    SetHandleInformation(theirs, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    std::vector<std::string> words{Utf8FromPath(file)};
    words.insert(words.end(), arguments.begin(), arguments.end());
    const HANDLE written = OpenOutput(output.empty() ? std::filesystem::path(L"NUL") : output);
    PROCESS_INFORMATION made{};
    const bool started = written != INVALID_HANDLE_VALUE &&
                         StartOn({theirs, written, output.empty() ? GetStdHandle(STD_ERROR_HANDLE) : written}, file,
                                 app_system::CommandLineOf(words), made);
    const std::string reason = started ? "" : LastReason();
    CloseHandle(theirs);
    if (written != INVALID_HANDLE_VALUE) CloseHandle(written);
    if (!started) {
        CloseHandle(ours);
        throw std::runtime_error(Utf8FromPath(file) + ": cannot be started: " + reason);
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

bool ChildPrograms::Runs(const std::string& program) const {
    const auto found = m_running.find(program);
    return found != m_running.end() && WaitForSingleObject(found->second->process, 0) == WAIT_TIMEOUT;
}

}  // namespace settings_host
