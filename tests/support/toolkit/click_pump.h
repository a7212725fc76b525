#pragma once

#include <functional>

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

// Does with each click what the test asks for.
class ClickPump : public CNotifyPump {
public:
    const DUI_MSGMAP* GetMessageMap() const override { return &s_map; }
    void OnClick(TNotifyUI& message) override {
        ++clicks;
        last = message;
        if (onClick) onClick(message);
    }

    std::function<void(TNotifyUI&)> onClick;
    TNotifyUI last;
    int clicks = 0;

private:
    static constexpr DUI_MSGMAP_ENTRY s_entries[] = {{L"click", nullptr, &CNotifyPump::OnClick},
                                                     {nullptr, nullptr, nullptr}};
    inline static const DUI_MSGMAP s_map{&CNotifyPump::s_messageMap, s_entries};
};

// A window whose clicks a test hears.
class PaintManagerTest : public WindowTest<CContainerUI> {
protected:
    PaintManagerTest() { window.AddNotifyPump(&pump); }

    CButtonUI* AddButton(const wchar_t* pos, const wchar_t* name = L"button", CContainerUI* parent = nullptr) {
        return Add<CButtonUI>({{L"pos", pos}, {L"name", name}}, parent);
    }

    ClickPump pump;
};

}  // namespace DuiLib
