#include "duilib/notify_pump.h"

#include "duilib/control.h"
#include "foundation/diagnostics.h"

namespace DuiLib {

namespace {

constexpr DUI_MSGMAP_ENTRY kNoEntries[] = {{nullptr, nullptr, nullptr}};

bool Matches(const DUI_MSGMAP_ENTRY& entry, const TNotifyUI& message) {
    if (!entry.type || message.type != entry.type) return false;
    if (!entry.control || !*entry.control) return true;
    return message.sender && message.sender->GetName() == entry.control;
}

}  // namespace

const DUI_MSGMAP CNotifyPump::s_messageMap = {nullptr, kNoEntries};

CNotifyPump::CNotifyPump() = default;
CNotifyPump::~CNotifyPump() = default;

const DUI_MSGMAP* CNotifyPump::GetMessageMap() const { return &s_messageMap; }

void CNotifyPump::OnClick(TNotifyUI&) {}

bool CNotifyPump::AddVirtualWnd(std::wstring_view name, CNotifyPump* pump) {
    AssertUiTurn();
    if (name.empty() || !pump) return false;
    m_virtualWnds.insert_or_assign(std::wstring(name), pump);
    return true;
}

bool CNotifyPump::RemoveVirtualWnd(std::wstring_view name) {
    AssertUiTurn();
    const auto found = m_virtualWnds.find(name);
    if (found == m_virtualWnds.end()) return false;
    m_virtualWnds.erase(found);
    return true;
}

void CNotifyPump::NotifyPump(TNotifyUI& message) {
    AssertUiTurn();
    const auto window = m_virtualWnds.find(message.virtualWnd.Str());
    CNotifyPump* const target = window == m_virtualWnds.end() ? this : window->second;
    target->Dispatch(message);
}

// The handler may destroy this pump: nothing is touched after it.
bool CNotifyPump::Dispatch(TNotifyUI& message) {
    for (const DUI_MSGMAP* map = GetMessageMap(); map; map = map->base) {
        for (const DUI_MSGMAP_ENTRY* entry = map->entries; entry && entry->handler; ++entry) {
            if (!Matches(*entry, message)) continue;
            (this->*entry->handler)(message);
            return true;
        }
    }
    return false;
}

}  // namespace DuiLib
