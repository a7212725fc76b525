#include "qx_data_report/qx_data_report.h"
#include "seam.h"

QxDataEvent::QxDataEvent(const std::string& eventId, ReportPlatform platform)
    : m_eventId(eventId), m_platform(platform) {}

QxDataEvent::~QxDataEvent() = default;

void QxDataEvent::PutString(const std::string& key, const std::string& value) { m_fields.emplace_back(key, value); }

const std::string& QxDataEvent::EventId() const { return m_eventId; }
ReportPlatform QxDataEvent::Platform() const { return m_platform; }
const std::vector<std::pair<std::string, std::string>>& QxDataEvent::Fields() const { return m_fields; }

struct QxDataReport::State {};

QxDataReport::QxDataReport() : m_state(nullptr) {}
QxDataReport::~QxDataReport() = default;

QxDataReport* QxDataReport::Instance() {
    static QxDataReport instance;
    return &instance;
}

void QxDataReport::Init(int application, const std::string& folder) {
    seam::Event event{};
    event.kind = seam::Kind::kReportInit;
    event.number = application;
    event.text = folder;
    seam::Get().events.push_back(std::move(event));
}

void QxDataReport::SetFile(const std::filesystem::path&) {}

int QxDataReport::SendMsg(const QxDataEvent& report) {
    seam::Event event{};
    event.kind = seam::Kind::kReport;
    event.number = report.Platform();
    event.text = report.EventId();
    event.fields = report.Fields();
    seam::Get().events.push_back(std::move(event));
    return 0;
}
