#include "base/process.h"

#include <windows.h>
// The shell's header needs the one before it.
#include <shellapi.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "base/mutex.h"
#include "base/text.h"

namespace base {
namespace {

struct Asked {
    Mutex mutex;
    Condition came;
    const char* name BASE_GUARDED_BY(mutex) = nullptr;  // null: not yet
};

// Never destroyed: the system asks on a thread of its own, also while the process ends.
Asked& Request() {
    static Asked& asked = *new Asked;
    return asked;
}

const char* NameOf(DWORD event) {
    switch (event) {
        case CTRL_C_EVENT:
            return "CTRL_C_EVENT";
        case CTRL_BREAK_EVENT:
            return "CTRL_BREAK_EVENT";
        case CTRL_CLOSE_EVENT:
            return "CTRL_CLOSE_EVENT";
        case CTRL_LOGOFF_EVENT:
            return "CTRL_LOGOFF_EVENT";
        default:
            return "CTRL_SHUTDOWN_EVENT";
    }
}

void Ask(const char* name) {
    Asked& asked = Request();
    const MutexLock lock(asked.mutex);
    if (asked.name == nullptr) asked.name = name;
    asked.came.NotifyAll();
}

// After the window's close button, a logoff or a shutdown the system ends the process when this returns, so it does
// not: the process ends by itself, or the system's patience does.
BOOL WINAPI Handle(DWORD event) {
    Ask(NameOf(event));
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) ::Sleep(INFINITE);
    return TRUE;
}

}  // namespace

// What main gets has lost the characters that the system's code page does not know. Here, as the first thing that a
// program does, its standard output becomes UTF-8, and boxes are forbidden with which the system would ask a person
// about a library that cannot be loaded, also one of a child; the call fails instead.
Arguments::Arguments(int argc, const char* const* argv) {
    SetConsoleOutputCP(CP_UTF8);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 0; words != nullptr && i < count; ++i) m_texts.push_back(Utf8FromWide(words[i]));
    LocalFree(words);
    if (m_texts.empty()) m_texts.assign(argv, argv + argc);
    List();
}

std::vector<std::string> OwnEnvironment() {
    std::vector<std::string> variables;
    wchar_t* const block = GetEnvironmentStringsW();
    if (block == nullptr) return variables;
    for (const wchar_t* entry = block; *entry != L'\0'; entry += std::char_traits<wchar_t>::length(entry) + 1) {
        variables.push_back(Utf8FromWide(entry));
    }
    FreeEnvironmentStringsW(block);
    return variables;
}

// Capitals do not count.
bool ComesBefore(const std::string& name, const std::string& other) {
    const std::wstring a = WideFromUtf8(name);
    const std::wstring b = WideFromUtf8(other);
    return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()), TRUE) ==
           CSTR_LESS_THAN;
}

std::optional<std::string> Variable(const std::string& name) {
    const wchar_t* const value = _wgetenv(WideFromUtf8(name).c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(Utf8FromWide(value));
}

// Through the C library, which keeps a copy for std::getenv. It takes an empty value for none.
void SetVariable(const std::string& name, const std::optional<std::string>& value) {
    _wputenv_s(WideFromUtf8(name).c_str(), WideFromUtf8(value.value_or("")).c_str());
}

// Names of locales are ASCII.
std::string SystemLocale() {
    wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
    LCIDToLocaleName(MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT), name, LOCALE_NAME_MAX_LENGTH, 0);
    return Utf8FromWide(name);
}

// A process that was started with Ctrl+C switched off gets it again.
void HoldStopSignals() {
    SetConsoleCtrlHandler(nullptr, FALSE);
    SetConsoleCtrlHandler(Handle, TRUE);
}

// Not through the C library, which keeps a stream that is read locked until the process has ended.
void StopWithInput() {
    std::thread([] {
        const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
        char bytes[512];
        DWORD size = 0;
        while (ReadFile(input, bytes, sizeof bytes, &size, nullptr) && size != 0) {
        }
        Ask("end of input");
    }).detach();  // lives as long as the process
}

const char* WaitForStopSignal() {
    Asked& asked = Request();
    const MutexLock lock(asked.mutex);
    while (asked.name == nullptr) asked.came.Wait(asked.mutex);
    const char* const name = asked.name;
    asked.name = nullptr;
    return name;
}

// The system's consoles have a code page of their own, which is the program's business: text goes there as wide
// characters. Not through the C library, which would wait at the process's end for a thread that waits in here.
void WriteToErrors(std::string_view text) {
    const HANDLE errors = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0, written = 0;
    if (GetConsoleMode(errors, &mode)) {
        const std::wstring wide = WideFromUtf8(text);
        WriteConsoleW(errors, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
        return;
    }
    while (!text.empty()) {
        constexpr std::size_t kMost = 1024 * 1024 * 1024;
        if (!WriteFile(errors, text.data(), static_cast<DWORD>(std::min(text.size(), kMost)), &written, nullptr))
            return;
        text.remove_prefix(written);
    }
}

ErrorsTake HowErrorsTake(std::size_t) {
    const HANDLE errors = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    const bool mayWait = GetFileType(errors) == FILE_TYPE_PIPE || GetConsoleMode(errors, &mode);
    return mayWait ? ErrorsTake::kNobodyKnows : ErrorsTake::kAtOnce;
}

void StayLoaded() {
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<const wchar_t*>(&StayLoaded), &self);
}

}  // namespace base
