#include "duilib/shared_text.h"

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

TEST(SharedText, EqualTextsAreOneCopy) {
    const SharedText a(L"version");
    const SharedText b(std::wstring(L"ver") + L"sion");
    EXPECT_EQ(a, b);
    EXPECT_EQ(&a.Get(), &b.Get());
    EXPECT_FALSE(a == SharedText(L"Version"));
}

TEST(SharedText, TheEmptyTextHasNoCopy) {
    EXPECT_TRUE(SharedText().IsEmpty());
    EXPECT_TRUE(SharedText(L"").IsEmpty());
    EXPECT_EQ(SharedText().Get(), L"");
    EXPECT_EQ(SharedText(L""), SharedText());
}

TEST(SharedText, ACopyLivesAsLongAsItsLastUser) {
    SharedText kept;
    {
        const SharedText first(L"a text of this test");
        kept = first;
    }
    EXPECT_EQ(kept.Get(), L"a text of this test");
    EXPECT_FALSE(SharedText::Find(L"a text of this test").IsEmpty());
    SharedText moved = std::move(kept);
    moved = SharedText(L"another");
    EXPECT_TRUE(SharedText::Find(L"a text of this test").IsEmpty());
}

TEST(SharedText, EmbeddedZerosCount) {
    EXPECT_FALSE(SharedText(std::wstring_view(L"a\0b", 3)) == SharedText(std::wstring_view(L"a\0c", 3)));
    EXPECT_EQ(SharedText(std::wstring_view(L"a\0b", 3)).Get().GetLength(), 3);
}

}  // namespace DuiLib
