// Lets twenty devices be updated over and over, pages come and go and the service be restarted, and fails when what the
// processes use grows (docs/testing.md).
//
//     soak [--seconds SECONDS] [--keep]
//
// The service is restarted until three eighths of the time have passed, by a signal and by a kill in turn; the rest is
// one life of it, which is judged. --keep leaves the folder with the logs, as does everything that went wrong.

#include <algorithm>
#include <chrono>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

#include "base/file.h"
#include "base/reason.h"
#include "soak_world.h"

namespace soak {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::seconds;

struct Options {
    seconds length{120};
    bool keep = false;
};

Options Read(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        if (name == "--keep") {
            options.keep = true;
        } else if (name == "--seconds" && i + 1 < argc) {
            options.length = seconds(std::stoi(argv[++i]));
        } else {
            throw std::runtime_error(name + ": is no option, or lacks its value");
        }
    }
    return options;
}

// True once in each interval.
class Every {
public:
    explicit Every(seconds interval) : m_interval(interval), m_next(Clock::now() + interval) {}
    bool IsDue() {
        if (Clock::now() < m_next) return false;
        m_next += m_interval;
        return true;
    }

private:
    const seconds m_interval;
    Clock::time_point m_next;
};

void Run(SoakWorld& world, seconds length) {
    const auto begin = Clock::now();
    Every restart(std::max(seconds(5), length / 24));
    Every guest(seconds(7));
    Every report(std::max(seconds(60), length / 10));
    for (auto next = begin + seconds(1); next <= begin + length; next += seconds(1)) {
        std::this_thread::sleep_until(next);
        if (next < begin + length * 3 / 8 && restart.IsDue()) world.RestartService();
        if (guest.IsDue()) world.RestartGuest();
        world.Measure();
        if (report.IsDue()) std::cout << world.Figures() << std::endl;
    }
}

int Main(int argc, char** argv) {
    try {
        const Options options = Read(argc, argv);
        const std::filesystem::path folder = std::filesystem::canonical(base::MakeTemporaryFolder("soak"));
        std::cout << "the logs are in " << base::Utf8FromPath(folder) << std::endl;
        SoakWorld world(folder);
        Run(world, options.length);
        world.End();
        std::cout << world.Figures();
        const auto findings = world.Findings();
        for (const std::string& finding : findings) std::cout << "wrong: " << finding << "\n";
        if (findings.empty() && !options.keep) std::filesystem::remove_all(folder);
        return findings.empty() ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << "soak: " << base::Reason(error) << "\n";
        return 1;
    }
}

}  // namespace
}  // namespace soak

int main(int argc, char** argv) { return soak::Main(argc, argv); }
