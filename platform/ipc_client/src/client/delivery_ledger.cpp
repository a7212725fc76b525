#include "client/delivery_ledger.h"

#include <utility>

namespace ipc_client {

std::uint64_t DeliveryLedger::Received() const {
    const base::MutexLock lock(m_mutex);
    return m_deliveries.Next();
}

void DeliveryLedger::Skip(std::uint64_t count) {
    const base::MutexLock lock(m_mutex);
    m_deliveries.Skip(count);
}

std::uint64_t DeliveryLedger::Begin() {
    const base::MutexLock lock(m_mutex);
    return m_deliveries.Begin();
}

void DeliveryLedger::TakeBack() noexcept {
    const base::MutexLock lock(m_mutex);
    m_deliveries.TakeBack();
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
    return m_deliveries.TakeDone();
}

std::vector<NumberRange> DeliveryLedger::HandledFrom(std::uint64_t number) const {
    const base::MutexLock lock(m_mutex);
    return m_deliveries.DoneFrom(number);
}

}  // namespace ipc_client
