// Building a page without the page's own pauses, and discarding it: time and memory a row, from 200 to 2,000 rows.
// Ends with exit code 1 when a row takes more than 15 KB, when building a row of 2,000 takes more than 1.5 times as
// long as one of 200, or discarding it more than 5 times (ten times would be quadratic; most of it is the caches'
// doing).
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>

#include "bench_page.h"

namespace {

constexpr double kMostBytesARow = 15 * 1024;
constexpr double kMostGrowthARow = 1.5;
constexpr double kMostGrowthOfDiscarding = 5.0;

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point since) { return std::chrono::duration<double>(Clock::now() - since).count(); }

std::map<int, double> secondsARow;
std::map<int, double> discardingARow;
double mostBytesARow = 0;

void BuildPage(benchmark::State& state) {
    const auto rows = static_cast<int>(state.range(0));
    double best = 1e9;
    double bestDiscarding = 1e9;
    double bytesARow = 0;
    for (auto _ : state) {
        auto list = BenchList(static_cast<std::size_t>(rows));
        BenchPage page;
        const auto memory = mallinfo2().uordblks;
        const auto begin = Clock::now();
        page.Build(list);
        const double seconds = Seconds(begin);
        bytesARow = std::max(bytesARow, static_cast<double>(mallinfo2().uordblks - memory) / rows);
        best = std::min(best, seconds);
        state.SetIterationTime(seconds);
        const auto discarding = Clock::now();
        page.Discard();
        bestDiscarding = std::min(bestDiscarding, Seconds(discarding));
    }
    discardingARow[rows] = bestDiscarding / rows;
    secondsARow[rows] = best / rows;
    mostBytesARow = std::max(mostBytesARow, bytesARow);
    state.counters["us_a_row"] = best / rows * 1e6;
    state.counters["bytes_a_row"] = bytesARow;
    state.SetComplexityN(rows);
}
BENCHMARK(BuildPage)
    ->Arg(200)
    ->Arg(500)
    ->Arg(1000)
    ->Arg(2000)
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

bool WithinBounds() {
    if (!secondsARow.contains(200) || !secondsARow.contains(2000)) return true;
    const double growth = secondsARow[2000] / secondsARow[200];
    std::printf("a row: %.1f us of 200, %.1f us of 2000 (%.2f times), %.0f bytes\n", secondsARow[200] * 1e6,
                secondsARow[2000] * 1e6, growth, mostBytesARow);
    const double discarding = discardingARow[2000] / discardingARow[200];
    std::printf("discarding a row: %.1f us of 200, %.1f us of 2000 (%.2f times)\n", discardingARow[200] * 1e6,
                discardingARow[2000] * 1e6, discarding);
    return growth <= kMostGrowthARow && discarding <= kMostGrowthOfDiscarding && mostBytesARow <= kMostBytesARow;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    SetUpBenchPlatform();
    benchmark::RunSpecifiedBenchmarks();
    if (WithinBounds()) return 0;
    std::fprintf(stderr, "page_bench: out of bounds\n");
    return 1;
}
