#include "trace_json.h"

#include <cctype>

#include "base/text.h"
#include "scenario.h"

namespace {

using nlohmann::json;

// The compiler's own text between < and > in a function's name, as in "OnClick::<lambda_1>::operator ()".
std::string WithPlainLambda(const std::string& line) {
    const std::size_t end = line.rfind(">::operator ()");
    const std::size_t start = end == std::string::npos ? end : line.rfind("::<", end);
    if (start == std::string::npos) return line;
    return line.substr(0, start) + "::<lambda" + line.substr(end);
}

std::string HeaderFault(const TagIPCMessageItem& item) {
    if (item.sourceId != 0x270000) return "sourceId";
    if (!item.text.empty()) return "text";
    if (item.headerWord1 != 0 || item.headerWord2 != -1 || item.headerWord3 != 0) return "header words";
    if (item.flag != 0) return "flag";
    if (item.headerWord4 != 0) return "header word 4";
    return {};
}

json PostEntry(const seam::Event& event) {
    json data = nullptr;
    if (event.item.data != nullptr) data = ToHex(event.payload);
    json entry = {"post", event.item.destId, event.item.msgId, data};
    const std::string fault = HeaderFault(event.item);
    if (!fault.empty()) entry.push_back("wrong " + fault);
    return entry;
}

json ReportEntry(const seam::Event& event) {
    json fields = json::array();
    for (const auto& [key, value] : event.fields) fields.push_back({key, value});
    return json::array({"report", event.text, fields});
}

bool MatchesPattern(const std::string& pattern, const std::string& text) {
    std::size_t p = 0;
    std::size_t t = 0;
    while (p < pattern.size()) {
        if (pattern[p] == '*' && t < text.size() && std::isdigit(static_cast<unsigned char>(text[t]))) {
            while (t < text.size() && std::isdigit(static_cast<unsigned char>(text[t]))) ++t;
        } else if (t < text.size() && pattern[p] == text[t]) {
            ++t;
        } else {
            return false;
        }
        ++p;
    }
    return t == text.size();
}

}  // namespace

json TraceEntry(const seam::Event& event) {
    switch (event.kind) {
        case seam::Kind::kLog:
            return {"log", event.number, WithPlainLambda(base::Utf8FromWide(event.line))};
        case seam::Kind::kPost:
            return PostEntry(event);
        case seam::Kind::kClientCreated:
            return json::array({"client+"});
        case seam::Kind::kClientDestroyed:
            return json::array({"client-"});
        case seam::Kind::kRegister:
            return {"register", event.number};
        case seam::Kind::kUnregister:
            return {"unregister", event.number};
        case seam::Kind::kUnregisterAll:
            return json::array({"unregisterAll"});
        case seam::Kind::kSleep:
            return {"sleep", event.number};
        case seam::Kind::kReportInit:
            return {"reportInit", event.number, event.text};
        case seam::Kind::kReport:
            return ReportEntry(event);
    }
    return {};
}

bool EntryMatches(const json& expected, const json& seen) {
    const bool bothLogs = expected.size() == 3 && seen.size() == 3 && expected[0] == "log" && seen[0] == "log";
    if (!bothLogs) return expected == seen;
    return expected[1] == seen[1] && MatchesPattern(expected[2], seen[2]);
}
