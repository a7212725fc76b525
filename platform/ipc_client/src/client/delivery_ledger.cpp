#include "client/delivery_ledger.h"

#include <algorithm>
#include <utility>

namespace ipc_client {

void DeliveryLedger::BeginBroker() {
    const base::MutexLock lock(m_mutex);
    m_firstOfBroker = m_deliveries.Next();
}

std::uint64_t DeliveryLedger::Received() const {
    const base::MutexLock lock(m_mutex);
    return m_deliveries.Next() - m_firstOfBroker;
}

std::uint64_t DeliveryLedger::Begin() {
    const base::MutexLock lock(m_mutex);
    return m_deliveries.Begin();
}

void DeliveryLedger::Hold(std::uint64_t delivery) {
    const base::MutexLock lock(m_mutex);
    m_deliveries.Hold(delivery);
}

bool DeliveryLedger::Release(std::uint64_t delivery) noexcept {
    const base::MutexLock lock(m_mutex);
    m_deliveries.Release(delivery);
    return m_deliveries.HasDone() && std::exchange(m_isAwaited, false);
}

void DeliveryLedger::WaitOn() noexcept {
    const base::MutexLock lock(m_mutex);
    m_isAwaited = true;
}

std::vector<NumberRange> DeliveryLedger::Handled() {
    const base::MutexLock lock(m_mutex);
    m_isAwaited = !m_deliveries.Empty();
    return InBrokersNumbers(m_deliveries.TakeDone());
}

std::vector<NumberRange> DeliveryLedger::HandledFrom(std::uint64_t number) const {
    const base::MutexLock lock(m_mutex);
    return InBrokersNumbers(m_deliveries.DoneFrom(m_firstOfBroker + number));
}

std::vector<NumberRange> DeliveryLedger::InBrokersNumbers(const std::vector<NumberRange>& ranges) const {
    std::vector<NumberRange> numbers;
    for (const NumberRange& range : ranges) {
        if (range.behind <= m_firstOfBroker) continue;  // an earlier broker's
        numbers.push_back({std::max(range.first, m_firstOfBroker) - m_firstOfBroker, range.behind - m_firstOfBroker});
    }
    return numbers;
}

}  // namespace ipc_client
