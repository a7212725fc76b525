// The layouts, languages and pictures that ship: everything that the module looks up is there.
#include <gtest/gtest.h>

#include <filesystem>
#include <initializer_list>
#include <memory>
#include <regex>
#include <set>

#include "base/text.h"
#include "duilib/duilib.h"
#include "kernel/ui_turn.h"
#include "named_in_sources.h"

namespace {

namespace fs = std::filesystem;
using namespace DuiLib;
using named_in_sources::Everywhere;
using named_in_sources::InSources;

constexpr const wchar_t* kPage = L"../components/brindle/res/layout/Tolvane.xml";
constexpr const wchar_t* kRow = L"../components/brindle/res/layout/AccessoriesFirmwareWnd.xml";

constexpr const wchar_t* kWindow = L"../components/brindle/res/layout/SettingsWindow.xml";

// How the module looks controls up.
const std::regex kLookedUp(R"re(\b(?:FindControl|BindControl|BindContainer)\(L"(\w+)")re");
const std::regex kLookedUpAsContainer(
    R"re((?:BindContainer\(|dynamic_cast<CContainerUI\*>\(m_paintManager->FindControl\()L"(\w+)")re");

fs::path Skin() { return CResourceManager::GetInstance()->Resolve(L"../components/brindle/res"); }

// A picture that is named x.png may also be drawn: x.svg.
bool IsThere(fs::path picture) {
    if (fs::is_regular_file(picture)) return true;
    return picture.extension() == ".png" && fs::is_regular_file(picture.replace_extension(".svg"));
}

// The names of all buttons below a control.
std::set<std::string> Buttons(CControlUI* control) {
    std::set<std::string> names;
    if (dynamic_cast<CButtonUI*>(control) != nullptr) names.insert(base::Utf8FromWide(control->GetName().Str()));
    auto* const container = dynamic_cast<CContainerUI*>(control);
    for (int i = 0; container != nullptr && i < container->GetCount(); ++i)
        names.merge(Buttons(container->GetItemAt(i)));
    return names;
}

class Resources : public testing::Test {
protected:
    Resources() {
        SetDiagnosticSink([this](const std::string& line) { m_diagnostics.push_back(line); });
    }
    ~Resources() override { SetDiagnosticSink({}); }

    // The layout in a window's tree.
    void Load(const wchar_t* layout) {
        const kernel::UiTurn turn;
        CDialogBuilder builder;
        CControlUI* const root = builder.Create(layout);
        ASSERT_NE(root, nullptr) << testing::PrintToString(builder.GetError().Str());
        manager.AttachRoot(root);
        EXPECT_TRUE(m_diagnostics.empty()) << m_diagnostics.front();
    }

    // Other layouts within it, where the module and the host put them.
    void AddRow() { Add(kRow, "accessVer"); }
    void AddPage() { Add(kPage, "page"); }

    CControlUI* Find(const std::string& name) { return manager.FindControl(std::wstring(name.begin(), name.end())); }

    // All of these names, among them at least those that the test knows of.
    void ExpectControls(const named_in_sources::Names& names, std::initializer_list<const char*> known) {
        for (const auto& [name, file] : names) EXPECT_NE(Find(name), nullptr) << name << " in " << file;
        for (const char* name : known) EXPECT_TRUE(names.contains(name)) << name << " is not looked for";
    }

    CPaintManagerUI manager;

private:
    void Add(const wchar_t* layout, const char* container) {
        const kernel::UiTurn turn;
        CDialogBuilder builder;
        CControlUI* const root = builder.Create(layout);
        auto* const parent = dynamic_cast<CContainerUI*>(Find(container));
        ASSERT_NE(parent, nullptr) << container;
        parent->Add(root);
    }

    std::vector<std::string> m_diagnostics;
};

TEST_F(Resources, ThePageHasEveryNameThatItsListLooksUp) {
    Load(kPage);
    ExpectControls(InSources("plugin/update_list", kLookedUp), {"topName", "accessVer"});
}

// A row lies in its page, whose title and list it looks up as well.
TEST_F(Resources, RowAndPageHaveEveryNameThatTheModuleLooksUp) {
    Load(kPage);
    AddRow();
    ExpectControls(InSources("plugin", kLookedUp), {"topName", "DeviceUpdateTitle", "version", "desName", "imageLabel",
                                                    "updateBtn", "hor", "progressLabel", "updateBtnText"});
    for (const auto& [name, file] : InSources("plugin", kLookedUpAsContainer)) {
        EXPECT_NE(dynamic_cast<CContainerUI*>(Find(name)), nullptr) << name << " in " << file;
    }
    EXPECT_NE(dynamic_cast<CVerticalLayoutUI*>(Find("ver")), nullptr);
}

TEST_F(Resources, TheWindowAndThePageHaveEveryNameThatTheHostLooksUp) {
    Load(kWindow);
    AddPage();
    ExpectControls(InSources("apps/settings_host", std::regex(R"re(\bFind\(L"(\w+)")re")),
                   {"page", "topName", "navAbout", "serviceBar", "keepOpen"});
}

TEST_F(Resources, TheRowStartsWithItsUpdateButton) {
    Load(kRow);
    EXPECT_TRUE(manager.FindControl(L"updateBtn")->IsVisible());
    for (const wchar_t* name : {L"stopBtn", L"progress", L"progressLayout", L"progressBtn", L"progressLabel"}) {
        EXPECT_FALSE(manager.FindControl(name)->IsVisible()) << testing::PrintToString(std::wstring(name));
    }
}

// A row's clicks are found by the names that binding gives its buttons.
TEST_F(Resources, EveryButtonOfTheRowIsBoundAndAsksForSomething) {
    Load(kRow);
    const auto bound = InSources("plugin/firmware_item", std::regex(R"re(\bBindControl\(L"(\w+)")re"));
    std::set<std::string> clicked;
    for (const auto& [name, file] : InSources("plugin/firmware_item", std::regex(R"re(\{L"(\w+)", \{k)re")))
        clicked.insert(name);
    const std::set<std::string> buttons = Buttons(manager.GetRoot());
    EXPECT_EQ(buttons, clicked) << "in the layout, and in kClicks";
    for (const std::string& name : buttons) EXPECT_TRUE(bound.contains(name)) << name << " is not bound";
}

TEST_F(Resources, AReaderFindsTheRowsProgressAndItsButtons) {
    Load(kRow);
    EXPECT_EQ(manager.FindControl(L"progressLayout")->GetRole(), ControlRole::kProgress);
    for (const std::string& name : Buttons(manager.GetRoot()))
        EXPECT_EQ(Find(name)->GetRole(), ControlRole::kButton) << name;
}

TEST_F(Resources, TheMeasuringTextHasTheButtonsFont) {
    Load(kRow);
    EXPECT_EQ(manager.FindControl(L"updateBtnText")->GetFont(), manager.FindControl(L"updateBtn")->GetFont());
}

// Pictures are named in layouts, in sources and in the catalogue; what nobody names need not ship.
TEST_F(Resources, EveryPictureThatIsNamedIsThereAndEveryOneThatIsThereIsNamed) {
    std::set<std::string> named;
    for (const auto& [picture, file] : Everywhere(std::regex(R"(drawable/(\w+/\w+\.(?:png|svg)))"))) {
        EXPECT_TRUE(IsThere(Skin() / "drawable" / picture)) << picture << " in " << file;
        named.insert(fs::path(picture).replace_extension().generic_string());
    }
    std::set<std::string> shipped;
    for (const fs::directory_entry& file : fs::recursive_directory_iterator(Skin() / "drawable")) {
        if (!file.is_regular_file()) continue;
        const std::string picture = file.path().lexically_relative(Skin() / "drawable").generic_string();
        shipped.insert(picture.substr(0, picture.find_first_of("@.")));  // "x@150.png" is x at a scale
    }
    EXPECT_EQ(shipped, named);
}

}  // namespace
