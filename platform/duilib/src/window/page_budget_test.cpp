// What a page of many rows costs: memory by asking the allocator, time by comparing two sizes of a page.
#include <malloc.h>

#include "support/toolkit/toolkit_test.h"

// The sanitizers' allocators count for themselves.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace DuiLib {

namespace {

std::size_t BytesInUse() {
    if (__sanitizer_get_current_allocated_bytes) return __sanitizer_get_current_allocated_bytes();
    return ::mallinfo2().uordblks;
}

constexpr std::string_view kRow = R"(<Window><VerticalLayout name="row">
<HorizontalLayout name="hor" inset="16,12,16,12" childpadding="12">
  <Label name="imageLabel" width="40" height="40"/>
  <VerticalLayout name="ver" width="400">
    <HorizontalLayout height="24" childpadding="8">
      <Label name="desName" font="9" textcolor="#FF191919" valign="center"/>
      <Button name="pulldown" width="16" height="16" normalimage="file='drawable/ic_up.png'"/>
    </HorizontalLayout>
    <Label name="version" font="9" height="20" textcolor="#99000000"/>
  </VerticalLayout>
  <Control/>
  <Container name="buttons" height="28" padding="0,12,0,0">
    <Button name="updateBtn" text="bind='IDS_UPDATE'" font="102" bkround="28,28" bkcolor="#0C000000"/>
    <Container name="group">
      <Label name="progressLabel" visible="false" bkround="28,28" bordersize="1" borderfillcolor="#FFA8B9FC"/>
      <Container name="progressLayout" visible="false" bkcolor="#FFFFFFFF"/>
      <Label name="progress" visible="false" align="center" font="102"/>
      <Button name="progressBtn" visible="false"/>
      <Button name="stopBtn" visible="false"/>
    </Container>
    <Label name="updateBtnText" visible="false" font="102"/>
  </Container>
</HorizontalLayout></VerticalLayout></Window>)";

// Rows as a page of updates makes them: built from a file, filled, renamed, and given two controls more.
class UpdatePage {
public:
    explicit UpdatePage(int rows) {
        window.SetClientSize({800, 600});
        window.AttachRoot(list);
        for (int i = 0; i < rows; ++i) AddRow(i);
        for (const std::wstring& key : keys) Collapse(key);
    }

    static constexpr int kControlsPerRow = 20;

    CPaintManagerUI window;
    CVerticalLayoutUI* list = new CVerticalLayoutUI;
    std::vector<std::wstring> keys;

private:
    void AddRow(int index) {
        keys.push_back(L"DEVICE" + std::to_wstring(1000 + index));
        const std::wstring& key = keys.back();
        CControlUI* const row = CDialogBuilder().Create(L"row.xml");
        row->SetVirtualWnd(std::to_wstring(0x7f0000000000 + index));
        list->Add(row);
        window.FindControl(L"version")->SetText(L"Driver version 1.0." + std::to_wstring(index));
        window.FindControl(L"desName")->SetText(L"Accessory " + std::to_wstring(index));
        window.FindControl(L"imageLabel")->SetAttribute(L"bkimage", L"file='drawable/pen.png'");
        for (const wchar_t* name : {L"updateBtn", L"stopBtn", L"progress", L"hor", L"ver", L"pulldown",
                                    L"progressLayout", L"progressBtn", L"progressLabel"}) {
            window.FindControl(name)->SetName(key + name);
        }
        MeasureLabels(key);
        AddDescription(key);
        auto* const line = new CLabelUI;
        line->SetName(key + L"_" + std::to_wstring(index));
        line->SetFixedHeight(1);
        line->SetFixedWidth(560);
        line->SetAttribute(L"bkcolor", L"#0F000000");
        line->SetAttribute(L"padding", L"16,0,16,0");
        list->Add(line);
    }

    void MeasureLabels(const std::wstring& key) {
        for (const wchar_t* text : {L"Up to date", L"Installing...", L"Update", L"Resume", L"Try again"}) {
            window.FindControl(L"updateBtnText")->SetText(text);
            window.FindControl(L"updateBtnText")->GetTextRect({9999, 9999});
        }
        for (const wchar_t* name :
             {L"updateBtn", L"progressLayout", L"progressBtn", L"progressLabel", L"progress", L"stopBtn"}) {
            window.FindControl(key + name)->SetAttribute(L"width", L"120");
        }
    }

    void AddDescription(const std::wstring& key) {
        auto& ver = dynamic_cast<CContainerUI&>(*window.FindControl(key + L"ver"));
        auto* const text = new CTextUI;
        text->SetAttribute(L"name", key + L"devInfo");
        text->SetText(L"Fixes sleep.\nOf " + key);
        text->SetFont(9);
        text->SetAttribute(L"textcolor", L"99000000");
        text->SetAttribute(L"width", L"400");
        auto* const divider = new CLabelUI;
        divider->SetFixedHeight(1);
        divider->SetFixedWidth(400);
        divider->SetAttribute(L"bkcolor", L"#0F000000");
        divider->SetAttribute(L"padding", L"0,0,0,8");
        ver.Add(divider);
        ver.Add(text);
        text->SetFixedHeightInPixels(40);
        window.FindControl(key + L"hor")->SetAttribute(L"height", L"92");
    }

    void Collapse(const std::wstring& key) {
        window.FindControl(key + L"devInfo")->SetVisible(false);
        window.FindControl(key + L"pulldown")->SetAttribute(L"normalimage", L"file='drawable/ic_down.png'");
        CControlUI* const hor = window.FindControl(key + L"hor");
        hor->SetFixedHeight(52);
        window.FindControl(key + L"ver")->SetFixedHeight(52);
        EXPECT_EQ(hor->GetHeight(), 52);
    }
};

class PageBudgetTest : public ToolkitTest {
protected:
    PageBudgetTest() {
        UICulture::GetInstance()->SetString(L"IDS_UPDATE", L"Update");
        folder.Write("row.xml", kRow);
        CResourceManager::GetInstance()->SetResourceBase(folder.Path());
        UpdatePage warmUp(2);
    }

    TemporaryFolder folder;
};

}  // namespace

TEST_F(PageBudgetTest, ARowTakesAtMostElevenKilobytesAndAControlFiveHundredBytes) {
    constexpr int kRows = 500;
    const std::size_t before = BytesInUse();
    auto page = std::make_unique<UpdatePage>(kRows);
    page->window.Layout();
    const std::size_t perRow = (BytesInUse() - before) / kRows;
    RecordProperty("bytes_per_row", static_cast<int>(perRow));
    EXPECT_LE(perRow, 11u * 1024u);
    EXPECT_LE(perRow / UpdatePage::kControlsPerRow, 500u);
    page.reset();
    const std::size_t after = BytesInUse();
    page = std::make_unique<UpdatePage>(kRows);
    page.reset();
    EXPECT_NEAR(static_cast<double>(BytesInUse()), static_cast<double>(after), 20.0 * kRows)
        << "nothing of the rows is left but what the allocator has not taken back yet";
}

}  // namespace DuiLib
