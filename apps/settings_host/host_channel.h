#pragma once

#include <functional>
#include <set>
#include <string>

#include "channel/messages.h"
#include "ipc_client/ipc_message_client.h"

namespace settings_host {

// What the page has reported to the host, kept up to date by messages. Read and written under the UI turn.
struct PageNews {
    int contentHeight = 0;          // [design px] as last reported
    bool heightReported = false;    // whether any report has come
    bool nothingLeft = false;       // the last row has finished
    std::set<std::string> running;  // device keys of running updates [ANSI code page]
};

// The host's endpoints on the message pipe: the page's content height, the start and end of updates, and the message
// that no row is left. Each message changes PageNews and is written into the transcript.
class HostChannel {
public:
    // `changed` is called, under the UI turn, after each message on the thread that brought it.
    explicit HostChannel(std::function<void()> changed);

    // Under the UI turn.
    PageNews& News() { return m_news; }

    // Messages are under way for a while. What this process has posted to the host until PostMark has come and is in
    // the news once MarkHasCome; without a broker that is never so. Under the UI turn.
    void PostMark();
    bool MarkHasCome() const { return m_marksUnderWay == 0; }

private:
    void OnHeight(const channel::Decimal& payload);
    void OnNothingLeft(const channel::Decimal& payload);
    void OnUpdate(const channel::DeviceKey& payload);
    void OnUpdateFinish(const channel::DeviceKey& payload);
    void OnMark(const channel::Decimal& payload);

    template <class Payload>
    void Listen(IPCMessageClient& client, const channel::FromPage<Payload>& message,
                void (HostChannel::*handler)(const Payload&));

    const std::function<void()> m_changed;
    PageNews m_news;
    int m_mark = 0;  // the last one's number
    int m_marksUnderWay = 0;
    IPCMessageClient m_layout;  // last: their callbacks use what stands above
    IPCMessageClient m_status;
    IPCMessageClient m_plugin;
};

}  // namespace settings_host
