#pragma once

#include <string>
#include <vector>

#include "ipc/records.h"

// What the update service tells the page, encoded as the service encodes it and handed over at the seam. Each takes the
// UI turn.
void DeliverList(const std::vector<AccessoryVersionDataInfo>& list);
void DeliverProgress(const std::string& key, int percent);
void DeliverFinish(const std::string& key);
void DeliverFail(const std::string& key);
