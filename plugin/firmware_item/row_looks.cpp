#include "firmware_item/row_looks.h"

#include "duilib/ui_culture.h"
#include "firmware_item/accessories_firware_wnd.h"

namespace DuiLib {

void AccessoriesFirwareWnd::Resolve(std::wstring_view bindText) {
    m_bindText = bindText;
    m_bindValue = UICulture::GetInstance()->GetBindString(m_bindText);
}

CControlUI* AccessoriesFirwareWnd::Find(RowControl control) const {
    switch (control) {
        case RowControl::kUpdateBtn:
            return m_updateBtn;
        case RowControl::kStopBtn:
            return m_stopBtn;
        case RowControl::kProgress:
            return m_progress;
        case RowControl::kProgressLayout:
            return m_progressLayout;
        case RowControl::kProgressBtn:
            return m_progressBtn;
        case RowControl::kProgressLabel:
            return m_progressLabel;
    }
    return nullptr;
}

void AccessoriesFirwareWnd::Show(std::span<const LookStep> look) {
    for (const LookStep& step : look) {
        if (CControlUI* const control = Find(step.control)) Take(step, *control);
    }
}

void AccessoriesFirwareWnd::Take(const LookStep& step, CControlUI& control) {
    using Call = LookStep::Call;
    switch (step.call) {
        case Call::kSetAttribute:
            control.SetAttribute(step.attribute, step.value);
            break;
        case Call::kSetWidth:
            control.SetAttribute(L"width", std::to_wstring(m_barWidth));
            break;
        case Call::kSetPos:
            control.SetAttribute(L"pos", m_posRecord);
            break;
        case Call::kSetFont:
            control.SetFont(step.font);
            break;
        case Call::kShow:
        case Call::kHide:
            control.SetVisible(step.call == Call::kShow);
            break;
        case Call::kSetText:
            Resolve(step.value);
            control.SetText(m_bindValue);
            break;
        case Call::kTipTheSame:
            control.SetToolTip(m_bindValue);
            break;
        case Call::kTipNothing:
            control.SetToolTip(L"");
            break;
    }
}

}  // namespace DuiLib
