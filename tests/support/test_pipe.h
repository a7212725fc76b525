#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "base/process.h"
#include "channel_client.h"
#include "temporary_folder.h"

namespace update_service {

using test_support::TemporaryFolder;

// Keeps the pipes of this process, and of what it starts, in the test's own folder.
class TestPipe {
public:
    TestPipe() { base::SetVariable("BRINDLE_PIPE_DIR", base::Utf8FromPath(m_folder)); }
    ~TestPipe() { base::SetVariable("BRINDLE_PIPE_DIR", std::nullopt); }

private:
    TemporaryFolder m_folder;
};

// The accessory page as the pipe sees it.
class PipePage {
public:
    struct Message {
        int msgId;
        int sourceId;
        std::string data;
    };

    PipePage() : m_client(IPC_ENDPOINT_PLUGIN, true, false, IPC_PIPE_ASSISTANT) {
        for (const channel::MessageInfo& message : channel::kMessages) {
            if (message.direction != channel::Direction::kToPage) continue;
            m_client.RegisterMessageCallback(message.id, [this](TagIPCMessageItem& item) { Add(item); });
        }
    }

    // Asks the service.
    template <class Payload>
    void Ask(const channel::FromPage<Payload>& message, const std::type_identity_t<Payload>& payload) {
        EXPECT_EQ(channel_client::Post(m_client, IPC_ENDPOINT_PLUGIN, message, payload),
                  channel_client::PostResult::kPosted);
    }
    void Ready() { Ask(channel::from_page::IPC_MSG_ALL_UPDATE_DATA, {}); }

    // Waits until `isThere` holds for what has come so far; false when it does not come to that.
    bool Wait(const std::function<bool(const std::vector<Message>&)>& isThere) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(30), [&] { return isThere(m_messages); });
    }

    bool WaitForKey(const channel::ToPage<channel::DeviceKey>& wanted, const std::string& key) {
        return Wait([&](const auto& messages) {
            for (const Message& message : messages) {
                if (message.msgId == wanted.id && message.data == key + '\0') return true;
            }
            return false;
        });
    }

    std::vector<Message> Messages() {
        const std::lock_guard guard(m_mutex);
        return m_messages;
    }

private:
    void Add(const TagIPCMessageItem& item) {
        const std::lock_guard guard(m_mutex);
        m_messages.push_back({item.msgId, item.sourceId, std::string(channel_client::PayloadBytes(item))});
        m_changed.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Message> m_messages;
    IPCMessageClient m_client;  // last: its callbacks use the rest
};

}  // namespace update_service
