#pragma once

#include "wire/frame.h"

namespace ipc_client {

// Where a message comes from that is on its way to somebody.
struct Origin {
    unsigned peer = 0;       // its number; 0: the broker itself
    bool isCharged = false;  // against what its sender may have on its way
    Stamp stamp;
};

}  // namespace ipc_client
