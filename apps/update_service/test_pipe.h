#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "ipc/channel.h"
#include "ipc/ipc_data_io.h"
#include "ipc/record_codec.h"
#include "ipc_client/ipc_message_client.h"
#include "test_folder.h"

namespace update_service {

// Keeps the pipes of this process, and of what it starts, in the test's own folder.
class TestPipe {
public:
    TestPipe() { test_support::SetVariable("BRINDLE_PIPE_DIR", m_folder.Path().string().c_str()); }
    ~TestPipe() { test_support::SetVariable("BRINDLE_PIPE_DIR", nullptr); }

private:
    TestFolder m_folder;
};

// The accessory page as the pipe sees it.
class PipePage {
public:
    struct Message {
        int msgId;
        int sourceId;
        std::string data;
        bool isNull;
    };

    PipePage() : m_client(IPC_ENDPOINT_PLUGIN, true, false, IPC_PIPE_ASSISTANT) {
        for (const int msgId :
             {IPC_MSG_ALL_UPDATE_DATA, IPC_MSG_DOWNLOAD_PROCESS, IPC_MSG_PKG_FINISH, IPC_MSG_PKG_FAIL}) {
            m_client.RegisterMessageCallback(msgId, [this](TagIPCMessageItem& item) { Add(item); });
        }
    }

    // Asks the service; a key travels with its zero.
    void Ready() { Post(IPC_MSG_ALL_UPDATE_DATA, nullptr, 0); }
    void Ask(int msgId, std::string key) { Post(msgId, key.data(), static_cast<int>(key.size() + 1)); }

    // Waits until `isThere` holds for what has come so far; false when it does not come to that.
    bool Wait(const std::function<bool(const std::vector<Message>&)>& isThere) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(30), [&] { return isThere(m_messages); });
    }

    bool WaitForKey(int msgId, const std::string& key) {
        return Wait([&](const auto& messages) {
            for (const Message& message : messages) {
                if (message.msgId == msgId && message.data == key + '\0') return true;
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
        m_messages.push_back({item.msgId, item.sourceId,
                              item.data ? std::string(item.data, static_cast<std::size_t>(item.dataLen)) : "",
                              item.data == nullptr});
        m_changed.notify_all();
    }

    void Post(int msgId, char* data, int size) {
        TagIPCMessageItem item;
        item.destId = IPC_ENDPOINT_UPDATE_SERVICE;
        item.sourceId = IPC_ENDPOINT_PLUGIN;
        item.msgId = msgId;
        item.data = data;
        item.dataLen = size;
        EXPECT_TRUE(m_client.PostIPCMessage(item));
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Message> m_messages;
    IPCMessageClient m_client;  // last: its callbacks use the rest
};

// Decodes a payload as the page does.
template <typename Decoded>
Decoded DecodePayload(std::string payload) {
    TagIPCMessageItem item;
    item.data = payload.data();
    item.dataLen = static_cast<std::int32_t>(payload.size());
    IPCDataIO reader(&item, 64, true, false);
    Decoded record;
    ReadRecord(reader, record);
    return record;
}

}  // namespace update_service
