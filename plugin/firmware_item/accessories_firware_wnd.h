#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "duilib/container.h"
#include "duilib/control.h"
#include "duilib/notify_pump.h"
#include "duilib/paint_manager.h"
#include "ipc/ipc_post.h"
#include "ipc/ipc_server.h"

namespace DuiLib {

// What the list window hands a row: one accessory, ready to show. A value.
struct FirmwareItemDesc {
    std::wstring deviceKey;
    std::wstring imagePath;  // relative to the skin folder
    bool isDriver = false;   // driver wording of the version line; else application wording
    std::wstring nameId;     // resource id of the display name, also reported as the model id
    std::wstring version;
    std::wstring devInfo;            // text below the pull-down
    std::uint64_t devInfoLines = 0;  // lines that devInfo was joined from
};

// What m_progressRecord holds beside percent texts.
inline constexpr const wchar_t* UPDATE_STATUS_INSTALLING = L"1001";
inline constexpr const wchar_t* UPDATE_STATUS_INSTALLEND = L"2001";

// Called when the row's height changes: (change in design pixels, grew, first report). The first report carries the
// whole height.
using HeightCallBack = std::function<void(int, bool, bool)>;
using FinishCallBack = std::function<void()>;

enum class RowAction;   // what a click asks for: row_state.cpp
enum class RowControl;  // a control that looks change, a look's calls, what a row is doing: row_looks.h
enum class RowPhase;
struct LookStep;

// One accessory of the page: its picture, name, version and information, its update button and progress, and the small
// state machine behind them (row_state.cpp has the table).
//
// Made and laid out by the list window, which tells it the service's messages. Click handlers run on the UI thread,
// ShowDownloadProgress, SetRetryBtn and SetFinishProcess on the delivery thread, all under the UI turn. The controls
// belong to the host's tree. Every operation survives missing controls. "Firware", "Resigter", "Rlush" and "Modifiy"
// are misspelt on purpose: log lines carry the names. The two callbacks are called unguarded: an empty one throws
// std::bad_function_call.
class AccessoriesFirwareWnd final : public CNotifyPump {
public:
    AccessoriesFirwareWnd() = default;
    ~AccessoriesFirwareWnd();

    const DUI_MSGMAP* GetMessageMap() const override;
    void OnClick(TNotifyUI& message) override;

    // What the list window calls. It names the row and gives it both callbacks while it builds the page, and lays it
    // out once.
    void InitFirmwareLayout(CPaintManagerUI* paintManager, CNotifyPump* host, CContainerUI* parent,
                            FirmwareItemDesc desc);
    void SetRowName(const std::wstring& rowName);  // the name of this row in g_updateItemList
    void SetHeightCallBack(HeightCallBack callBack);
    void SetFinishCallBack(FinishCallBack callBack);
    void UpdateDownloadForm();               // the page is complete: folds the row and tells nobody
    void ShowDownloadProgress(int percent);  // the service's messages
    void SetRetryBtn();
    void SetFinishProcess();

private:
    friend struct RowInspector;   // tests see and call what nothing else can
    friend struct RowFieldOrder;  // compile-time check of the field order

    // Set-up (row_form.cpp).
    void InitForm();
    void SetImagePath(const std::wstring& path);
    void BindControls();
    bool BindControl(const wchar_t* name, CControlUI*& control);
    bool BindContainer(const wchar_t* name, CContainerUI*& container);
    void BuildDevInfo();
    void SettingDevInfo(CTextUI* devInfoText);

    // Width and height (row_size.cpp).
    void InitUpdateButton();
    int WidestLabel();
    void ModifiyPullDownStatus();
    void ShowDevInfo(bool visible);
    void SetFolded(bool folded);
    void SetFoldedHeight();

    // Looks (row_looks.cpp).
    void Show(std::span<const LookStep> look);
    void Take(const LookStep& step, CControlUI& control);
    CControlUI* Find(RowControl control) const;  // null where the layout lacks it
    void Resolve(std::wstring_view bindText);    // into m_bindText and m_bindValue

    // States and clicks (row_state.cpp).
    RowPhase Phase() const;
    RowPhase RecordedPhase() const;
    RowAction ActionOfClick(const std::wstring& control) const;
    bool IsCompanionRunning() const;
    bool HasName(CControlUI* control, const wchar_t* suffix) const;
    void RlushAccessries();
    void SetResume();
    void SetResumeClick();
    void SetRetryClick();
    void RestoreProgress();
    void ControlDownload(const std::wstring& deviceKey);
    void ControlRetry(const std::wstring& deviceKey);
    void PostPauseDownload(const std::string& deviceKey);
    void PostStartDownload(const std::string& deviceKey);
    void CollapseRow();
    void LeaveRowList();
    std::string NarrowKey() const;

    // Client, notices, tips, usage report (row_notices.cpp).
    void ResigterFirmwareCallBacks();
    void AppRunningTipUpdateBtn();
    void AppRunningTipStopBtn();
    void ShowAppRunningTip(CControlUI* hot, CControlUI* tipped);
    void SendUIPluginUpdate(const std::string& deviceKey);
    void SendUIPluginUpdateFinish(const std::string& deviceKey);
    void BigDataReportSettingCenterUpdatePlugin(const AccessoriesFirwareWnd& device);

    HeightCallBack m_heightCallBack;
    FinishCallBack m_finishCallBack;
    CControlUI* m_root = nullptr;
    CPaintManagerUI* m_paintManager = nullptr;
    CNotifyPump* m_host = nullptr;
    std::wstring m_virtualWndName;  // this object's address in decimal digits
    CContainerUI* m_parent = nullptr;
    IPCMessageClient* m_ipcClient = nullptr;  // owned; posts only
    IPCClientHandle* m_ipcSender = nullptr;   // never released, on purpose
    std::unique_ptr<IPCServer> m_callbacks;   // without receivers: messages come through the list window
    std::wstring m_devKey;
    std::wstring m_imagePath;
    bool m_isDriver = false;
    std::wstring m_nameId;
    std::wstring m_version;
    std::wstring m_devInfo;
    std::uint64_t m_devInfoLines = 0;
    bool m_downloadControlled = false;  // nobody sets it
    CDuiString m_bindText;
    CDuiString m_bindValue;
    int m_rowHeight = 0;  // [design px]
    bool m_isPaused = false;
    CControlUI* m_updateBtn = nullptr;
    CControlUI* m_stopBtn = nullptr;
    CControlUI* m_progress = nullptr;
    CControlUI* m_progressLayout = nullptr;
    CControlUI* m_progressBtn = nullptr;
    CControlUI* m_progressLabel = nullptr;
    CControlUI* m_updateBtnText = nullptr;  // measures the labels
    CContainerUI* m_hor = nullptr;
    CContainerUI* m_ver = nullptr;
    CControlUI* m_pulldown = nullptr;
    CTextUI* m_devInfoText = nullptr;
    CLabelUI* m_divider = nullptr;
    int m_devInfoHeight = 0;  // [device px]
    bool m_needRetry = false;
    bool m_isInstalling = false;
    int m_percent = 0;
    std::wstring m_rowName;
    int m_barWidth = 0;  // [design px]
    std::wstring m_progressRecord = L"0%";
    std::wstring m_posRecord = L"0,0,0,0";
};

}  // namespace DuiLib
