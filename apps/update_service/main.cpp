// The update service: owns the broker of the assistant pipe, lists what the catalogue has, fetches and installs it.

#include <exception>
#include <filesystem>
#include <iostream>
#include <stdexcept>

#include "base/arguments.h"
#include "base/path.h"
#include "base/reason.h"
#include "base/stop_signal.h"
#include "base/text.h"
#include "catalogue.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_log.h"
#include "ipc_page_link.h"
#include "log.h"
#include "options.h"
#include "update_service.h"

namespace update_service {
namespace {

void OpenLog(const std::filesystem::path& file) {
    if (!file.empty()) QxLogger::GetInstance()->Open({.file = file});
    SetIpcLogSink(
        [](int level, const std::string& line) { LogToQxLogger(static_cast<LOG_MESSAGE_LEVEL>(level), line); });
}

void MakeFolder(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw std::runtime_error(base::Utf8FromPath(folder) + ": the folder cannot be made: " + base::Reason(error));
}

void Serve(const Catalogue& catalogue, const CommandLine& commandLine) {
    IPCBroker broker(IPC_PIPE_ASSISTANT);
    broker.Start();
    IPCMessageClient client(IPC_ENDPOINT_UPDATE_SERVICE, true, false, IPC_PIPE_ASSISTANT);
    IpcPageLink page(client, LogToQxLogger);
    ServiceOptions options;
    options.workFolder = commandLine.workFolder;
    options.bytesPerSecond = commandLine.bytesPerSecond;
    options.failAt = commandLine.failAt;
    UpdateService service(catalogue, options, page, LogToQxLogger);
    service.GoOn();
    ReceiveRequests(client, service);
    LogToQxLogger(LOG_LEVEL_EVENT, "ready " + base::Utf8FromWide(IPC_PIPE_ASSISTANT));

    LogToQxLogger(LOG_LEVEL_EVENT, std::string("stops: ") + base::WaitForStopSignal());
    client.UnRegisterMessageCallbackAll();
    service.Stop();
}

int Main(int argc, const char* const* argv) {
    base::HoldStopSignals();
    const base::Arguments arguments(argc, argv);
    int exitCode = 0;
    const auto commandLine = ReadCommandLine(arguments.Count(), arguments.Values(), exitCode);
    if (!commandLine) return exitCode;
    if (commandLine->endWithInput) base::StopWithInput();
    try {
        const Catalogue catalogue = ReadCatalogue(commandLine->catalogue);
        CheckFailKeys(*commandLine, catalogue);
        MakeFolder(commandLine->workFolder);
        OpenLog(commandLine->logFile);
        Serve(catalogue, *commandLine);
    } catch (const std::exception& error) {
        std::cerr << "update_service: " << base::Reason(error) << "\n";
        exitCode = 1;
    }
    SetIpcLogSink({});
    QxLogger::GetInstance()->Flush();
    return exitCode;
}

}  // namespace
}  // namespace update_service

int main(int argc, char** argv) { return update_service::Main(argc, argv); }
