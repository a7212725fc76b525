#pragma once

#include <cstddef>
#include <filesystem>
#include <sstream>

#include "qx_logger/export.h"

// Severities as numbers. The accessory page uses 3 for entry traces and detail, 4 for notable events and failures.
enum LOG_MESSAGE_LEVEL : int {
    LOG_LEVEL_TRACE = 1,
    LOG_LEVEL_DEBUG = 2,
    LOG_LEVEL_DETAIL = 3,
    LOG_LEVEL_EVENT = 4,
};

// The process-wide logger. Every operation may be called on any thread; lines are written whole, one after another.
// Until Open has been called, lines go only to the console (standard error). Where that is not read, lines wait for it
// without their writers, up to a mebibyte; then lines are left out, and their number stands in their place.
class QX_LOGGER_API QxLogger {
public:
    static QxLogger* GetInstance();

    // Writes the stream's text as one UTF-8 line, with the time and the level beside it; line breaks and other control
    // characters in it become escapes. The stream is left as it is. Never fails visibly: a line that cannot be written
    // is dropped.
    void Log(LOG_MESSAGE_LEVEL level, std::wstringstream& line);

    struct Options {
        std::filesystem::path file;                  // empty: no file
        std::size_t maxFileBytes = 4 * 1024 * 1024;  // when the file reaches this size, it is rotated
        std::size_t maxFiles = 3;                    // rotated files that are kept
        bool console = true;                         // also write to standard error
    };

    // Chooses where lines go from now on. Throws std::runtime_error, naming the file and the reason, when the file
    // cannot be opened; the old sinks then stay.
    void Open(const Options& options);

    // Writes out what is buffered; gives whoever reads standard error half a second for that.
    void Flush();

    QxLogger(const QxLogger&) = delete;
    QxLogger& operator=(const QxLogger&) = delete;

private:
    QxLogger();
    ~QxLogger();
    struct State;
    [[maybe_unused]] State* m_state;  // owned; a stand-in library may do without
};
