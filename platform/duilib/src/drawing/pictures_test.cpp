#include "drawing/pictures.h"

#include <functional>
#include <iomanip>
#include <sstream>

#include "base/text.h"
#include "duilib/paint_surface.h"
#include "support/toolkit/toolkit_test.h"

namespace DuiLib {
namespace {

TEST(PictureReference, FileAndReverseAreRead) {
    const auto picture = ParsePicture(L"file='drawable/x.png' reverse='true'");
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->file.Get(), L"drawable/x.png");
    EXPECT_TRUE(picture->reverse);
}

TEST(PictureReference, WithoutReverseAPictureIsNotMirrored) {
    for (const wchar_t* text : {L"file='x.png'", L"file='x.png' reverse='false'"}) {
        const auto picture = ParsePicture(text);
        ASSERT_TRUE(picture);
        EXPECT_EQ(picture->file.Get(), L"x.png");
        EXPECT_FALSE(picture->reverse);
    }
}

TEST(PictureReference, AFileNameMayHoldAnApostrophe) {
    EXPECT_EQ(ParsePicture(L"file='it's.png'")->file.Get(), L"it's.png");
}

TEST(PictureReference, TheEmptyTextNamesNoPicture) { EXPECT_TRUE(ParsePicture(L"")->file.IsEmpty()); }

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

TEST_F(PictureFiles, ADrawingOfTheSameNameIsTakenForAPngWhereDrawingsCanBeDrawn) {
    MakePng("x.png");
    MakeSvg("x.svg");
    EXPECT_EQ(Found(L"x.png", 100), CanDrawSvg() ? "x.svg" : "x.png");
}

TEST_F(PictureFiles, PngVersionsStandInForADrawingThatCannotBeDrawn) {
    MakeSvg("x.svg");
    for (const char* name : {"x.png", "x@150.png"}) MakePng(name);
    EXPECT_EQ(Found(L"x.svg", 100), CanDrawSvg() ? "x.svg" : "x.png");
    EXPECT_EQ(Found(L"x.svg", 125), CanDrawSvg() ? "x.svg" : "x@150.png");
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
    MakePng("fallback.png");
    CResourceManager::GetInstance()->SetFallbackPicture(skin.Path() / "fallback.png");
    EXPECT_EQ(Found(L"gone.png", 100), "fallback.png");
    EXPECT_EQ(Found(L"gone.png", 100), "fallback.png");
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
    std::vector<std::wstring> names{L"folder.svg", L"folder.png"};
    for (const std::wstring& name : names) std::filesystem::create_directory(skin.Path() / name);
    if (MakePipe(skin.Path() / "pipe.png")) names.push_back(L"pipe.png");
    for (const std::wstring& name : names) EXPECT_EQ(Found(name, 100), "");
    const std::vector<std::string> told = TakeDiagnostics();
    EXPECT_EQ(told.size(), names.size());
    EXPECT_THAT(told, testing::Each(testing::HasSubstr(": it is no file")));
}

// The same picture as a file of each kind that can be drawn: columns of two colours, the left one first.
class DrawnPictures : public PictureFiles {
protected:
    std::vector<std::wstring> MakePictures(CDuiSize size, std::uint32_t left, std::uint32_t right) {
        PaintSurface png(size);
        for (int i = 0; i < size.cx * size.cy; ++i) png.Pixels()[i] = i % size.cx < size.cx / 2 ? left : right;
        const std::string name = "of" + std::to_string(size.cx);  // each file is read once
        png.SavePng(skin.Path() / (name + ".png"));
        std::vector<std::wstring> names{base::WideFromUtf8(name + ".png")};
        if (!CanDrawSvg()) return names;
        std::ostringstream svg;
        svg << "<svg xmlns='http://www.w3.org/2000/svg' width='" << size.cx << "' height='" << size.cy << "'>";
        int x = 0;
        for (const std::uint32_t color : {left, right}) {
            svg << "<rect x='" << x << "' width='" << size.cx / 2 << "' height='" << size.cy << "' fill='#" << std::hex
                << std::setfill('0') << std::setw(6) << (color & 0xFFFFFF) << std::dec << "' fill-opacity='"
                << (color >> 24) / 255.0 << "'/>";
            x += size.cx / 2;
        }
        skin.Write(name + "drawn.svg", svg.str() + "</svg>");
        names.push_back(base::WideFromUtf8(name + "drawn.svg"));
        return names;
    }

    PaintSurface Shown(const std::wstring& image) {
        CPaintManagerUI window;
        window.SetClientSize({40, 40});
        auto* const label = new CLabelUI;
        label->SetAttribute(L"bkimage", image);
        window.AttachRoot(label);
        PaintSurface picture;
        window.Paint(picture);
        return picture;
    }
};

TEST_F(DrawnPictures, APictureIsDrawnInItsOwnProportionsInTheMiddleAndALargeOneSmaller) {
    for (const CDuiSize size : {CDuiSize{40, 20}, CDuiSize{160, 80}}) {
        for (const std::wstring& name : MakePictures(size, 0xFFFF0000, 0xFF0000FF)) {
            const PaintSurface picture = Shown(L"file='" + name + L"'");
            EXPECT_EQ(picture.Pixel(10, 5), 0xFFFFFFFFu);
            EXPECT_EQ(picture.Pixel(10, 20), 0xFFFF0000u);
            EXPECT_EQ(picture.Pixel(30, 20), 0xFF0000FFu);
            EXPECT_EQ(picture.Pixel(10, 35), 0xFFFFFFFFu);
        }
    }
}

TEST_F(DrawnPictures, APictureWithReverseIsMirroredInRightToLeftLanguages) {
    UICulture::GetInstance()->Load(skin.Write("rtl.xml", "<Language name='xx' rtl='true'/>"));
    for (const std::wstring& name : MakePictures({40, 40}, 0xFFFF0000, 0)) {
        EXPECT_EQ(Shown(L"file='" + name + L"'").Pixel(10, 20), 0xFFFF0000u);
        const PaintSurface mirrored = Shown(L"file='" + name + L"' reverse='true'");
        EXPECT_EQ(mirrored.Pixel(10, 20), 0xFFFFFFFFu);
        EXPECT_EQ(mirrored.Pixel(30, 20), 0xFFFF0000u);
    }
}

TEST_F(DrawnPictures, ASavedPictureIsReadBackAsItWas) {
    PaintSurface saved({3, 1});
    saved.Pixels()[0] = 0xFF123456;
    saved.Pixels()[1] = 0x80402000;
    saved.SavePng(skin.Path() / "saved.png");
    const PaintSurface read = PaintSurface::LoadPng(skin.Path() / "saved.png");
    for (int x = 0; x < 3; ++x) EXPECT_EQ(read.Pixel(x, 0), saved.Pixel(x, 0)) << x;
}

TEST(PaintSurfaceTest, APictureIsSavedAndLoadedAsItIs) {
    const TemporaryFolder folder;
    PaintSurface picture({3, 2});
    picture.Pixels()[0] = 0xFFFF0000;
    picture.Pixels()[5] = 0x80800000;
    picture.SavePng(folder.Path() / "x.png");
    const PaintSurface loaded = PaintSurface::LoadPng(folder.Path() / "x.png");
    EXPECT_EQ(loaded.Size(), (CDuiSize{3, 2}));
    EXPECT_EQ(loaded.Pixel(0, 0), 0xFFFF0000);
    EXPECT_EQ(loaded.Pixel(2, 1), 0x80800000u);
    EXPECT_EQ(loaded.Pixel(1, 0), 0u);
}

TEST(PaintSurfaceTest, AFileThatCannotBeReadOrWrittenIsNamed) {
    const TemporaryFolder folder;
    const std::filesystem::path file = folder.Path() / "missing" / "x.png";
    for (const auto& attempt :
         {std::function<void()>([&file] { PaintSurface::LoadPng(file); }), std::function<void()>([&file] {
              PaintSurface({1, 1}).SavePng(file);
          })}) {
        try {
            attempt();
            FAIL() << "no error";
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), ::testing::HasSubstr(file.string() + ": "));
        }
    }
}

}  // namespace
}  // namespace DuiLib
