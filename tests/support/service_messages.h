#pragma once

#include <string>

#include "channel/messages.h"
#include "kernel/ui_turn.h"
#include "seam.h"

// What the update service tells the page, encoded as the service encodes it and handed over at the seam. Each takes the
// UI turn.

// False when nobody has registered for it.
template <class Payload>
bool Deliver(const channel::ToPage<Payload>& message, const std::type_identity_t<Payload>& payload) {
    const kernel::UiTurn turn;
    return seam::Get().Deliver(message.id, std::string(channel::Encode(payload)->View()));
}

inline void DeliverList(const channel::AccessoryList& list) {
    Deliver(channel::to_page::IPC_MSG_ALL_UPDATE_DATA, list);
}
inline void DeliverProgress(const std::string& key, int percent) {
    Deliver(channel::to_page::IPC_MSG_DOWNLOAD_PROCESS, {key, percent});
}
inline void DeliverFinish(const std::string& key) { Deliver(channel::to_page::IPC_MSG_PKG_FINISH, {key}); }
inline void DeliverFail(const std::string& key) { Deliver(channel::to_page::IPC_MSG_PKG_FAIL, {key}); }
