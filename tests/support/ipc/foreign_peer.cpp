#include "ipc/foreign_peer.h"

#include <algorithm>

#include "base/file.h"
#include "ipc/hexadecimal.h"
#include "wait_until.h"

namespace ipc_test {

ForeignPeer::ForeignPeer(const std::filesystem::path& socketPath)
    : m_process(base::PathFromUtf8(FOREIGN_PEER_PROGRAM), {base::Utf8FromPath(socketPath)}) {}

bool ForeignPeer::Write(std::string_view bytes, std::size_t count) {
    BeginWrite(bytes, count);
    return EndWrite();
}

void ForeignPeer::BeginWrite(std::string_view bytes, std::size_t count) {
    m_process.Write("write " + std::to_string(count) + " " + Hexadecimal(bytes) + "\n");
}

bool ForeignPeer::EndWrite() { return NextAnswer() == "written"; }

std::string ForeignPeer::Read(std::size_t bytes) {
    m_process.Write("read " + std::to_string(bytes) + "\n");
    const std::string answer = NextAnswer();
    return answer.starts_with("read ") ? BytesOf(std::string_view(answer).substr(5)) : "";
}

bool ForeignPeer::IsClosedByPeer() {
    m_process.Write("end\n");
    return NextAnswer() == "closed";
}

bool ForeignPeer::Visit(std::size_t count) {
    m_process.Write("visit " + std::to_string(count) + "\n");
    return NextAnswer() == "visited";
}

// Its end may not have come yet, so the last line counts when its end has.
std::string ForeignPeer::NextAnswer() {
    const std::size_t number = m_answers++;
    const auto hasCome = [&] {
        const std::string text = m_process.Output().Text();
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) > number;
    };
    if (!test_support::WaitUntil(hasCome)) return "";
    const std::string line = m_process.Output().Lines()[number];
    return line.substr(0, line.find('\r'));  // as Windows ends lines
}

}  // namespace ipc_test
