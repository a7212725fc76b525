#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

#include "pacer.h"
#include "work_folder.h"

namespace update_service {

struct Transfer {
    std::filesystem::path source;
    WorkFiles files;                   // where the package is written
    std::string sha256;                // that the source must have
    std::uint64_t bytesPerSecond = 0;  // 0: no limit
    std::optional<int> failAt;         // [percent] for trials: the transfer fails when it gets there
    Clock clock = SteadyClock();       // what the rate is measured with
};

enum class TransferEnd { kComplete, kStopped, kFailed };

struct TransferResult {
    TransferEnd end;
    std::string reason;        // of a failure
    bool wasAskedFor = false;  // it failed because of failAt
};

// Copies the source into the part file, from where an earlier transfer stopped, checks it and gives it its final name.
// `progress` gets the percentage at once, then each further whole one, up to 99; 100 follows when the package has been
// checked. A package that is there already and has the right hash is complete at once, with 100.
//
// Stopped: the part file stays. Failed: it stays too, unless the package turned out to be damaged; a retry then begins
// anew. Never throws what a file causes.
TransferResult RunTransfer(const Transfer& transfer, const std::stop_token& stop,
                           const std::function<void(int)>& progress);

}  // namespace update_service
