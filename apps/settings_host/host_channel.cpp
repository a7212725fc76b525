#include "host_channel.h"

#include <algorithm>

#include "channel_client.h"
#include "host_output.h"

namespace settings_host {

namespace {

constexpr int kMostHeight = 1 << 20;  // [design px] more than ten thousand rows

// From the host to itself. One to each endpoint, as only the messages of one client come in the order of their posts.
using Mark = channel::FromPage<channel::Decimal>;
constexpr std::int32_t kMarkId = 0x1B0001;
constexpr Mark kLayoutMark{"mark", kMarkId, IPC_ENDPOINT_HOST_LAYOUT};
constexpr Mark kStatusMark{"mark", kMarkId, IPC_ENDPOINT_HOST_STATUS};
constexpr Mark kPluginMark{"mark", kMarkId, IPC_ENDPOINT_HOST_PLUGIN};

}  // namespace

HostChannel::HostChannel(std::function<void()> changed)
    : m_changed(std::move(changed)),
      m_layout(IPC_ENDPOINT_HOST_LAYOUT, true, false, IPC_PIPE_ASSISTANT),
      m_status(IPC_ENDPOINT_HOST_STATUS, true, false, IPC_PIPE_ASSISTANT),
      m_plugin(IPC_ENDPOINT_HOST_PLUGIN, true, false, IPC_PIPE_ASSISTANT) {
    Listen(m_layout, channel::from_page::IPC_MSG_CONTENT_HEIGHT, &HostChannel::OnHeight);
    Listen(m_status, channel::from_page::IPC_MSG_NO_UPDATES_LEFT, &HostChannel::OnNothingLeft);
    Listen(m_plugin, channel::from_page::IPC_MSG_PLUGIN_UPDATE, &HostChannel::OnUpdate);
    Listen(m_plugin, channel::from_page::IPC_MSG_PLUGIN_UPDATE_FINISH, &HostChannel::OnUpdateFinish);
    Listen(m_layout, kLayoutMark, &HostChannel::OnMark);
    Listen(m_status, kStatusMark, &HostChannel::OnMark);
    Listen(m_plugin, kPluginMark, &HostChannel::OnMark);
}

void HostChannel::PostMark() {
    ++m_mark;
    m_marksUnderWay = 3;
    for (const Mark& mark : {kLayoutMark, kStatusMark, kPluginMark}) {
        channel_client::Post(m_layout, mark.endpoint, mark, channel::Decimal(m_mark));
    }
}

void HostChannel::OnMark(const channel::Decimal& payload) {
    if (payload.Number() == m_mark) --m_marksUnderWay;
}

template <class Payload>
void HostChannel::Listen(IPCMessageClient& client, const channel::FromPage<Payload>& message,
                         void (HostChannel::*handler)(const Payload&)) {
    channel_client::Listen(client, message, [this, handler](const Payload& payload) {
        (this->*handler)(payload);
        m_changed();
    });
}

void HostChannel::OnHeight(const channel::Decimal& payload) {
    const std::optional<int> height = payload.Number();
    if (!height) {
        WriteTranscript("host: a height message holds \"" + payload.digits + "\", which is no number; ignored");
        return;
    }
    m_news.contentHeight = std::clamp(*height, -kMostHeight, kMostHeight);
    m_news.heightReported = true;
    WriteTranscript("host: content height " + payload.digits);
}

void HostChannel::OnNothingLeft(const channel::Decimal&) {
    m_news.nothingLeft = true;
    WriteTranscript("host: no update is left");
}

void HostChannel::OnUpdate(const channel::DeviceKey& payload) {
    m_news.running.insert(payload.key);
    WriteTranscript("host: update of " + payload.key + " runs");
}

void HostChannel::OnUpdateFinish(const channel::DeviceKey& payload) {
    m_news.running.erase(payload.key);
    WriteTranscript("host: update of " + payload.key + " has stopped");
}

}  // namespace settings_host
