#include "qx_data_report/qx_data_report.h"

QxDataEvent::QxDataEvent(const std::string& eventId, ReportPlatform platform)
    : m_eventId(eventId), m_platform(platform) {}

QxDataEvent::~QxDataEvent() = default;

void QxDataEvent::PutString(const std::string& key, const std::string& value) { m_fields.emplace_back(key, value); }

const std::string& QxDataEvent::EventId() const { return m_eventId; }
ReportPlatform QxDataEvent::Platform() const { return m_platform; }
const std::vector<std::pair<std::string, std::string>>& QxDataEvent::Fields() const { return m_fields; }
