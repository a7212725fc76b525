#include "bench_page.h"

#include "ipc_client/ipc_diagnostics.h"
#include "kernel/sleep.h"
#include "kernel/ui_turn.h"
#include "qx_logger/qx_logger.h"
#include "update_list/row_list.h"

BenchPage::BenchPage(std::optional<DuiLib::CDuiSize> window) {
    const kernel::UiTurn turn;
    auto* const root =
        window ? new DuiLib::CScrollViewUI : static_cast<DuiLib::CContainerUI*>(new DuiLib::CVerticalLayoutUI);
    m_manager->AttachRoot(root);
    m_manager->AddNotifyPump(&m_pump);
    m_manager->SetClientSize(window.value_or(DuiLib::CDuiSize{592, 20000}));
    m_window->InitItemLayout(m_manager.get(), &m_pump, root);
}

BenchPage::~BenchPage() {
    const kernel::UiTurn turn;
    m_window.reset();
    m_manager.reset();
    DuiLib::g_updateItemList.clear();
}

void BenchPage::Build(std::vector<AccessoryVersionDataInfo>& list) {
    const kernel::UiTurn turn;
    m_window->RecAllUpdateData(list);
}

void BenchPage::Discard() {
    const kernel::UiTurn turn;
    static_cast<DuiLib::CContainerUI*>(m_manager->GetRoot())->RemoveAll();
}

void SetUpBenchPlatform() {
    kernel::SetSleeper([](std::uint32_t) {});  // the page's own pauses would hide what is measured
    QxLogger::Options silent;
    silent.console = false;
    QxLogger::GetInstance()->Open(silent);
    SetIpcLogSink([](int, const std::string&) {});
    const kernel::UiTurn turn;
    auto* const resources = DuiLib::CResourceManager::GetInstance();
    resources->SetSkinFolder(resources->Resolve(L"../components/brindle/res"));
    DuiLib::UICulture::GetInstance()->Load(resources->ResolveSkinFile(L"language/en-US.xml"));
}

std::vector<AccessoryVersionDataInfo> BenchList(std::size_t rows) {
    static std::size_t made = 0;
    std::vector<AccessoryVersionDataInfo> list(rows);
    for (std::size_t i = 0; i < rows; ++i) {
        AccessoryVersionDataInfo& record = list[i];
        record.deviceKey = "device-" + std::to_string(i);
        record.modelId = L"IDS_NAME_PEN";
        record.imagePath = L"drawable/Brindle/pen.svg";
        record.version = L"1.0." + std::to_wstring(i);
        record.descLines = {L"Fixes sleep of device " + std::to_wstring(made++) + L".", L"Charges faster."};
    }
    return list;
}
