#include "ipc_client/ipc_broker.h"

#include <asio/io_context.hpp>
#include <chrono>
#include <thread>

#include "base/file.h"
#include "broker/broker_loop.h"
#include "diagnostics.h"
#include "pipe/pipe_channel.h"
#include "pipe/pipe_path.h"

using ipc_client::Log;

class IPCBroker::Impl {
public:
    Impl(const std::filesystem::path& path, const IPCBrokerLimits& limits)
        : m_path(path),
          m_linger(limits.linger),
          m_loop(m_io, path, limits),
          m_thread([this] { ipc_client::RunIo(m_io, [this] { m_loop.Recover(); }); }) {
        Log(kIpcLogDetail, base::Utf8FromPath(m_path) + ": broker started");
    }

    ~Impl() {
        m_io.stop();
        m_thread.join();
        m_loop.Drain(std::chrono::steady_clock::now() + m_linger);
        Log(kIpcLogDetail, base::Utf8FromPath(m_path) + ": broker stopped");
    }

private:
    const std::filesystem::path m_path;
    const std::chrono::milliseconds m_linger;
    asio::io_context m_io{1};
    ipc_client::BrokerLoop m_loop;
    std::thread m_thread;  // last: everything it uses is there before it starts
};

IPCBroker::IPCBroker(const std::wstring& pipeName, const IPCBrokerLimits& limits)
    : m_pipeName(pipeName), m_limits(limits) {}

IPCBroker::~IPCBroker() { Stop(); }

void IPCBroker::Start() {
    if (!m_impl) m_impl = std::make_unique<Impl>(ipc_client::PipePath(m_pipeName), m_limits);
}

void IPCBroker::Stop() { m_impl.reset(); }
