#include "picture_reference.h"

#include <sys/stat.h>

#include "duilib/paint_surface.h"
#include "test_support.h"

namespace DuiLib {
namespace {

TEST(PictureReference, FileAndReverseAreRead) {
    const auto picture = ParsePicture(L"file='drawable/x.png' reverse='true'");
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->file, L"drawable/x.png");
    EXPECT_TRUE(picture->reverse);
}

TEST(PictureReference, WithoutReverseAPictureIsNotMirrored) {
    for (const wchar_t* text : {L"file='x.png'", L"file='x.png' reverse='false'"}) {
        const auto picture = ParsePicture(text);
        ASSERT_TRUE(picture);
        EXPECT_EQ(picture->file, L"x.png");
        EXPECT_FALSE(picture->reverse);
    }
}

TEST(PictureReference, AFileNameMayHoldAnApostrophe) { EXPECT_EQ(ParsePicture(L"file='it's.png'")->file, L"it's.png"); }

TEST(PictureReference, TheEmptyTextNamesNoPicture) { EXPECT_TRUE(ParsePicture(L"")->file.empty()); }

TEST(PictureReference, OtherFormsCannotBeRead) {
    for (const wchar_t* text : {L"x.png", L"file=''", L"file='x.png", L"file='x.png' turn='true'", L"image='x.png'"}) {
        EXPECT_FALSE(ParsePicture(text)) << testing::PrintToString(std::wstring(text));
    }
}

class PictureFiles : public ToolkitTest {
protected:
    PictureFiles() { CResourceManager::GetInstance()->SetSkinFolder(skin.Path()); }
    ~PictureFiles() override { CResourceManager::GetInstance()->SetFallbackPicture({}); }

    void MakePng(const std::string& name) { PaintSurface({2, 2}).SavePng(skin.Path() / name); }
    void MakeSvg(const std::string& name) {
        skin.Write(name, "<svg xmlns='http://www.w3.org/2000/svg' width='4' height='4'/>");
    }
    std::string Found(const std::wstring& file, unsigned scale) { return FindPicture(file, scale).filename().string(); }

    TemporaryFolder skin;
};

TEST_F(PictureFiles, ADrawingOfTheSameNameIsTakenForAPng) {
    MakePng("x.png");
    MakeSvg("x.svg");
    EXPECT_EQ(Found(L"x.png", 100), "x.svg");
}

TEST_F(PictureFiles, TheSmallestVersionThatIsLargeEnoughIsTaken) {
    for (const char* name : {"x.png", "x@150.png", "x@300.png"}) MakePng(name);
    EXPECT_EQ(Found(L"x.png", 100), "x.png");
    EXPECT_EQ(Found(L"x.png", 125), "x@150.png");
    EXPECT_EQ(Found(L"x.png", 150), "x@150.png");
    EXPECT_EQ(Found(L"x.png", 200), "x@300.png");
    EXPECT_EQ(Found(L"x.png", 400), "x@300.png");
}

TEST_F(PictureFiles, AMissingPictureIsReportedOnceAndReplacedByTheFallback) {
    MakeSvg("fallback.svg");
    CResourceManager::GetInstance()->SetFallbackPicture(skin.Path() / "fallback.svg");
    EXPECT_EQ(Found(L"gone.png", 100), "fallback.svg");
    EXPECT_EQ(Found(L"gone.png", 100), "fallback.svg");
    const std::vector<std::string> told = TakeDiagnostics();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_THAT(told[0], testing::AllOf(testing::HasSubstr("gone.png"), testing::HasSubstr("cannot be shown")));
}

TEST_F(PictureFiles, WithoutAFallbackNothingIsDrawn) {
    EXPECT_EQ(Found(L"gone.svg", 100), "");
    EXPECT_EQ(TakeDiagnostics().size(), 1u);
}

TEST_F(PictureFiles, ADamagedPictureIsReportedWithItsName) {
    skin.Write("damaged.png", "no picture");
    EXPECT_EQ(Found(L"damaged.png", 100), "");
    EXPECT_THAT(TakeDiagnostics(), testing::ElementsAre(testing::HasSubstr("damaged.png")));
}

TEST_F(PictureFiles, APictureOfAbsurdSizeIsRefusedBeforeItIsRead) {
    MakePng("huge.png");
    std::fstream file(skin.Path() / "huge.png", std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(16);
    file.write("\x00\x00\x75\x30\x00\x00\x75\x30", 8);  // 30000 x 30000
    file.close();
    EXPECT_EQ(Found(L"huge.png", 100), "");
    EXPECT_THAT(TakeDiagnostics(), testing::ElementsAre(testing::HasSubstr("huge.png: the picture is too large")));
}

TEST_F(PictureFiles, WhatIsNoFileIsNotReadAtAll) {
    ASSERT_EQ(::mkfifo((skin.Path() / "pipe.png").c_str(), 0600), 0);
    std::filesystem::create_directory(skin.Path() / "folder.svg");
    EXPECT_EQ(Found(L"pipe.png", 100), "");
    EXPECT_EQ(Found(L"folder.svg", 100), "");
    EXPECT_THAT(TakeDiagnostics(), testing::Each(testing::HasSubstr(": it is no file")));
}

TEST_F(PictureFiles, APictureIsDrawnInItsOwnProportionsInTheMiddle) {
    skin.Write(
        "wide.svg",
        "<svg xmlns='http://www.w3.org/2000/svg' width='40' height='20'>"
        "<rect width='20' height='20' fill='#ff0000'/><rect x='20' width='20' height='20' fill='#0000ff'/></svg>");
    CPaintManagerUI window;
    window.SetClientSize({40, 40});
    auto* const label = new CLabelUI;
    label->SetAttribute(L"bkimage", L"file='wide.svg'");
    window.AttachRoot(label);
    PaintSurface picture;
    window.Paint(picture);
    EXPECT_EQ(picture.Pixel(10, 5), 0xFFFFFFFFu);
    EXPECT_EQ(picture.Pixel(10, 20), 0xFFFF0000u);
    EXPECT_EQ(picture.Pixel(30, 20), 0xFF0000FFu);
    EXPECT_EQ(picture.Pixel(10, 35), 0xFFFFFFFFu);
}

TEST_F(PictureFiles, APictureWithReverseIsMirroredInRightToLeftLanguages) {
    skin.Write("half.svg",
               "<svg xmlns='http://www.w3.org/2000/svg' width='40' height='40'>"
               "<rect width='20' height='40' fill='#ff0000'/></svg>");
    UICulture::GetInstance()->Load(skin.Write("rtl.xml", "<Language name='xx' rtl='true'/>"));
    CPaintManagerUI window;
    window.SetClientSize({40, 40});
    auto* const label = new CLabelUI;
    window.AttachRoot(label);
    PaintSurface picture;
    label->SetAttribute(L"bkimage", L"file='half.svg'");
    window.Paint(picture);
    EXPECT_EQ(picture.Pixel(10, 20), 0xFFFF0000u);
    label->SetAttribute(L"bkimage", L"file='half.svg' reverse='true'");
    window.Paint(picture);
    EXPECT_EQ(picture.Pixel(10, 20), 0xFFFFFFFFu);
    EXPECT_EQ(picture.Pixel(30, 20), 0xFFFF0000u);
}

}  // namespace
}  // namespace DuiLib
