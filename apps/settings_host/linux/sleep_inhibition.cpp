#include <fcntl.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "base/handle.h"
#include "base/reason.h"
#include "sleep_inhibitor.h"

namespace settings_host {

namespace {

using Clock = std::chrono::steady_clock;

// The window's thread asks, and a window that does nothing for longer than a second looks broken; by itself the
// bus would wait 25 seconds. logind answers within milliseconds.
constexpr std::chrono::seconds kPatience(1);

std::uint64_t MicrosecondsUntil(Clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now());
    return static_cast<std::uint64_t>(
        std::max<std::int64_t>(left.count(), 1));  // 0 would mean the bus's own 25 seconds
}

// `result` is what an sd-bus function returned: below 0 for minus an errno.
int Checked(int result, const char* action) {
    if (result >= 0) return result;
    throw std::runtime_error(std::string(action) + ": " + base::Reason(-result));
}

// A connection that is closed without writing what is still to be written: there is nothing once an answer has come,
// and on a bus that hangs it would never end.
struct CloseBus {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
using Bus = std::unique_ptr<sd_bus, CloseBus>;

struct UnrefMessage {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, UnrefMessage>;

// Returns once the bus has greeted: a call on a bus that has not would wait for it without regard to the call's limit.
Bus Connect(Clock::time_point deadline) {
    sd_bus* opened = nullptr;
    Checked(sd_bus_open_system(&opened), "the system bus cannot be reached");
    Bus bus(opened);
    constexpr const char* kAction = "the system bus does not answer";
    while (Checked(sd_bus_is_ready(bus.get()), kAction) == 0) {
        if (Checked(sd_bus_process(bus.get(), nullptr), kAction) > 0) continue;
        if (Clock::now() >= deadline) Checked(-ETIMEDOUT, kAction);
        Checked(sd_bus_wait(bus.get(), MicrosecondsUntil(deadline)), kAction);
    }
    return bus;
}

Message CallInhibit(sd_bus* bus, const std::string& who, const std::string& reason, Clock::time_point deadline) {
    Checked(sd_bus_set_method_call_timeout(bus, MicrosecondsUntil(deadline)), "the time to answer cannot be set");
    sd_bus_error error{};
    sd_bus_message* reply = nullptr;
    const int result =
        sd_bus_call_method(bus, "org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                           "Inhibit", &error, &reply, "ssss", "sleep:shutdown", who.c_str(), reason.c_str(), "block");
    const std::string words = error.message != nullptr ? error.message : base::Reason(-result);
    sd_bus_error_free(&error);
    if (result < 0) throw std::runtime_error("logind: " + words);
    return Message(reply);
}

// logind's inhibitions last as long as a file is open that it hands out.
class Inhibition final : public SleepInhibition {
public:
    // Keeps a file of its own; `file` stays the caller's.
    explicit Inhibition(int file) : m_file(fcntl(file, F_DUPFD_CLOEXEC, 0)) {
        if (!m_file) Checked(-errno, "logind's file cannot be kept");
    }

private:
    const base::OwnedHandle m_file;
};

}  // namespace

std::unique_ptr<SleepInhibition> SleepInhibitor::Ask(const std::string& who, const std::string& reason) {
    const auto deadline = Clock::now() + kPatience;
    const Bus bus = Connect(deadline);
    const Message reply = CallInhibit(bus.get(), who, reason, deadline);
    int file = -1;
    Checked(sd_bus_message_read(reply.get(), "h", &file), "logind's answer cannot be read");
    return std::make_unique<Inhibition>(file);
}

const char* SleepInhibitor::RefusalText() { return "sleep and shutdown are not inhibited"; }

}  // namespace settings_host
