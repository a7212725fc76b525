#pragma once

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <string_view>

#include "bare_relay.h"
#include "pipe/pipe_path.h"
#include "wire/frame.h"

namespace bench {

// A client of the pipe that speaks the wire itself, so that only the broker is measured. Ends the program when the
// broker does not keep to the protocol, or says nothing for kPatience.
class RawPeer {
public:
    // Introduces itself, as a life that nobody has had.
    explicit RawPeer(const wchar_t* pipe) : m_fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const std::string path = ipc_client::PipePath(pipe).native();
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        const timeval patience{kPatience.count(), 0};
        setsockopt(m_fd, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        setsockopt(m_fd, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
        if (connect(m_fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) Die("no broker");
        std::string hello;
        ipc_client::AppendHello(hello);
        ipc_client::AppendIntroduction(hello, {1, ipc_client::NewLife(), {}, 0, 0});
        Write(hello);
    }
    ~RawPeer() { close(m_fd); }
    RawPeer(const RawPeer&) = delete;
    RawPeer& operator=(const RawPeer&) = delete;

    void Announce(ipc_client::Route route) {
        std::string frame;
        ipc_client::AppendRoutes(frame, ipc_client::FrameType::kAnnounce, {&route, 1});
        Write(frame);
    }

    void Write(std::string_view bytes) {
        if (!MayWrite(bytes)) Die("the broker takes nothing");
    }

    // False when the broker has closed the connection.
    bool MayWrite(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t written = send(m_fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (written <= 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
        return true;
    }

    // Calls `take` with each frame that one read brings; `flags`: of recv. False when nothing had come.
    template <typename Take>
    bool Read(const Take& take, int flags = 0) {
        const std::span<char> space = m_reader.Space();
        const ssize_t got = recv(m_fd, space.data(), space.size(), flags);
        if (got < 0 && errno == EAGAIN && flags == MSG_DONTWAIT) return false;
        if (got <= 0) Die("the broker says nothing");
        m_reader.Commit(static_cast<std::size_t>(got));
        if (!m_reader.TakeHello()) return true;
        while (const auto frame = m_reader.Next()) take(*frame);
        return true;
    }

private:
    const int m_fd;
    ipc_client::FrameReader m_reader;
};

}  // namespace bench
