#include "log.h"

#include <sstream>

#include "base/text.h"

namespace settings_host {

void LogLibraryLine(int level, const std::string& text) {
    std::wstringstream line;
    line << base::WideFromUtf8(text);
    QxLogger::GetInstance()->Log(static_cast<LOG_MESSAGE_LEVEL>(level), line);
}

}  // namespace settings_host
