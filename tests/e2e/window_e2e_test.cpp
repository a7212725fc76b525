#include "window_e2e_test.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <thread>

namespace e2e {

WindowE2ETest::WindowE2ETest(test_display::ScreenSize screen, int dpi)
    : m_display(screen, dpi), m_hands(m_display.Name()) {}

void WindowE2ETest::OpenWindow(const std::vector<std::string>& options, int rows, const std::string& lastKey,
                               const std::map<std::string, std::string>& environment) {
    m_hands.MoveTo(0, 0);
    m_host = StartHostInWindow(m_display.Name(), options, environment);
    Play(rows == 0 ? "wait shown navAccessories" : WaitForRows(rows, lastKey) + "wait hidden serviceBar");
    m_hands.SetInputFocus(kTitle);
}

void WindowE2ETest::Play(const std::string& lines) {
    if (!m_host->Play(lines)) throw std::runtime_error("the host did not play its script lines");
}

void WindowE2ETest::PointAt(const std::string& control) {
    Play("wait shown " + control);
    const Place place = m_host->Where(control);
    m_hands.MoveTo(place.x + place.width / 2, place.y + place.height / 2);
}

void WindowE2ETest::ClickOn(const std::string& control) {
    PointAt(control);
    m_hands.Press();
    m_hands.Release();
}

void WindowE2ETest::MoveFocus(const std::string& key, const std::vector<std::string>& controls) {
    for (const std::string& control : controls) {
        m_hands.Key(key);
        Play("wait focus " + control);
    }
}

Place WindowE2ETest::LitPart() {
    const test_display::ScreenImage shot = m_hands.Screenshot();
    int left = shot.width, top = shot.height, right = 0, bottom = 0;
    for (int y = 0; y < shot.height; ++y) {
        for (int x = 0; x < shot.width; ++x) {
            if (shot.Pixel(x, y) == 0) continue;
            left = std::min(left, x);
            top = std::min(top, y);
            right = std::max(right, x + 1);
            bottom = std::max(bottom, y + 1);
        }
    }
    return {left, top, right - left, bottom - top};
}

// A name that no other test's program has at the same time.
Companion::Companion(const std::filesystem::path& folder, const std::string& key)
    : m_program(folder / ("studio_" + std::to_string(getpid()))), m_configuration(folder / "companions.json") {
    std::filesystem::copy_file("/bin/cat", m_program);
    const nlohmann::json companion = {{"program", m_program.filename().string()}};
    WriteFile(m_configuration, nlohmann::json{{"companions", {{key, companion}}}}.dump());
}

// A program that answers has taken its process over.
void Companion::Start() {
    m_process = std::make_unique<test_process::Process>(m_program, std::vector<std::string>{});
    m_process->Write("ready\n");
    EXPECT_TRUE(m_process->Output().WaitFor("ready"));
}

void Companion::Stop() {
    m_process->AskToEnd();
    EXPECT_EQ(m_process->WaitForEnd(), -SIGTERM);
}

}  // namespace e2e
