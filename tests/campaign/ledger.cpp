#include "ledger.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace campaign {

void Tally::Find(Wrong wrong, const std::string& what, int count) {
    (*this)[wrong] += count;
    findings.push_back(std::string(kWrongNames[static_cast<std::size_t>(wrong)]) + ": " + what);
}

bool Tally::IsWell() const {
    return std::all_of(wrongs.begin(), wrongs.end(), [](int count) { return count == 0; });
}

void Tally::Add(const Tally& other) {
    for (std::size_t i = 0; i < kFaults; ++i) faults[i] += other.faults[i];
    for (std::size_t i = 0; i < kWrongs; ++i) wrongs[i] += other.wrongs[i];
    findings.insert(findings.end(), other.findings.begin(), other.findings.end());
    messages += other.messages;
}

void Heard::Check(const std::string& what, Tally& tally) const {
    std::set<int> known;
    int last = -1;
    for (const int number : numbers) {
        const std::string text = what + " " + std::to_string(number) + " after " + std::to_string(last);
        if (!known.insert(number).second) {
            tally.Find(Wrong::kTwice, text);
        } else if (number < last) {
            tally.Find(Wrong::kDisorder, text);
        }
        last = number;
    }
}

int Heard::BehindLast() const { return numbers.empty() ? 0 : *std::max_element(numbers.begin(), numbers.end()) + 1; }

void Ledger::Watch(const std::filesystem::path& file, const std::string& reader) { m_files.push_back({file, reader}); }

// A line that has no end yet is read with its end.
bool Ledger::Read() {
    bool anything = false;
    for (File& file : m_files) {
        std::ifstream stream(file.path, std::ios::binary);
        stream.seekg(static_cast<std::streamoff>(file.read));
        for (std::string line; std::getline(stream, line) && !stream.eof();) {
            file.read += line.size() + 1;
            TakeLine(line, file.reader);
            anything = true;
        }
    }
    return anything;
}

namespace {

std::string AnswersFor(const std::string& life, const std::string& page) { return life + " for " + page; }

}  // namespace

void Ledger::TakeLine(const std::string& line, const std::string& reader) {
    std::istringstream words(line);
    std::string kind, sender, about;
    int number = 0;
    words >> kind >> sender >> number >> about;
    if (kind == "fault") {
        const std::optional<Fault> fault = FaultOf(line.substr(line.find(' ') + 1));
        if (fault) ++m_tally[*fault];
    } else if (kind == "requests") {
        m_requestsPosted[sender] = number;
    } else if (kind == "notes") {
        m_notesPosted[sender] = number;
    } else if (kind == "told") {
        m_told[sender][number] = about;
    } else if (kind == "request") {
        m_requests[sender][reader].numbers.push_back(number);
        ++m_requestsHandled;
    } else if (kind == "note") {
        m_notes[sender][reader].numbers.push_back(number);
    } else if (kind == "answered") {
        m_answered[AnswersFor(sender, about)] = number + 1;
    } else if (kind == "answer") {
        if (about != reader) m_tally.Find(Wrong::kDisorder, reader + " got an answer that is for " + about);
        m_answers[AnswersFor(sender, about)][reader].numbers.push_back(number);
    } else if (kind == "news") {
        m_news[sender][reader].numbers.push_back(number);
    } else {
        m_tally.Find(Wrong::kDamaged, reader + ": " + line);
    }
}

std::set<int> Ledger::Missing(const Readers& readers, int count) {
    std::set<int> missing;
    for (int i = 0; i < count; ++i) missing.insert(i);
    for (const auto& [life, heard] : readers) {
        for (const int number : heard.numbers) missing.erase(number);
    }
    return missing;
}

// A page that the service has heard has announced before that what it wants to hear.
std::set<int> Ledger::MissingNews(const std::string& page, const std::string& life) const {
    std::set<int> missing;
    const auto told = m_told.find(life);
    if (told == m_told.end()) return missing;
    for (const auto& [number, about] : told->second) {
        if (about == page || !missing.empty()) missing.insert(number);
    }
    const auto news = m_news.find(life);
    if (news == m_news.end()) return missing;
    const auto heard = news->second.find(page);
    if (heard == news->second.end()) return missing;
    for (const int number : heard->second.numbers) missing.erase(number);
    return missing;
}

namespace {

template <class Map>
typename Map::mapped_type At(const Map& map, const std::string& key) {
    const auto found = map.find(key);
    return found == map.end() ? typename Map::mapped_type() : found->second;
}

std::string Listed(const std::set<int>& numbers) {
    std::string text;
    for (const int number : numbers) {
        if (text.size() > 60) return text + " ...";
        text += " " + std::to_string(number);
    }
    return text;
}

}  // namespace

std::set<int> Ledger::MissingAnswers(const std::string& page, const std::string& life) const {
    const std::string answers = AnswersFor(life, page);
    return Missing(At(m_answers, answers), At(m_answered, answers));
}

bool Ledger::IsComplete(const std::set<std::string>& pages, const std::string& lastLife) const {
    return std::all_of(pages.begin(), pages.end(), [&](const std::string& page) {
        return HasPosted(page) && Missing(At(m_requests, page), At(m_requestsPosted, page)).empty() &&
               Missing(At(m_notes, page), At(m_notesPosted, page)).empty() && MissingNews(page, lastLife).empty() &&
               MissingAnswers(page, lastLife).empty();
    });
}

namespace {

void Lose(Tally& tally, const std::string& what, const std::set<int>& missing) {
    if (!missing.empty()) tally.Find(Wrong::kLost, what + ":" + Listed(missing), static_cast<int>(missing.size()));
}

}  // namespace

void Ledger::JudgeOrder(const std::string& kind, const BySender& all, Tally& tally) {
    for (const auto& [sender, readers] : all) {
        for (const auto& [reader, heard] : readers) {
            tally.messages += static_cast<int>(heard.numbers.size());
            heard.Check(kind + " of " + sender + ", heard by " + reader + ":", tally);
        }
    }
}

void Ledger::JudgeLosses(const std::string& kind, const BySender& all, const std::map<std::string, int>& posted,
                         const std::set<std::string>& pages, Tally& tally) {
    for (const std::string& page : pages) Lose(tally, kind + " of " + page, Missing(At(all, page), At(posted, page)));
    for (const auto& [page, readers] : all) {
        if (pages.contains(page)) continue;
        int behindLast = 0;
        for (const auto& [reader, heard] : readers) behindLast = std::max(behindLast, heard.BehindLast());
        Lose(tally, kind + " of " + page + ", which was killed", Missing(readers, behindLast));
    }
}

// Of a life that was killed, what it said last need not have come.
void Ledger::JudgeNews(const std::set<std::string>& pages, const std::string& lastLife, Tally& tally) const {
    for (const auto& [life, readers] : m_news) {
        if (life == lastLife) continue;
        for (const auto& [page, heard] : readers) {
            std::set<int> missing;
            const int first = *std::min_element(heard.numbers.begin(), heard.numbers.end());
            for (int i = first; i < heard.BehindLast(); ++i) missing.insert(i);
            for (const int number : heard.numbers) missing.erase(number);
            Lose(tally, "news of " + life + " to " + page, missing);
        }
    }
    for (const std::string& page : pages)
        Lose(tally, "news of " + lastLife + " to " + page, MissingNews(page, lastLife));
}

Tally Ledger::Losses(const std::set<std::string>& pages, const std::string& lastLife) const {
    Tally tally;
    JudgeLosses("requests", m_requests, m_requestsPosted, pages, tally);
    JudgeLosses("notes", m_notes, m_notesPosted, pages, tally);
    JudgeNews(pages, lastLife, tally);
    for (const auto& [answers, readers] : m_answers) {  // of lives that ended and pages that were killed, too
        for (const auto& [page, heard] : readers)
            Lose(tally, "answers of " + answers, Missing(readers, heard.BehindLast()));
    }
    for (const std::string& page : pages) {
        Lose(tally, "answers of " + AnswersFor(lastLife, page), MissingAnswers(page, lastLife));
    }
    return tally;
}

Tally Ledger::Order() const {
    Tally tally = m_tally;
    JudgeOrder("requests", m_requests, tally);
    JudgeOrder("notes", m_notes, tally);
    JudgeOrder("news", m_news, tally);
    JudgeOrder("answers", m_answers, tally);
    return tally;
}

}  // namespace campaign
