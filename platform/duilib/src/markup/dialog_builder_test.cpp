#include "duilib/dialog_builder.h"

#include <chrono>

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

namespace {

constexpr std::string_view kPanel = R"(<?xml version="1.0" encoding="UTF-8"?>
<Window>
    <Font id="801" name="Serif" size="11" bold="true"/>
    <!-- one row -->
    <VerticalLayout name="row" inset="1,2,3,4">
        <Label name="version" text="bind='IDS_V'" font="801" textcolor="#FF191919"/>
        <Text name="info" text="two&#10;lines &amp; more" width="400"/>
        <HorizontalLayout name="hor" height="52">
            <Container name="group" bkcolor="#0F000000">
                <Control name="layer" pos="0,0,120,0" visible="false"/>
                <Button name="updateBtn" normalimage="file='x.png'" tooltip="tip"/>
            </Container>
        </HorizontalLayout>
    </VerticalLayout>
</Window>
)";

}  // namespace

class DialogBuilderTest : public ToolkitTest {
protected:
    DialogBuilderTest() { CResourceManager::GetInstance()->SetResourceBase(folder.Path()); }

    std::unique_ptr<CControlUI> Build(std::string_view text, IDialogBuilderCallback* callback = nullptr) {
        folder.Write("x.xml", text);
        return std::unique_ptr<CControlUI>(builder.Create(L"x.xml", nullptr, callback));
    }

    // The error of building, without the file.
    std::string ErrorOf(std::string_view text) {
        if (Build(text)) return "none";
        const std::vector<std::string> lines = TakeDiagnostics();
        EXPECT_EQ(lines.size(), 1u);
        EXPECT_EQ(builder.GetError(), std::wstring(lines.back().begin(), lines.back().end()));
        const std::string file = (folder.Path() / "x.xml").string() + ":";
        EXPECT_TRUE(lines.back().starts_with(file)) << lines.back();
        return lines.back().substr(file.size());
    }

    TemporaryFolder folder;
    CDialogBuilder builder;
};

TEST_F(DialogBuilderTest, AFileBecomesATreeOfItsElements) {
    UICulture::GetInstance()->SetString(L"IDS_V", L"Version");
    CPaintManagerUI window;
    window.AttachRoot(Build(kPanel).release());
    ASSERT_NE(window.GetRoot(), nullptr);
    EXPECT_EQ(builder.GetError(), L"");
    const std::tuple<const wchar_t*, const wchar_t*, const wchar_t*> table[] = {
        {L"row", L"VerticalLayout", nullptr},  {L"version", L"Label", L"row"},   {L"info", L"Text", L"row"},
        {L"hor", L"HorizontalLayout", L"row"}, {L"group", L"Container", L"hor"}, {L"layer", L"Control", L"group"},
        {L"updateBtn", L"Button", L"group"},
    };
    for (const auto& [name, className, parent] : table) {
        CControlUI* const control = window.FindControl(name);
        ASSERT_NE(control, nullptr) << ::testing::PrintToString(name);
        EXPECT_EQ(control->GetClass(), className);
        if (parent) {
            EXPECT_EQ(control->GetParent(), window.FindControl(parent));
        }
    }
    EXPECT_EQ(window.FindControl(L"version")->GetText(), L"Version");
    EXPECT_EQ(window.FindControl(L"version")->GetFont(), 801);
    EXPECT_EQ(window.FindControl(L"version")->GetTextColor(), 0xFF191919u);
    EXPECT_EQ(window.FindControl(L"info")->GetText(), L"two\nlines & more");
    EXPECT_EQ(window.FindControl(L"hor")->GetFixedHeight(), 52);
    EXPECT_FALSE(window.FindControl(L"layer")->IsVisible());
    EXPECT_EQ(window.FindControl(L"updateBtn")->GetToolTip(), L"tip");
    EXPECT_EQ(CResourceManager::GetInstance()->GetFont(801), (FontDescription{"Serif", 11, true}));
}

TEST_F(DialogBuilderTest, AttributesOfTheFileAreReadBackUntilCodeGivesOthers) {
    const auto row = Build(kPanel);
    auto* const version = dynamic_cast<CContainerUI&>(*row).GetItemAt(0);
    EXPECT_EQ(version->GetAttribute(L"text"), L"bind='IDS_V'");
    EXPECT_EQ(version->GetAttribute(L"name"), L"version");
    EXPECT_FALSE(version->HasAttribute(L"bkcolor"));
    version->SetAttribute(L"text", L"other");
    EXPECT_EQ(version->GetAttribute(L"text"), L"other");
    const auto again = Build(kPanel);
    EXPECT_EQ(dynamic_cast<CContainerUI&>(*again).GetItemAt(0)->GetAttribute(L"text"), L"bind='IDS_V'");
}

TEST_F(DialogBuilderTest, ControlsOutliveTheFileTheyCameFrom) {
    const auto row = Build("<Window><Label bkcolor=\"#FFFFFFFF\"/></Window>");
    const auto next = Build("<Window><Label bkcolor=\"#00000000\" text=\"changed\"/></Window>");
    EXPECT_EQ(row->GetAttribute(L"bkcolor"), L"#FFFFFFFF");
    EXPECT_EQ(next->GetAttribute(L"bkcolor"), L"#00000000");
}

TEST_F(DialogBuilderTest, WithAParentTheRootIsAddedToIt) {
    folder.Write("x.xml", "<Window><Label/></Window>");
    CContainerUI parent;
    CControlUI* const root = builder.Create(L"x.xml", nullptr, nullptr, nullptr, &parent);
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->GetParent(), &parent);
    CLabelUI label;
    EXPECT_EQ(builder.Create(L"x.xml", nullptr, nullptr, nullptr, &label), nullptr);
    EXPECT_THAT(TakeDiagnostics(), ::testing::ElementsAre(::testing::HasSubstr("the parent is not a container")));
}

// ---- Classes of the caller

namespace {

class Gauge : public CContainerUI {
public:
    std::wstring_view GetClass() const override { return L"Gauge"; }
    void SetAttribute(std::wstring_view name, std::wstring_view value) override {
        if (name == L"level") level = value;
        CContainerUI::SetAttribute(name, value);
    }
    std::wstring level;
};

struct GaugeMaker : IDialogBuilderCallback {
    CControlUI* CreateControl(std::wstring_view className) override {
        return className == L"Gauge" ? new Gauge : nullptr;
    }
};

}  // namespace

TEST_F(DialogBuilderTest, TheCallbackMakesWhatTheToolkitDoesNotKnow) {
    GaugeMaker maker;
    const auto root = Build("<Window><Gauge level=\"7\" height=\"5\"><Label/></Gauge></Window>", &maker);
    ASSERT_NE(root, nullptr);
    auto& gauge = dynamic_cast<Gauge&>(*root);
    EXPECT_EQ(gauge.level, L"7");
    EXPECT_EQ(gauge.GetFixedHeight(), 5);
    EXPECT_EQ(gauge.GetCount(), 1);
    EXPECT_EQ(Build("<Window><Gauge><Dial/></Gauge></Window>", &maker), nullptr);
    EXPECT_THAT(TakeDiagnostics(), ::testing::ElementsAre(::testing::HasSubstr(":1: unknown element <Dial>")));
}

// ---- Errors and warnings

TEST_F(DialogBuilderTest, ABadFileIsAnErrorWithLineAndReasonAndYieldsNoControl) {
    const std::pair<const char*, const char*> table[] = {
        {"", "1: "},
        {"<Window>\n</Window>", "1: no control in <Window>"},
        {"<Window>\n<Label/>\n<Label/></Window>", "3: a second control in <Window>"},
        {"<Label/>", "1: the root element is <Label>, not <Window>"},
        {"<Window\nsize=\"1\"><Label/></Window>", "2: <Window> has no attributes"},
        {"<Window>\n<VerticalLayout>\n\n<Lable/></VerticalLayout></Window>", "4: unknown element <Lable>"},
        {"<Window>\n<Label>\n<Label/></Label></Window>", "3: <Label> cannot have content"},
        {"<Window>\n<Button>press</Button></Window>", "2: text between the elements"},
        {"<Window>\n<Label text=\"a\"\n text=\"b\"/></Window>", "3: attribute \"text\" twice"},
        {"<Window>\n<Label text=\"a/></Window>", "2: "},
        {"<Window>\n<Label></Text></Window>", "2: "},
        {"<Window>\n<Label text=\"\xc3\"/></Window>", "2: not UTF-8"},
        {"<Window><Label/>\n<Font size=\"12\"/></Window>", "2: <Font> without id"},
        {"<Window><Font id=\"1\"\nsize=\"0\"/><Label/></Window>", "2: <Font> cannot have size=\"0\""},
        {"<Window><Font id=\"-2\"/><Label/></Window>", "1: <Font> cannot have id=\"-2\""},
        {"<Window><Font id=\"1\" weight=\"3\"/><Label/></Window>", "1: <Font> cannot have weight=\"3\""},
        {"<Window><Font id=\"1\">x</Font><Label/></Window>", "1: <Font> has no content"},
    };
    for (const auto& [text, error] : table) EXPECT_THAT(ErrorOf(text), ::testing::StartsWith(error)) << text;
    EXPECT_EQ(ErrorOf(kPanel), "none");
    EXPECT_EQ(builder.GetError(), L"") << "an error is forgotten with the next file";
}

TEST_F(DialogBuilderTest, ElementsNestedTooDeepAreAnError) {
    std::string text = "<Window>";
    for (int i = 0; i < 100'000; ++i) text += "<Container>";
    for (int i = 0; i < 100'000; ++i) text += "</Container>";
    EXPECT_THAT(ErrorOf(text + "</Window>"), ::testing::HasSubstr("nested too deep"));
}

TEST_F(DialogBuilderTest, AFileThatIsNotThereOrOfAnUnknownTypeIsAnError) {
    EXPECT_EQ(builder.Create(L"none.xml"), nullptr);
    EXPECT_EQ(builder.Create(L"."), nullptr);
    EXPECT_EQ(builder.Create(L"x.xml", L"ZIPRES"), nullptr);
    EXPECT_THAT(TakeDiagnostics(),
                ::testing::ElementsAre(::testing::HasSubstr("none.xml:1: there is no such file"),
                                       ::testing::HasSubstr("cannot be read"), ::testing::HasSubstr("ZIPRES")));
}

TEST_F(DialogBuilderTest, UnknownAttributesAndValuesWarnOnceAndAreKept) {
    constexpr std::string_view kText =
        "<Window>\n<Container\n frobnicate=\"1\">\n<Label width=\"wide\" bkcolor=\"red\" inset=\"1,1,1,1\"/>"
        "</Container></Window>";
    const auto root = Build(kText);
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->GetAttribute(L"frobnicate"), L"1");
    EXPECT_THAT(
        TakeDiagnostics(),
        ::testing::ElementsAre(::testing::HasSubstr("x.xml:3: warning: unknown attribute \"frobnicate\""),
                               ::testing::HasSubstr("x.xml:4: warning: <Label> cannot have width=\"wide\""),
                               ::testing::HasSubstr("x.xml:4: warning: <Label> cannot have bkcolor=\"red\""),
                               ::testing::HasSubstr("x.xml:4: warning: <Label> cannot have inset=\"1,1,1,1\"")));
    EXPECT_NE(Build(kText), nullptr);
    EXPECT_THAT(TakeDiagnostics(), ::testing::IsEmpty());
}

TEST_F(DialogBuilderTest, AFileCutAnywhereIsAnErrorOrATreeButNeverACrash) {
    const std::size_t whole = kPanel.rfind('>') + 1;
    for (std::size_t length = 0; length < kPanel.size(); ++length) {
        const auto root = Build(kPanel.substr(0, length));
        EXPECT_EQ(root != nullptr, length >= whole) << length;
        EXPECT_EQ(TakeDiagnostics().size(), root ? 0u : 1u) << length;
    }
}

TEST_F(DialogBuilderTest, AFileWithAnyByteChangedIsAnErrorOrATreeButNeverACrash) {
    for (std::size_t at = 0; at < kPanel.size(); ++at) {
        for (const char byte : {'\0', '<', '"', '\xff', 'x'}) {
            std::string text(kPanel);
            text[at] = byte;
            if (!Build(text)) {
                EXPECT_NE(builder.GetError(), L"");
            }
            TakeDiagnostics();
        }
    }
}

// ---- Files that change

TEST_F(DialogBuilderTest, AChangedFileIsSeenAtOnceEvenWithTheSameSizeAndTime) {
    const auto path = folder.Write("x.xml", "<Window><Label text=\"0\"/></Window>");
    const auto time = std::filesystem::last_write_time(path);
    for (int i = 0; i < 200; ++i) {
        const std::string digit = std::to_string(i % 10);
        folder.Write("x.xml", "<Window><Label text=\"" + digit + "\"/></Window>");
        std::filesystem::last_write_time(path, time);
        const std::unique_ptr<CControlUI> root(builder.Create(L"x.xml"));
        ASSERT_NE(root, nullptr);
        ASSERT_EQ(root->GetText(), std::to_wstring(i % 10));
    }
}

TEST_F(DialogBuilderTest, AFileOfYesterdayThatIsReplacedIsSeen) {
    const auto yesterday = std::filesystem::file_time_type::clock::now() - std::chrono::hours(24);
    for (const char* text : {"a", "b", "a"}) {
        const auto next = folder.Write("next.xml", std::string("<Window><Label text=\"") + text + "\"/></Window>");
        std::filesystem::last_write_time(next, yesterday);
        std::filesystem::rename(next, folder.Path() / "x.xml");
        const std::unique_ptr<CControlUI> root(builder.Create(L"x.xml"));
        ASSERT_NE(root, nullptr);
        EXPECT_EQ(root->GetText(), std::wstring(text, text + 1));
    }
}

TEST_F(DialogBuilderTest, AFileThatWasRemovedYieldsNothing) {
    EXPECT_NE(Build(kPanel), nullptr);
    std::filesystem::remove(folder.Path() / "x.xml");
    EXPECT_EQ(builder.Create(L"x.xml"), nullptr);
    EXPECT_THAT(TakeDiagnostics(), ::testing::SizeIs(1));
}

}  // namespace DuiLib
