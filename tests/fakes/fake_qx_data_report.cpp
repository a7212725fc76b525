#include "qx_data_report/qx_data_report.h"
#include "seam.h"

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
