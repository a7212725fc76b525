#include "kernel/sleep.h"
#include "seam.h"

namespace kernel {

void Sleep(std::uint32_t milliseconds) {
    seam::Event event{};
    event.kind = seam::Kind::kSleep;
    event.number = static_cast<int>(milliseconds);
    seam::Get().events.push_back(std::move(event));
    if (seam::Get().onSleep) seam::Get().onSleep(milliseconds);
}

}  // namespace kernel
