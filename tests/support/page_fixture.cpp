#include "page_fixture.h"

#include <algorithm>
#include <cstdio>

#include "duilib/render_engine.h"
#include "duilib/resource_manager.h"
#include "duilib/ui_culture.h"
#include "kernel/ui_turn.h"
#include "update_list/row_list.h"

namespace {

constexpr std::pair<const wchar_t*, const wchar_t*> kTexts[] = {
    {L"IDS_ACCESSORIES_DRIVER_VERSION", L"Driver version {0}"},
    {L"IDS_ACCESSORIES_APP_VERSION", L"App version {0}"},
    {L"IDS_SETTING_ACCESSORIES_UPDATE", L"Update"},
    {L"IDS_SETTING_ACCESSORIES_INSTALLING", L"Installing..."},
    {L"IDS_SETTING_ACCESSORIES_INSTALL_END", L"Up to date"},
    {L"IDS_ACCESSORIES_RESUME", L"Resume"},
    {L"IDS_ACCESSORIES_RETRY", L"Try again"},
    {L"IDS_ACCESSORIES_APP_STARTING", L"Close {0} first."},
    {L"IDS_NAME_PEN", L"Drawing pen"},
    {L"IDS_NAME_DOCK", L"Docking station"},
};

bool TellsOfFailure(const seam::Event& event) {
    if (event.kind != seam::Kind::kLog) return false;
    const auto has = [&event](const wchar_t* part) { return event.line.find(part) != std::wstring::npos; };
    return has(L"nullptr") || has(L"fail to") || has(L"failed");
}

}  // namespace

PageFixture::PageFixture() {
    seam::Get() = seam::Seam{};
    DuiLib::g_updateItemList.clear();
    UseLayouts({});
    UseScale(100);
    DuiLib::CRenderEngine::SetTextMeasurer(&m_measurer);
    DuiLib::UICulture::GetInstance()->Clear();
    for (const auto& [id, text] : kTexts) SetTextOf(id, text);
}

PageFixture::~PageFixture() {
    DuiLib::CRenderEngine::SetTextMeasurer(nullptr);
    seam::Get() = seam::Seam{};
}

void PageFixture::TearDown() { CheckFailureLines(); }

void PageFixture::Forget() {
    CheckFailureLines();
    seam::Get().events.clear();
}

void PageFixture::CheckFailureLines() const {
    for (const seam::Event& event : seam::Get().events) {
        if (!TellsOfFailure(event)) continue;
        const bool expected =
            std::any_of(m_expectedFailures.begin(), m_expectedFailures.end(),
                        [&event](const std::wstring& part) { return event.line.find(part) != std::wstring::npos; });
        EXPECT_TRUE(expected) << "unexpected line: " << testing::PrintToString(event.line);
    }
}

void PageFixture::UseLayouts(MinimalLayouts::Options options) { m_layouts = std::make_unique<MinimalLayouts>(options); }

void PageFixture::UseScale(unsigned percent) { DuiLib::CResourceManager::GetInstance()->SetScale(percent); }

void PageFixture::SetTextOf(const wchar_t* id, const wchar_t* text) {
    DuiLib::UICulture::GetInstance()->SetString(id, text);
}

void PageFixture::Click(std::wstring_view control) {
    const kernel::UiTurn turn;
    EXPECT_TRUE(m_page.Notify(control)) << testing::PrintToString(std::wstring(control));
}

void PageFixture::CompanionRuns(const std::wstring& key, bool runs) { seam::Get().companions[key] = {true, runs}; }

DuiLib::CControlUI& PageFixture::Control(std::wstring_view name) {
    DuiLib::CControlUI* const control = m_page.Find(name);
    if (control != nullptr) return *control;
    ADD_FAILURE() << "no control is named " << testing::PrintToString(std::wstring(name));
    static DuiLib::CControlUI none;
    return none;
}

std::wstring PageFixture::Attribute(std::wstring_view name, std::wstring_view attribute) {
    return Control(name).GetAttribute(attribute).Str();
}

std::vector<std::wstring> PageFixture::Logged(int level) const {
    std::vector<std::wstring> lines;
    for (const seam::Event& event : seam::Get().events) {
        if (event.kind == seam::Kind::kLog && (level == 0 || event.number == level)) lines.push_back(event.line);
    }
    return lines;
}

std::vector<std::wstring> PageFixture::Logged() const { return Logged(0); }

std::vector<std::string> PageFixture::Posted() const {
    std::vector<std::string> posts;
    for (const seam::Event& event : seam::Get().events) {
        if (event.kind != seam::Kind::kPost) continue;
        char ids[32];
        std::snprintf(ids, sizeof ids, "%X %X", static_cast<unsigned>(event.item.destId),
                      static_cast<unsigned>(event.item.msgId));
        std::string post = ids;
        if (event.item.data != nullptr) post += ' ';
        for (const char c : event.payload) post += c == '\0' ? std::string("\\0") : std::string(1, c);
        posts.push_back(post);
    }
    return posts;
}

std::vector<int> PageFixture::Slept() const {
    std::vector<int> sleeps;
    for (const seam::Event& event : seam::Get().events) {
        if (event.kind == seam::Kind::kSleep) sleeps.push_back(event.number);
    }
    return sleeps;
}

std::size_t PageFixture::Count(seam::Kind kind) const {
    const auto& events = seam::Get().events;
    return static_cast<std::size_t>(
        std::count_if(events.begin(), events.end(), [kind](const seam::Event& event) { return event.kind == kind; }));
}

AccessoryVersionDataInfo Accessory(const std::string& key, std::vector<std::wstring> lines, const std::wstring& modelId,
                                   bool isDriver) {
    AccessoryVersionDataInfo record;
    record.deviceKey = key;
    record.modelId = modelId;
    record.imagePath = L"drawable/pen.svg";
    record.version = L"1.0.2";
    record.descLines = std::move(lines);
    record.isDriver = isDriver;
    return record;
}
