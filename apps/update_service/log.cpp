#include "log.h"

#include "base/text.h"

namespace update_service {

void LogToQxLogger(LOG_MESSAGE_LEVEL level, const std::string& line) {
    std::wstringstream stream;
    stream << L"[UpdateService]" << base::WideFromUtf8(line);
    QxLogger::GetInstance()->Log(level, stream);
}

}  // namespace update_service
