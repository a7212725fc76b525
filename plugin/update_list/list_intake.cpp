// The accessory list: taken once, turned into rows and separators, and counted down.
#include <new>

#include "duilib/resource_manager.h"
#include "kernel/code_pages.h"
#include "kernel/sleep.h"
#include "support/log_line.h"
#include "update_list/accessories_update_wnd.h"
#include "update_list/row_list.h"

namespace DuiLib {

namespace {

constexpr std::uint32_t kHeightReportPause = 100;  // [ms] spaces height reports out for the host
constexpr int kLineHeight = 1;                     // [design px]
constexpr int kLineWidth = 560;                    // [design px]

// One line stays as it is; two or more each get a line feed, the last one too.
std::wstring JoinLines(const std::vector<std::wstring>& lines) {
    if (lines.size() == 1) return lines.front();
    std::wstring joined;
    for (const std::wstring& line : lines) joined += line + L'\n';
    return joined;
}

FirmwareItemDesc Describe(const AccessoryVersionDataInfo& record) {
    FirmwareItemDesc desc;
    desc.deviceKey = kernel::WideFromAnsi(record.deviceKey);
    desc.imagePath = record.imagePath;
    desc.isDriver = record.isDriver;
    desc.nameId = record.modelId;
    desc.version = record.version;
    desc.devInfo = JoinLines(record.descLines);
    desc.devInfoLines = record.descLines.size();
    return desc;
}

}  // namespace

void AccessoriesUpdateWnd::RecAllUpdateData(std::vector<AccessoryVersionDataInfo>& list) {
    if (m_listReceived) {  // only the first list of a window's life is shown
        LogLine(kLogEvent) << "Rev Other Ipc msg size:" << list.size();
        return;
    }
    m_listReceived = true;
    LogLine(kLogEvent) << "RecAllUpdateData size : " << list.size();
    if (m_paintManager == nullptr) return;
    if (list.empty()) {
        CControlUI* const topName = m_paintManager->FindControl(L"topName");
        if (topName == nullptr) return;
        topName->SetVisible(false);
    }
    if (m_parent == nullptr) return;
    m_firmwareNum = static_cast<int>(list.size());
    LogLine(kLogDetail) << "firmwareNum:" << list.size();
    InitRows(list);
}

void AccessoriesUpdateWnd::InitRows(std::vector<AccessoryVersionDataInfo>& list) {
    if (m_paintManager == nullptr) return;
    auto* const container = dynamic_cast<CContainerUI*>(m_paintManager->FindControl(L"accessVer"));
    if (container == nullptr) return;
    container->RemoveAll();
    for (std::size_t i = 0; i < list.size(); ++i) {
        FirmwareItemDesc desc = Describe(list[i]);
        m_buildIndex = static_cast<int>(i);
        g_updateItemList.emplace_back(desc.deviceKey, kRowKindDevice);  // stays when the row fails, on purpose
        AccessoriesFirwareWnd* const row = CreateRow(desc);
        if (row == nullptr) return;
        row->SetRowName(desc.deviceKey);
        if (i + 1 != list.size()) AddLine(desc.deviceKey, m_buildIndex, container);
    }
    RefreshRows();
}

AccessoriesFirwareWnd* AccessoriesUpdateWnd::CreateRow(FirmwareItemDesc& desc) {
    if (m_paintManager == nullptr) return nullptr;
    auto* const container = dynamic_cast<CContainerUI*>(m_paintManager->FindControl(L"accessVer"));
    if (container == nullptr) return nullptr;
    // Nobody deletes the row, on purpose: the host's pump may still name it when the page goes.
    auto* const row = new (std::nothrow) AccessoriesFirwareWnd;
    if (row == nullptr) return nullptr;
    row->SetHeightCallBack([this](int height, bool grow, bool extra) { OnRowHeightChanged(height, grow, extra); });
    row->SetFinishCallBack([this] { OnRowFinished(); });
    row->InitFirmwareLayout(m_paintManager, m_notifyPump, container, desc);
    m_rows[kernel::AnsiFromWide(desc.deviceKey)] = row;
    return row;
}

void AccessoriesUpdateWnd::AddLine(const std::wstring& deviceKey, int index, CContainerUI* list) {
    if (list == nullptr) return;
    auto* const line = new (std::nothrow) CLabelUI;
    if (line == nullptr) return;
    const std::wstring name = deviceKey + L"_" + std::to_wstring(index);
    line->SetName(name);
    g_updateItemList.emplace_back(name, kRowKindLine);
    line->SetFixedHeight(kLineHeight);
    line->SetFixedWidth(kLineWidth);
    line->SetAttribute(L"bkcolor", L"#0F000000");
    line->SetAttribute(L"padding", L"16,0,16,0");
    line->SetVisible(true);
    list->Add(line);
    m_lines[kernel::AnsiFromWide(deviceKey)] = line;
}

void AccessoriesUpdateWnd::RefreshRows() {
    for (const auto& [key, row] : m_rows) row->UpdateDownloadForm();
}

void AccessoriesUpdateWnd::OnRowHeightChanged(int height, bool grow, bool /*extra*/) {
    CResourceManager::GetInstance()->GetScale();  // asked for, not used
    m_totalHeight += grow ? height : -height;
    if (m_objIPCClientPtr == nullptr) return;
    PostContentHeight(m_totalHeight);
    kernel::Sleep(kHeightReportPause);
}

void AccessoriesUpdateWnd::OnRowFinished() {
    if (m_objIPCClientPtr == nullptr) return;
    if (--m_firmwareNum > 0) return;
    Post(m_objIPCClientPtr, channel::from_page::IPC_MSG_NO_UPDATES_LEFT, channel::Decimal(0));
    PostContentHeight(0);
}

void AccessoriesUpdateWnd::PostContentHeight(int height) {
    Post(m_objIPCClientPtr, channel::from_page::IPC_MSG_CONTENT_HEIGHT, channel::Decimal(height));
}

}  // namespace DuiLib
