#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

struct sd_bus_message;

namespace settings_host {

// org.freedesktop.login1 on the system bus of this process, with the call Inhibit only. It serves on a thread of its
// own; any thread may ask it. Throws std::runtime_error when it cannot take its name.
class FakeLoginService {
public:
    enum class Answer { File, Refusal, Silence, Nothing };  // Nothing: an answer without a file

    struct Call {
        std::string sender;              // its unique name on the bus
        std::vector<std::string> words;  // what, who, why, mode
    };

    FakeLoginService();
    ~FakeLoginService();
    FakeLoginService(const FakeLoginService&) = delete;
    FakeLoginService& operator=(const FakeLoginService&) = delete;

    void AnswerWith(Answer answer) { m_answer = answer; }
    std::vector<Call> Calls() const;

    // About the file that call number `call` got, counted from 0: whether nobody has it open any more. WaitUntilLetGo
    // is false when patience ends first.
    bool IsLetGo(std::size_t call) const;
    bool WaitUntilLetGo(std::size_t call) const;

private:
    struct Connection;

    int OnInhibit(sd_bus_message* message);
    int ReplyWithFile(sd_bus_message* message);
    int ReadEnd(std::size_t call) const;
    void Serve();

    std::atomic<Answer> m_answer{Answer::File};
    std::atomic<bool> m_stop{false};
    mutable std::mutex m_mutex;
    std::vector<Call> m_calls;
    std::vector<int> m_readEnds;  // a pipe's read end for each call, or -1
    std::unique_ptr<Connection> m_connection;
    std::thread m_thread;  // last: it uses the rest
};

}  // namespace settings_host
