#include "duilib/container.h"

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

using ContainerTest = WindowTest<CContainerUI>;

TEST_F(ContainerTest, ChildrenAreCountedAndFoundByIndex) {
    auto* const a = Add<>();
    auto* const b = Add<>();
    EXPECT_EQ(root->GetCount(), 2);
    EXPECT_EQ(root->GetItemAt(0), a);
    EXPECT_EQ(root->GetItemAt(1), b);
    EXPECT_EQ(root->GetItemAt(2), nullptr);
    EXPECT_EQ(root->GetItemAt(-1), nullptr);
    EXPECT_EQ(a->GetParent(), root);
    EXPECT_EQ(a->GetManager(), &window);
}

TEST_F(ContainerTest, NullAndWhatHasAPlaceAlreadyAreRefused) {
    EXPECT_FALSE(root->Add(nullptr));
    auto* const inner = Add<CContainerUI>();
    EXPECT_FALSE(root->Add(inner));
    EXPECT_FALSE(inner->Add(root)) << "the root of a window";
    EXPECT_FALSE(inner->Add(inner)) << "itself";
    CContainerUI outer;
    auto* const middle = Make<CContainerUI>();
    outer.Add(middle);
    EXPECT_FALSE(middle->Add(&outer)) << "a circle";
    EXPECT_EQ(root->GetCount(), 1);
}

TEST_F(ContainerTest, RemoveDeletesAChildAndRefusesOthers) {
    auto* const a = Add<>({{L"name", L"a"}});
    EXPECT_FALSE(root->Remove(nullptr));
    EXPECT_FALSE(root->Remove(root));
    EXPECT_TRUE(root->Remove(a));
    EXPECT_EQ(root->GetCount(), 0);
    EXPECT_EQ(window.FindControl(L"a"), nullptr);
}

TEST_F(ContainerTest, RemoveAllDeletesEveryChildWithWhatLiesInIt) {
    auto* const inner = Add<CContainerUI>();
    Add<>({{L"name", L"a"}}, inner);
    root->RemoveAll();
    EXPECT_EQ(root->GetCount(), 0);
    EXPECT_EQ(window.FindControl(L"a"), nullptr);
}

TEST_F(ContainerTest, AControlThatIsDeletedLeavesItsContainer) {
    delete Add<>({{L"name", L"a"}});
    EXPECT_EQ(root->GetCount(), 0);
    delete root;
    EXPECT_EQ(window.GetRoot(), nullptr);
}

// ---- "pos"

TEST_F(ContainerTest, AnExtentOfZeroLeavesThatDimensionToTheLayout) {
    auto* const bar = Add<CContainerUI>({{L"width", L"200"}, {L"height", L"40"}});
    struct {
        const wchar_t* pos;
        const wchar_t* width;
        CDuiRect expected;
    } const table[] = {
        {L"44,0,120,0", L"120", {44, 0, 120, 40}}, {L"0,0,120,0", L"120", {0, 0, 120, 40}},
        {L"120,0,120,0", L"120", {0, 0, 120, 40}}, {L"120,0,120,0", L"0", {0, 0, 200, 40}},
        {L"0,0,0,0", L"120", {0, 0, 120, 40}},     {L"0,0,0,0", L"0", {0, 0, 200, 40}},
        {L"180,0,120,0", L"120", {0, 0, 120, 40}}, {L"-12,0,120,0", L"120", {-12, 0, 120, 40}},
        {L"0,10,0,30", L"0", {0, 10, 200, 30}},    {L"5,6,7,8", L"120", {5, 6, 7, 8}},
    };
    for (const auto& row : table) {
        bar->RemoveAll();
        auto* const layer = Add<>({{L"pos", row.pos}, {L"width", row.width}}, bar);
        EXPECT_EQ(layer->GetPos(), row.expected) << ::testing::PrintToString(row.pos);
        EXPECT_EQ(layer->GetWidth(), row.expected.Width());
        EXPECT_EQ(layer->GetHeight(), row.expected.Height());
    }
}

TEST_F(ContainerTest, PosIsScaledEdgeByEdge) {
    auto* const layer = Add<>({{L"pos", L"1,2,4,5"}});
    struct {
        unsigned scale;
        CDuiRect expected;
    } const table[] = {
        {100, {1, 2, 4, 5}}, {125, {1, 3, 5, 6}}, {150, {2, 3, 6, 8}}, {175, {2, 4, 7, 9}}, {50, {1, 1, 2, 3}},
    };
    for (const auto& row : table) {
        CResourceManager::GetInstance()->SetScale(row.scale);
        EXPECT_EQ(layer->GetPos(), row.expected) << row.scale;
        EXPECT_EQ(layer->GetHeight(), row.expected.Height()) << row.scale;
        EXPECT_EQ(layer->GetWidth(), row.expected.Width()) << row.scale;
    }
}

TEST_F(ContainerTest, PosChangedByCodeMovesTheLayer) {
    auto* const layer = Add<>({{L"pos", L"0,0,120,0"}});
    EXPECT_EQ(layer->GetPos(), (CDuiRect{0, 0, 120, 300}));
    layer->SetAttribute(L"pos", L"44,0,120,0");
    EXPECT_EQ(layer->GetPos(), (CDuiRect{44, 0, 120, 300}));
}

TEST_F(ContainerTest, PosMeansNothingToTheRoot) {
    root->SetAttribute(L"pos", L"10,10,20,20");
    EXPECT_EQ(root->GetPos(), (CDuiRect{0, 0, 400, 300}));
    EXPECT_EQ(root->GetHeight(), 300);
}

// ---- One over the other

TEST_F(ContainerTest, ChildrenLieOverTheWholeContainerWithinInsetAndPadding) {
    root->SetAttribute(L"inset", L"10,20,30,40");
    auto* const child = Add<>({{L"padding", L"1,2,3,4"}});
    EXPECT_EQ(child->GetPos(), (CDuiRect{11, 22, 367, 256}));
}

TEST_F(ContainerTest, SmallerChildrenAreAligned) {
    auto* const child = Add<>({{L"width", L"100"}, {L"height", L"51"}});
    EXPECT_EQ(child->GetPos(), (CDuiRect{0, 0, 100, 51}));
    root->SetAttribute(L"childalign", L"center");
    root->SetAttribute(L"childvalign", L"center");
    EXPECT_EQ(child->GetPos(), (CDuiRect{150, 124, 250, 175}));
    root->SetAttribute(L"childalign", L"right");
    root->SetAttribute(L"childvalign", L"bottom");
    EXPECT_EQ(child->GetPos(), (CDuiRect{300, 249, 400, 300}));
}

TEST_F(ContainerTest, AContainerIsAsLargeAsItsContent) {
    auto* const column = Add<CVerticalLayoutUI>();
    auto* const box = Add<CContainerUI>({{L"inset", L"1,2,3,4"}}, column);
    Add<>({{L"height", L"30"}, {L"padding", L"0,5,0,6"}}, box);
    auto* const large = Add<>({{L"height", L"35"}}, box);
    EXPECT_EQ(box->GetHeight(), 2 + 41 + 4);
    large->SetFixedHeight(60);
    EXPECT_EQ(box->GetHeight(), 66);
    Add<>({{L"pos", L"0,50,10,70"}}, box);
    EXPECT_EQ(box->GetHeight(), 76);
    box->RemoveAll();
    EXPECT_EQ(box->GetHeight(), 6);
}

TEST_F(ContainerTest, ARightToLeftLanguageMirrorsThePage) {
    TemporaryFolder folder;
    UICulture::GetInstance()->Load(folder.Write("ar.xml", "<Language name=\"ar\" rtl=\"true\"/>"));
    auto* const layer = Add<>({{L"pos", L"44,0,120,0"}});
    auto* const row = Add<CHorizontalLayoutUI>({{L"inset", L"10,0,0,0"}, {L"height", L"20"}});
    auto* const first = Add<>({{L"width", L"50"}}, row);
    auto* const second = Add<>({{L"width", L"60"}, {L"padding", L"7,0,0,0"}}, row);
    EXPECT_EQ(layer->GetPos(), (CDuiRect{280, 0, 356, 300}));
    EXPECT_EQ(first->GetPos(), (CDuiRect{340, 0, 390, 20}));
    EXPECT_EQ(second->GetPos(), (CDuiRect{273, 0, 333, 20}));
    UICulture::GetInstance()->Clear();
    EXPECT_EQ(first->GetPos(), (CDuiRect{10, 0, 60, 20}));
}

}  // namespace DuiLib
