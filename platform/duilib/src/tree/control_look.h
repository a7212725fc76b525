#pragma once

#include "drawing/pictures.h"
#include "duilib/geometry.h"

namespace DuiLib {

// One property of a look. One that was given a text that cannot be read has no value, but still takes the place of what
// would be shown without it: a button whose "pushedimage" is no picture shows none while pressed.
template <class Value>
struct LookProperty {
    Value value{};
    bool given = false;
    bool readable = false;  // the value is that of the text given last

    Value Or(const Value& otherwise) const { return readable ? value : otherwise; }
    friend bool operator==(const LookProperty&, const LookProperty&) = default;
};

// What painting needs of a control's attributes, read when they were set (docs/layout.md). Font, colour, alignment and
// padding of the text are the control's own: its size depends on most of them.
struct ControlLook {
    LookProperty<CDuiColor> ground;
    LookProperty<CDuiColor> hotGround;
    LookProperty<CDuiColor> pushedGround;
    LookProperty<PictureReference> groundPicture;
    LookProperty<PictureReference> picture;
    LookProperty<PictureReference> hotPicture;
    LookProperty<PictureReference> pushedPicture;
    LookProperty<CDuiSize> round;  // [design px] width and height of the corners' ellipse
    LookProperty<int> borderSize;  // [design px]
    LookProperty<CDuiColor> borderColor;
    LookProperty<CDuiColor> borderFill;
    LookProperty<CDuiColor> hotText;
    LookProperty<CDuiColor> disabledText;

    bool ChangesUnderPointer() const { return hotText.given || hotGround.given || hotPicture.given; }
    friend bool operator==(const ControlLook&, const ControlLook&) = default;
};

}  // namespace DuiLib
