#pragma once

#include <memory>
#include <string>
#include <vector>

#include "page_e2e_test.h"
#include "pointer_and_keys.h"
#include "virtual_display.h"

namespace e2e {

// The page in a real window, as somebody in front of a display uses it: all input comes from outside the process.
// Only script lines ask the host where its controls are, and wait for what it shows.
class WindowE2ETest : public PageE2ETest {
protected:
    static inline const std::string kTitle = "Settings";  // of the window
    static constexpr test_display::ScreenSize kScreen{1000, 700};

    explicit WindowE2ETest(test_display::ScreenSize screen = kScreen, int dpi = 96);

    // Opens the window with its keyboard focus and the pointer beside it. The page shows its rows whole and at rest
    // afterwards, where there are to be some: their number, and the key of the last.
    void OpenWindow(const std::vector<std::string>& options = {}, int rows = 0, const std::string& lastKey = {},
                    const std::map<std::string, std::string>& environment = {});

    // Carries out script lines; the test ends with an exception when one goes wrong.
    void Play(const std::string& lines);

    // What somebody does with a shown control.
    void PointAt(const std::string& control);
    void ClickOn(const std::string& control);

    // Presses the key; the named controls get the focus one after another.
    void MoveFocus(const std::string& key, const std::vector<std::string>& controls);

    // The colour 0xRRGGBB of the screen there.
    std::uint32_t Colour(int x, int y) { return m_hands.Screenshot().Pixel(x, y); }

    // The part of the screen that is not black: the window, as long as nothing else is shown.
    Place LitPart();

    test_display::VirtualDisplay m_display;
    test_display::PointerAndKeys m_hands;
    std::unique_ptr<Host> m_host;
};

// A companion program of the test's own, which runs as long as this does.
class Companion {
public:
    // Writes a configuration into the folder that names the program as the companion of the accessory.
    Companion(const std::filesystem::path& folder, const std::string& key);

    const std::filesystem::path& Configuration() const { return m_configuration; }
    void Start();
    void Stop();

private:
    std::filesystem::path m_program;
    std::filesystem::path m_configuration;
    std::unique_ptr<test_process::Process> m_process;
};

// A page of three accessories: the dock's first download fails, the mouse has a companion.
class ThreeRowsTest : public WindowE2ETest {
protected:
    ThreeRowsTest() {
        for (const char* key : {"pen", "dock", "mouse"}) AddAccessory(key);
    }

    void OpenPage() {
        StartService({"--rate", kSlowRate, "--fail", "dock:40"});
        OpenWindow({"--companions", m_companion.Configuration().string()}, 3, "mouse");
    }

    Companion m_companion{m_folder.Path(), "mouse"};
};

}  // namespace e2e
