// Plays rounds of faults against the message pipe, and tells what became of them (docs/testing.md).
//
//     pipe_campaign [--rounds COUNT] [--first SEED] [--of messages|product] [--patience MS] [--calm] [--keep]
//
// Exit code 0 when every round went well. A round that did not is named with what does it again; --keep leaves its
// folder, with what each process has written down and its log.

#include <cstring>
#include <iomanip>
#include <iostream>
#include <stdexcept>

#include "base/file.h"
#include "base/reason.h"
#include "message_round.h"
#include "product_round.h"

namespace campaign {
namespace {

struct Options {
    std::uint64_t first = 1;
    int rounds = 500;
    std::string of = "messages";
    int patience = 5000;  // [ms]
    bool calm = false;
    bool keep = false;
};

Options Read(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        if (name == "--keep") {
            options.keep = true;
            continue;
        }
        if (name == "--calm") {
            options.calm = true;
            continue;
        }
        if (++i == argc) throw std::runtime_error(name + ": needs a value");
        if (name == "--first") {
            options.first = std::stoull(argv[i]);
        } else if (name == "--rounds") {
            options.rounds = std::stoi(argv[i]);
        } else if (name == "--patience") {
            options.patience = std::stoi(argv[i]);
        } else if (name == "--of") {
            options.of = argv[i];
            if (options.of != "messages" && options.of != "product")
                throw std::runtime_error("--of messages or product");
        } else {
            throw std::runtime_error(name + ": is no option");
        }
    }
    return options;
}

Tally Play(std::uint64_t seed, const Options& options) {
    const std::filesystem::path folder = std::filesystem::canonical(base::MakeTemporaryFolder("campaign"));
    const RoundOptions roundOptions{folder, std::chrono::milliseconds(options.patience), options.calm};
    Tally tally = options.of == "product" ? PlayProduct(seed, roundOptions) : PlayMessages(seed, roundOptions);
    if (!tally.IsWell()) {
        std::cout << "seed " << seed << " went wrong; again: pipe_campaign --of " << options.of
                  << " --rounds 1 --first " << seed << " --keep\n";
        std::cout << "    faults:";
        for (std::size_t i = 0; i < kFaults; ++i) {
            if (tally.faults[i] != 0) std::cout << " " << kFaultNames[i] << " " << tally.faults[i] << ",";
        }
        std::cout << "\n";
        for (const std::string& finding : tally.findings) std::cout << "    " << finding << "\n";
        if (options.keep) std::cout << "    the records are in " << base::Utf8FromPath(folder) << "\n";
        std::cout << std::flush;
    }
    if (tally.IsWell() || !options.keep) std::filesystem::remove_all(folder);
    return tally;
}

// Columns: how often, and in how many rounds.
class Table {
public:
    void Add(const Tally& tally) {
        ++m_rounds;
        if (tally.IsWell()) ++m_well;
        for (std::size_t i = 0; i < kFaults; ++i) m_faultRounds[i] += tally.faults[i] != 0;
        for (std::size_t i = 0; i < kWrongs; ++i) m_wrongRounds[i] += tally.wrongs[i] != 0;
        m_sum.Add(tally);
    }

    void Print() const {
        Line("", "times", "rounds");
        for (std::size_t i = 0; i < kFaults; ++i) Line(kFaultNames[i], m_sum.faults[i], m_faultRounds[i]);
        Line("handled", m_sum.messages, m_rounds);
        for (std::size_t i = 0; i < kWrongs; ++i) Line(kWrongNames[i], m_sum.wrongs[i], m_wrongRounds[i]);
        Line("well", "", m_well);
    }

    bool IsWell() const { return m_well == m_rounds; }

private:
    template <class Times, class Rounds>
    static void Line(const char* what, const Times& times, const Rounds& rounds) {
        std::cout << std::left << std::setw(18) << what << std::right << std::setw(9) << times << std::setw(9) << rounds
                  << "\n";
    }

    Tally m_sum;
    int m_rounds = 0;
    int m_well = 0;
    std::array<int, kFaults> m_faultRounds{};
    std::array<int, kWrongs> m_wrongRounds{};
};

int Main(int argc, char** argv) {
    try {
        const Options options = Read(argc, argv);
        Table table;
        for (int i = 0; i < options.rounds; ++i)
            table.Add(Play(options.first + static_cast<std::uint64_t>(i), options));
        table.Print();
        return table.IsWell() ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << "pipe_campaign: " << base::Reason(error) << "\n";
        return 2;
    }
}

}  // namespace
}  // namespace campaign

int main(int argc, char** argv) { return campaign::Main(argc, argv); }
