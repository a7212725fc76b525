#include "installer.h"

#include <stdexcept>

#include "base/child_process.h"
#include "base/reason.h"

namespace update_service {

namespace {

using Kind = base::ChildStream::Kind;

base::ChildProcess Start(const InstallerCall& call) {
    return base::ChildProcess({.command = call.command,
                               .folder = call.folder,
                               .environment = call.environment,
                               .input = {Kind::kNothing},
                               .output = {Kind::kAsErrors},
                               .ownGroup = true});
}

}  // namespace

InstallerResult RunInstaller(const InstallerCall& call, const std::stop_token& stop, std::chrono::milliseconds grace) {
    try {
        base::ChildProcess installer = Start(call);
        auto end = installer.WaitForEnd(std::chrono::milliseconds::max(), stop);
        if (!end) end = installer.WaitForEnd(grace);
        if (!end) return {InstallerEnd::kAbandoned, ""};
        if (end->IsSuccess()) return {InstallerEnd::kSucceeded, ""};
        return {InstallerEnd::kFailed, Description(*end)};
    } catch (const std::runtime_error& error) {
        return {InstallerEnd::kFailed, base::Reason(error)};
    }
}

}  // namespace update_service
