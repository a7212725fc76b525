#include "qx_data_report/qx_data_report.h"

#include <chrono>
#include <ctime>
#include <exception>
#include <mutex>
#include <nlohmann/json.hpp>

#include "append_line.h"
#include "kernel/code_pages.h"

namespace {

using Json = nlohmann::ordered_json;

std::string Utf8FromAnsi(const std::string& text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');  // no page has more characters than bytes
    const int length = kernel::MultiByteToWideChar(kernel::kCodePageAnsi, 0, text.data(), size, wide.data(), size);
    const auto convert = [&](char* to, int capacity) {
        return kernel::WideCharToMultiByte(kernel::kCodePageUtf8, 0, wide.data(), length, to, capacity, nullptr,
                                           nullptr);
    };
    std::string bytes(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    convert(bytes.data(), static_cast<int>(bytes.size()));
    return bytes;
}

// The present time as "2026-01-31T12:00:00.123Z".
std::string Now() {
    using namespace std::chrono;
    const auto now = time_point_cast<milliseconds>(system_clock::now());
    const std::time_t second = system_clock::to_time_t(floor<seconds>(now));
    std::tm parts{};
#if defined(_WIN32)
    gmtime_s(&parts, &second);
#else
    gmtime_r(&second, &parts);
#endif
    char text[32];
    const std::size_t size = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    const auto fraction = std::to_string((now.time_since_epoch() % 1s).count() + 1000);
    return std::string(text, size) + "." + fraction.substr(1) + "Z";
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

struct QxDataReport::State {
    std::mutex mutex;
    int application = 0;
    std::filesystem::path file;
};

QxDataReport::QxDataReport() : m_state(new State) {}
QxDataReport::~QxDataReport() { delete m_state; }

// Never destroyed: a click may still be reported while the process exits.
QxDataReport* QxDataReport::Instance() {
    static QxDataReport* const instance = new QxDataReport;
    return instance;
}

void QxDataReport::Init(int application, const std::string& folder) {
    const std::lock_guard guard(m_state->mutex);
    if (application != 0) m_state->application = application;
    if (!folder.empty()) {
        const std::string utf8 = Utf8FromAnsi(folder);
        m_state->file = std::filesystem::path(std::u8string(utf8.begin(), utf8.end())) / "events.jsonl";
    }
}

void QxDataReport::SetFile(const std::filesystem::path& file) {
    const std::lock_guard guard(m_state->mutex);
    m_state->file = file;
}

int QxDataReport::SendMsg(const QxDataEvent& event) {
    try {
        const std::lock_guard guard(m_state->mutex);
        if (m_state->file.empty()) return 0;
        Json line;
        line["time"] = Now();
        if (m_state->application != 0) line["application"] = m_state->application;
        line["event"] = Utf8FromAnsi(event.EventId());
        line["platform"] = static_cast<int>(event.Platform());
        line["fields"] = FieldsToJson(event);
        return AppendWhole(m_state->file, line.dump() + "\n") ? 0 : -1;
    } catch (const std::exception&) {
        return -1;
    }
}
