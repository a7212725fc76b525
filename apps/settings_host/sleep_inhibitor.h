#pragma once

#include <functional>
#include <memory>
#include <string>

namespace settings_host {

// What the system gave to whoever asked it to stay awake; lets go when it is destroyed.
struct SleepInhibition {
    virtual ~SleepInhibition() = default;
};

// Keeps the computer from going to sleep or shutting down, as long as it is held. A computer that cannot be asked goes
// on as it does without this. One thread.
//
//     SleepInhibitor inhibitor("Settings", [](const std::string& line) { std::cerr << line << '\n'; });
//     inhibitor.SetReason("An update runs");
//     inhibitor.Hold(true);
class SleepInhibitor {
public:
    // Gets a line in words when the computer refuses or cannot be asked: once, until it has agreed again.
    using Log = std::function<void(const std::string&)>;

    // `who` is the name that the system shows beside the reason; UTF-8.
    explicit SleepInhibitor(std::string who, Log log = {});
    ~SleepInhibitor() = default;  // lets go
    SleepInhibitor(const SleepInhibitor&) = delete;
    SleepInhibitor& operator=(const SleepInhibitor&) = delete;

    // For the next Hold(true) that asks; one that is held keeps its own. UTF-8, for the user.
    void SetReason(std::string utf8) { m_reason = std::move(utf8); }

    // True asks the system, unless it has been asked since the last Hold(false), and returns within about a second.
    // False lets go at once.
    void Hold(bool on);

    // Whether the system has agreed; false while a wish to hold was refused.
    bool IsHeld() const { return m_inhibition != nullptr; }

private:
    // Throws std::runtime_error with the reason in words.
    static std::unique_ptr<SleepInhibition> Ask(const std::string& who, const std::string& reason);

    // What this system does not do when it refuses, in words.
    static const char* RefusalText();

    const std::string m_who;
    const Log m_log;
    std::string m_reason;
    std::unique_ptr<SleepInhibition> m_inhibition;
    bool m_wanted = false;
    bool m_refusalLogged = false;
};

}  // namespace settings_host
