#pragma once

#include <memory>

#include "firmware_item/accessories_firware_wnd.h"
#include "kernel/ui_turn.h"
#include "page_fixture.h"

namespace DuiLib {

// Lets tests read and set a panel's fields.
struct PanelInspector {
    static int PanelHeight(const AccessoriesFirwareWnd& panel) { return panel.m_panelHeight; }
    static int DevInfoHeight(const AccessoriesFirwareWnd& panel) { return panel.m_devInfoHeight; }
    static int Percent(const AccessoriesFirwareWnd& panel) { return panel.m_percent; }
    static int BarWidth(const AccessoriesFirwareWnd& panel) { return panel.m_barWidth; }
    static bool IsPaused(const AccessoriesFirwareWnd& panel) { return panel.m_isPaused; }
    static bool NeedsRetry(const AccessoriesFirwareWnd& panel) { return panel.m_needRetry; }
    static bool IsInstalling(const AccessoriesFirwareWnd& panel) { return panel.m_isInstalling; }
    static std::wstring ProgressRecord(const AccessoriesFirwareWnd& panel) { return panel.m_progressRecord; }
    static std::wstring PosRecord(const AccessoriesFirwareWnd& panel) { return panel.m_posRecord; }
    static const std::wstring& RowName(const AccessoriesFirwareWnd& panel) { return panel.m_rowName; }
    static std::wstring VirtualWndName(const AccessoriesFirwareWnd& panel) { return panel.m_virtualWndName; }
    static std::uint64_t DevInfoLines(const AccessoriesFirwareWnd& panel) { return panel.m_devInfoLines; }
    static const IPCMessageClient* Client(const AccessoriesFirwareWnd& panel) { return panel.m_ipcClient; }
    static const IPCClientHandle* Sender(const AccessoriesFirwareWnd& panel) { return panel.m_ipcSender; }
    static const IPCServer* Callbacks(const AccessoriesFirwareWnd& panel) { return panel.m_callbacks.get(); }
    static CControlUI* Divider(const AccessoriesFirwareWnd& panel) { return panel.m_divider; }
    static void DropClient(AccessoriesFirwareWnd& panel) {
        delete panel.m_ipcClient;
        panel.m_ipcClient = nullptr;
    }
};

}  // namespace DuiLib

// One panel of the key X1 in a host's page, without a list window; its height reports are kept.
class PanelFixture : public PageFixture {
protected:
    struct HeightReport {
        int height;
        bool grew;
        bool first;
        bool operator==(const HeightReport&) const = default;
    };

    ~PanelFixture() override {
        m_page.Discard();
        panel.reset();
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

    void MakePanel(const DuiLib::FirmwareItemDesc& desc = Pen()) {
        const kernel::UiTurn turn;
        panel = std::make_unique<DuiLib::AccessoriesFirwareWnd>();
        panel->SetHeightCallBack([this](int height, bool grew, bool first) {
            heights.push_back({height, grew, first});
        });
        panel->SetFinishCallBack([this] { ++finished; });
        panel->SetRowName(desc.deviceKey);
        panel->InitFirmwareLayout(m_page.Manager(), m_page.Pump(), m_page.Parent(), desc);
    }

    // A download at that percentage.
    void Download(int percent) {
        Click(L"X1updateBtn");
        panel->ShowDownloadProgress(percent);
        Forget();
    }

    // What the panel logs in that function of its own.
    static std::wstring Line(const std::wstring& message, const std::wstring& function) {
        return L"[AccessoryLog]" + message + L"(DuiLib::AccessoriesFirwareWnd::" + function + L")";
    }

    std::unique_ptr<DuiLib::AccessoriesFirwareWnd> panel;
    std::vector<HeightReport> heights;
    int finished = 0;
};
