#include "pipe/pipe_transport.h"
// Asio's headers come before the system's.
#include <asio/post.hpp>
#include <asio/windows/overlapped_ptr.hpp>
#include <deque>
#include <limits>
#include <list>
#include <memory>
#include <system_error>
#include <utility>
// The security header needs the system's, which Asio's bring.
#include <sddl.h>

#include "base/handle.h"
#include "base/reason.h"
#include "pipe/pipe_path.h"

namespace ipc_client {
namespace {

namespace fs = std::filesystem;

constexpr DWORD kBufferBytes = 64 * 1024;  // each way
constexpr std::size_t kLongestName = 256;  // [UTF-16 units], with the prefix

[[noreturn]] void FailWithLastError(const char* what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

struct LocalDeleter {
    void operator()(void* memory) const { LocalFree(memory); }
};

// The user of the process, as the text of a security identifier ("S-1-5-21-..."). Throws std::system_error.
std::wstring UserOf(HANDLE process) {
    HANDLE opened = nullptr;
    if (!OpenProcessToken(process, TOKEN_QUERY, &opened)) FailWithLastError("OpenProcessToken");
    const base::OwnedHandle token(opened);
    alignas(TOKEN_USER) char user[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
    DWORD size = 0;
    if (!GetTokenInformation(token.Handle(), TokenUser, user, sizeof user, &size))
        FailWithLastError("GetTokenInformation");
    wchar_t* text = nullptr;
    if (!ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(user)->User.Sid, &text)) {
        FailWithLastError("ConvertSidToStringSid");
    }
    const std::unique_ptr<wchar_t, LocalDeleter> owned(text);
    return text;
}

// Security attributes with which only the user of this process may open an object; not handed on to other processes.
class OnlyOwnUser {
public:
    // Throws std::system_error. A protected list with one entry: everything is allowed to this user, nothing to anybody
    // else.
    OnlyOwnUser() {
        const std::wstring rule = L"D:P(A;;GA;;;" + UserOf(GetCurrentProcess()) + L")";
        m_attributes.nLength = sizeof m_attributes;
        if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(rule.c_str(), SDDL_REVISION_1,
                                                                  &m_attributes.lpSecurityDescriptor, nullptr)) {
            FailWithLastError("ConvertStringSecurityDescriptorToSecurityDescriptor");
        }
    }
    ~OnlyOwnUser() { LocalFree(m_attributes.lpSecurityDescriptor); }
    OnlyOwnUser(const OnlyOwnUser&) = delete;
    OnlyOwnUser& operator=(const OnlyOwnUser&) = delete;

    SECURITY_ATTRIBUTES* Get() { return &m_attributes; }

private:
    SECURITY_ATTRIBUTES m_attributes{};
};

// The user that the pipe's server process belongs to is asked of the system, not of the server. Throws
// std::system_error.
std::wstring ServerUser(HANDLE pipe) {
    ULONG id = 0;
    base::OwnedHandle process;
    if (GetNamedPipeServerProcessId(pipe, &id))
        process = base::OwnedHandle(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id));
    if (!process) throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "its process");
    return UserOf(process.Handle());
}

void CheckServer(HANDLE pipe, const fs::path& path) {
    bool isOfThisUser = false;
    try {
        isOfThisUser = ServerUser(pipe) == UserOf(GetCurrentProcess());
    } catch (const std::system_error& error) {
        FailAt(path, "the broker's user cannot be told: " + base::Reason(error.code()));
    }
    CheckBrokersUser(path, isOfThisUser);
}

// The server's end of one connection to come; null, with the error set, when there is none to be had.
base::OwnedHandle NewInstance(const fs::path& path, bool isFirst) {
    constexpr DWORD kMode = PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS;
    const DWORD open = PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | (isFirst ? FILE_FLAG_FIRST_PIPE_INSTANCE : 0);
    OnlyOwnUser security;
    const HANDLE instance = CreateNamedPipeW(path.c_str(), open, kMode, PIPE_UNLIMITED_INSTANCES, kBufferBytes,
                                             kBufferBytes, 0, security.Get());
    return base::OwnedHandle(instance);
}

// That the instance is the name's first is for the system to find out, as nobody can come in between there. The look
// before it is for Wine, where it does not.
base::OwnedHandle FirstInstance(const fs::path& path) {
    CheckLength(path, "a pipe's name", kLongestName, "characters");
    if (WaitNamedPipeW(path.c_str(), 1) || GetLastError() == ERROR_SEM_TIMEOUT)
        FailAsTaken(path, base::Reason(ERROR_PIPE_BUSY));
    base::OwnedHandle instance = NewInstance(path, true);
    if (instance) return instance;
    const DWORD error = GetLastError();
    if (error == ERROR_ACCESS_DENIED || error == ERROR_PIPE_BUSY)
        FailAsTaken(path, base::Reason(static_cast<int>(error)));
    FailAt(path, base::Reason(static_cast<int>(error)));
}

std::error_code LastError() { return {static_cast<int>(GetLastError()), asio::error::get_system_category()}; }

}  // namespace

// Security level "identification": a server may learn who the client is, and do nothing in its name.
PipeSocket ConnectPipe(asio::io_context& io, const fs::path& path) {
    CheckLength(path, "a pipe's name", kLongestName, "characters");
    constexpr DWORD kFlags = FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
    base::OwnedHandle pipe(
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, kFlags, nullptr));
    if (!pipe) FailAt(path, base::LastReason());
    CheckServer(pipe.Handle(), path);
    PipeSocket socket(io);
    socket.assign(pipe.Handle());
    pipe.ReleaseHandle();
    return socket;
}

constexpr DWORD kHelloPatience = 5000;  // [ms] with a side that has no room for it and does not read

// The low bit of the event keeps the write's end away from Asio, which did not begin it.
bool WriteHello(PipeSocket& socket, std::string_view bytes) {
    const base::OwnedHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!event) return false;
    OVERLAPPED operation{};
    operation.hEvent = reinterpret_cast<HANDLE>(reinterpret_cast<ULONG_PTR>(event.Handle()) | 1);
    const HANDLE pipe = socket.native_handle();
    DWORD written = 0;
    if (!WriteFile(pipe, bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &operation) &&
        GetLastError() != ERROR_IO_PENDING) {
        return false;
    }
    if (WaitForSingleObject(event.Handle(), kHelloPatience) != WAIT_OBJECT_0) CancelIoEx(pipe, &operation);
    return GetOverlappedResult(pipe, &operation, &written, TRUE) && written == bytes.size();
}

// A pipe does not tell how much it would take, and a write that waits cannot be taken back in part: the I/O thread
// writes everything.
std::size_t WriteNow(PipeSocket&, std::string_view) { return 0; }

bool IsEndOfPipe(std::error_code error) {
    return error == asio::error::eof || (error.category() == asio::error::get_system_category() &&
                                         (error.value() == ERROR_BROKEN_PIPE || error.value() == ERROR_NO_DATA ||
                                          error.value() == ERROR_PIPE_NOT_CONNECTED));
}

unsigned long PeerProcess(PipeSocket& socket) {
    DWORD flags = 0;
    ULONG id = 0;
    const HANDLE pipe = socket.native_handle();
    GetNamedPipeInfo(pipe, &flags, nullptr, nullptr, nullptr);
    if ((flags & PIPE_SERVER_END) != 0) {
        GetNamedPipeClientProcessId(pipe, &id);
    } else {
        GetNamedPipeServerProcessId(pipe, &id);
    }
    return id;
}

unsigned long OwnProcess() { return GetCurrentProcessId(); }

bool ProcessExists(unsigned long process) {
    const base::OwnedHandle handle(OpenProcess(SYNCHRONIZE, FALSE, process));
    return handle && WaitForSingleObject(handle.Handle(), 0) == WAIT_TIMEOUT;
}

unsigned long OwnUser() {
    const std::wstring user = UserOf(GetCurrentProcess());
    return std::stoul(user.substr(user.rfind(L'-') + 1));
}

std::size_t MostOpenFiles() { return std::numeric_limits<std::size_t>::max(); }

// Some instances listen at any time, so that peers who come at once all find one. I/O thread; lives until the last of
// its operations has ended.
struct PipeListener::State : std::enable_shared_from_this<PipeListener::State> {
    State(asio::io_context& context, const fs::path& where) : io(context), path(where), first(FirstInstance(where)) {}

    // Brings the number of listening instances up. Whoever connected is told of an error only when none listens.
    void Listen() {
        while (!closed && listening.size() < kListening) {
            base::OwnedHandle instance = first ? std::move(first) : NewInstance(path, false);
            if (!instance) return ready.empty() && listening.empty() ? Ready(LastError(), PipeSocket(io)) : void();
            const auto entry = listening.emplace(listening.end(), io);
            entry->assign(instance.Handle());
            instance.ReleaseHandle();
            Wait(entry);
        }
    }

    using Instances = std::list<PipeSocket>;

    void Wait(Instances::iterator instance) {
        asio::windows::overlapped_ptr operation(io, [self = shared_from_this(), instance](std::error_code error, auto) {
            self->Connected(instance, error);
        });
        if (ConnectNamedPipe(instance->native_handle(), operation.get()) || GetLastError() == ERROR_IO_PENDING) {
            operation.release();
            return;
        }
        const bool isThere = GetLastError() == ERROR_PIPE_CONNECTED;
        operation.complete(isThere ? std::error_code() : LastError(), 0);
    }

    // A peer that went at once (ERROR_NO_DATA) is handed over too: reading finds what it left, and its end.
    void Connected(Instances::iterator instance, std::error_code error) {
        if (closed) return;
        PipeSocket socket = std::move(*instance);
        listening.erase(instance);
        if (error.value() == ERROR_NO_DATA) error.clear();
        Ready(error, std::move(socket));
        Listen();
    }

    void Ready(std::error_code error, PipeSocket socket) {
        ready.emplace_back(error, std::move(socket));
        Deliver();
    }

    void Deliver() {
        if (!accepted || ready.empty()) return;
        auto [error, socket] = std::move(ready.front());
        ready.pop_front();
        std::exchange(accepted, nullptr)(error, std::move(socket));
    }

    void Close() {
        closed = true;
        accepted = nullptr;
        ready.clear();
        listening.clear();
        first.Close();
    }

    static constexpr std::size_t kListening = 4;

    asio::io_context& io;
    const fs::path path;
    base::OwnedHandle first;
    Instances listening;
    std::deque<std::pair<std::error_code, PipeSocket>> ready;
    std::function<void(std::error_code, PipeSocket)> accepted;
    bool closed = false;
};

PipeListener::PipeListener(asio::io_context& io, const fs::path& path) : m_state(std::make_shared<State>(io, path)) {}

PipeListener::~PipeListener() { m_state->Close(); }

void PipeListener::AsyncAccept(std::function<void(std::error_code, PipeSocket)> accepted) {
    m_state->accepted = std::move(accepted);
    asio::post(m_state->io, [state = m_state] {
        state->Listen();
        state->Deliver();
    });
}

}  // namespace ipc_client
