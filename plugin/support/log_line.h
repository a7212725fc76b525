#pragma once

#include <source_location>
#include <sstream>
#include <string>

#include "qx_logger/qx_logger.h"
#include "support/function_name.h"

// Levels in use.
inline constexpr LOG_MESSAGE_LEVEL kLogDetail = LOG_LEVEL_DETAIL;  // 3: entry traces, values
inline constexpr LOG_MESSAGE_LEVEL kLogEvent = LOG_LEVEL_EVENT;    // 4: notable events and all failures

// Clang 16 takes a lambda's first statement for one of the function around it when the constructor must run at compile
// time; when it may, it names the lambda.
#if defined(__clang__)
#define LOG_POINT_CONSTANT constexpr
#else
#define LOG_POINT_CONSTANT consteval
#endif

// A level and the function that logs, taken where the level is named.
struct LogPoint {
    LOG_POINT_CONSTANT LogPoint(LOG_MESSAGE_LEVEL lineLevel,
                                std::source_location where = std::source_location::current())
        : function(where.function_name()), level(lineLevel) {}

    FunctionName function;  // first, and a multiple of 4 long: Clang 16 forgets the padding of constants like this one
    LOG_MESSAGE_LEVEL level;
};

// One line of the log: "[AccessoryLog]", what is put into it, and the function's qualified name in parentheses. It is
// handed to the logger at the end of the statement:
//
//     LogLine(kLogDetail) << "firmwareNum:" << m_firmwareNum;
//
// Narrow text is widened byte by byte, so only ASCII is meant to be in it.
class LogLine {
public:
    explicit LogLine(LogPoint point) : m_point(point) {
        m_line << "["
               << "AccessoryLog"
               << "]";
    }

    ~LogLine() {
        try {
            m_line << L"(" << m_point.function.CStr() << L")";
            QxLogger::GetInstance()->Log(m_point.level, m_line);
        } catch (...) {
            // The line is lost. Thrown on from here, it would end the host.
        }
    }

    LogLine(const LogLine&) = delete;
    LogLine& operator=(const LogLine&) = delete;

    template <class T>
    LogLine& operator<<(const T& piece) {
        m_line << piece;
        return *this;
    }

    LogLine& operator<<(const std::string& piece) { return *this << piece.c_str(); }

private:
    LogPoint m_point;
    std::wstringstream m_line;
};
