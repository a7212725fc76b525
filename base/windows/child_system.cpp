#include "base/child_system.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>

#include "base/file.h"
#include "base/reason.h"
#include "base/text.h"

namespace base {

std::vector<std::string> ShellCommand(std::string text, const std::string&) {
    return {"cmd.exe", "/d", "/s", "/c", std::move(text)};
}

namespace child_system {

namespace {

constexpr DWORD kLookAgain = 5;       // [ms] how late a reader sees bytes, or that it is to stop
constexpr UINT kKilled = 0xE0000009;  // the exit code of what Kill has ended; none of the system's

// Made anew, or there already when it is "NUL".
File Open(const std::filesystem::path& file, DWORD disposition) {
    File opened = File(CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                   nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!opened) throw std::runtime_error(LastReason());
    return opened;
}

// For a child's list of handles: a list takes only inheritable ones.
File Inheritable(const File& file) {
    HANDLE copy = nullptr;
    const HANDLE self = GetCurrentProcess();
    if (!DuplicateHandle(self, file.Handle(), self, &copy, 0, TRUE, DUPLICATE_SAME_ACCESS)) {
        throw std::runtime_error("a stream: " + LastReason());
    }
    return File(copy);
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

File MakeJob(DWORD limits) {
    File job = File(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION information{};
    information.BasicLimitInformation.LimitFlags = limits;
    if (job) {
        SetInformationJobObject(job.Handle(), JobObjectExtendedLimitInformation, &information, sizeof information);
    }
    return job;
}

// Ends with this process, however that ends, what was put into it; not what that starts in its turn. Never closed by
// hand.
const File& JobOfThisProcess() {
    static const File& job =
        *new File(MakeJob(JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_SILENT_BREAKAWAY_OK));
    return job;
}

// In the system's form: a zero behind each and one more at the end.
std::wstring BlockOf(const std::vector<std::string>& environment) {
    std::wstring block;
    for (const std::string& variable : environment) block += WideFromUtf8(variable) + L'\0';
    return block + L'\0';
}

// Empty for a program that the system looks up.
std::wstring ProgramPath(const ChildSettings& settings) {
    if (settings.command.at(0).find_first_of("/\\") == std::string::npos) return {};
    std::filesystem::path program = settings.folder / PathFromUtf8(settings.command[0]);
    if (!program.has_extension()) program += ".exe";
    return program.make_preferred();
}

struct Made {
    File process;
    File thread;
    DWORD id;
};

// Its first thread does not run yet. Throws with the reason.
Made Create(const ChildSettings& settings, const std::vector<std::string>& environment,
            const std::array<File, 3>& streams) {
    const File input = Inheritable(streams[0]);
    const File errors = Inheritable(streams[2]);
    const File output = Inheritable(streams[1] ? streams[1] : streams[2]);
    InheritedHandles inherited({input.Handle(), output.Handle(), errors.Handle()});
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = input.Handle();
    startup.StartupInfo.hStdOutput = output.Handle();
    startup.StartupInfo.hStdError = errors.Handle();
    startup.lpAttributeList = inherited.List();
    const std::wstring program = ProgramPath(settings);
    std::wstring line = WideFromUtf8(WindowsCommandLine(settings.command));
    std::wstring block = BlockOf(environment);
    const DWORD group = settings.ownGroup || settings.endsWithThisProcess ? CREATE_NEW_PROCESS_GROUP : 0;
    const DWORD flags = CREATE_SUSPENDED | CREATE_UNICODE_ENVIRONMENT | EXTENDED_STARTUPINFO_PRESENT | group;
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(program.empty() ? nullptr : program.c_str(), line.data(), nullptr, nullptr, TRUE, flags,
                        block.data(), settings.folder.empty() ? nullptr : settings.folder.c_str(), &startup.StartupInfo,
                        &made)) {
        throw std::runtime_error(LastReason());
    }
    return {File(made.hProcess), File(made.hThread), made.dwProcessId};
}

Pipe MakePipe(bool childReads) {
    HANDLE reads = nullptr;
    HANDLE writes = nullptr;
    if (!CreatePipe(&reads, &writes, nullptr, 0)) throw std::runtime_error("a pipe: " + LastReason());
    return childReads ? Pipe{File(writes), File(reads)} : Pipe{File(reads), File(writes)};
}

}  // namespace

File OpenNothing() { return Open(L"NUL", OPEN_EXISTING); }

File CreateNewFile(const std::filesystem::path& file) { return Open(file, CREATE_ALWAYS); }

File CopyOfOwn(std::size_t stream) {
    constexpr DWORD kNames[] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
    HANDLE copy = nullptr;
    const HANDLE self = GetCurrentProcess();
    const HANDLE own = GetStdHandle(kNames[stream]);
    if (own == nullptr || own == INVALID_HANDLE_VALUE ||
        !DuplicateHandle(self, own, self, &copy, 0, FALSE, DUPLICATE_SAME_ACCESS)) {
        return OpenNothing();
    }
    return File(copy);
}

Pipe MakeInputPipe() { return MakePipe(true); }
Pipe MakeOutputPipe() { return MakePipe(false); }

// No wait that somebody would have to end: with the system's own, an end that comes just before is lost.
std::size_t Read(const File& pipe, char* bytes, std::size_t size, const std::atomic<bool>& stop) {
    while (!stop) {
        DWORD there = 0;
        if (!PeekNamedPipe(pipe.Handle(), nullptr, 0, nullptr, &there, nullptr)) return 0;
        DWORD got = 0;
        if (there == 0) {
            ::Sleep(kLookAgain);
        } else if (!ReadFile(pipe.Handle(), bytes, static_cast<DWORD>(size), &got, nullptr) || got != 0) {
            return got;
        }
    }
    return 0;
}

std::size_t Write(const File& pipe, std::string_view bytes) {
    DWORD written = 0;
    return WriteFile(pipe.Handle(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) ? written : 0;
}

// Where there are no jobs it runs all the same.
Started Start(const ChildSettings& settings, const std::vector<std::string>& environment,
              const std::array<File, 3>& streams) {
    Made made = Create(settings, environment, streams);
    if (settings.endsWithThisProcess) AssignProcessToJobObject(JobOfThisProcess().Handle(), made.process.Handle());
    Started child{.id = static_cast<int>(made.id), .process = std::move(made.process), .group = {}};
    if (settings.ownGroup) {
        child.group = MakeJob(JOB_OBJECT_LIMIT_DIE_ON_UNHANDLED_EXCEPTION);
        child.ownGroup = AssignProcessToJobObject(child.group.Handle(), child.process.Handle()) != 0;
    }
    ResumeThread(made.thread.Handle());
    return child;
}

std::optional<ChildEnd> WaitForEnd(const Started& child, std::chrono::milliseconds limit) {
    DWORD code = 0;
    if (WaitForSingleObject(child.process.Handle(), static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(child.process.Handle(), &code)) {
        return std::nullopt;
    }
    return code == kKilled ? ChildEnd{.signal = 9} : ChildEnd{.code = code};
}

bool AskToEnd(const Started&) { return false; }

void Kill(const Started& child) {
    if (!child.ownGroup || !TerminateJobObject(child.group.Handle(), kKilled)) {
        TerminateProcess(child.process.Handle(), kKilled);
    }
}

}  // namespace child_system
}  // namespace base
