#include "tree/control_look.h"

#include "support/toolkit/toolkit_test.h"
#include "tree/control_attributes.h"

namespace DuiLib {

TEST(ControlLookTest, EqualLooksAreOneCopyAndOthersAreNot) {
    ControlLook look;
    look.ground = {0xFFFF0000, true, true};
    look.picture = {{SharedText(L"x.png"), false}, true, true};
    const auto shared = ShareLook(look);
    EXPECT_EQ(ShareLook(ControlLook(look)), shared);

    ControlLook mirrored = look;
    mirrored.picture.value.reverse = true;
    ControlLook unreadable = look;
    unreadable.hotText.given = true;
    for (const ControlLook& other : {mirrored, unreadable, ControlLook{}}) {
        EXPECT_NE(ShareLook(other), shared);
        EXPECT_EQ(*ShareLook(other), other);
    }
}

TEST(ControlLookTest, ALookThatNobodyHasAnyMoreIsForgotten) {
    ControlLook look;
    look.borderSize = {3, true, true};
    std::weak_ptr<const ControlLook> gone = ShareLook(look);
    EXPECT_TRUE(gone.expired());
    EXPECT_EQ(ShareLook(look)->borderSize.value, 3);
}

TEST(ControlLookTest, ALookThatOnlyThePointerShowsIsToldByWhatWasGiven) {
    EXPECT_FALSE(ControlLook{}.ChangesUnderPointer());
    ControlLook pushed;
    pushed.pushedGround.given = pushed.ground.given = true;
    EXPECT_FALSE(pushed.ChangesUnderPointer());
    ControlLook looks[3];
    looks[0].hotText.given = looks[1].hotGround.given = looks[2].hotPicture.given = true;
    for (const ControlLook& look : looks) EXPECT_TRUE(look.ChangesUnderPointer());
}

}  // namespace DuiLib
