#include <windows.h>

#include <stdexcept>

#include "base/handle.h"
#include "base/reason.h"
#include "base/text.h"
#include "sleep_inhibitor.h"

namespace settings_host {

namespace {

using base::LastReason;

// A power request: the system keeps its reason beside it for whoever asks what keeps the computer awake. A shutdown
// is not held up.
class Inhibition final : public SleepInhibition {
public:
    explicit Inhibition(const std::string& reason) {
        std::wstring text = base::WideFromUtf8(reason);
        REASON_CONTEXT context{};
        context.Version = POWER_REQUEST_CONTEXT_VERSION;
        context.Flags = POWER_REQUEST_CONTEXT_SIMPLE_STRING;
        context.Reason.SimpleReasonString = text.data();
        m_request = base::OwnedHandle(PowerCreateRequest(&context));
        if (!m_request) throw std::runtime_error("no power request: " + LastReason());
        if (PowerSetRequest(m_request.Handle(), PowerRequestSystemRequired)) return;
        throw std::runtime_error("the power request was refused: " + LastReason());
    }
    ~Inhibition() override { PowerClearRequest(m_request.Handle(), PowerRequestSystemRequired); }

private:
    base::OwnedHandle m_request;
};

}  // namespace

std::unique_ptr<SleepInhibition> SleepInhibitor::Ask(const std::string& who, const std::string& reason) {
    return std::make_unique<Inhibition>(who + ": " + reason);
}

const char* SleepInhibitor::RefusalText() { return "sleep is not inhibited"; }

}  // namespace settings_host
