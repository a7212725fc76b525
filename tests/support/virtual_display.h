#pragma once

#include <memory>
#include <string>

namespace test_process {
class Process;
}

// A screen, a pointer and a keyboard for tests of programs with a window:
//
//     test_display::VirtualDisplay display({800, 600});
//     test_process::Process program(path, {}, {{"DISPLAY", display.Name()}});
//     test_display::PointerAndKeys hands(display.Name());
namespace test_display {

struct ScreenSize {  // [device px]
    int width = 0;
    int height = 0;
};

// An X server without a monitor, in a process of its own, for as long as this lives. It has one screen of 24 bits and
// no window manager. Any number may run at the same time.
class VirtualDisplay {
public:
    // Returns once programs can connect. `dpi` is what the server tells of its screen. Throws std::runtime_error with
    // the server's own words when it does not come up.
    explicit VirtualDisplay(ScreenSize size, int dpi = 96);
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    // What programs take in DISPLAY, for example ":99".
    const std::string& Name() const { return m_name; }

private:
    std::unique_ptr<test_process::Process> m_server;
    std::string m_name;
};

}  // namespace test_display
