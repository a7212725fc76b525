#include "product_round.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <fstream>
#include <functional>
#include <optional>
#include <set>
#include <sstream>

#include "base/file.h"
#include "product_programs.h"
#include "random.h"
#include "relay.h"
#include "wait_until.h"

namespace campaign {

using std::chrono::steady_clock;
using test_support::WaitUntil;

namespace {

constexpr char kSocket[] = "iKorvelAssistant.sock";
constexpr std::chrono::minutes kLongest{3};  // of a tour

class Tour {
public:
    Tour(std::uint64_t seed, const RoundOptions& options)
        : m_random(seed),
          m_options(options),
          m_relay(MakePipeFolder(options.folder, kHostFolder) / kSocket,
                  MakePipeFolder(options.folder, kBrokerFolder) / kSocket,
                  options.calm ? std::nullopt : std::optional(m_random.Next()),
                  [this](Fault fault) { ++m_relayed[static_cast<std::size_t>(fault)]; }),
          m_service(options.folder) {}

    Tally Play() {
        WriteCatalogue();
        const bool serviceFirst = m_random.Chance(70);
        if (serviceFirst) m_service.Start();
        m_host.emplace(m_options.folder);
        if (!serviceFirst) m_service.Start();
        if (SeesItsRows()) {
            ActAtRandom();
            FollowToTheEnd();
        }
        Judge();
        m_host->End(m_tally);
        m_service.Stop(m_tally);
        JudgeMessages();
        for (std::size_t i = 0; i < kFaults; ++i) m_tally.faults[i] += m_relayed[i];
        KeepRecords();
        return m_tally;
    }

private:
    void WriteCatalogue() {
        for (int i = m_random.Between(3, 5); i > 0; --i) {
            m_keys.push_back("device" + std::to_string(i));
            m_service.AddAccessory(m_keys.back(), static_cast<std::size_t>(m_random.Between(10'000, 60'000)));
        }
        std::vector<std::string> options = {"--rate", std::to_string(m_random.Between(80'000, 300'000))};
        if (m_random.Chance(25)) {
            options.insert(options.end(), {"--fail", m_keys[0] + ":" + std::to_string(m_random.Between(1, 99))});
        }
        m_service.SetOptions(options);
        m_idle.insert(m_keys.begin(), m_keys.end());
    }

    // Waits until the page has all rows of its list and can be clicked on.
    bool SeesItsRows() {
        const bool isThere = WaitUntil(
            [&] {
                m_rows.clear();
                for (const std::string& key : m_keys) {
                    if (m_host->Holds("shown " + key + "hor") || m_host->Holds("hidden " + key + "hor"))
                        m_rows.push_back(key);
                }
                const auto isOffered = [&](const std::string& key) {
                    return m_host->Holds("shown " + key + "updateBtn");
                };
                return m_rows.size() == ListedRows() && std::all_of(m_idle.begin(), m_idle.end(), isOffered) &&
                       m_host->Holds("shown accessoriesView") && m_host->Holds("hidden " + m_rows.back() + "devInfo") &&
                       HeightsAreHeard();
            },
            std::max(m_options.patience, std::chrono::milliseconds(10'000)));
        if (!isThere) m_tally.Find(Wrong::kStuck, "the list does not come");
        return isThere;
    }

    // Beyond the height that the host knows nothing can be clicked on.
    bool HeightsAreHeard() const {
        const auto count = [this](const std::string& kind) {
            const std::vector<std::string> lines = Messages(kind);
            return std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
                return line.find("IPC_MSG_CONTENT_HEIGHT") != std::string::npos;
            });
        };
        return count("post ") == count("got  ");
    }

    // How many accessories the list of this host's page has, by the trace.
    std::size_t ListedRows() const {
        const std::string start = R"("\x01\x00\x00\x00\x0)";  // the marker, and the number of records
        for (const std::string& line : Messages("got  ")) {
            const std::size_t at = line.find(start);
            if (at == std::string::npos || line.find("IPC_MSG_ALL_UPDATE_DATA") == std::string::npos) continue;
            return static_cast<std::size_t>(line.at(at + start.size()) - '0');
        }
        return m_keys.size() + 1;  // it has not come
    }

    // What a person does, and what befalls the processes meanwhile, in any order.
    void ActAtRandom() {
        std::vector<std::function<void()>> acts;
        for (const std::string& key : m_keys) acts.emplace_back([this, key] { Begin(key); });
        for (int i = m_random.Between(0, 3); i > 0; --i) acts.emplace_back([this] { PauseOne(); });
        for (int i = m_options.calm ? 0 : m_random.Between(0, 2); i > 0; --i)
            acts.emplace_back([this] { EndService(); });
        if (!m_options.calm && m_random.Chance(25)) acts.emplace_back([this] { KillHost(); });
        for (std::size_t i = acts.size(); i > 1; --i) {
            std::swap(acts[i - 1], acts[static_cast<std::size_t>(m_random.Between(0, static_cast<int>(i) - 1))]);
        }
        for (const auto& act : acts) act();
        if (!m_serves) m_service.Start();
        m_serves = true;
    }

    void Begin(const std::string& key) {
        const bool isPressed = m_host->Play("click " + key + "updateBtn");
        const bool hasEnded = !isPressed && m_host->Holds("hidden " + key + "hor");  // meanwhile, as it ran before
        if (!isPressed && !hasEnded) m_tally.Find(Wrong::kStuck, "the button of " + key);
        m_idle.erase(key);
    }

    // The next host's page lists what is not installed yet; the person starts again what was started before.
    void KillHost() {
        if (!m_serves || m_idle.empty()) return;
        ++m_tally[Fault::kPageKilled];
        m_host->Kill();
        m_host.emplace(m_options.folder);
        if (!SeesItsRows()) return;
        for (const std::string& key : m_rows) {
            if (!m_idle.contains(key) && m_host->Holds("shown " + key + "updateBtn")) Begin(key);
        }
    }

    // Once it has come so far; it may have ended before, or not have begun.
    void PauseOne() {
        const std::string key =
            m_keys[static_cast<std::size_t>(m_random.Between(0, static_cast<int>(m_keys.size()) - 1))];
        const std::string percent = std::to_string(m_random.Between(0, 60));
        m_host->Play("wait percent " + key + "progress " + percent + " within 1");
        if (m_host->Holds("shown " + key + "stopBtn") && !IsPaused(key)) m_host->Play("click " + key + "stopBtn");
    }

    // It comes back at once, or when the person has done something more.
    void EndService() {
        if (m_serves) {
            const bool isKilled = m_random.Chance(70);
            ++m_tally[isKilled ? Fault::kServiceKilled : Fault::kServiceStopped];
            if (isKilled) {
                m_service.Kill();
            } else {
                m_service.Stop(m_tally);
            }
            m_mayRepeat = true;
        }
        m_serves = m_serves && m_random.Chance(50);
        if (m_serves) m_service.Start();
    }

    bool IsPaused(const std::string& key) { return m_host->Holds("text " + key + "progress \"Resume\""); }

    // Resumes what is paused and retries what has failed, until no row is left.
    void FollowToTheEnd() {
        std::size_t seen = 0;
        auto last = steady_clock::now();
        const bool ended = WaitUntil(
            [&] {
                if (m_host->Play("wait nothing-left within 0")) return true;
                for (const std::string& key : m_rows) {
                    if (m_host->Holds("hidden " + key + "hor")) continue;
                    if (IsPaused(key) || m_host->Holds("text " + key + "progress \"Try again\"")) {
                        m_host->Play("click " + key + "stopBtn");
                    }
                }
                const std::size_t lines = Messages("got  ").size() + m_service.Log().size();
                if (std::exchange(seen, lines) != lines) last = steady_clock::now();
                return steady_clock::now() - last > m_options.patience;
            },
            kLongest);
        if (!ended) m_tally.Find(Wrong::kStuck, "the tour does not end");
    }

    // Page, host and service agree on that everything has ended.
    void Judge() {
        const std::string patience = " within " + std::to_string(m_options.patience.count() / 1000 + 1);
        for (const std::string condition : {"nothing-left", "running 0", "height 0"}) {
            if (!m_host->Play("wait " + condition + patience)) {
                m_tally.Find(Wrong::kStuck, "the host does not hear: " + condition);
            }
        }
        for (const std::string& key : m_rows) {
            if (!m_host->Holds("hidden " + key + "hor")) m_tally.Find(Wrong::kStuck, "the row of " + key);
        }
        const std::vector<std::string> installed = m_service.Installed();
        const nlohmann::json state = m_service.State();
        for (const std::string& key : m_keys) {
            const auto times = std::count(installed.begin(), installed.end(), key);
            if (times == 0) m_tally.Find(Wrong::kLost, "the installation of " + key);
            if (times > 1 && !m_mayRepeat) m_tally.Find(Wrong::kTwice, "the installation of " + key);
            const std::string phase = state.contains(key) ? state[key].value("phase", "") : "idle";
            if (phase != "installed") m_tally.Find(Wrong::kStuck, "the service has " + key + " as " + phase);
        }
    }

    // What the page has told its host has come, in order and once.
    void JudgeMessages() {
        const auto posted = Messages("post ");
        const auto heard = Messages("got  ");
        for (const char* const host : {"0xB20018", "0x1B0000", "0x20000"}) {
            const auto to = [&](const std::vector<std::string>& all) {
                std::vector<std::string> some;
                for (const std::string& line : all) {
                    if (line.find(std::string("-> ") + host + " ") != std::string::npos) some.push_back(line);
                }
                return some;
            };
            Compare(to(posted), to(heard), host);
        }
        m_tally.messages += static_cast<int>(heard.size());
    }

    void Compare(const std::vector<std::string>& posted, const std::vector<std::string>& heard,
                 const std::string& host) {
        if (posted == heard) return;
        const auto missing = static_cast<int>(posted.size()) - static_cast<int>(heard.size());
        const std::string text = "what the page told its host at " + host + ": " + std::to_string(posted.size()) +
                                 " messages, heard " + std::to_string(heard.size());
        if (missing > 0) {
            m_tally.Find(Wrong::kLost, text, missing);
        } else {
            m_tally.Find(missing < 0 ? Wrong::kTwice : Wrong::kDisorder, text, std::max(1, -missing));
        }
    }

    // The trace's lines of one kind, from their source on.
    std::vector<std::string> Messages(const std::string& kind) const {
        std::vector<std::string> lines;
        std::istringstream transcript(m_host->Transcript());
        for (std::string line; std::getline(transcript, line);) {
            if (line.starts_with(kind)) lines.push_back(line.substr(kind.size()));
        }
        return lines;
    }

    void KeepRecords() {
        std::ofstream(m_options.folder / "transcript") << m_host->Transcript();
        std::ofstream(m_options.folder / "host.log") << m_host->Log();
        std::ofstream(m_options.folder / "service.log") << m_service.Log();
    }

    Random m_random;
    const RoundOptions& m_options;
    std::array<std::atomic<int>, kFaults> m_relayed{};
    Relay m_relay;
    Service m_service;
    std::optional<Host> m_host;
    std::vector<std::string> m_keys;  // of the devices
    std::set<std::string> m_idle;     // those that nobody has started
    std::vector<std::string> m_rows;  // those that the host's page lists
    bool m_serves = true;
    bool m_mayRepeat = false;  // an installer that was interrupted is called again
    Tally m_tally;
};

}  // namespace

Tally PlayProduct(std::uint64_t seed, const RoundOptions& options) { return Tour(seed, options).Play(); }

}  // namespace campaign
