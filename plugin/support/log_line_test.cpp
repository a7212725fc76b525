#include "support/log_line.h"

#include <gtest/gtest.h>

#include "seam.h"

namespace DuiLib {

// A class of the page's shape, for names.
struct LoggingRow {
    void SetResume(const std::wstring& record, int) { LogLine(kLogDetail) << "resume progress record: " << record; }
    void Tell(const std::string& key) { LogLine(kLogDetail) << "update : " << key; }
    std::wstring* Find(int (*)(int), std::string) {
        LogLine(kLogEvent) << "Send DownloadPkg Finished, ret = " << true << false;
        return nullptr;
    }
    void OnClick(int&) {
        const auto retry = [this] { LogLine(kLogDetail) << "update retry" << clicks; };
        retry();
    }

    int clicks = 0;
};

}  // namespace DuiLib

extern "C" void LogFromAPlainFunction() { LogLine(kLogEvent) << "init access"; }

namespace {

const seam::Event& Last() { return seam::Get().events.back(); }

class Log : public testing::Test {
protected:
    Log() { seam::Get() = seam::Seam{}; }
    DuiLib::LoggingRow row;
};

TEST_F(Log, AValueStandsBetweenTheTextAndTheName) {
    row.SetResume(L"37%", 0);
    EXPECT_EQ(Last().line, L"[AccessoryLog]resume progress record: 37%(DuiLib::LoggingRow::SetResume)");
    EXPECT_EQ(Last().number, 3);
}

TEST_F(Log, ABoolIsANumber) {
    row.Find(nullptr, "");
    EXPECT_EQ(Last().line, L"[AccessoryLog]Send DownloadPkg Finished, ret = 10(DuiLib::LoggingRow::Find)");
    EXPECT_EQ(Last().number, 4);
}

TEST_F(Log, ALambdaIsNamedAfterItsFunction) {
    int unused = 0;
    row.OnClick(unused);
    EXPECT_EQ(Last().line, L"[AccessoryLog]update retry0(DuiLib::LoggingRow::OnClick::<lambda>::operator ())");
}

TEST_F(Log, AFunctionHasTheSameNameWhateverItsCompilerWritesAroundIt) {
    const struct {
        const char* pretty;
        const char* name;
    } cases[] = {
        {"void CreateSetting(DuiLib::CPaintManagerUI*, int)", "CreateSetting"},
        {"void DuiLib::Row::SetResume()", "DuiLib::Row::SetResume"},
        {"static DuiLib::B* DuiLib::A::Make(std::vector<int, X<int>>&) const", "DuiLib::A::Make"},
        {"B *DuiLib::A::Make(int (*)(int))", "DuiLib::A::Make"},
        {"std::map<int, long> & A::Get()", "A::Get"},
        {"void __cdecl DuiLib::Row::SetResume(void)", "DuiLib::Row::SetResume"},
        {"class std::basic_string<char,struct std::char_traits<char> > *__cdecl DuiLib::Row::Find(int (__cdecl "
         "*)(int))",
         "DuiLib::Row::Find"},
        {"void __cdecl CreateSetting(class DuiLib::CPaintManagerUI *)", "CreateSetting"},
        {"DuiLib::Row::OnClick(int&)::<lambda()>", "DuiLib::Row::OnClick::<lambda>::operator ()"},
        {"auto DuiLib::Row::OnClick(int &)::(anonymous class)::operator()() const",
         "DuiLib::Row::OnClick::<lambda>::operator ()"},
        {"auto __cdecl DuiLib::Row::OnClick::<lambda_1>::operator ()(void) const",
         "DuiLib::Row::OnClick::<lambda>::operator ()"},
        {"auto __cdecl DuiLib::Row::OnClick(int &)::<lambda_2>::operator ()(void) const",
         "DuiLib::Row::OnClick::<lambda>::operator ()"},
    };
    for (const auto& function : cases) {
        EXPECT_STREQ(FunctionName(function.pretty).CStr(), function.name) << function.pretty;
    }
}

TEST_F(Log, APlainFunctionHasItsPlainName) {
    LogFromAPlainFunction();
    EXPECT_EQ(Last().line, L"[AccessoryLog]init access(LogFromAPlainFunction)");
}

TEST_F(Log, NarrowAsciiComesOutUnchangedInTheWideLine) {
    LogLine(kLogDetail) << "a ~!" << std::string("key") << L" wide\u00e9" << -5;
    EXPECT_TRUE(Last().line.starts_with(L"[AccessoryLog]a ~!key wide\u00e9-5("));
}

TEST_F(Log, NarrowBytesBeyondAsciiDoNotCutTheLine) {
    row.Tell("pen\xE9\x80 X1");
    const std::wstring& line = Last().line;
    const std::wstring front = L"[AccessoryLog]update : pen";
    const std::wstring back = L" X1(DuiLib::LoggingRow::Tell)";
    EXPECT_TRUE(line.starts_with(front)) << testing::PrintToString(line);
    EXPECT_TRUE(line.ends_with(back)) << testing::PrintToString(line);
    EXPECT_EQ(line.size(), front.size() + 2 + back.size()) << "a character each";
}

TEST_F(Log, EachLineIsBuiltInAFreshStream) {
    LogLine(kLogDetail) << std::hex << 255;
    LogLine(kLogDetail) << 255;
    EXPECT_TRUE(Last().line.starts_with(L"[AccessoryLog]255("));
}

// Thrown out of a destructor, it would end the host.
TEST_F(Log, ALineThatTheLoggerCannotTakeIsLostAndNothingElse) {
    seam::Get().loggerFails = true;
    LogLine(kLogEvent) << "lost";
    EXPECT_TRUE(seam::Get().events.empty());
    seam::Get().loggerFails = false;
    LogLine(kLogEvent) << "heard";
    EXPECT_EQ(seam::Get().events.size(), 1u);
}

}  // namespace
