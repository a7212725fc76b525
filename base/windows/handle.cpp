#include "base/handle.h"

#include <windows.h>

namespace base {

bool OwnedHandle::CloseValue(std::intptr_t value) noexcept {
    return CloseHandle(reinterpret_cast<HANDLE>(value)) != FALSE;
}

}  // namespace base
