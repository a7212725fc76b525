#include "duilib/diagnostics.h"

#include "foundation/diagnostics.h"
#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

TEST(Diagnostics, LinesGoToStandardErrorUntilASinkIsSet) {
    std::string heard;
    SetDiagnosticSink([&](const std::string& line) { heard = line; });
    Report("x.xml:1: to the sink");
    EXPECT_EQ(heard, "x.xml:1: to the sink");
    SetDiagnosticSink({});
    ::testing::internal::CaptureStderr();
    Report("x.xml:2: to standard error");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "x.xml:2: to standard error\n");
    EXPECT_EQ(heard, "x.xml:1: to the sink");
}

}  // namespace DuiLib
