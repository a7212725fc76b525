// Decoding an accessory list, against a hand-written bounds-checked decoder into the same records, in one run.
// Ends with exit code 1 when 1,000 records of three 40-unit lines take more than 1.25 times as long as by hand, or a
// record of 100,000 more than twice one of 10.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>

#include "channel/payload.h"
#include "ipc/ipc_data_io.h"

namespace {

constexpr double kMostTimesByHand = 1.25;
constexpr double kMostGrowthARecord = 2.0;
constexpr int kRecordsCompared = 1000;

using List = std::vector<AccessoryVersionDataInfo>;

// What a careful programmer writes for this one format: a position, an end, and no interface between. It joins
// surrogate pairs as the module's decoder does.
class HandDecoder {
public:
    HandDecoder(const char* data, std::size_t size) : m_at(data), m_end(data + size) {}

    bool Read(List& list) {
        if (Number() != 1) return false;
        list.resize(Number());
        for (AccessoryVersionDataInfo& record : list) ReadOne(record);
        return m_valid;
    }

private:
    void ReadOne(AccessoryVersionDataInfo& record) {
        const std::uint32_t keyLength = Number();
        if (Has(keyLength)) record.deviceKey.assign(m_at, keyLength);
        m_at += m_valid ? keyLength : 0;
        Wide(record.modelId);
        Wide(record.imagePath);
        Wide(record.version);
        record.descLines.resize(Number());
        for (std::wstring& line : record.descLines) Wide(line);
        if (Has(9)) {
            std::memcpy(&record.reserved, m_at, 8);
            record.isDriver = m_at[8] != 0;
            m_at += 9;
        }
    }

    void Wide(std::wstring& text) {
        const std::uint32_t units = Number();
        if (!Has(std::size_t{units} * 2)) return;
        text.resize(units);
        std::size_t length = 0;
        for (std::uint32_t i = 0; i < units; ++i) {
            std::uint32_t c = Unit(i);
            if (c >= 0xD800 && c <= 0xDBFF && i + 1 < units && Unit(i + 1) >= 0xDC00 && Unit(i + 1) <= 0xDFFF) {
                c = 0x10000 + ((c - 0xD800) << 10) + (Unit(++i) - 0xDC00);
            }
            text[length++] = static_cast<wchar_t>(c);
        }
        text.resize(length);
        m_at += std::size_t{units} * 2;
    }

    std::uint32_t Unit(std::uint32_t i) const {
        std::uint16_t unit;
        std::memcpy(&unit, m_at + std::size_t{i} * 2, 2);
        return unit;
    }

    std::uint32_t Number() {
        std::uint32_t number = 0;
        if (!Has(4)) return 0;
        std::memcpy(&number, m_at, 4);
        m_at += 4;
        return number;
    }

    bool Has(std::size_t bytes) {
        m_valid = m_valid && static_cast<std::size_t>(m_end - m_at) >= bytes;
        return m_valid;
    }

    const char* m_at;
    const char* m_end;
    bool m_valid = true;
};

std::string Payload(std::size_t records) {
    List list(records);
    for (std::size_t i = 0; i < records; ++i) {
        list[i].deviceKey = "device-" + std::to_string(i);
        list[i].modelId = L"IDS_NAME_PEN";
        list[i].imagePath = L"drawable/Brindle/pen.svg";
        list[i].version = L"1.0.2";
        list[i].descLines.assign(3, std::wstring(40, L'x'));
    }
    return std::string(channel::Encode(list)->View());
}

double Seconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

double TimeModule(std::string& payload) {
    const auto begin = std::chrono::steady_clock::now();
    TagIPCMessageItem item;
    item.data = payload.data();
    item.dataLen = static_cast<std::int32_t>(payload.size());
    IPCDataIO reader(&item, 64, true, false);
    List list;
    ReadRecord(reader, list);
    benchmark::DoNotOptimize(list.data());
    return Seconds(begin);
}

double TimeByHand(const std::string& payload) {
    const auto begin = std::chrono::steady_clock::now();
    List list;
    HandDecoder(payload.data(), payload.size()).Read(list);
    benchmark::DoNotOptimize(list.data());
    return Seconds(begin);
}

double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + std::ssize(values) / 2, values.end());
    return values[values.size() / 2];
}

double timesByHand = 0;
std::map<int, double> secondsARecord;

// Both take turns, so that whatever else the machine does disturbs both alike.
void ModuleAgainstHandWritten(benchmark::State& state) {
    std::string payload = Payload(kRecordsCompared);
    std::vector<double> module;
    std::vector<double> hand;
    for (auto _ : state) {
        module.push_back(TimeModule(payload));
        hand.push_back(TimeByHand(payload));
        state.SetIterationTime(module.back());
    }
    timesByHand = Median(module) / Median(hand);
    state.counters["ratio"] = timesByHand;
}
BENCHMARK(ModuleAgainstHandWritten)->UseManualTime()->Iterations(300)->Unit(benchmark::kMicrosecond);

void DecodeList(benchmark::State& state) {
    const auto records = static_cast<int>(state.range(0));
    std::string payload = Payload(static_cast<std::size_t>(records));
    double best = 1e9;
    for (auto _ : state) {
        const double seconds = TimeModule(payload);
        best = std::min(best, seconds);
        state.SetIterationTime(seconds);
    }
    secondsARecord[records] = best / records;
    state.counters["ns_a_record"] = best / records * 1e9;
    state.SetComplexityN(records);
}
BENCHMARK(DecodeList)
    ->RangeMultiplier(10)
    ->Range(10, 100000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Complexity(benchmark::oN);

bool WithinBounds() {
    bool good = true;
    if (timesByHand != 0) {
        std::printf("1000 records: %.2f times as long as by hand\n", timesByHand);
        good = timesByHand <= kMostTimesByHand;
    }
    if (secondsARecord.contains(10) && secondsARecord.contains(100000)) {
        const double growth = secondsARecord[100000] / secondsARecord[10];
        std::printf("a record of 100000 takes %.2f times as long as one of 10\n", growth);
        good = good && growth <= kMostGrowthARecord;
    }
    return good;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    if (WithinBounds()) return 0;
    std::fprintf(stderr, "decode_bench: out of bounds\n");
    return 1;
}
