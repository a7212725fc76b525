#include "run_io.h"

#include <exception>
#include <string>

#include "log.h"

namespace ipc_client {

void RunIo(asio::io_context& io) noexcept {
    while (!io.stopped()) {
        try {
            io.run();
        } catch (const std::exception& error) {
            Log(kIpcLogEvent, std::string("I/O thread: ") + error.what());
        }
    }
}

}  // namespace ipc_client
