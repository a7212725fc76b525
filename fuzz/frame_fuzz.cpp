// The bytes of one side of a pipe: handshake and frames, whatever pieces they come in, and the queue that they leave
// by. The input's first byte says how long the pieces are.

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz_target.h"
#include "wire/frame.h"
#include "wire/out_queue.h"

namespace {

using namespace ipc_client;

struct Stream {
    std::vector<std::string> frames;
    std::string error;
    bool operator==(const Stream&) const = default;
};

void AppendAgain(std::string& out, const MessageView& message) {
    std::string data(message.data);
    TagIPCMessageItem item = HeaderOf(message);
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(data.size());
    fuzz::Require(IsPostable(item), "a message that came can be posted");
    AppendMessage(out, item);
}

// What a frame says is written again to the same bytes.
void CheckFrame(const FrameView& frame) {
    std::string again;
    if (frame.type == FrameType::kMessage) {
        AppendAgain(again, DecodeMessage(frame.body));
    } else {
        AppendRoutes(again, frame.type, DecodeRoutes(frame.body));
    }
    fuzz::Require(again == frame.whole, "a frame that is read and written again has the same bytes");
}

Stream ReadInPieces(std::string_view bytes, std::size_t pieceBytes) {
    FrameReader reader;
    Stream stream;
    try {
        while (!bytes.empty()) {
            const std::span<char> space = reader.Space();
            const std::size_t count = std::min({pieceBytes, space.size(), bytes.size()});
            std::memcpy(space.data(), bytes.data(), count);
            reader.Commit(count);
            bytes.remove_prefix(count);
            if (!reader.TakeHello()) continue;
            while (const std::optional<FrameView> frame = reader.Next()) {
                CheckFrame(*frame);
                stream.frames.emplace_back(frame->whole);
            }
        }
    } catch (const ProtocolError& wrong) {
        stream.error = wrong.what();
    }
    return stream;
}

// What is taken out of a queue of which so many bytes were written: the messages that are not out to their end.
void CheckQueue(const std::vector<std::string>& frames, std::size_t written) {
    OutQueue queue;
    std::string expected;
    std::size_t bytes = 0;
    for (const std::string& frame : frames) {
        queue.Append(frame);
        bytes += frame.size();
        if (bytes > written && DecodeHead(frame.substr(0, kFrameHeadBytes)).type == FrameType::kMessage) {
            expected += frame;
        }
    }
    written = std::min({written, bytes, queue.Chunk().size()});
    queue.Written(written);
    fuzz::Require(queue.Bytes() == bytes - written, "a queue counts what is not written");
    fuzz::Require(queue.TakeMessages() == expected, "a queue gives back the messages that are not written whole");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes = fuzz::TextOf(data, size);
    const std::size_t pieceBytes = 1 + fuzz::TakeByte(bytes);
    const Stream whole = ReadInPieces(bytes, bytes.size());
    fuzz::Require(ReadInPieces(bytes, pieceBytes) == whole, "the pieces that bytes come in do not matter");
    CheckQueue(whole.frames, pieceBytes);
    return 0;
}
