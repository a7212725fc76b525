#pragma once

#include <memory>

#include "firmware_item/accessories_firware_wnd.h"
#include "kernel/ui_turn.h"
#include "page_fixture.h"

namespace DuiLib {

// Lets tests read and set a row's fields.
struct RowInspector {
    static int RowHeight(const AccessoriesFirwareWnd& row) { return row.m_rowHeight; }
    static int DevInfoHeight(const AccessoriesFirwareWnd& row) { return row.m_devInfoHeight; }
    static int Percent(const AccessoriesFirwareWnd& row) { return row.m_percent; }
    static int BarWidth(const AccessoriesFirwareWnd& row) { return row.m_barWidth; }
    static bool IsPaused(const AccessoriesFirwareWnd& row) { return row.m_isPaused; }
    static bool NeedsRetry(const AccessoriesFirwareWnd& row) { return row.m_needRetry; }
    static bool IsInstalling(const AccessoriesFirwareWnd& row) { return row.m_isInstalling; }
    static std::wstring ProgressRecord(const AccessoriesFirwareWnd& row) { return row.m_progressRecord; }
    static std::wstring PosRecord(const AccessoriesFirwareWnd& row) { return row.m_posRecord; }
    static const std::wstring& RowName(const AccessoriesFirwareWnd& row) { return row.m_rowName; }
    static std::wstring VirtualWndName(const AccessoriesFirwareWnd& row) { return row.m_virtualWndName; }
    static std::uint64_t DevInfoLines(const AccessoriesFirwareWnd& row) { return row.m_devInfoLines; }
    static const IPCMessageClient* Client(const AccessoriesFirwareWnd& row) { return row.m_ipcClient; }
    static const IPCClientHandle* Sender(const AccessoriesFirwareWnd& row) { return row.m_ipcSender; }
    static const IPCServer* Callbacks(const AccessoriesFirwareWnd& row) { return row.m_callbacks.get(); }
    static CControlUI* Divider(const AccessoriesFirwareWnd& row) { return row.m_divider; }
    static void DropClient(AccessoriesFirwareWnd& row) {
        delete row.m_ipcClient;
        row.m_ipcClient = nullptr;
    }
};

}  // namespace DuiLib

// One row of the key X1 in a host's page, without a list window; its height reports are kept.
class RowFixture : public PageFixture {
protected:
    struct HeightReport {
        int height;
        bool grew;
        bool first;
        bool operator==(const HeightReport&) const = default;
    };

    ~RowFixture() override {
        m_page.Discard();
        row.reset();
    }

    static DuiLib::FirmwareItemDesc Pen() {
        DuiLib::FirmwareItemDesc desc;
        desc.deviceKey = L"X1";
        desc.imagePath = L"drawable/pen.svg";
        desc.nameId = L"IDS_NAME_PEN";
        desc.version = L"1.0.2";
        desc.devInfo = L"one\ntwo\n";
        desc.devInfoLines = 2;
        return desc;
    }

    void MakeRow(const DuiLib::FirmwareItemDesc& desc = Pen()) {
        const kernel::UiTurn turn;
        row = std::make_unique<DuiLib::AccessoriesFirwareWnd>();
        row->SetHeightCallBack([this](int height, bool grew, bool first) { heights.push_back({height, grew, first}); });
        row->SetFinishCallBack([this] { ++finished; });
        row->SetRowName(desc.deviceKey);
        row->InitFirmwareLayout(m_page.Manager(), m_page.Pump(), m_page.Parent(), desc);
    }

    // A download at that percentage.
    void Download(int percent) {
        Click(L"X1updateBtn");
        row->ShowDownloadProgress(percent);
        Forget();
    }

    // What the row logs in that function of its own.
    static std::wstring Line(const std::wstring& message, const std::wstring& function) {
        return L"[AccessoryLog]" + message + L"(DuiLib::AccessoriesFirwareWnd::" + function + L")";
    }

    std::unique_ptr<DuiLib::AccessoriesFirwareWnd> row;
    std::vector<HeightReport> heights;
    int finished = 0;
};
