#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/child_process.h"
#include "base/handle.h"

// What ChildProcess needs of the system. Everything that can fail throws std::runtime_error with the system's reason.
namespace base::child_system {

using File = OwnedHandle;

// Files for a child. No child gets them but the one that is started with them, nor does it get our end of a pipe.
File OpenNothing();
File CreateNewFile(const std::filesystem::path& file);
File CopyOfOwn(std::size_t stream);  // 0 to 2: this process's input, output, errors; what reads nothing without one

struct Pipe {
    File ours;
    File theirs;
};
Pipe MakeInputPipe();   // the child reads
Pipe MakeOutputPipe();  // the child writes

// Waits for bytes, looking at `stop` again and again. 0 at the end, and when it is to stop.
std::size_t Read(const File& pipe, char* bytes, std::size_t size, const std::atomic<bool>& stop);

// Returns how many bytes were written; 0 when nobody reads any more.
std::size_t Write(const File& pipe, std::string_view bytes);

struct Started {
    int id = 0;
    File process;  // Windows only
    File group;    // Windows only
    bool ownGroup = false;
};

// `settings` says all but environment and streams; an output that is not open goes where the errors go.
Started Start(const ChildSettings& settings, const std::vector<std::string>& environment,
              const std::array<File, 3>& streams);

// Waits for the child's end, for the limit at most. Not to be called again once it has told the end.
std::optional<ChildEnd> WaitForEnd(const Started& child, std::chrono::milliseconds limit);

// Whether the child was asked by a signal; false on systems that have none.
bool AskToEnd(const Started& child);
void Kill(const Started& child);

// Program and arguments in the one line that Windows takes, quoted so that the program's own runtime takes them apart
// again. What begins with "cmd.exe", "/d", "/s", "/c" and a text ends there: the command interpreter takes the text as
// it stands, and can be given no arguments beside it.
std::string WindowsCommandLine(const std::vector<std::string>& command);

}  // namespace base::child_system
