#pragma once

#include <cstdint>
#include <vector>

#include "base/mutex.h"
#include "wire/frame.h"
#include "wire/outstanding.h"

namespace ipc_client {

// What has been delivered to this process, by one broker after the other, and whether its callbacks have handled it.
// Any thread.
class DeliveryLedger {
public:
    std::uint64_t Received() const;  // how many in all

    void Skip(std::uint64_t count);  // the next ones do not come

    std::uint64_t Begin();     // the next delivery; held by whoever begins it
    void TakeBack() noexcept;  // the last one has not come after all; nobody else holds it
    void Hold(std::uint64_t delivery);

    // One of the holders is done with it. Whether somebody waits to be told of that: then Handled is to be asked.
    bool Release(std::uint64_t delivery) noexcept;
    void WaitOn() noexcept;  // could not be asked: the next Release says it again

    // What has been handled since the last call; when there is more that has not, Release will say.
    std::vector<NumberRange> Handled();

    // All that has been handled from that number on.
    std::vector<NumberRange> HandledFrom(std::uint64_t number) const;

private:
    mutable base::Mutex m_mutex;
    Outstanding m_deliveries BASE_GUARDED_BY(m_mutex);
    bool m_isAwaited BASE_GUARDED_BY(m_mutex) = false;
};

}  // namespace ipc_client
