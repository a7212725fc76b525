#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "ipc_client/ipc_message_client.h"
#include "temporary_folder.h"
#include "wait_until.h"

// What the tests of the message pipe share.
namespace ipc_test {

inline constexpr wchar_t kPipe[] = L"\\\\.\\Pipe\\Test";
using test_support::kPatience;
using test_support::WaitUntil;

// A pipe folder and a log of its own for each test.
class PipeTest : public ::testing::Test {
protected:
    PipeTest();
    ~PipeTest() override;

    std::filesystem::path Folder() const { return m_folder; }
    std::filesystem::path SocketPath() const;  // of kPipe

    // Whether a log line with that text has come, or comes in time.
    bool Logged(const std::string& text);

    int CountLogged(const std::string& text);

private:
    test_support::TemporaryFolder m_folder;
    std::mutex m_mutex;
    std::condition_variable m_lineCame;
    std::vector<std::string> m_lines;
};

// A message as it was received, with a payload of its own.
struct Received {
    TagIPCMessageItem item;  // `data` is not valid any more
    std::string data;
    bool hadData = false;         // `data` was not null
    bool zeroBehindData = false;  // the byte behind the payload was 0
};

// Collects messages on the delivery thread.
class Inbox {
public:
    std::function<void(TagIPCMessageItem&)> Callback();

    // Waits until `count` messages have come; the messages so far in either case.
    std::vector<Received> WaitFor(std::size_t count);
    std::vector<std::string> WaitForData(std::size_t count);
    std::size_t Count();

private:
    std::mutex m_mutex;
    std::condition_variable m_came;
    std::vector<Received> m_messages;
};

bool Post(IPCMessageClient& client, int destId, int msgId, std::string data = "");

// A peer that writes bytes of its own choice.
class RawPeer {
public:
    explicit RawPeer(const std::filesystem::path& socketPath);
    ~RawPeer();
    RawPeer(const RawPeer&) = delete;
    RawPeer& operator=(const RawPeer&) = delete;

    // Writes all; false when the other side has closed.
    bool Write(std::string_view bytes);

    // Reads exactly that many bytes, fewer when the other side closes first.
    std::string Read(std::size_t bytes);

    // Reads on until the other side closes; false when it does not in time.
    bool IsClosedByPeer();

private:
    std::intptr_t m_fd;  // a descriptor, on Windows a handle
};

// A broker that answers its first connection with bytes of its own choice.
class RawBroker {
public:
    RawBroker(const std::filesystem::path& socketPath, std::string answer);
    ~RawBroker();
    RawBroker(const RawBroker&) = delete;
    RawBroker& operator=(const RawBroker&) = delete;

private:
    std::intptr_t m_listener;  // a descriptor, on Windows a handle
    std::thread m_thread;
};

std::string Hello();

}  // namespace ipc_test
