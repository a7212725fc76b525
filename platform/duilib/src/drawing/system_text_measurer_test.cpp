#include <iterator>
#include <limits>

#include "drawing/text_measurer.h"
#include "support/toolkit/toolkit_test.h"
#include "wait_until.h"

namespace DuiLib {

namespace {

const FontDescription kFont;

#if !defined(_WIN32)
// Pango looks fonts up on threads of its own, which may run on for a while. The program ends after them: what they hold
// would look leaked.
class PangoThreadsEnd : public ::testing::Environment {
public:
    void SetUp() override { m_before = Threads(); }
    void TearDown() override {
        static_cast<void>(test_support::WaitUntil([this] { return Threads() <= m_before; }));
    }

private:
    static std::ptrdiff_t Threads() {
        const std::filesystem::directory_iterator tasks("/proc/self/task");
        return std::distance(begin(tasks), end(tasks));
    }
    std::ptrdiff_t m_before = 0;
};
[[maybe_unused]] const auto* const kPangoThreadsEnd = ::testing::AddGlobalTestEnvironment(new PangoThreadsEnd);
#endif

CDuiSize Line(std::wstring_view text, unsigned scale = 100, const FontDescription& font = kFont) {
    return SystemTextMeasurer().Measure(text, font, scale, 1, false);
}

int LinesOf(std::wstring_view text, int maxWidth, bool wrap = true) {
    return SystemTextMeasurer().Measure(text, kFont, 100, maxWidth, wrap).cy / Line(L"x").cy;
}

}  // namespace

TEST(SystemTextMeasurer, ALineHasTheHeightOfItsFontAndTheWidthOfItsLetters) {
    const CDuiSize x = Line(L"xxxxxxxxxx");
    EXPECT_GT(x.cy, 14);
    EXPECT_LT(x.cy, 28);
    EXPECT_GT(x.cx, 40);
    EXPECT_LT(x.cx, 140);
    EXPECT_GT(Line(L"xxxxxxxxxxx").cx, x.cx);
    EXPECT_GT(Line(L"WWWWWWWWWW").cx, Line(L"iiiiiiiiii").cx);
    EXPECT_GT(Line(L"xxxxxxxxxx", 100, {"Noto Sans", 14, true}).cx, x.cx);
}

TEST(SystemTextMeasurer, TheScaleMultipliesTheFontSize) {
    EXPECT_EQ(Line(L"text", 200), Line(L"text", 100, {"Noto Sans", 28, false}));
    EXPECT_GT(Line(L"text", 125).cx, Line(L"text").cx);
}

TEST(SystemTextMeasurer, TheEmptyTextHasNoHeight) {
    EXPECT_EQ(Line(L""), (CDuiSize{0, 0}));
    EXPECT_EQ(SystemTextMeasurer().Measure(L"", kFont, 100, 100, true), (CDuiSize{0, 0}));
}

TEST(SystemTextMeasurer, TextBreaksAtLineFeedsAndALastEmptyLineDoesNotCount) {
    const std::pair<const wchar_t*, int> table[] = {
        {L"one", 1}, {L"one\n", 1}, {L"one\ntwo", 2}, {L"one\ntwo\n", 2}, {L"one\n\n", 2}, {L"\n", 1}, {L"\n\n", 2},
    };
    for (const auto& [text, lines] : table) {
        EXPECT_EQ(LinesOf(text, 9999), lines) << ::testing::PrintToString(text);
        EXPECT_EQ(LinesOf(text, 9999, false), lines) << ::testing::PrintToString(text);
    }
}

TEST(SystemTextMeasurer, WrappingKeepsWithinTheWidth) {
    const std::wstring text = L"several words that do not fit on one line";
    const CDuiSize size = SystemTextMeasurer().Measure(text, kFont, 100, 100, true);
    EXPECT_LE(size.cx, 100);
    EXPECT_GT(LinesOf(text, 100), 2);
    EXPECT_EQ(LinesOf(text, 1 << 24), 1);
    EXPECT_GT(LinesOf(std::wstring(100, L'x'), 100), 3) << "a word that is too long is broken";
}

TEST(SystemTextMeasurer, AnyCharactersCanBeMeasured) {
    const std::wstring texts[] = {
        L"\u4e2d\u6587",
        L"\u0627\u0644\u0639",
        L"\U0001F600",
        std::wstring(1, static_cast<wchar_t>(0xD800)),
        std::wstring(1, static_cast<wchar_t>(0xDFFF)),
        std::wstring(L"a\0b", 3),
        std::wstring(1, std::numeric_limits<wchar_t>::max()),
        L"\u202e\ufeff\u2029x",
    };
    for (const std::wstring& text : texts) EXPECT_GT(Line(text).cy, 0);
    EXPECT_GT(Line(std::wstring_view(L"a\0b", 3)).cx, Line(L"a").cx) << "a zero does not end the text";
    EXPECT_EQ(Line(std::wstring(1, static_cast<wchar_t>(0xD800))), Line(L"\ufffd"));
}

TEST(SystemTextMeasurer, ItIsTheMeasurerUntilAnotherIsSet) {
    EXPECT_EQ(&CRenderEngine::GetTextMeasurer(), &SystemTextMeasurer());
    FixedCellMeasurer cells(kCell);
    CRenderEngine::SetTextMeasurer(&cells);
    EXPECT_EQ(&CRenderEngine::GetTextMeasurer(), &cells);
    CRenderEngine::SetTextMeasurer(nullptr);
    EXPECT_EQ(&CRenderEngine::GetTextMeasurer(), &SystemTextMeasurer());
}

}  // namespace DuiLib
