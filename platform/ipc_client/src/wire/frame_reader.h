#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "wire/frame.h"

namespace ipc_client {

// A frame in a FrameReader's buffer; its views live until the next call of Space().
struct FrameView {
    FrameType type;
    std::string_view body;
    std::string_view whole;  // head and body, to be forwarded as it is
};

// Cuts a byte stream into the handshake and frames:
//
//     std::span<char> space = reader.Space();
//     reader.Commit(Receive(space));
//     while (std::optional<FrameView> frame = reader.Next()) Handle(*frame);
//
// The buffer grows with the bytes that came, not with the length that a peer announces.
class FrameReader {
public:
    FrameReader();

    // Room for the next bytes; never empty.
    std::span<char> Space();
    void Commit(std::size_t bytes);

    // True once the handshake is complete and right, which stays so; false while bytes are missing. Throws
    // ProtocolError when it is wrong.
    bool TakeHello();

    // The next frame that is complete. Throws ProtocolError as soon as a head is wrong, its body need not be there.
    std::optional<FrameView> Next();

private:
    std::string_view Unread() const { return {m_buffer.data() + m_begin, m_end - m_begin}; }

    std::vector<char> m_buffer;
    std::size_t m_begin = 0;  // first byte not yet taken
    std::size_t m_end = 0;    // behind the last byte that came
    bool m_helloTaken = false;
};

}  // namespace ipc_client
