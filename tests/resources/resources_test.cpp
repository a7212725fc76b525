// The layouts, languages and pictures that ship: everything that the module looks up is there.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <set>

#include "duilib/duilib.h"
#include "kernel/ui_turn.h"

namespace {

namespace fs = std::filesystem;
using namespace DuiLib;

constexpr const wchar_t* kPage = L"../components/brindle/res/layout/Tolvane.xml";
constexpr const wchar_t* kPanel = L"../components/brindle/res/layout/AccessoriesFirmwareWnd.xml";

constexpr const wchar_t* kIds[] = {
    L"IDS_ACCESSORIES_TITLE",           L"IDS_ACCESSORIES_AVAILABLE",
    L"IDS_ACCESSORIES_DRIVER_VERSION",  L"IDS_ACCESSORIES_APP_VERSION",
    L"IDS_SETTING_ACCESSORIES_UPDATE",  L"IDS_SETTING_ACCESSORIES_INSTALLING",
    L"IDS_ACCESSORIES_RESUME",          L"IDS_SETTING_ACCESSORIES_INSTALL_END",
    L"IDS_ACCESSORIES_RETRY",           L"IDS_ACCESSORIES_APP_STARTING",
    L"IDS_NAME_PEN",                    L"IDS_NAME_MOUSE",
    L"IDS_NAME_DOCK",                   L"IDS_NAME_HEADSET",
    L"IDS_NAME_KEYBOARD",
};

fs::path Skin() { return CResourceManager::GetInstance()->Resolve(L"../components/brindle/res"); }

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

    CPaintManagerUI manager;

private:
    std::vector<std::string> m_diagnostics;
};

TEST_F(Resources, ThePageHasEveryNameThatTheModuleLooksUp) {
    Load(kPage);
    for (const wchar_t* name : {L"topName", L"DeviceUpdateTitle"}) {
        EXPECT_NE(manager.FindControl(name), nullptr) << testing::PrintToString(std::wstring(name));
    }
    EXPECT_NE(dynamic_cast<CContainerUI*>(manager.FindControl(L"accessVer")), nullptr);
}

TEST_F(Resources, ThePanelHasEveryNameThatTheModuleLooksUp) {
    Load(kPanel);
    for (const wchar_t* name : {L"version", L"desName", L"imageLabel", L"updateBtn", L"stopBtn", L"progress",
                                L"pulldown", L"progressLayout", L"progressBtn", L"progressLabel", L"updateBtnText"}) {
        EXPECT_NE(manager.FindControl(name), nullptr) << testing::PrintToString(std::wstring(name));
    }
    EXPECT_NE(dynamic_cast<CContainerUI*>(manager.FindControl(L"hor")), nullptr);
    EXPECT_NE(dynamic_cast<CVerticalLayoutUI*>(manager.FindControl(L"ver")), nullptr);
}

TEST_F(Resources, ThePanelStartsWithItsUpdateButton) {
    Load(kPanel);
    EXPECT_TRUE(manager.FindControl(L"updateBtn")->IsVisible());
    for (const wchar_t* name : {L"stopBtn", L"progress", L"progressLayout", L"progressBtn", L"progressLabel"}) {
        EXPECT_FALSE(manager.FindControl(name)->IsVisible()) << testing::PrintToString(std::wstring(name));
    }
}

TEST_F(Resources, TheMeasuringTextHasTheButtonsFont) {
    Load(kPanel);
    EXPECT_EQ(manager.FindControl(L"updateBtnText")->GetFont(), manager.FindControl(L"updateBtn")->GetFont());
}

TEST_F(Resources, EveryLanguageHasEveryText) {
    int languages = 0;
    for (const fs::directory_entry& file : fs::directory_iterator(Skin() / "language")) {
        ++languages;
        UICulture* const culture = UICulture::GetInstance();
        ASSERT_NO_THROW(culture->Load(file.path()));
        EXPECT_EQ(culture->GetLanguage(), file.path().stem().string());
        for (const wchar_t* id : kIds) {
            EXPECT_FALSE(culture->GetString(id).IsEmpty())
                << file.path() << " lacks " << testing::PrintToString(std::wstring(id));
        }
        EXPECT_NE(culture->GetPercentString(37).Str().find(L"37"), std::wstring::npos);
    }
    EXPECT_GE(languages, 2);
}

TEST_F(Resources, TemplatesHaveTheirPlaceholder) {
    for (const fs::directory_entry& file : fs::directory_iterator(Skin() / "language")) {
        UICulture::GetInstance()->Load(file.path());
        for (const wchar_t* id :
             {L"IDS_ACCESSORIES_DRIVER_VERSION", L"IDS_ACCESSORIES_APP_VERSION", L"IDS_ACCESSORIES_APP_STARTING"}) {
            EXPECT_NE(UICulture::GetInstance()->GetString(id).Str().find(L"{0}"), std::wstring::npos) << file.path();
        }
    }
}

TEST_F(Resources, ThePicturesThatTheModuleAndTheCatalogueNameAreThere) {
    for (const char* picture : {"ic_up.png", "ic_down.png", "pen.svg", "mouse.svg", "dock.svg", "headset.svg",
                                "keyboard.svg", "fallback.svg"}) {
        EXPECT_TRUE(fs::is_regular_file(Skin() / "drawable" / "Brindle" / picture)) << picture;
    }
}

}  // namespace
