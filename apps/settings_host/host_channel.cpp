#include "host_channel.h"

#include <algorithm>
#include <charconv>

#include "ipc/channel.h"
#include "transcript.h"

namespace settings_host {

namespace {

constexpr int kMostHeight = 1 << 20;  // [design px] more than ten thousand rows

std::string Payload(const TagIPCMessageItem& item) {
    return item.data == nullptr ? std::string() : std::string(item.data, static_cast<std::size_t>(item.dataLen));
}

std::string DeviceKey(const TagIPCMessageItem& item) { return item.data == nullptr ? "" : item.data; }

}  // namespace

HostChannel::HostChannel(std::function<void()> changed)
    : m_changed(std::move(changed)),
      m_layout(IPC_ENDPOINT_HOST_LAYOUT, true, false, IPC_PIPE_ASSISTANT),
      m_status(IPC_ENDPOINT_HOST_STATUS, true, false, IPC_PIPE_ASSISTANT),
      m_plugin(IPC_ENDPOINT_HOST_PLUGIN, true, false, IPC_PIPE_ASSISTANT) {
    Listen(m_layout, IPC_MSG_CONTENT_HEIGHT, &HostChannel::OnHeight);
    Listen(m_status, IPC_MSG_NO_UPDATES_LEFT, &HostChannel::OnNothingLeft);
    Listen(m_plugin, IPC_MSG_PLUGIN_UPDATE, &HostChannel::OnUpdate);
    Listen(m_plugin, IPC_MSG_PLUGIN_UPDATE_FINISH, &HostChannel::OnUpdateFinish);
}

void HostChannel::Listen(IPCMessageClient& client, int message,
                         void (HostChannel::*handler)(const TagIPCMessageItem&)) {
    client.RegisterMessageCallback(message, [this, handler](TagIPCMessageItem& item) {
        (this->*handler)(item);
        m_changed();
    });
}

void HostChannel::OnHeight(const TagIPCMessageItem& item) {
    const std::string digits = Payload(item);
    int height = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), height);
    if (error != std::errc() || end != digits.data() + digits.size()) {
        Say("host: a height message holds \"" + digits + "\", which is no number; ignored");
        return;
    }
    m_news.contentHeight = std::clamp(height, -kMostHeight, kMostHeight);
    m_news.heightReported = true;
    Say("host: content height " + digits);
}

void HostChannel::OnNothingLeft(const TagIPCMessageItem&) {
    m_news.nothingLeft = true;
    Say("host: no update is left");
}

void HostChannel::OnUpdate(const TagIPCMessageItem& item) {
    m_news.running.insert(DeviceKey(item));
    Say("host: update of " + DeviceKey(item) + " runs");
}

void HostChannel::OnUpdateFinish(const TagIPCMessageItem& item) {
    m_news.running.erase(DeviceKey(item));
    Say("host: update of " + DeviceKey(item) + " has stopped");
}

}  // namespace settings_host
