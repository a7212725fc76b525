#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

#include "base/file.h"
#include "base/mutex.h"
#include "client/connection.h"
#include "ipc_client/ipc_diagnostics.h"
#include "pipe/pipe_path.h"

// The connections of this process, and who is told of their changes.
namespace ipc_client {
namespace {

// The last connection to a pipe.
struct Known {
    std::weak_ptr<Connection> connection;
    std::shared_ptr<EndSign> end;
};

struct Registry {
    base::Mutex mutex;
    std::unordered_map<std::string, Known> connections BASE_GUARDED_BY(mutex);  // by path
};

// Never destroyed: clients may live until the process ends.
Registry& TheRegistry() {
    static Registry& registry = *new Registry;
    return registry;
}

struct ChangeSink {
    base::Mutex mutex;
    std::function<void()> changed BASE_GUARDED_BY(mutex);
};

ChangeSink& TheSink() {
    static ChangeSink& sink = *new ChangeSink;
    return sink;
}

}  // namespace

void Connection::TellOfChange() {
    ChangeSink& sink = TheSink();
    const base::MutexLock lock(sink.mutex);
    if (sink.changed) sink.changed();
}

void SetChangeSink(std::function<void()> changed) {
    ChangeSink& sink = TheSink();
    const base::MutexLock lock(sink.mutex);
    sink.changed = std::move(changed);
}

std::shared_ptr<Connection> Connection::ForPipe(const std::wstring& pipeName) {
    const std::filesystem::path path = PipePath(pipeName);
    Registry& registry = TheRegistry();
    const base::MutexLock lock(registry.mutex);
    Known& known = registry.connections[base::Utf8FromPath(path)];
    std::shared_ptr<Connection> connection = known.connection.lock();
    if (!connection) {
        // Not make_shared: the weak reference would keep the memory of an ended connection.
        connection = std::shared_ptr<Connection>(new Connection(path, {}, known.end));  // NOLINT(modernize-make-shared)
        known = {connection, connection->End()};
    }
    return connection;
}

std::shared_ptr<Connection> Connection::Existing(const std::wstring& pipeName) {
    const std::string path = base::Utf8FromPath(PipePath(pipeName));
    Registry& registry = TheRegistry();
    const base::MutexLock lock(registry.mutex);
    const auto known = registry.connections.find(path);
    return known == registry.connections.end() ? nullptr : known->second.connection.lock();
}

}  // namespace ipc_client

bool IsPipeConnected(const std::wstring& pipeName) {
    const auto connection = ipc_client::Connection::Existing(pipeName);
    return connection && connection->IsOpen();
}

void SetPipeConnectionSink(std::function<void()> changed) { ipc_client::SetChangeSink(std::move(changed)); }
