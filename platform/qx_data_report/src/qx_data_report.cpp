#include "qx_data_report/qx_data_report.h"

#include <chrono>
#include <cstdio>
#include <exception>
#include <nlohmann/json.hpp>

#include "base/file.h"
#include "base/mutex.h"
#include "base/text.h"
#include "kernel/code_pages.h"

namespace {

using Json = nlohmann::ordered_json;

std::string Utf8FromAnsi(const std::string& text) { return base::Utf8FromWide(kernel::WideFromAnsi(text)); }

// The present time as "2026-01-31T12:00:00.123Z".
std::string Now() {
    using namespace std::chrono;
    const auto now = floor<milliseconds>(system_clock::now());
    const auto midnight = floor<days>(now);
    const year_month_day date(midnight);
    const hh_mm_ss time(now - midnight);
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
    return text;
}

// A key that was put more than once has the list of its values.
Json FieldsToJson(const QxDataEvent& event) {
    Json fields = Json::object();
    for (const auto& [key, value] : event.Fields()) {
        Json& field = fields[Utf8FromAnsi(key)];
        Json text = Utf8FromAnsi(value);
        if (field.is_null()) {
            field = std::move(text);
            continue;
        }
        if (!field.is_array()) field = Json::array({field});
        field.push_back(std::move(text));
    }
    return fields;
}

}  // namespace

QxDataEvent::QxDataEvent(const std::string& eventId, ReportPlatform platform)
    : m_eventId(eventId), m_platform(platform) {}

QxDataEvent::~QxDataEvent() = default;

void QxDataEvent::PutString(const std::string& key, const std::string& value) { m_fields.emplace_back(key, value); }

const std::string& QxDataEvent::EventId() const { return m_eventId; }
ReportPlatform QxDataEvent::Platform() const { return m_platform; }
const std::vector<std::pair<std::string, std::string>>& QxDataEvent::Fields() const { return m_fields; }

struct QxDataReport::State {
    base::Mutex mutex;
    int application BASE_GUARDED_BY(mutex) = 0;
    std::filesystem::path file BASE_GUARDED_BY(mutex);
};

QxDataReport::QxDataReport() : m_state(new State) {}
QxDataReport::~QxDataReport() { delete m_state; }

// Never destroyed: a click may still be reported while the process exits.
QxDataReport* QxDataReport::Instance() {
    static QxDataReport* const instance = new QxDataReport;
    return instance;
}

void QxDataReport::Init(int application, const std::string& folder) {
    const base::MutexLock lock(m_state->mutex);
    if (application != 0) m_state->application = application;
    if (!folder.empty()) m_state->file = base::PathFromUtf8(Utf8FromAnsi(folder)) / "events.jsonl";
}

void QxDataReport::SetFile(const std::filesystem::path& file) {
    const base::MutexLock lock(m_state->mutex);
    m_state->file = file;
}

int QxDataReport::SendMsg(const QxDataEvent& event) {
    try {
        const base::MutexLock lock(m_state->mutex);
        if (m_state->file.empty()) return 0;
        Json line;
        line["time"] = Now();
        if (m_state->application != 0) line["application"] = m_state->application;
        line["event"] = Utf8FromAnsi(event.EventId());
        line["platform"] = static_cast<int>(event.Platform());
        line["fields"] = FieldsToJson(event);
        base::AppendText(m_state->file, line.dump() + "\n");
        return 0;
    } catch (const std::exception&) {
        return -1;
    }
}
