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

// Three languages (left to right, right to left, long texts) at the five scales that displays have.
inline auto EveryLook() {
    std::vector<Look> looks;
    for (const char* const language : {"en-US", "ar", "qps-ploc"}) {
        for (const unsigned scale : {100u, 125u, 150u, 200u, 300u}) looks.push_back({language, scale});
    }
    return testing::ValuesIn(looks);
}
