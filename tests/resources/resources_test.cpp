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
constexpr const wchar_t* kRow = L"../components/brindle/res/layout/AccessoriesFirmwareWnd.xml";

fs::path Skin() { return CResourceManager::GetInstance()->Resolve(L"../components/brindle/res"); }

// A picture that is named x.png may also be drawn: x.svg.
bool IsThere(fs::path picture) {
    if (fs::is_regular_file(picture)) return true;
    return picture.extension() == ".png" && fs::is_regular_file(picture.replace_extension(".svg"));
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

TEST_F(Resources, TheRowHasEveryNameThatTheModuleLooksUp) {
    Load(kRow);
    for (const wchar_t* name : {L"version", L"desName", L"imageLabel", L"updateBtn", L"stopBtn", L"progress",
                                L"pulldown", L"progressLayout", L"progressBtn", L"progressLabel", L"updateBtnText"}) {
        EXPECT_NE(manager.FindControl(name), nullptr) << testing::PrintToString(std::wstring(name));
    }
    EXPECT_NE(dynamic_cast<CContainerUI*>(manager.FindControl(L"hor")), nullptr);
    EXPECT_NE(dynamic_cast<CVerticalLayoutUI*>(manager.FindControl(L"ver")), nullptr);
}

TEST_F(Resources, TheRowStartsWithItsUpdateButton) {
    Load(kRow);
    EXPECT_TRUE(manager.FindControl(L"updateBtn")->IsVisible());
    for (const wchar_t* name : {L"stopBtn", L"progress", L"progressLayout", L"progressBtn", L"progressLabel"}) {
        EXPECT_FALSE(manager.FindControl(name)->IsVisible()) << testing::PrintToString(std::wstring(name));
    }
}

TEST_F(Resources, AReaderFindsTheRowsProgressAndItsButtons) {
    Load(kRow);
    EXPECT_EQ(manager.FindControl(L"progressLayout")->GetRole(), ControlRole::kProgress);
    for (const wchar_t* name : {L"updateBtn", L"stopBtn", L"pulldown"}) {
        EXPECT_EQ(manager.FindControl(name)->GetRole(), ControlRole::kButton) << testing::PrintToString(name);
    }
}

TEST_F(Resources, TheMeasuringTextHasTheButtonsFont) {
    Load(kRow);
    EXPECT_EQ(manager.FindControl(L"updateBtnText")->GetFont(), manager.FindControl(L"updateBtn")->GetFont());
}

TEST_F(Resources, ThePicturesThatTheModuleAndTheCatalogueNameAreThere) {
    for (const char* picture : {"ic_up.png", "ic_down.png", "pen.svg", "mouse.svg", "dock.svg", "headset.svg",
                                "keyboard.svg", "fallback.svg"}) {
        EXPECT_TRUE(IsThere(Skin() / "drawable" / "Brindle" / picture)) << picture;
    }
}

TEST_F(Resources, TheHostHasItsPictures) {
    for (const char* picture : {"accessories.svg", "about.svg", "up_to_date.svg", "warning.svg", "searching.svg"}) {
        EXPECT_TRUE(IsThere(Skin() / "drawable" / "Host" / picture)) << picture;
    }
}

}  // namespace
