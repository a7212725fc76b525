#include <new>

#include "qx_logger/qx_logger.h"
#include "seam.h"

struct QxLogger::State {};

QxLogger::QxLogger() : m_state(nullptr) {}
QxLogger::~QxLogger() = default;

QxLogger* QxLogger::GetInstance() {
    static QxLogger instance;
    return &instance;
}

void QxLogger::Log(LOG_MESSAGE_LEVEL level, std::wstringstream& line) {
    if (seam::Get().loggerFails) throw std::bad_alloc();
    seam::Event event{};
    event.kind = seam::Kind::kLog;
    event.number = level;
    event.line = line.str();
    seam::Get().events.push_back(std::move(event));
}

void QxLogger::Open(const Options&) {}
void QxLogger::Flush() {}
