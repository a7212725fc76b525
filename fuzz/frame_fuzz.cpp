// The bytes of one side of a pipe: handshake and frames, whatever pieces they come in, and the queue that they leave
// by. The input's first byte says how long the pieces are.

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "fuzz_target.h"
#include "wire/frame.h"
#include "wire/kept_frames.h"

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

void AppendDeliveryAgain(std::string& out, std::string_view body) {
    const DeliveryView delivery = DecodeDelivery(body);
    AppendDelivery(out, delivery.stamp, delivery.messageBody);
}

void AppendAddressedAgain(std::string& out, std::string_view body) {
    const AddressedView addressed = DecodeAddressed(body);
    const MessageView message = DecodeMessage(addressed.messageBody);
    std::string data(message.data);
    TagIPCMessageItem item = HeaderOf(message);
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(data.size());
    AppendAddressed(out, addressed.lives, addressed.event, item);
}

// What a frame says is written again to the same bytes. False for those that may say it in several ways, or nothing.
bool AppendFrameAgain(std::string& out, const FrameView& frame) {
    switch (frame.type) {
        case FrameType::kMessage:
            AppendAgain(out, DecodeMessage(frame.body));
            return true;
        case FrameType::kAnnounce:
        case FrameType::kWithdraw:
            AppendRoutes(out, frame.type, DecodeRoutes(frame.body));
            return true;
        case FrameType::kDelivery:
            AppendDeliveryAgain(out, frame.body);
            return true;
        case FrameType::kAddressed:
            AppendAddressedAgain(out, frame.body);
            return true;
        case FrameType::kAcknowledge:
        case FrameType::kWaiting:
            AppendNumbers(out, frame.type, DecodeNumbers(frame.body));
            return true;
        case FrameType::kSkip:
            AppendSkip(out, DecodeSkip(frame.body));
            return true;
        case FrameType::kIntroduction:
            DecodeIntroduction(frame.body);
            return false;
        case FrameType::kRefusal:
            DecodeRefusal(frame.body);
            return false;
        case FrameType::kAnswer:
            DecodeAnswer(frame.body);
            return false;
        default:
            return false;
    }
}

void CheckFrame(const FrameView& frame) {
    std::string again;
    if (!AppendFrameAgain(again, frame)) return;
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

// What is kept of frames of which some are done: the others, with skips in the place of those.
void CheckKept(const std::vector<std::string>& frames, std::uint64_t first, std::uint64_t behind) {
    KeptFrames kept;
    for (const std::string& frame : frames) kept.Add(frame);
    std::size_t bytes = kept.Bytes();
    kept.Done({first, behind}, [&](std::uint64_t number, std::size_t size) {
        fuzz::Require(size == frames[number].size(), "what is done is the frame of its number");
        bytes -= size;
    });
    fuzz::Require(kept.Bytes() == bytes, "what is not done is counted");
    std::string expected;
    std::uint64_t skipped = 0;
    for (std::uint64_t number = kept.First(); number < kept.Next(); ++number) {
        if (number >= first && number < behind) {
            ++skipped;
            continue;
        }
        if (skipped != 0) AppendSkip(expected, std::exchange(skipped, 0));
        expected += frames[number];
    }
    if (skipped != 0) AppendSkip(expected, skipped);
    fuzz::Require(kept.From(kept.First()) == expected, "what is not done comes again");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes = fuzz::TextOf(data, size);
    const std::size_t pieceBytes = 1 + fuzz::TakeByte(bytes);
    const Stream whole = ReadInPieces(bytes, bytes.size());
    fuzz::Require(ReadInPieces(bytes, pieceBytes) == whole, "the pieces that bytes come in do not matter");
    CheckKept(whole.frames, pieceBytes % 8, pieceBytes / 8);
    return 0;
}
