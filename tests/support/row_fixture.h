#pragma once

#include <memory>

#include "firmware_item/accessories_firware_wnd.h"
#include "firmware_item/row_looks.h"
#include "kernel/ui_turn.h"
#include "page_fixture.h"

namespace DuiLib {

// What of a row nothing else can see or reach.
struct RowInspector {
    static RowPhase Phase(const AccessoriesFirwareWnd& row) { return row.Phase(); }
    static int RowHeight(const AccessoriesFirwareWnd& row) { return row.m_rowHeight; }
    static int Percent(const AccessoriesFirwareWnd& row) { return row.m_percent; }
    static bool IsInstalling(const AccessoriesFirwareWnd& row) { return row.m_isInstalling; }
    static const std::wstring& RowName(const AccessoriesFirwareWnd& row) { return row.m_rowName; }
    static std::uint64_t DevInfoLines(const AccessoriesFirwareWnd& row) { return row.m_devInfoLines; }
    static const IPCMessageClient* Client(const AccessoriesFirwareWnd& row) { return row.m_ipcClient; }
    static const IPCClientHandle* Sender(const AccessoriesFirwareWnd& row) { return row.m_ipcSender; }
    static const IPCServer* Callbacks(const AccessoriesFirwareWnd& row) { return row.m_callbacks.get(); }
    static CControlUI* Divider(const AccessoriesFirwareWnd& row) { return row.m_divider; }
    static void Start(AccessoriesFirwareWnd& row) { row.RlushAccessries(); }  // as no click can: controls may lack
};

inline void PrintTo(RowPhase phase, std::ostream* out) {
    constexpr const char* kNames[] = {"offered", "downloading", "paused", "installing", "ended", "failed"};
    *out << kNames[static_cast<std::size_t>(phase)];
}

}  // namespace DuiLib

// A height report of a row.
struct HeightReport {
    int height;
    bool grew;
    bool first;
    bool operator==(const HeightReport&) const = default;
};

inline void PrintTo(const HeightReport& report, std::ostream* out) {
    *out << report.height << (report.grew ? " grew" : " shrank") << (report.first ? ", first" : "");
}

// One row of the key X1 in a host's page, without a list window; its height reports are kept.
class RowFixture : public PageFixture {
protected:
    ~RowFixture() override {
        m_page.Discard();
        row.reset();
    }

    static DuiLib::FirmwareItemDesc Pen(const std::wstring& information = L"one\ntwo\n") {
        DuiLib::FirmwareItemDesc desc;
        desc.deviceKey = L"X1";
        desc.imagePath = L"drawable/pen.svg";
        desc.nameId = L"IDS_NAME_PEN";
        desc.version = L"1.0.2";
        desc.devInfo = information;
        desc.devInfoLines = 2;
        return desc;
    }

    // In the place of an earlier one.
    void MakeRow(const DuiLib::FirmwareItemDesc& desc = Pen()) {
        const kernel::UiTurn turn;
        m_page.Discard();
        heights.clear();
        finished = 0;
        row = std::make_unique<DuiLib::AccessoriesFirwareWnd>();
        row->SetHeightCallBack([this](int height, bool grew, bool first) { heights.push_back({height, grew, first}); });
        row->SetFinishCallBack([this] { ++finished; });
        row->SetRowName(desc.deviceKey);
        row->InitFirmwareLayout(m_page.Manager(), m_page.Pump(), m_page.Parent(), desc);
    }

    // What happens to the row, in words: "update", "stop", "pulldown" are clicks, "37%" a progress message, "fail" and
    // "end" what the service reports, "companion" the companion program that runs from then on.
    void Do(const std::string& events) {
        std::istringstream words(events);
        for (std::string word; words >> word;) DoOne(word);
    }

    DuiLib::RowPhase Phase() const { return DuiLib::RowInspector::Phase(*row); }

    // What the row logs in that function of its own.
    static std::wstring Line(const std::wstring& message, const std::wstring& function) {
        return L"[AccessoryLog]" + message + L"(DuiLib::AccessoriesFirwareWnd::" + function + L")";
    }

    std::unique_ptr<DuiLib::AccessoriesFirwareWnd> row;
    std::vector<HeightReport> heights;
    int finished = 0;

private:
    void DoOne(const std::string& event) {
        if (event == "update") return Click(L"X1updateBtn");
        if (event == "stop") return Click(L"X1stopBtn");
        if (event == "pulldown") return Click(L"X1pulldown");
        if (event == "companion") return CompanionRuns(L"X1");
        const kernel::UiTurn turn;
        if (event == "fail") return row->SetRetryBtn();
        if (event == "end") return row->SetFinishProcess();
        ASSERT_EQ(event.back(), '%') << event;
        row->ShowDownloadProgress(std::stoi(event));
    }
};
