#include "picture_test.h"

#include <algorithm>
#include <ostream>

#include "duilib/duilib.h"
#include "picture_fonts.h"
#include "reference_picture.h"
#include "seam.h"

void PrintTo(const Look& look, std::ostream* out) { *out << look.language << " at " << look.scale << " %"; }

std::string TestNameOf(const testing::TestParamInfo<Look>& info) {
    std::string name = info.param.language + "_" + std::to_string(info.param.scale);
    std::ranges::replace(name, '-', '_');
    return name;
}

PictureTest::PictureTest() {
    using namespace DuiLib;
    SetDiagnosticSink([this](const std::string& line) { m_complaints.push_back(line); });
    auto* const resources = CResourceManager::GetInstance();
    const std::filesystem::path skin = resources->Resolve(L"../components/brindle/res");
    resources->SetSkinFolder(skin);
    resources->SetFallbackPicture(skin / "drawable" / "Brindle" / "fallback.svg");
    resources->SetScale(GetParam().scale);
    UICulture::GetInstance()->Load(skin / "language" / (GetParam().language + ".xml"));
    seam::Get() = seam::Seam{};
}

PictureTest::~PictureTest() {
    seam::Get() = seam::Seam{};
    DuiLib::SetDiagnosticSink({});
}

void PictureTest::SetUp() { ASSERT_EQ(WhatFontsLack(), ""); }

void PictureTest::TearDown() {
    for (const std::string& part : m_expectedComplaints) {
        EXPECT_EQ(std::erase_if(m_complaints,
                                [&part](const std::string& line) { return line.find(part) != std::string::npos; }),
                  1u)
            << part;
    }
    EXPECT_EQ(m_complaints, std::vector<std::string>());
}

void PictureTest::ExpectPicture(const std::string& name, const DuiLib::PaintSurface& picture) const {
    EXPECT_TRUE(MatchesReference(name + "-" + GetParam().language + "-" + std::to_string(GetParam().scale), picture));
}
