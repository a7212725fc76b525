#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "duilib/paint_surface.h"

// One language at one display scale.
struct Look {
    std::string language;
    unsigned scale;  // [percent]
};
void PrintTo(const Look& look, std::ostream* out);

// "en_US_100", for the names of tests.
std::string TestNameOf(const testing::TestParamInfo<Look>& info);

// A test whose pictures are taken of a page in one look, with the resources, texts and fonts that ship. What the
// toolkit complains about fails the test, unless it was expected.
class PictureTest : public testing::TestWithParam<Look> {
protected:
    PictureTest();
    ~PictureTest() override;
    void SetUp() override;
    void TearDown() override;

    // Compares with the reference NAME-LANGUAGE-SCALE.
    void ExpectPicture(const std::string& name, const DuiLib::PaintSurface& picture) const;

    // Exactly one complaint has to contain this.
    void ExpectComplaint(const std::string& part) { m_expectedComplaints.push_back(part); }

private:
    std::vector<std::string> m_complaints;
    std::vector<std::string> m_expectedComplaints;
};

// Left to right and right to left, at the smallest and the largest scale of a display.
inline std::vector<Look> OuterLooks() { return {{"en-US", 100}, {"en-US", 300}, {"ar", 100}, {"ar", 300}}; }

// Also each scale between, where rounding may go wrong, and long texts: for the one sheet that has every state of a
// row.
inline std::vector<Look> EveryLook() {
    std::vector<Look> looks = OuterLooks();
    for (const unsigned scale : {125u, 150u, 200u}) looks.push_back({"en-US", scale});
    looks.push_back({"qps-ploc", 100});
    return looks;
}
