// The row's IPC client, its notices to the host, and the tip that says that the companion program runs.
#include "duilib/ui_culture.h"
#include "firmware_item/accessories_firware_wnd.h"
#include "firmware_item/row_controls.h"
#include "kernel/code_pages.h"
#include "qx_data_report/qx_data_report.h"
#include "support/log_line.h"
#include "support/page_parts.h"

namespace DuiLib {

namespace {

// In the order of PageWiring; misspelt on purpose, and other than the list window's.
constexpr const char* kUnwired[] = {
    "InitIpcCallBack new objIPCClientPtr failed,objIPCClientPtr is nullptr",
    "InitIpcCallBack new ipcClient failed,ipcClient is nullptr",
    "InitIpcCallBack new ipcReciever failed,ipcReciever is nullptr",
};

constexpr const char* kDriverEventId = "631990010";
constexpr const char* kAppEventId = "631990011";

}  // namespace

void AccessoriesFirwareWnd::ResigterFirmwareCallBacks() {
    const PageWiring wiring = WirePage(m_ipcClient, m_ipcSender, m_callbacks);
    if (wiring != PageWiring::kComplete) LogLine(kLogEvent) << kUnwired[static_cast<std::size_t>(wiring)];
}

void AccessoriesFirwareWnd::AppRunningTipStopBtn() {
    LogLine(kLogDetail) << "update app running stop";
    ShowAppRunningTip(m_progress, m_stopBtn);
}

void AccessoriesFirwareWnd::AppRunningTipUpdateBtn() {
    LogLine(kLogDetail) << "update app running";
    ShowAppRunningTip(m_updateBtn, m_updateBtn);
}

void AccessoriesFirwareWnd::ShowAppRunningTip(CControlUI* hot, CControlUI* tipped) {
    SetAttribute(hot, L"hottextcolor", L"#660A59F7");
    const CDuiString tipTemplate = UICulture::GetInstance()->GetString(L"IDS_ACCESSORIES_APP_STARTING");
    Resolve(BindText(m_nameId));
    SetToolTip(tipped, ReplaceFirst(tipTemplate.Str(), m_bindValue.Str(), L"{0}"));
}

void AccessoriesFirwareWnd::SendUIPluginUpdate(const std::string& deviceKey) {
    LogLine(kLogDetail) << "update : " << deviceKey;
    Post(m_ipcClient, channel::from_page::IPC_MSG_PLUGIN_UPDATE, {deviceKey});
}

void AccessoriesFirwareWnd::SendUIPluginUpdateFinish(const std::string& deviceKey) {
    LogLine(kLogDetail) << "update finish: " << deviceKey;
    Post(m_ipcClient, channel::from_page::IPC_MSG_PLUGIN_UPDATE_FINISH, {deviceKey});
}

void AccessoriesFirwareWnd::BigDataReportSettingCenterUpdatePlugin(const AccessoriesFirwareWnd& device) {
    // "firename" is misspelt on purpose.
    LogLine(kLogDetail) << "update plugin type: " << device.m_isDriver << " firename: " << device.m_nameId
                        << " pkgname: " << device.m_devKey;
    QxDataEvent event(device.m_isDriver ? kDriverEventId : kAppEventId, REPORT_PLATFORM_DEFAULT);
    event.PutString("modelID", kernel::AnsiFromWide(device.m_nameId));
    event.PutString("versionInfo", kernel::AnsiFromWide(device.m_version));
    QxDataReport::Instance()->SendMsg(event);
}

}  // namespace DuiLib
