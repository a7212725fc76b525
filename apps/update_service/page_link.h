#pragma once

#include <string>
#include <vector>

#include "catalogue.h"
#include "channel/messages.h"

namespace update_service {

// The service's way to the accessory page: what it tells it. Called on any thread, on several at once; never waits for
// the page.
class PageLink {
public:
    virtual ~PageLink() = default;

    virtual void SendList(const std::vector<Accessory>& accessories) = 0;
    virtual void SendProgress(const std::string& deviceKey, int percent) = 0;  // 100: the installation has begun
    // Any message that says only which device it is about.
    virtual void Send(const channel::ToPage<channel::DeviceKey>& message, const std::string& deviceKey) = 0;
};

// The page's way to the service: what it asks for. Called on one thread at a time.
class PageRequests {
public:
    virtual ~PageRequests() = default;

    virtual void OnReady() = 0;
    virtual void OnStart(const std::string& deviceKey) = 0;  // a start, a resume or a retry
    virtual void OnPause(const std::string& deviceKey) = 0;
};

}  // namespace update_service
