#include "sleep_inhibitor.h"

#include <stdexcept>

#include "base/reason.h"

namespace settings_host {

SleepInhibitor::SleepInhibitor(std::string who, Log log) : m_who(std::move(who)), m_log(std::move(log)) {}

void SleepInhibitor::Hold(bool on) {
    if (on == m_wanted) return;
    m_wanted = on;
    m_inhibition.reset();
    if (!on) return;
    try {
        m_inhibition = Ask(m_who, m_reason);
        m_refusalLogged = false;
    } catch (const std::runtime_error& error) {
        if (m_log && !m_refusalLogged) m_log(std::string(RefusalText()) + ": " + base::Reason(error));
        m_refusalLogged = true;
    }
}

}  // namespace settings_host
