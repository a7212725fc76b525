#pragma once

#include <benchmark/benchmark.h>
#include <ipc_client/ipc_broker.h>
#include <ipc_client/ipc_diagnostics.h>
#include <sched.h>

#include <filesystem>
#include <memory>

#include "bare_relay.h"

// What the measurements of the message pipe share: a folder for the pipe, a broker in a process of its own, and turns
// with the bare relay.
namespace bench {

// A pipe folder of this process and those that it starts, until it is destroyed.
class PipeFolder {
public:
    PipeFolder() {
        if (mkdtemp(m_path) == nullptr) Die("no folder");
        setenv("BRINDLE_PIPE_DIR", m_path, 1);
    }
    ~PipeFolder() { std::filesystem::remove_all(m_path); }
    PipeFolder(const PipeFolder&) = delete;
    PipeFolder& operator=(const PipeFolder&) = delete;

private:
    char m_path[32] = "/tmp/pipe_bench_XXXXXX";
};

// What a broker's process does.
[[noreturn]] inline void RunBroker(const wchar_t* pipe) {
    IPCBroker broker(pipe);
    broker.Start();
    while (true) pause();
}

// Ends the program when the broker does not come.
inline void WaitForBroker(const wchar_t* pipe) {
    const auto until = Clock::now() + kPatience;
    while (!IsPipeConnected(pipe)) {
        if (Clock::now() > until) Die("no broker");
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

// Keeps the processors from going to sleep while it lives: waking one costs a virtual machine more than a message does,
// and that would be measured. What spins gives way to anything else that wants to run.
class AwakeProcessors {
public:
    AwakeProcessors() {
        for (unsigned i = 0; i < std::max(1u, std::thread::hardware_concurrency()); ++i) {
            m_spinning.push_back(std::make_unique<Child>([] {
                const sched_param lowest{};
                if (sched_setscheduler(0, SCHED_IDLE, &lowest) != 0) _exit(1);
                while (true) benchmark::ClobberMemory();
            }));
        }
    }

private:
    std::vector<std::unique_ptr<Child>> m_spinning;
};

// The relay and `time` [microseconds] take turns, so that whatever else the machine does disturbs both alike. Ends the
// program when the median of the second, called `name`, is too many times the relay's.
template <class Time>
void CompareWithRelay(benchmark::State& state, Relay& relay, const std::string& name, Time time) {
    const AwakeProcessors awake;
    std::vector<double> relayTimes, times;
    for (auto _ : state) {
        relayTimes.push_back(relay.Time());
        times.push_back(time());
        state.SetIterationTime(times.back() / 1e6);
    }
    const double ratio = Median(times) / Median(relayTimes);
    state.counters["relay_median_us"] = Median(relayTimes);
    state.counters[name + "_median_us"] = Median(times);
    state.counters["ratio"] = ratio;
    if (state.iterations() > 1000 && ratio >= kMostTimesTheRelay) {
        Die("a message through the " + name + " takes " + std::to_string(ratio) + " times as long as a bare relay");
    }
}

}  // namespace bench
