#include "duilib/paint_surface.h"

#include <functional>

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

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

}  // namespace DuiLib
