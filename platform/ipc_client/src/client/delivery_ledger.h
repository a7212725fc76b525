#pragma once

#include <cstdint>
#include <vector>

#include "base/mutex.h"
#include "wire/frame.h"
#include "wire/outstanding.h"

namespace ipc_client {

// What a broker has delivered to this process, and whether its callbacks have handled it. Numbers go on over all the
// brokers of the process's life; a broker counts its own from 0. Any thread.
class DeliveryLedger {
public:
    // What comes from now on is another broker's, or one's that counts from 0 again.
    void BeginBroker();

    std::uint64_t Received() const;  // of the present broker

    std::uint64_t Begin();  // the next delivery; held by whoever begins it
    void Hold(std::uint64_t delivery);

    // One of the holders is done with it. Whether somebody waits to be told of that: then Handled is to be asked.
    bool Release(std::uint64_t delivery) noexcept;
    void WaitOn() noexcept;  // could not be asked: the next Release says it again

    // What has been handled since the last call, in the present broker's numbers; with what has not, Release will say.
    std::vector<NumberRange> Handled();

    // All that has been handled from that number of the present broker on.
    std::vector<NumberRange> HandledFrom(std::uint64_t number) const;

private:
    std::vector<NumberRange> InBrokersNumbers(const std::vector<NumberRange>& ranges) const BASE_REQUIRES(m_mutex);

    mutable base::Mutex m_mutex;
    Outstanding m_deliveries BASE_GUARDED_BY(m_mutex);
    std::uint64_t m_firstOfBroker BASE_GUARDED_BY(m_mutex) = 0;  // the number of its delivery 0
    bool m_isAwaited BASE_GUARDED_BY(m_mutex) = false;
};

}  // namespace ipc_client
