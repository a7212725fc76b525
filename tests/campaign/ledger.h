#pragma once

#include <array>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "fault_plan.h"

namespace campaign {

// What may be wrong with a round.
enum class Wrong { kLost, kTwice, kDisorder, kDamaged, kStuck, kCrashed };
inline constexpr std::array kWrongNames = {"lost", "twice", "disorder", "damaged", "stuck", "crashed"};
inline constexpr std::size_t kWrongs = kWrongNames.size();

// Faults and findings of one round, or of many.
struct Tally {
    std::array<int, kFaults> faults{};
    std::array<int, kWrongs> wrongs{};
    std::vector<std::string> findings;  // one line each
    int messages = 0;                   // handled

    int& operator[](Fault fault) { return faults[static_cast<std::size_t>(fault)]; }
    int& operator[](Wrong wrong) { return wrongs[static_cast<std::size_t>(wrong)]; }
    void Find(Wrong wrong, const std::string& what, int count = 1);
    bool IsWell() const;
    void Add(const Tally& other);
};

// Numbered messages of one sender, as one life of a receiver has handled them.
struct Heard {
    std::vector<int> numbers;  // in the order in which they were handled

    void Check(const std::string& what, Tally& tally) const;  // none twice, none too early
    int BehindLast() const;                                   // the largest number and one
};

// What the processes of a round have written down so far.
class Ledger {
public:
    // Files that do not exist yet are read once they do. `life` names the receiver's life.
    void Watch(const std::filesystem::path& file, const std::string& reader);

    // Reads what has come; whether anything has.
    bool Read();

    std::size_t RequestsHandled() const { return m_requestsHandled; }
    bool HasPosted(const std::string& page) const {
        return m_requestsPosted.contains(page) && m_notesPosted.contains(page);
    }

    // Whether everything that these pages have posted has been handled, and they know what the last life of the service
    // has said since it first heard them.
    bool IsComplete(const std::set<std::string>& pages, const std::string& lastLife) const;

    // What has not come so far. Of pages that are not named, which have been killed, the last messages may be missing.
    Tally Losses(const std::set<std::string>& pages, const std::string& lastLife) const;

    // What came that should not have come, or not so; the faults.
    Tally Order() const;

private:
    struct File {
        std::filesystem::path path;
        std::string reader;
        std::uint64_t read = 0;  // [bytes]
    };
    using Readers = std::map<std::string, Heard>;  // by their lives

    using BySender = std::map<std::string, Readers>;

    void TakeLine(const std::string& line, const std::string& reader);
    static std::set<int> Missing(const Readers& readers, int count);
    std::set<int> MissingNews(const std::string& page, const std::string& life) const;
    std::set<int> MissingAnswers(const std::string& page, const std::string& life) const;

    static void JudgeOrder(const std::string& kind, const BySender& all, Tally& tally);
    static void JudgeLosses(const std::string& kind, const BySender& all, const std::map<std::string, int>& posted,
                            const std::set<std::string>& pages, Tally& tally);
    void JudgeNews(const std::set<std::string>& pages, const std::string& lastLife, Tally& tally) const;

    std::vector<File> m_files;
    BySender m_requests;  // by the page that sent them
    BySender m_notes;
    BySender m_news;                                           // by the life of the service that told them
    std::map<std::string, std::map<int, std::string>> m_told;  // by that life: the page that each was about
    BySender m_answers;                                        // by that life and the page that they are for
    std::map<std::string, int> m_answered;                     // by both
    std::map<std::string, int> m_requestsPosted;               // by page
    std::map<std::string, int> m_notesPosted;
    std::size_t m_requestsHandled = 0;
    Tally m_tally;  // faults, and what was damaged
};

}  // namespace campaign
