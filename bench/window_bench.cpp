// A window's frames: the time from the wish to paint to the painted picture, in a window of 880 x 600 design pixels on
// a page of 200 rows, at 100 and 200 percent; while another thread builds the list, and while it is scrolled from end
// to end. Ends with exit code 1 when frames take more than 16 ms on average or one takes more than 50 ms.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

#include "bench_page.h"
#include "kernel/ui_turn.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr double kMostOnAverage = 16;  // [ms]
constexpr double kMostOfOne = 50;      // [ms]
constexpr std::size_t kRows = 200;
constexpr DuiLib::CDuiSize kWindow{880, 600};  // [design px]

bool withinBounds = true;

class Frames {
public:
    explicit Frames(DuiLib::CPaintManagerUI& manager) : m_manager(manager) {}

    void Paint() {
        const auto begin = Clock::now();
        if (m_manager.Paint(m_picture).empty()) return;
        const double time = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
        ++m_count;
        m_sum += time;
        m_longest = std::max(m_longest, time);
    }

    void Report(benchmark::State& state) const {
        const double average = m_count ? m_sum / m_count : 0;
        state.counters["frames"] = m_count;
        state.counters["average_ms"] = average;
        state.counters["longest_ms"] = m_longest;
        withinBounds = withinBounds && m_count > 0 && average <= kMostOnAverage && m_longest <= kMostOfOne;
    }

private:
    DuiLib::CPaintManagerUI& m_manager;
    DuiLib::PaintSurface m_picture;
    int m_count = 0;
    double m_sum = 0;      // [ms]
    double m_longest = 0;  // [ms]
};

DuiLib::CDuiSize UseScale(benchmark::State& state) {
    const kernel::UiTurn turn;
    auto* const resources = DuiLib::CResourceManager::GetInstance();
    resources->SetScale(static_cast<unsigned>(state.range(0)));
    return resources->Scale(kWindow);
}

void WhileTheListIsBuilt(benchmark::State& state) {
    for (auto _ : state) {
        BenchPage page(UseScale(state));
        auto list = BenchList(kRows);
        Frames frames(page.Manager());
        frames.Paint();
        std::atomic<bool> built = false;
        std::thread delivery([&] {
            page.Build(list);
            built = true;
        });
        while (!built) frames.Paint();
        delivery.join();
        frames.Report(state);
        page.Discard();
    }
}
BENCHMARK(WhileTheListIsBuilt)->Arg(100)->Arg(200)->Unit(benchmark::kMillisecond)->Iterations(1);

void WhileThePageScrolls(benchmark::State& state) {
    for (auto _ : state) {
        BenchPage page(UseScale(state));
        auto list = BenchList(kRows);
        page.Build(list);
        Frames frames(page.Manager());
        frames.Paint();
        Clock::time_point now{std::chrono::hours(1)};
        for (const DuiLib::DuiKey key : {DuiLib::DuiKey::kEnd, DuiLib::DuiKey::kHome}) {
            page.Manager().KeyDown(key);
            while (page.Manager().Tick(now += milliseconds(16))) frames.Paint();
        }
        frames.Report(state);
        page.Discard();
    }
}
BENCHMARK(WhileThePageScrolls)->Arg(100)->Arg(200)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    SetUpBenchPlatform();
    benchmark::RunSpecifiedBenchmarks();
    if (withinBounds) return 0;
    std::fprintf(stderr, "window_bench: out of bounds\n");
    return 1;
}
