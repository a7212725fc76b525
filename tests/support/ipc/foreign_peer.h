#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "test_process.h"

namespace ipc_test {

// A raw peer of the message pipe in another process than the broker's, which a broker treats otherwise than its own.
class ForeignPeer {
public:
    explicit ForeignPeer(const std::filesystem::path& socketPath);

    // Writes the bytes so often; false when the other side has closed. Begin alone does not wait for the end of that.
    bool Write(std::string_view bytes, std::size_t count = 1);
    void BeginWrite(std::string_view bytes, std::size_t count);
    bool EndWrite();

    // Reads exactly that many bytes, fewer when the other side closes first.
    std::string Read(std::size_t bytes);

    // Reads on until the other side closes; false when it does not in time.
    bool IsClosedByPeer();

    // Connects so often for a moment more; false when that does not end in time.
    bool Visit(std::size_t count);

    int Process() const { return m_process.Id(); }
    void Kill() { m_process.Kill(); }

private:
    std::string NextAnswer();

    test_process::Process m_process;
    std::size_t m_answers = 0;
};

}  // namespace ipc_test
