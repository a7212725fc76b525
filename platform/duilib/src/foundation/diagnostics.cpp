#include "duilib/diagnostics.h"

#include <cstdio>
#include <utility>

#include "foundation/report.h"

namespace DuiLib {

namespace {

DiagnosticSink& Sink() {
    static DiagnosticSink sink;
    return sink;
}

}  // namespace

void SetDiagnosticSink(DiagnosticSink sink) { Sink() = std::move(sink); }

void Report(const std::string& line) {
    if (const DiagnosticSink sink = Sink()) {
        sink(line);
    } else {
        std::fprintf(stderr, "%s\n", line.c_str());
    }
}

}  // namespace DuiLib
