#include <windows.h>

#include <stdexcept>

#include "base/reason.h"
#include "sleep_inhibitor.h"

namespace settings_host {

namespace {

using base::LastReason;

std::wstring Wide(const std::string& utf8) {
    const int size = static_cast<int>(utf8.size());
    std::wstring wide(utf8.size(), L'\0');
    const int length = size == 0 ? 0 : ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), size);
    wide.resize(static_cast<std::size_t>(length));
    return wide;
}

}  // namespace

// A power request: the system keeps its reason beside it for whoever asks what keeps the computer awake. A shutdown
// is not held up.
class SleepInhibitor::Inhibition {
public:
    explicit Inhibition(const std::string& reason) {
        std::wstring text = Wide(reason);
        REASON_CONTEXT context{};
        context.Version = POWER_REQUEST_CONTEXT_VERSION;
        context.Flags = POWER_REQUEST_CONTEXT_SIMPLE_STRING;
        context.Reason.SimpleReasonString = text.data();
        m_request = PowerCreateRequest(&context);
        if (m_request == INVALID_HANDLE_VALUE) throw std::runtime_error("no power request: " + LastReason());
        if (PowerSetRequest(m_request, PowerRequestSystemRequired)) return;
        const std::string why = LastReason();
        CloseHandle(m_request);
        throw std::runtime_error("the power request was refused: " + why);
    }
    ~Inhibition() {
        PowerClearRequest(m_request, PowerRequestSystemRequired);
        CloseHandle(m_request);
    }
    Inhibition(const Inhibition&) = delete;
    Inhibition& operator=(const Inhibition&) = delete;

private:
    HANDLE m_request;
};

std::unique_ptr<SleepInhibitor::Inhibition> SleepInhibitor::Ask(const std::string& who, const std::string& reason) {
    return std::make_unique<Inhibition>(who + ": " + reason);
}

SleepInhibitor::SleepInhibitor(std::string who, Log log) : m_who(std::move(who)), m_log(std::move(log)) {}

SleepInhibitor::~SleepInhibitor() = default;

void SleepInhibitor::Hold(bool on) {
    if (on == m_wanted) return;
    m_wanted = on;
    m_inhibition.reset();
    if (!on) return;
    try {
        m_inhibition = Ask(m_who, m_reason);
        m_told = false;
    } catch (const std::runtime_error& error) {
        if (m_log && !m_told) m_log(std::string("sleep is not inhibited: ") + error.what());
        m_told = true;
    }
}

}  // namespace settings_host
