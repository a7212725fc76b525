#include "base/arguments.h"

#include <windows.h>
// The shell's header needs the one before it.
#include <shellapi.h>

#include <filesystem>

#include "base/text.h"

namespace base {

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

}  // namespace base
