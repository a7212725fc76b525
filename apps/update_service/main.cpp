// The update service: owns the broker of the assistant pipe, lists what the catalogue has, fetches and installs it.

#include <exception>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "base/file.h"
#include "base/process.h"
#include "base/reason.h"
#include "base/text.h"
#include "catalogue.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_diagnostics.h"
#include "ipc_page_link.h"
#include "options.h"
#include "update_service.h"

namespace update_service {
namespace {

void WriteToLogger(LOG_MESSAGE_LEVEL level, const std::string& line) {
    std::wstringstream stream;
    stream << L"[UpdateService]" << base::WideFromUtf8(line);
    QxLogger::GetInstance()->Log(level, stream);
}

void OpenLog(const std::filesystem::path& file, const Log& log) {
    if (!file.empty()) QxLogger::GetInstance()->Open({.file = file});
    SetIpcLogSink([log](int level, const std::string& line) { log(static_cast<LOG_MESSAGE_LEVEL>(level), line); });
}

void MakeFolder(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw std::runtime_error(base::Utf8FromPath(folder) + ": the folder cannot be made: " + base::Reason(error));
}

void Serve(const Catalogue& catalogue, const CommandLine& commandLine, const Log& log) {
    IPCBroker broker(IPC_PIPE_ASSISTANT);
    broker.Start();
    IPCMessageClient client(IPC_ENDPOINT_UPDATE_SERVICE, true, false, IPC_PIPE_ASSISTANT);
    IpcPageLink page(client, log);
    ServiceOptions options;
    options.workFolder = commandLine.workFolder;
    options.bytesPerSecond = commandLine.bytesPerSecond;
    options.failAt = commandLine.failAt;
    UpdateService service(catalogue, options, page, log);
    service.Resume();
    ReceiveRequests(client, service);
    log(LOG_LEVEL_EVENT, "ready " + base::Utf8FromWide(IPC_PIPE_ASSISTANT));

    log(LOG_LEVEL_EVENT, std::string("stops: ") + base::WaitForStopSignal());
    service.Stop();
    broker.Stop();  // before the callbacks go: what they have not been called for by then is the next service's
    client.UnRegisterMessageCallbackAll();
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
        const Log log(WriteToLogger);
        OpenLog(commandLine->logFile, log);
        Serve(catalogue, *commandLine, log);
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
