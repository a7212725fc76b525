#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "temporary_folder.h"
#include "test_process.h"

namespace settings_host {

// A D-Bus daemon for one test, which is this process's system bus from now on. Throws std::runtime_error when it does
// not come up, with the daemon's own words.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    // Discarded with the bus.
    const std::filesystem::path& Folder() const { return m_folder; }

private:
    test_support::TemporaryFolder m_folder;
    std::optional<test_process::Process> m_daemon;
};

// Takes connections and never says a word; this process's system bus from now on.
class DeafBus {
public:
    explicit DeafBus(const std::filesystem::path& socket);
    ~DeafBus();
    DeafBus(const DeafBus&) = delete;
    DeafBus& operator=(const DeafBus&) = delete;

private:
    int m_listener = -1;
};

// Makes the socket this process's system bus, for connections from now on.
void UseBusAt(const std::filesystem::path& socket);

// Waits until nobody of that unique name is on the system bus; false when patience ends first.
bool WaitUntilDisconnected(const std::string& uniqueName);

}  // namespace settings_host
