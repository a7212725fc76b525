#pragma once

#include <asio/steady_timer.hpp>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/mutex.h"
#include "ipc_client/ipc_diagnostics.h"
#include "pipe/pipe_transport.h"
#include "wire/frame.h"
#include "wire/out_queue.h"

namespace ipc_client {

// One connected pipe, as broker and clients both use it: handshake, frames in, frames out.
//
// Listener calls come on the thread that runs the io_context, never after Closed and never from within Append or Flush.
// The listener must live until that thread has ended, or Closed has been called. What a listener throws, other than
// from Closed, closes the channel: a connection is read, or it is closed.
class PipeChannel : public std::enable_shared_from_this<PipeChannel> {
public:
    class Listener {
    public:
        virtual void Opened() {}                                // the other side's hello came and is right
        virtual void FrameArrived(const FrameView& frame) = 0;  // may throw ProtocolError
        virtual void BatchEnded() {}  // all frames that one read brought have been handed over
        virtual void Written() {}     // some of what Flush left to the I/O thread is out
        // Once, last. `level`: of the log line that tells it, lower when the other side just went.
        virtual void Closed(std::string_view reason, int level) = 0;

    protected:
        ~Listener() = default;
    };

    PipeChannel(PipeSocket socket, Listener& listener)
        : m_socket(std::move(socket)), m_timer(m_socket.get_executor()), m_listener(listener) {}

    // Says hello and begins to read; the other side has so long until HandshakeEnded. I/O thread.
    void Start(std::chrono::milliseconds handshake);
    void HandshakeEnded();

    // Queues whole frames. Any thread.
    void Append(std::string_view frames);

    // Writes what the pipe takes at once and leaves the rest to the I/O thread. Any thread.
    void Flush();

    // Queues whole frames, and flushes, but what comes close behind what was written last is left to the I/O thread,
    // which writes all that has gathered at once. Any thread.
    void Gather(std::string_view frames);

    // Bytes queued and not yet written. Any thread.
    std::size_t Backlog() const;

    // Leaves what comes in the pipe, once what one read brought has been handed over; reads on. I/O thread.
    void Pause() { m_paused = true; }
    void Resume();

    // Bytes taken for a long frame that has not come whole yet. I/O thread.
    std::size_t UnfinishedBytes() const { return m_reader.GrownBytes(); }

    // Waits until everything is written, or nothing more can be, or the time has come. Any thread but the I/O thread.
    void WaitWritten(std::chrono::steady_clock::time_point until);

    // Closes the pipe; tells the listener, and the other side as well if it takes a refusal of that code. I/O thread.
    void Close(std::string_view reason, int level = kIpcLogEvent, RefusalCode code = RefusalCode::kNone);

    // From now on the other side is told why it is refused: it is a client, this side the broker.
    void RefuseWithReasons() { m_refusesWithReasons = true; }

private:
    void Refuse(RefusalCode code, std::string_view reason) BASE_REQUIRES(m_mutex);
    void Read();
    void ReadOn();
    void HandleRead(std::error_code error, std::size_t bytes);
    void TakeBatch();
    void TakeFrames();
    void FlushLocked() BASE_REQUIRES(m_mutex);
    void LeaveToIoThread() BASE_REQUIRES(m_mutex);
    void WriteAsync();
    void HandleWritten(std::error_code error, std::size_t bytes);
    void WriteOn();

    PipeSocket m_socket;
    asio::steady_timer m_timer;
    Listener& m_listener;

    // I/O thread only.
    FrameReader m_reader;
    bool m_opened = false;
    bool m_reading = false;  // a read is under way
    bool m_paused = false;
    bool m_handshakeEnded = false;
    bool m_refusesWithReasons = false;

    mutable base::Mutex m_mutex;  // also keeps m_socket from being closed during a write
    base::Condition m_written;
    OutQueue m_out BASE_GUARDED_BY(m_mutex);
    bool m_writing BASE_GUARDED_BY(m_mutex) = false;  // an asynchronous write is under way or about to be
    bool m_writable BASE_GUARDED_BY(m_mutex) = true;  // no write has failed
    std::chrono::steady_clock::time_point m_lastWrite BASE_GUARDED_BY(m_mutex);  // by Gather
    std::atomic<bool> m_closed{false};  // set on the I/O thread, with the mutex held
};

// Runs the I/O thread's work until the context is stopped. An exception (no memory left, say) costs the one handler
// that threw it and is logged; `recover` then begins again what that handler did not. Before the first handler it is
// called too, to begin.
void RunIo(asio::io_context& io, const std::function<void()>& recover) noexcept;

}  // namespace ipc_client
