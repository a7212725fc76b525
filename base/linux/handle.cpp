#include "base/handle.h"

#include <unistd.h>

namespace base {

bool OwnedHandle::CloseValue(std::intptr_t value) noexcept { return close(static_cast<int>(value)) == 0; }

}  // namespace base
