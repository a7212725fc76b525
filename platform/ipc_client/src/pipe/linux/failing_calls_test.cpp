// A system that refuses descriptors and threads to broker and client: each refusal is told in a clear line, or thrown,
// and costs no more than another attempt.

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

#include "base/reason.h"
#include "ipc/pipe_test.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_message_client.h"

namespace {

std::atomic<const char*> g_function{nullptr};  // whose calls are counted
std::atomic<int> g_left{0};                    // until one fails; 0: none does

bool Fails(std::string_view function) {
    const char* const failing = g_function;
    if (failing == nullptr || function != failing) return false;
    int left = g_left;
    while (left > 0 && !g_left.compare_exchange_weak(left, left - 1)) {
    }
    return left == 1;
}

// A text that a template may have.
struct Name {
    char text[32] = {};
    consteval Name(const char* name) {
        for (std::size_t i = 0; name[i] != '\0'; ++i) text[i] = name[i];
    }
};

template <Name name, typename... Arguments>
int CallReal(Arguments... arguments) {
    static auto* const real = reinterpret_cast<int (*)(Arguments...)>(dlsym(RTLD_NEXT, name.text));
    return real(arguments...);
}

// The system's own function, or -1 and that error.
template <Name name, typename... Arguments>
int CallOrFail(int error, Arguments... arguments) {
    if (!Fails(name.text)) return CallReal<name>(arguments...);
    errno = error;
    return -1;
}

}  // namespace

// They stand before the system's, for the libraries too.
#pragma GCC visibility push(default)
extern "C" {

int socket(int domain, int type, int protocol) noexcept { return CallOrFail<"socket">(EMFILE, domain, type, protocol); }
int connect(int fd, const sockaddr* address, socklen_t size) {
    return CallOrFail<"connect">(ENOBUFS, fd, address, size);
}
int bind(int fd, const sockaddr* address, socklen_t size) noexcept {
    return CallOrFail<"bind">(ENOSPC, fd, address, size);
}
int listen(int fd, int backlog) noexcept { return CallOrFail<"listen">(ENOBUFS, fd, backlog); }
int accept4(int fd, sockaddr* address, socklen_t* size, int flags) {
    return CallOrFail<"accept4">(EMFILE, fd, address, size, flags);
}
int flock(int fd, int operation) noexcept { return CallOrFail<"flock">(ENOLCK, fd, operation); }
int mkdir(const char* path, mode_t mode) noexcept { return CallOrFail<"mkdir">(ENOSPC, path, mode); }
int chmod(const char* path, mode_t mode) noexcept { return CallOrFail<"chmod">(EIO, path, mode); }
int epoll_create1(int flags) noexcept { return CallOrFail<"epoll_create1">(EMFILE, flags); }
int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument) noexcept {
    return Fails("pthread_create") ? EAGAIN : CallReal<"pthread_create">(thread, attributes, run, argument);
}

}  // extern "C"
#pragma GCC visibility pop

namespace ipc_test {
namespace {

// A broker and a client of it, made anew where something could not be had.
class Channel {
public:
    // What was thrown; empty when all is there.
    std::string Make() {
        try {
            if (!m_broker) {
                auto broker = std::make_unique<IPCBroker>(kPipe);
                broker->Start();
                m_broker = std::move(broker);
            }
            if (!m_client) m_client = std::make_unique<IPCMessageClient>(1, true, false, kPipe);
            m_client->RegisterMessageCallback(1, m_inbox.Callback());
            return "";
        } catch (const std::exception& error) {
            return base::Reason(error);
        }
    }

    bool IsMade() const { return m_client != nullptr; }
    bool Send() { return Post(*m_client, 1, 1, "a"); }
    bool HasArrived() { return m_inbox.Count() != 0; }

private:
    Inbox m_inbox;
    std::unique_ptr<IPCBroker> m_broker;
    std::unique_ptr<IPCMessageClient> m_client;
};

class FailingCalls : public PipeTest {
protected:
    ~FailingCalls() override { g_left = 0; }

    // Whether the nth call of that function failed, and the channel went on.
    bool OneFails(const char* function, int nth, const std::string& reason) {
        std::filesystem::remove_all(Folder());
        const int before = CountLogged(reason);
        Channel channel;
        g_function = function;
        g_left = nth;
        std::string thrown = channel.Make();
        for (int again = 0; !channel.IsMade() && again < 3; ++again) thrown += channel.Make();
        EXPECT_TRUE(channel.IsMade()) << thrown;
        if (!channel.IsMade()) return false;
        EXPECT_TRUE(channel.Send());
        const bool hasArrived = WaitUntil([&] {
            if (!channel.HasArrived() && g_left == 0) channel.Make();  // a callback that was not registered
            return channel.HasArrived();
        });
        const bool happened = g_left.exchange(0) == 0;
        EXPECT_TRUE(hasArrived) << thrown;
        const bool isTold = thrown.find(reason) != std::string::npos || CountLogged(reason) > before;
        EXPECT_EQ(isTold, happened) << thrown;
        return happened;
    }
};

struct Failing {
    const char* function;
    int error;
};

class FailingCall : public FailingCalls, public ::testing::WithParamInterface<Failing> {};

TEST_P(FailingCall, IsToldAndTheChannelGoesOn) {
    constexpr int kMost = 100;
    const std::string reason = std::strerror(GetParam().error);
    int nth = 1;
    for (; nth < kMost; ++nth) {
        SCOPED_TRACE(std::string(GetParam().function) + " call " + std::to_string(nth));
        if (!OneFails(GetParam().function, nth, reason) || HasFailure()) break;
    }
    EXPECT_GT(nth, 1) << "it is not called";
    EXPECT_LT(nth, kMost) << "there is no end to its calls";
}

INSTANTIATE_TEST_SUITE_P(OfTheSystem, FailingCall,
                         ::testing::Values(Failing{"socket", EMFILE}, Failing{"connect", ENOBUFS},
                                           Failing{"bind", ENOSPC}, Failing{"listen", ENOBUFS},
                                           Failing{"accept4", EMFILE}, Failing{"flock", ENOLCK},
                                           Failing{"mkdir", ENOSPC}, Failing{"chmod", EIO},
                                           Failing{"epoll_create1", EMFILE}, Failing{"pthread_create", EAGAIN}),
                         [](const auto& failing) { return std::string(failing.param.function); });

// Descriptors beyond so many are refused to this process while it lives.
class DescriptorLimit {
public:
    explicit DescriptorLimit(std::size_t more) {
        const std::filesystem::directory_iterator open("/proc/self/fd");
        getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = static_cast<rlim_t>(std::distance(begin(open), end(open))) - 1 + more;
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    }
    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &m_before); }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;

private:
    rlimit m_before{};
};

TEST_F(FailingCalls, AChannelThatRanOutOfDescriptorsGoesOnWhenThereAreSome) {
    const std::string reason = std::strerror(EMFILE);
    constexpr std::size_t kMost = 50;
    std::size_t more = 0;
    for (; more < kMost; ++more) {
        SCOPED_TRACE(std::to_string(more) + " descriptors");
        const int before = CountLogged(reason);
        Channel channel;
        bool isTold = false;
        {
            const DescriptorLimit limit(more);
            isTold = channel.Make().find(reason) != std::string::npos;
            if (channel.IsMade()) channel.Send();
            ASSERT_TRUE(isTold || WaitUntil([&] { return channel.HasArrived() || CountLogged(reason) > before; }));
        }
        const bool wasEnough = !isTold && CountLogged(reason) == before;
        EXPECT_EQ(channel.Make(), "");
        ASSERT_TRUE(channel.Send());
        ASSERT_TRUE(WaitUntil([&] { return channel.HasArrived(); }));
        if (wasEnough) break;
    }
    EXPECT_GT(more, 5u);
    EXPECT_LT(more, kMost) << "they are never enough";
}

}  // namespace
}  // namespace ipc_test
