#include "host_output.h"

#include <gmock/gmock.h>

#include <new>
#include <string>
#include <vector>

#include "qx_logger/qx_logger.h"

// A logger that takes the library's place, and fails when a test wants it to.
static bool loggerFails = false;
static std::vector<std::wstring> logged;

QxLogger::QxLogger() : m_state(nullptr) {}
QxLogger::~QxLogger() = default;
void QxLogger::Open(const Options&) {}
QxLogger* QxLogger::GetInstance() {
    static QxLogger instance;
    return &instance;
}
void QxLogger::Log(LOG_MESSAGE_LEVEL level, std::wstringstream& line) {
    if (loggerFails) throw std::bad_alloc();
    logged.push_back(std::to_wstring(level) + L" " + line.str());
}

namespace settings_host {
namespace {

TEST(Log, ALineThatCannotBeWrittenIsDropped) {
    loggerFails = true;
    EXPECT_NO_THROW(WriteLog(LOG_LEVEL_EVENT, "lost"));
    loggerFails = false;
    WriteLog(LOG_LEVEL_EVENT, "\xE7\xAC\x94");
    EXPECT_THAT(logged, testing::ElementsAre(L"4 \u7B14"));
}

}  // namespace
}  // namespace settings_host
