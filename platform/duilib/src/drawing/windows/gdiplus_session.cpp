#include "drawing/windows/gdiplus_session.h"

#include <stdexcept>
#include <string>

namespace DuiLib {

namespace {

Gdiplus::Status Started() {
    ULONG_PTR token = 0;
    const Gdiplus::GdiplusStartupInput input;
    return Gdiplus::GdiplusStartup(&token, &input, nullptr);
}

}  // namespace

// Never shut down: that may not happen while libraries are unloaded, which is when a library's statics go.
void StartGdiplus() {
    static const Gdiplus::Status status = Started();
    if (status != Gdiplus::Ok) {
        throw std::runtime_error("GDI+ cannot be started: status " + std::to_string(static_cast<int>(status)));
    }
}

}  // namespace DuiLib
