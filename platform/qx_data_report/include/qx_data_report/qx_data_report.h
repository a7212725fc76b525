#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "qx_data_report/export.h"

// Where a usage event is meant to be reported. The accessory page always passes the value 0.
enum ReportPlatform : int { REPORT_PLATFORM_DEFAULT = 0 };

// One usage event: an id and text fields in the order in which they were put. A value owned by its creator.
class QX_DATA_REPORT_API QxDataEvent {
public:
    QxDataEvent(const std::string& eventId, ReportPlatform platform);
    ~QxDataEvent();

    // Adds one field, in the ANSI code page. Putting a key again adds a second field with that key.
    void PutString(const std::string& key, const std::string& value);

    const std::string& EventId() const;
    ReportPlatform Platform() const;
    const std::vector<std::pair<std::string, std::string>>& Fields() const;

private:
    std::string m_eventId;
    ReportPlatform m_platform;
    std::vector<std::pair<std::string, std::string>> m_fields;
};

// The process-wide reporter. Appends one JSON line an event to a file. Any thread.
class QX_DATA_REPORT_API QxDataReport {
public:
    static QxDataReport* Instance();

    // Prepares the reporter; may be called any number of times. The application's number, which lines then carry as
    // "application", and a folder in the ANSI code page, whose "events.jsonl" becomes the file. 0 and "" keep what is
    // set.
    void Init(int application, const std::string& folder);

    // Chooses the file that events are appended to. Empty (the start value): events are accepted and dropped.
    void SetFile(const std::filesystem::path& file);

    // Appends {"time": UTC, "event": id, "platform": number, "fields": {...}} as UTF-8; a key that was put more than
    // once has the list of its values. Returns 0, or -1 when the line could not be written.
    int SendMsg(const QxDataEvent& event);

    QxDataReport(const QxDataReport&) = delete;
    QxDataReport& operator=(const QxDataReport&) = delete;

private:
    QxDataReport();
    ~QxDataReport();
    struct State;
    [[maybe_unused]] State* m_state;  // owned; a stand-in library may do without
};
