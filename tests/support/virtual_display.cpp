#include "virtual_display.h"

#include <signal.h>

#include <chrono>
#include <stdexcept>
#include <vector>

#include "test_process.h"

namespace test_display {

namespace {

// env finds the server in PATH and becomes it. The server chooses a free number and writes it to its standard output.
std::vector<std::string> Command(ScreenSize size, int dpi) {
    const std::string screen = std::to_string(size.width) + "x" + std::to_string(size.height) + "x24";
    return {"Xvfb", "-displayfd",        "1",         "-screen", "0",       screen,
            "-dpi", std::to_string(dpi), "-nolisten", "tcp",     "-noreset"};
}

}  // namespace

VirtualDisplay::VirtualDisplay(ScreenSize size, int dpi)
    : m_server(std::make_unique<test_process::Process>("/usr/bin/env", Command(size, dpi))) {
    if (!m_server->Output().WaitFor("")) {
        m_server->WaitForEnd(std::chrono::seconds(1));
        throw std::runtime_error("Xvfb does not come up: " + m_server->Errors().Text());
    }
    m_name = ":" + m_server->Output().Lines().at(0);
}

// Told to end, the server removes its socket and its lock file, which leaves the number to others.
VirtualDisplay::~VirtualDisplay() {
    m_server->AskToEnd();
    m_server->WaitForEnd();
}

}  // namespace test_display
