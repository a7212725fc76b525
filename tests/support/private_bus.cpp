#include "private_bus.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace settings_host {

namespace {

namespace fs = std::filesystem;

// Everybody may do everything, as nobody else can reach it.
void WriteConfiguration(const fs::path& file, const fs::path& socket) {
    std::ofstream(file) << "<busconfig>\n"
                           "  <type>system</type>\n"
                           "  <listen>unix:path="
                        << socket.string()
                        << "</listen>\n"
                           "  <policy context=\"default\">\n"
                           "    <allow user=\"*\"/>\n"
                           "    <allow own=\"*\"/>\n"
                           "    <allow send_destination=\"*\"/>\n"
                           "    <allow receive_sender=\"*\"/>\n"
                           "  </policy>\n"
                           "</busconfig>\n";
}

}  // namespace

// env finds the daemon in PATH and becomes it.
PrivateBus::PrivateBus() {
    const fs::path socket = m_folder / "bus";
    WriteConfiguration(m_folder / "bus.conf", socket);
    m_daemon.emplace("/usr/bin/env", std::vector<std::string>{"dbus-daemon", "--nofork", "--print-address",
                                                              "--config-file=" + (m_folder / "bus.conf").string()});
    if (!m_daemon->Output().WaitFor("unix:path=")) {
        m_daemon->WaitForEnd(std::chrono::seconds(1));
        throw std::runtime_error("dbus-daemon does not come up: " + m_daemon->Errors().Text());
    }
    UseBusAt(socket);
}

PrivateBus::~PrivateBus() = default;

DeafBus::DeafBus(const fs::path& socket) : m_listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socket.c_str(), sizeof address.sun_path - 1);
    if (bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(m_listener, 8) != 0) {
        close(m_listener);
        throw std::runtime_error(socket.string() + ": cannot be listened at");
    }
    UseBusAt(socket);
}

DeafBus::~DeafBus() { close(m_listener); }

void UseBusAt(const fs::path& socket) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + socket.string()).c_str(), 1);
}

bool WaitUntilDisconnected(const std::string& uniqueName) {
    sd_bus* bus = nullptr;
    if (sd_bus_open_system(&bus) < 0) throw std::runtime_error("the private bus cannot be reached");
    const auto deadline = std::chrono::steady_clock::now() + test_process::kPatience;
    int isThere = 1;
    while (isThere != 0 && std::chrono::steady_clock::now() < deadline) {
        sd_bus_message* reply = nullptr;
        const int result =
            sd_bus_call_method(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                               "NameHasOwner", nullptr, &reply, "s", uniqueName.c_str());
        if (result >= 0) sd_bus_message_read(reply, "b", &isThere);
        sd_bus_message_unref(reply);
        if (result < 0) break;
    }
    sd_bus_close_unref(bus);
    return isThere == 0;
}

}  // namespace settings_host
