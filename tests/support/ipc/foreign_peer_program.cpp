// A raw peer of the message pipe in a process of its own, for foreign_peer.h: it does what standard input says, a line
// each, and answers each with a line. Bytes are written as hexadecimal digits.
//
//     write COUNT BYTES   writes the bytes so often                "written", or "closed" when the other side has
//                                                                  closed
//     read COUNT          reads so many bytes                      the bytes, fewer when the other side closed
//     end                 waits until the other side closes        "closed", or "open" when it does not in time
//     again               closes, and connects anew                "connected"
//     visit COUNT         connects so often for a moment more      "visited"

#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "base/file.h"
#include "ipc/hexadecimal.h"
#include "ipc/pipe_test.h"

int main(int, char** argv) {
    const std::filesystem::path path = base::PathFromUtf8(argv[1]);
    auto peer = std::make_unique<ipc_test::RawPeer>(path);
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string what, bytes;
        std::size_t count = 0;
        words >> what >> count >> bytes;
        if (what == "read") {
            std::cout << "read " << ipc_test::Hexadecimal(peer->Read(count)) << std::endl;
        } else if (what == "again") {
            peer = std::make_unique<ipc_test::RawPeer>(base::PathFromUtf8(argv[1]));
            std::cout << "connected" << std::endl;
        } else if (what == "end") {
            std::cout << (peer->IsClosedByPeer() ? "closed" : "open") << std::endl;
        } else if (what == "visit") {
            for (std::size_t i = 0; i < count; ++i) ipc_test::RawPeer(path).Read(1);
            std::cout << "visited" << std::endl;
        } else {
            bool written = true;
            const std::string unit = ipc_test::BytesOf(bytes);
            for (std::size_t i = 0; written && i < count; ++i) written = peer->Write(unit);
            std::cout << (written ? "written" : "closed") << std::endl;
        }
    }
}
