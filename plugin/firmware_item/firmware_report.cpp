#include "firmware_item/accessories_firware_wnd.h"
#include "qx_data_report/qx_data_report.h"
#include "support/log_line.h"
#include "support/text.h"

namespace DuiLib {

namespace {
constexpr const char* kDriverEventId = "631990010";
constexpr const char* kAppEventId = "631990011";
}  // namespace

void AccessoriesFirwareWnd::BigDataReportSettingCenterUpdatePlugin(const AccessoriesFirwareWnd& device) {
    // "firename" is misspelt on purpose.
    LogLine(kLogDetail) << "update plugin type: " << device.m_isDriver << " firename: " << device.m_nameId
                        << " pkgname: " << device.m_devKey;
    QxDataEvent event(device.m_isDriver ? kDriverEventId : kAppEventId, REPORT_PLATFORM_DEFAULT);
    event.PutString("modelID", WideToAnsi(device.m_nameId));
    event.PutString("versionInfo", WideToAnsi(device.m_version));
    QxDataReport::Instance()->SendMsg(event);
}

}  // namespace DuiLib
