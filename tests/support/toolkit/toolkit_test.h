#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "duilib/duilib.h"
#include "support/fixed_cell_measurer.h"
#include "support/temporary_folder.h"
#include "support/toolkit/test_system.h"

namespace DuiLib {

using test_support::TemporaryFolder;

inline std::ostream& operator<<(std::ostream& out, const CDuiRect& rect) {
    return out << rect.left << ',' << rect.top << ',' << rect.right << ',' << rect.bottom;
}
inline std::ostream& operator<<(std::ostream& out, const CDuiSize& size) { return out << size.cx << 'x' << size.cy; }

// Cells of tests that do not ask for others.
inline constexpr CDuiSize kCell{10, 20};  // [design px]

// The toolkit as a fresh process has it, with cells for letters. A diagnostic that no test takes fails the test.
class ToolkitTest : public ::testing::Test {
protected:
    ToolkitTest() {
        Reset();
        CRenderEngine::SetTextMeasurer(&cells);
        SetDiagnosticSink([this](const std::string& line) { diagnostics.push_back(line); });
    }
    ~ToolkitTest() override {
        EXPECT_THAT(diagnostics, ::testing::IsEmpty());
        SetDiagnosticSink({});
        CRenderEngine::SetTextMeasurer(nullptr);
        Reset();
    }

    std::vector<std::string> TakeDiagnostics() { return std::exchange(diagnostics, {}); }

    FixedCellMeasurer cells{kCell};
    std::vector<std::string> diagnostics;

private:
    static void Reset() {
        CResourceManager::GetInstance()->SetScale(100);
        CResourceManager::GetInstance()->SetResourceBase(FolderOfThisTest());
        UICulture::GetInstance()->Clear();
    }
};

// A window of 400 x 300 with a root of the given class, and short words for what tests do with it.
template <class Root>
class WindowTest : public ToolkitTest {
protected:
    WindowTest() {
        window.SetClientSize({400, 300});
        window.AttachRoot(root);
    }

    template <class Class = CControlUI>
    static Class* Make(std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> attributes = {}) {
        auto* const control = new Class;
        for (const auto& [name, value] : attributes) control->SetAttribute(name, value);
        return control;
    }

    template <class Class = CControlUI>
    Class* Add(std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> attributes = {},
               CContainerUI* parent = nullptr) {
        auto* const control = Make<Class>(attributes);
        EXPECT_TRUE((parent ? parent : root)->Add(control));
        return control;
    }

    bool Click(CDuiPoint point) {
        window.ButtonDown(point);
        return window.ButtonUp(point);
    }
    bool Click(CControlUI* control) {
        const CDuiRect place = control->GetPos();
        return Click({(place.left + place.right) / 2, (place.top + place.bottom) / 2});
    }

    CPaintManagerUI window;
    Root* root = new Root;
};

}  // namespace DuiLib
