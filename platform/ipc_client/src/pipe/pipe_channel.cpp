#include "pipe/pipe_channel.h"

#include <asio/buffer.hpp>
#include <asio/executor_work_guard.hpp>
#include <asio/post.hpp>
#include <exception>
#include <new>
#include <span>
#include <thread>
#include <utility>

#include "base/reason.h"
#include "diagnostics.h"

namespace ipc_client {

// A side that has closed after its last frame takes no hello any more; what it wrote is read all the same.
void PipeChannel::Start(std::chrono::milliseconds handshake) {
    m_timer.expires_after(handshake);
    m_timer.async_wait([self = shared_from_this()](std::error_code error) {
        if (error || self->m_handshakeEnded) return;
        self->Close("no handshake came in time", kIpcLogEvent, RefusalCode::kTime);
    });
    std::string hello;
    AppendHello(hello);
    if (!WriteHello(m_socket, hello)) {
        const base::MutexLock lock(m_mutex);
        m_writable = false;
    }
    Read();
}

void PipeChannel::HandshakeEnded() {
    m_handshakeEnded = true;
    m_timer.cancel();
}

void PipeChannel::Append(std::string_view frames) {
    const base::MutexLock lock(m_mutex);
    if (m_writable) m_out.Append(frames);
}

void PipeChannel::Flush() {
    const base::MutexLock lock(m_mutex);
    FlushLocked();
}

void PipeChannel::Gather(std::string_view frames) {
    constexpr std::chrono::microseconds kClose{5};
    const auto now = std::chrono::steady_clock::now();
    const base::MutexLock lock(m_mutex);
    m_out.Append(frames);
    if (m_closed || m_writing || !m_writable) return;
    if (now - std::exchange(m_lastWrite, now) < kClose) {
        LeaveToIoThread();
    } else {
        FlushLocked();
    }
}

void PipeChannel::FlushLocked() {
    if (m_closed || m_writing || !m_writable) return;
    for (std::string_view chunk = m_out.Chunk(); !chunk.empty(); chunk = m_out.Chunk()) {
        const std::size_t written = WriteNow(m_socket, chunk);
        m_out.Written(written);
        if (written != chunk.size()) return LeaveToIoThread();
    }
}

void PipeChannel::LeaveToIoThread() {
    asio::post(m_socket.get_executor(), [self = shared_from_this()] { self->WriteOn(); });
    m_writing = true;
}

std::size_t PipeChannel::Backlog() const {
    const base::MutexLock lock(m_mutex);
    return m_out.Bytes();
}

void PipeChannel::WaitWritten(std::chrono::steady_clock::time_point until) {
    const base::MutexLock lock(m_mutex);
    while (m_out.Bytes() != 0 && !m_closed && m_writable) {
        if (!m_written.WaitUntil(m_mutex, until)) return;
    }
}

// Only when nothing stands in the way: whoever is to be waited for is not told.
void PipeChannel::Refuse(RefusalCode code, std::string_view reason) {
    if (!m_refusesWithReasons || code == RefusalCode::kNone || !m_writable || m_out.Bytes() != 0) return;
    try {
        std::string refusal;
        AppendRefusal(refusal, code, reason);
        WriteHello(m_socket, refusal);
    } catch (const std::bad_alloc&) {  // then it just closes
    }
}

void PipeChannel::Close(std::string_view reason, int level, RefusalCode code) {
    {
        const base::MutexLock lock(m_mutex);
        if (m_closed) return;
        Refuse(code, reason);
        m_closed = true;
        std::error_code ignored;
        m_socket.close(ignored);
        m_written.NotifyAll();
    }
    m_timer.cancel();
    m_listener.Closed(reason, level);
}

void PipeChannel::Read() {
    const std::span<char> space = m_reader.Space();
    m_socket.async_read_some(
        asio::buffer(space.data(), space.size()),
        [self = shared_from_this()](std::error_code error, std::size_t bytes) { self->HandleRead(error, bytes); });
    m_reading = true;
}

void PipeChannel::ReadOn() {
    if (!m_closed && !m_paused && !m_reading) Read();
}

void PipeChannel::Resume() {
    m_paused = false;
    try {
        ReadOn();
    } catch (const std::exception& error) {
        Close(error.what());
    }
}

void PipeChannel::HandleRead(std::error_code error, std::size_t bytes) {
    m_reading = false;
    if (m_closed) return;
    if (error) return Close(IsEndOfPipe(error) ? "the other side closed it" : base::Reason(error), kIpcLogDetail);
    m_reader.Commit(bytes);
    try {
        TakeBatch();
        ReadOn();
    } catch (const ProtocolError& wrong) {
        Close(wrong.what(), kIpcLogEvent, wrong.Code());
    } catch (const std::exception& failure) {  // no memory for what it says
        Close(failure.what());
    }
}

// Whole frames before a wrong one have their effect.
void PipeChannel::TakeBatch() {
    try {
        TakeFrames();
    } catch (const ProtocolError&) {
        m_listener.BatchEnded();
        throw;
    }
    if (!m_closed) m_listener.BatchEnded();
}

void PipeChannel::TakeFrames() {
    if (!m_reader.TakeHello()) return;
    if (!m_opened) {
        m_opened = true;
        m_listener.Opened();
    }
    while (!m_closed) {
        const std::optional<FrameView> frame = m_reader.Next();
        if (!frame) return;
        m_listener.FrameArrived(*frame);
    }
}

void PipeChannel::WriteAsync() {
    const base::MutexLock lock(m_mutex);
    if (m_closed) return;
    const std::string_view chunk = m_out.Chunk();
    m_socket.async_write_some(
        asio::buffer(chunk.data(), chunk.size()),
        [self = shared_from_this()](std::error_code error, std::size_t bytes) { self->HandleWritten(error, bytes); });
}

// A pipe that takes nothing more may still hold messages from the other side, which closed it after its last post. So
// a failed write ends only writing; the end of the connection is found by reading.
void PipeChannel::HandleWritten(std::error_code error, std::size_t bytes) {
    bool goesOn = false;
    {
        const base::MutexLock lock(m_mutex);
        if (m_closed) return;
        m_out.Written(bytes);
        if (error) {
            m_writable = false;
            m_out = {};  // nobody waits for it, who would not read meanwhile
        }
        goesOn = m_writing = !error && m_out.Bytes() != 0;
        if (!goesOn) m_written.NotifyAll();
    }
    if (goesOn) WriteOn();
    if (!m_closed) m_listener.Written();
}

void PipeChannel::WriteOn() {
    try {
        WriteAsync();
    } catch (const std::exception& error) {
        Close(error.what());
    }
}

void RunIo(asio::io_context& io, const std::function<void()>& recover) noexcept {
    constexpr std::chrono::milliseconds kUntilThereMayBeMemory{10};
    const auto work = asio::make_work_guard(io);  // a context without work stops by itself
    while (!io.stopped()) {
        try {
            recover();
            io.run();
        } catch (const std::exception& error) {
            LogIfPossible(kIpcLogEvent, [&] { return "I/O thread: " + std::string(error.what()); });
            std::this_thread::sleep_for(kUntilThereMayBeMemory);
        }
    }
}

}  // namespace ipc_client
