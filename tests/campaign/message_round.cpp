#include "message_round.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "base/file.h"
#include "random.h"
#include "test_process.h"
#include "wait_until.h"

namespace campaign {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using test_process::Process;
using test_support::WaitUntil;

namespace {

constexpr milliseconds kLongestWay{150};  // to the next blow, should too little be handled

class Round {
public:
    Round(std::uint64_t seed, const RoundOptions& options) : m_random(seed), m_options(options) {
        std::filesystem::create_directory(BrokerFolder());
        std::filesystem::permissions(BrokerFolder(), std::filesystem::perms::owner_all);
    }

    Tally Play() {
        m_messages = m_random.Between(30, 120);
        const bool serviceFirst = m_random.Chance(70);
        if (serviceFirst) StartService();
        for (int i = m_random.Between(1, 3); i > 0; --i) StartPage();
        if (!serviceFirst) StartService();
        if (!m_options.calm) StrikeBlows();
        const bool isComplete = WaitForEverything();
        Tally tally = m_ledger.Losses(Alive(), m_life);
        if (!isComplete && !Probe()) tally.Find(Wrong::kStuck, "what was posted last is not handled either");
        EndAll();
        tally.Add(m_ledger.Order());
        tally.Add(m_tally);
        return tally;
    }

private:
    struct Page {
        std::string name;
        std::unique_ptr<Process> process;
    };

    std::filesystem::path BrokerFolder() const { return m_options.folder / "broker"; }
    std::string File(const std::string& name) const { return base::Utf8FromPath(m_options.folder / name); }

    void StartService() {
        m_life = "life" + std::to_string(m_lives++);
        m_ledger.Watch(File(m_life), m_life);
        m_service = std::make_unique<Process>(
            base::ProgramFolder() / "campaign_service",
            std::vector<std::string>{m_life, File(m_life), File(m_life + ".log")},
            std::map<std::string, std::string>{{"BRINDLE_PIPE_DIR", base::Utf8FromPath(BrokerFolder())}});
        if (!m_service->Output().WaitFor("serving")) m_tally.Find(Wrong::kCrashed, m_life + " does not serve");
    }

    void StartPage() {
        const std::string name = "page" + std::to_string(m_pageCount++);
        const std::string here = File(name + ".pipe");
        std::filesystem::create_directory(here);
        std::filesystem::permissions(here, std::filesystem::perms::owner_all);
        m_ledger.Watch(File(name), name);
        std::vector<std::string> arguments = {name,
                                              std::to_string(m_random.Next()),
                                              std::to_string(m_messages),
                                              here,
                                              base::Utf8FromPath(BrokerFolder()),
                                              File(name),
                                              File(name + ".log")};
        if (m_options.calm) arguments.emplace_back("calm");
        m_pages.push_back({name, std::make_unique<Process>(base::ProgramFolder() / "campaign_page", arguments)});
    }

    std::set<std::string> Alive() const {
        std::set<std::string> names;
        for (const Page& page : m_pages) names.insert(page.name);
        return names;
    }

    // What happens to processes, each once some of the messages have been handled.
    void StrikeBlows() {
        for (int i = m_random.Between(0, 2); i > 0; --i) {
            const auto more = static_cast<std::size_t>(m_random.Between(0, m_messages));
            const std::size_t handled = m_ledger.RequestsHandled() + more;
            (void)WaitUntil([&] { return m_ledger.Read(), m_ledger.RequestsHandled() >= handled; }, kLongestWay);
            const int kind = m_random.Between(0, 9);
            if (kind < 6) {
                EndService(Fault::kServiceKilled);
            } else if (kind < 8) {
                EndService(Fault::kServiceStopped);
            } else {
                KillPage();
            }
        }
    }

    void EndService(Fault fault) {
        ++m_tally[fault];
        if (fault == Fault::kServiceKilled) {
            m_service->Kill();
        } else {
            m_service->CloseInput();
            Expect(*m_service, m_life);
        }
        StartService();
    }

    void KillPage() {
        ++m_tally[Fault::kPageKilled];
        m_pages.front().process->Kill();
        m_pages.pop_front();
        StartPage();
    }

    // False when nothing has come for too long.
    bool WaitForEverything() {
        auto last = steady_clock::now();
        bool isComplete = false;
        return WaitUntil(
                   [&] {
                       if (m_ledger.Read()) last = steady_clock::now();
                       isComplete = m_ledger.IsComplete(Alive(), m_life);
                       return isComplete || steady_clock::now() - last > m_options.patience;
                   },
                   std::chrono::minutes(2)) &&
               isComplete;
    }

    // Whether what is posted now is handled: then what is missing was lost on its way.
    bool Probe() {
        const std::size_t before = m_ledger.RequestsHandled();
        for (const Page& page : m_pages) page.process->Write("another\n");
        const auto hasCome = [&] { return m_ledger.Read(), m_ledger.RequestsHandled() >= before + m_pages.size(); };
        return WaitUntil(hasCome, m_options.patience);
    }

    void EndAll() {
        for (const Page& page : m_pages) page.process->CloseInput();
        for (const Page& page : m_pages) Expect(*page.process, page.name);
        m_service->CloseInput();
        Expect(*m_service, m_life);
        m_ledger.Read();
    }

    // It ends well, and a sanitizer has nothing to say.
    void Expect(Process& process, const std::string& name) {
        const std::optional<int> end = process.WaitForEnd();
        const std::string errors = process.Errors().Text();
        if (end == 0 && errors.empty()) return;
        m_tally.Find(Wrong::kCrashed, name + ": " + (end ? std::to_string(*end) : "does not end") + " " + errors);
    }

    Random m_random;
    const RoundOptions& m_options;
    int m_messages = 0;  // of each kind, of each page
    std::string m_life;  // of the service that runs
    int m_lives = 0;
    int m_pageCount = 0;
    std::unique_ptr<Process> m_service;
    std::deque<Page> m_pages;
    Ledger m_ledger;
    Tally m_tally;  // faults and findings of this side
};

}  // namespace

Tally PlayMessages(std::uint64_t seed, const RoundOptions& options) { return Round(seed, options).Play(); }

}  // namespace campaign
