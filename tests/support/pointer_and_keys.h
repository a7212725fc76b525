#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace test_display {

struct ScreenPoint {  // [device px], from the screen's upper left corner
    int x = 0;
    int y = 0;
};

// What was on the screen at one moment.
struct ScreenImage {
    int width = 0;                      // [device px]
    int height = 0;                     // [device px]
    std::vector<std::uint32_t> pixels;  // 0xRRGGBB, line by line from the top

    // Throws std::out_of_range beside the screen.
    std::uint32_t Pixel(int x, int y) const;
};

// The pointer, the keyboard and the eyes of somebody in front of a display: programs get events as from real devices,
// through the window that is under the pointer or has the focus.
//
// Each call returns once the display has taken it; the program may see it later. Calls throw std::runtime_error that
// names the display and what failed; the display going away is no more than that. One thread at a time in the whole
// process may be inside these calls, or inside Xlib at all: Xlib's error handler is one for the process.
//
// Windows are found by their title, among the top-level windows that are shown.
class PointerAndKeys {
public:
    explicit PointerAndKeys(const std::string& display);
    ~PointerAndKeys();
    PointerAndKeys(const PointerAndKeys&) = delete;
    PointerAndKeys& operator=(const PointerAndKeys&) = delete;

    void MoveTo(int x, int y);
    void Press();  // the left button, where the pointer is
    void Release();
    void Click(int x, int y);
    void Wheel(int notches);  // below 0 is up, away from the user

    // Presses and releases a key by its X name, after modifiers: "Tab", "shift+Tab", "ctrl+Page_Down", "alt+F4". What
    // needs Shift on this keyboard gets it, as "A" and "ISO_Left_Tab" do.
    void Key(const std::string& combination);

    bool WindowExists(const std::string& title);
    ScreenPoint WindowOrigin(const std::string& title);  // of its client area
    void SetInputFocus(const std::string& title);        // keys go there from now on; no window manager does it
    void CloseWindow(const std::string& title);          // as a title bar's close button; the program may refuse

    ScreenImage Screenshot();

private:
    class Connection;
    std::unique_ptr<Connection> m_connection;
};

}  // namespace test_display
