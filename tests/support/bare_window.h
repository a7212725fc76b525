#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pointer_and_keys.h"
#include "virtual_display.h"

struct _XDisplay;
union _XEvent;

namespace test_display {

// A program's window in its simplest form, for the tests of the virtual display: one colour, and the events that it has
// got, in words:
//
//     "move 10,15"  "press 1 10,15"  "release 1 10,15"   button and place in the window
//     "key shift Tab"                                    modifiers and the key's unshifted name
//     "focus"  "close"                                   it has got the focus; it is asked to close
class BareWindow {
public:
    static constexpr ScreenPoint kOrigin{50, 40};
    static constexpr ScreenSize kSize{200, 100};
    static constexpr std::uint32_t kColour = 0x3366CC;

    // Not shown yet. Throws std::runtime_error when the display cannot be reached.
    BareWindow(const std::string& display, const std::string& title);
    ~BareWindow();
    BareWindow(const BareWindow&) = delete;
    BareWindow& operator=(const BareWindow&) = delete;

    void Show();
    void Hide();

    // The events up to the one in these words; all that came when patience ends first.
    std::vector<std::string> EventsUntil(const std::string& last);

    double DotsPerInch() const;  // of its screen

private:
    unsigned long Id(const char* name) const;
    std::string Words(_XEvent& event) const;

    _XDisplay* const m_display;
    unsigned long m_window = 0;
};

}  // namespace test_display
