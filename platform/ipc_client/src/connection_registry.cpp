#include <unordered_map>

#include "connection.h"
#include "ipc_client/ipc_connection_state.h"
#include "pipe_path.h"

namespace ipc_client {
namespace {

struct Registry {
    std::mutex mutex;
    std::unordered_map<std::string, std::weak_ptr<Connection>> connections;  // by path
};

// Never destroyed: clients may live until the process ends.
Registry& TheRegistry() {
    static Registry& registry = *new Registry;
    return registry;
}

struct ChangeSink {
    std::mutex mutex;
    std::function<void()> changed;
};

ChangeSink& TheSink() {
    static ChangeSink& sink = *new ChangeSink;
    return sink;
}

}  // namespace

void Connection::TellOfChange() {
    ChangeSink& sink = TheSink();
    const std::lock_guard lock(sink.mutex);
    if (sink.changed) sink.changed();
}

void SetChangeSink(std::function<void()> changed) {
    ChangeSink& sink = TheSink();
    const std::lock_guard lock(sink.mutex);
    sink.changed = std::move(changed);
}

std::shared_ptr<Connection> Connection::ForPipe(const std::wstring& pipeName) {
    const std::filesystem::path path = PipePath(pipeName);
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    std::weak_ptr<Connection>& known = registry.connections[path.string()];
    std::shared_ptr<Connection> connection = known.lock();
    if (!connection) {
        // Not make_shared: the weak reference would keep the memory of an ended connection.
        connection = std::shared_ptr<Connection>(new Connection(path));
        known = connection;
    }
    return connection;
}

std::shared_ptr<Connection> Connection::Existing(const std::wstring& pipeName) {
    const std::string path = PipePath(pipeName).string();
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    const auto known = registry.connections.find(path);
    return known == registry.connections.end() ? nullptr : known->second.lock();
}

}  // namespace ipc_client

bool IsPipeConnected(const std::wstring& pipeName) {
    const auto connection = ipc_client::Connection::Existing(pipeName);
    return connection && connection->IsOpen();
}

void SetPipeConnectionSink(std::function<void()> changed) { ipc_client::SetChangeSink(std::move(changed)); }
