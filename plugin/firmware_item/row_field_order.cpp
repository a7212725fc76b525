// The order of a row's fields and of its description's, checked at compile time.
#include <type_traits>

#include "firmware_item/accessories_firware_wnd.h"
#include "ipc/field_order.h"

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

}  // namespace DuiLib
