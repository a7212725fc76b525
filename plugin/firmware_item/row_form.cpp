// The row's set-up: its control tree, device texts, bound controls and information block; the order of its fields.
#include <new>
#include <type_traits>

#include "duilib/dialog_builder.h"
#include "duilib/render_engine.h"
#include "duilib/resource_manager.h"
#include "duilib/ui_culture.h"
#include "firmware_item/accessories_firware_wnd.h"
#include "firmware_item/row_controls.h"
#include "ipc/field_order.h"
#include "qx_data_report/qx_data_report.h"
#include "support/log_line.h"
#include "support/page_parts.h"

namespace DuiLib {

static_assert(!std::has_virtual_destructor_v<AccessoriesFirwareWnd>);

static_assert(InOrder({offsetof(FirmwareItemDesc, deviceKey), offsetof(FirmwareItemDesc, imagePath),
                       offsetof(FirmwareItemDesc, isDriver), offsetof(FirmwareItemDesc, nameId),
                       offsetof(FirmwareItemDesc, version), offsetof(FirmwareItemDesc, devInfo),
                       offsetof(FirmwareItemDesc, devInfoLines)}));

struct RowFieldOrder {
    static_assert(InOrder({offsetof(AccessoriesFirwareWnd, m_heightCallBack),
                           offsetof(AccessoriesFirwareWnd, m_finishCallBack),
                           offsetof(AccessoriesFirwareWnd, m_root),
                           offsetof(AccessoriesFirwareWnd, m_paintManager),
                           offsetof(AccessoriesFirwareWnd, m_host),
                           offsetof(AccessoriesFirwareWnd, m_virtualWndName),
                           offsetof(AccessoriesFirwareWnd, m_parent),
                           offsetof(AccessoriesFirwareWnd, m_ipcClient),
                           offsetof(AccessoriesFirwareWnd, m_ipcSender),
                           offsetof(AccessoriesFirwareWnd, m_callbacks),
                           offsetof(AccessoriesFirwareWnd, m_devKey),
                           offsetof(AccessoriesFirwareWnd, m_imagePath),
                           offsetof(AccessoriesFirwareWnd, m_isDriver),
                           offsetof(AccessoriesFirwareWnd, m_nameId),
                           offsetof(AccessoriesFirwareWnd, m_version),
                           offsetof(AccessoriesFirwareWnd, m_devInfo),
                           offsetof(AccessoriesFirwareWnd, m_devInfoLines),
                           offsetof(AccessoriesFirwareWnd, m_downloadControlled),
                           offsetof(AccessoriesFirwareWnd, m_bindText),
                           offsetof(AccessoriesFirwareWnd, m_bindValue),
                           offsetof(AccessoriesFirwareWnd, m_rowHeight),
                           offsetof(AccessoriesFirwareWnd, m_isPaused),
                           offsetof(AccessoriesFirwareWnd, m_updateBtn),
                           offsetof(AccessoriesFirwareWnd, m_stopBtn),
                           offsetof(AccessoriesFirwareWnd, m_progress),
                           offsetof(AccessoriesFirwareWnd, m_progressLayout),
                           offsetof(AccessoriesFirwareWnd, m_progressBtn),
                           offsetof(AccessoriesFirwareWnd, m_progressLabel),
                           offsetof(AccessoriesFirwareWnd, m_updateBtnText),
                           offsetof(AccessoriesFirwareWnd, m_hor),
                           offsetof(AccessoriesFirwareWnd, m_ver),
                           offsetof(AccessoriesFirwareWnd, m_pulldown),
                           offsetof(AccessoriesFirwareWnd, m_devInfoText),
                           offsetof(AccessoriesFirwareWnd, m_divider),
                           offsetof(AccessoriesFirwareWnd, m_devInfoHeight),
                           offsetof(AccessoriesFirwareWnd, m_needRetry),
                           offsetof(AccessoriesFirwareWnd, m_isInstalling),
                           offsetof(AccessoriesFirwareWnd, m_percent),
                           offsetof(AccessoriesFirwareWnd, m_rowName),
                           offsetof(AccessoriesFirwareWnd, m_barWidth),
                           offsetof(AccessoriesFirwareWnd, m_progressRecord),
                           offsetof(AccessoriesFirwareWnd, m_posRecord)}));
};

namespace {

constexpr const wchar_t* kRowLayout = L"../components/brindle/res/layout/AccessoriesFirmwareWnd.xml";
constexpr int kExpandedHeight = 77;        // [design px] what the first report says
constexpr double kDevInfoMeasure = 272.0;  // [design px] width at which the information text is measured
constexpr int kDividerHeight = 1;          // [design px]
constexpr int kDividerWidth = 400;         // [design px]

}  // namespace

AccessoriesFirwareWnd::~AccessoriesFirwareWnd() {
    if (m_callbacks) m_callbacks->UnregisterAll();
    delete m_ipcClient;
    m_ipcClient = nullptr;
}

const DUI_MSGMAP* AccessoriesFirwareWnd::GetMessageMap() const {
    static constexpr DUI_MSGMAP_ENTRY kEntries[] = {{kNotifyClick, nullptr, &CNotifyPump::OnClick},
                                                    {nullptr, nullptr, nullptr}};
    static const DUI_MSGMAP kMap{&CNotifyPump::s_messageMap, kEntries};  // the base may be in another module
    return &kMap;
}

void AccessoriesFirwareWnd::SetRowName(const std::wstring& rowName) {
    if (&rowName != &m_rowName) m_rowName = rowName;
}

void AccessoriesFirwareWnd::SetHeightCallBack(HeightCallBack callBack) { m_heightCallBack = std::move(callBack); }

void AccessoriesFirwareWnd::SetFinishCallBack(FinishCallBack callBack) { m_finishCallBack = std::move(callBack); }

void AccessoriesFirwareWnd::InitFirmwareLayout(CPaintManagerUI* paintManager, CNotifyPump* host, CContainerUI* parent,
                                               FirmwareItemDesc desc) {
    ResigterFirmwareCallBacks();
    m_virtualWndName.clear();
    m_bindText.Empty();
    m_bindValue.Empty();
    m_rowHeight = 0;
    m_devInfoHeight = 0;
    if (parent == nullptr || host == nullptr || paintManager == nullptr) return;

    CDialogBuilder builder;
    m_root = builder.Create(kRowLayout);
    if (m_root == nullptr) {
        LogLine(kLogEvent) << "firware item fail to create control";
        return;
    }
    m_paintManager = paintManager;
    m_host = host;
    m_virtualWndName = AddToPage(this, m_root, host, parent);
    m_parent = parent;

    m_devInfo = std::move(desc.devInfo);
    m_nameId = std::move(desc.nameId);
    m_imagePath = std::move(desc.imagePath);
    m_devKey = std::move(desc.deviceKey);
    m_version = std::move(desc.version);
    m_devInfoLines = desc.devInfoLines;
    m_isDriver = desc.isDriver;
    InitForm();
    QxDataReport::Instance()->Init(0, "");
}

void AccessoriesFirwareWnd::InitForm() {
    LogLine(kLogDetail) << "InitForm start";
    if (m_paintManager == nullptr) return;
    CControlUI* const version = m_paintManager->FindControl(L"version");
    if (version == nullptr) {
        LogLine(kLogEvent) << " version wrong nullptr";
        return;
    }
    const wchar_t* const versionId = m_isDriver ? L"IDS_ACCESSORIES_DRIVER_VERSION" : L"IDS_ACCESSORIES_APP_VERSION";
    version->SetText(ReplaceFirst(UICulture::GetInstance()->GetString(versionId).Str(), m_version, L"{0}"));

    CControlUI* const name = m_paintManager->FindControl(L"desName");
    if (name == nullptr) {
        LogLine(kLogEvent) << " desName wrong nullptr";
        return;
    }
    Resolve(BindText(m_nameId));
    name->SetText(m_bindValue);

    BindControls();
    BuildDevInfo();
    SettingDevInfo(m_devInfoText);

    if (m_divider == nullptr || m_devInfoText == nullptr) return;
    ShowDevInfo(true);
    m_rowHeight += kExpandedHeight;
    if (m_hor == nullptr) return;
    LogLine(kLogDetail) << "init verHeight:" << m_rowHeight;
    const int horHeight = Truncate(static_cast<float>(m_devInfoHeight) / ScaleDivisor() + double{kFoldedHeight});
    m_hor->SetAttribute(L"height", std::to_wstring(horHeight));
    m_heightCallBack(m_rowHeight, true, true);
}

bool AccessoriesFirwareWnd::BindControl(const wchar_t* name, CControlUI*& control) {
    control = m_paintManager->FindControl(name);
    if (control == nullptr) return false;
    control->SetName(m_devKey + name);
    return true;
}

bool AccessoriesFirwareWnd::BindContainer(const wchar_t* name, CContainerUI*& container) {
    container = dynamic_cast<CContainerUI*>(m_paintManager->FindControl(name));
    if (container == nullptr) return false;
    container->SetName(m_devKey + name);
    return true;
}

// The first name that the layout lacks ends the chain; what comes behind it stays unbound.
void AccessoriesFirwareWnd::BindControls() {
    SetImagePath(m_imagePath);
    const bool bound = BindControl(L"updateBtn", m_updateBtn) && BindControl(L"stopBtn", m_stopBtn) &&
                       BindControl(L"progress", m_progress) && BindContainer(L"hor", m_hor) &&
                       BindContainer(L"ver", m_ver) && BindControl(L"pulldown", m_pulldown);
    if (!bound) return;
    if (BindControl(L"progressLayout", m_progressLayout) && BindControl(L"progressBtn", m_progressBtn)) {
        BindControl(L"progressLabel", m_progressLabel);
    }
    InitUpdateButton();
}

void AccessoriesFirwareWnd::SetImagePath(const std::wstring& path) {
    CControlUI* const image = m_paintManager == nullptr ? nullptr : m_paintManager->FindControl(L"imageLabel");
    if (image == nullptr) {
        LogLine(kLogEvent) << "AccessoriesFirwareWnd::SetImagePath imageLabel is nullptr";
        return;
    }
    image->SetAttribute(L"bkimage", L"file='" + path + L"'");
}

void AccessoriesFirwareWnd::BuildDevInfo() {
    if (m_ver == nullptr) return;
    m_devInfoText = new (std::nothrow) CTextUI;
    if (m_devInfoText != nullptr) {
        m_devInfoText->SetAttribute(L"name", m_devKey + L"devInfo");
        m_devInfoText->SetText(m_devInfo);
        m_devInfoText->SetFont(kTextFont);
        m_devInfoText->SetAttribute(L"textcolor", L"99000000");
        m_devInfoText->SetAttribute(L"width", L"400");
    }
    m_divider = new (std::nothrow) CLabelUI;
    if (m_divider != nullptr) {
        m_divider->SetFixedHeight(kDividerHeight);
        m_divider->SetFixedWidth(kDividerWidth);
        m_divider->SetAttribute(L"bkcolor", L"#0F000000");
        m_divider->SetAttribute(L"padding", L"0,0,0,8");
    }
    m_ver->Add(m_divider);
    m_ver->Add(m_devInfoText);
}

void AccessoriesFirwareWnd::SettingDevInfo(CTextUI* devInfoText) {
    if (devInfoText == nullptr || m_paintManager == nullptr) {
        LogLine(kLogEvent) << " devInfo is nullptr";
        return;
    }
    CDuiRect rect{0, 0, Truncate(ScaleDivisor() * kDevInfoMeasure), 9999};
    CRenderEngine::DrawText(m_paintManager->GetPaintDC(), m_paintManager, rect, m_devInfo, devInfoText->GetTextColor(),
                            devInfoText->GetFont(), devInfoText->GetTextStyle() | kTextCalcRect);
    m_devInfoHeight = rect.Height();
    devInfoText->SetFixedHeightInPixels(m_devInfoHeight);
}

}  // namespace DuiLib
