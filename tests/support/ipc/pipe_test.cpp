#include "ipc/pipe_test.h"

#include <algorithm>

#include "base/process.h"
#include "ipc_client/ipc_diagnostics.h"
#include "pipe/pipe_path.h"
#include "wire/frame.h"

namespace ipc_test {

PipeTest::PipeTest() {
    base::SetVariable("BRINDLE_PIPE_DIR", base::Utf8FromPath(m_folder));
    SetIpcLogSink([this](int, const std::string& line) {
        const std::lock_guard lock(m_mutex);
        m_lines.push_back(line);
        m_lineCame.notify_all();
    });
}

PipeTest::~PipeTest() {
    SetIpcLogSink(nullptr);
    base::SetVariable("BRINDLE_PIPE_DIR", std::nullopt);
}

std::filesystem::path PipeTest::SocketPath() const { return ipc_client::PipePath(kPipe); }

bool PipeTest::Logged(const std::string& text) {
    std::unique_lock lock(m_mutex);
    return m_lineCame.wait_for(lock, kPatience, [&] {
        return std::any_of(m_lines.begin(), m_lines.end(),
                           [&](const std::string& line) { return line.find(text) != std::string::npos; });
    });
}

int PipeTest::CountLogged(const std::string& text) {
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(std::count_if(
        m_lines.begin(), m_lines.end(), [&](const std::string& line) { return line.find(text) != std::string::npos; }));
}

std::function<void(TagIPCMessageItem&)> Inbox::Callback() {
    return [this](TagIPCMessageItem& item) {
        Received received{item, {}, item.data != nullptr, false};
        if (item.data != nullptr) {
            received.data.assign(item.data, static_cast<std::size_t>(item.dataLen));
            received.zeroBehindData = item.data[item.dataLen] == '\0';
        }
        received.item.data = nullptr;
        const std::lock_guard lock(m_mutex);
        m_messages.push_back(std::move(received));
        m_came.notify_all();
    };
}

std::vector<Received> Inbox::WaitFor(std::size_t count) {
    std::unique_lock lock(m_mutex);
    m_came.wait_for(lock, kPatience, [&] { return m_messages.size() >= count; });
    return m_messages;
}

std::vector<std::string> Inbox::WaitForData(std::size_t count) {
    std::vector<std::string> data;
    for (const Received& received : WaitFor(count)) data.push_back(received.data);
    return data;
}

std::size_t Inbox::Count() {
    const std::lock_guard lock(m_mutex);
    return m_messages.size();
}

bool Post(IPCMessageClient& client, int destId, int msgId, std::string data) {
    TagIPCMessageItem item;
    item.destId = destId;
    item.sourceId = 1;
    item.msgId = msgId;
    item.dataLen = static_cast<std::int32_t>(data.size());
    item.data = data.empty() ? nullptr : data.data();
    return client.PostIPCMessage(item);
}

std::string Hello() {
    std::string hello;
    ipc_client::AppendHello(hello);
    return hello;
}

}  // namespace ipc_test
