#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "ipc_client/ipc_message_client.h"

// What crosses the border between the plug-in and its platform, as the fake platform libraries of this folder record
// it, and what they answer. One per process; single-threaded.
//
// The fake libraries carry the file names of the real ones, so a program that links them runs the built module against
// them; toolkit and kernel stay the real ones, and no sleep takes time.
namespace seam {

enum class Kind {
    kLog,
    kPost,
    kClientCreated,
    kClientDestroyed,
    kRegister,
    kUnregister,
    kUnregisterAll,
    kSleep,
    kReportInit,
    kReport,
};

struct Event {
    Kind kind;
    int number = 0;          // log: level; register, unregister: msgId; sleep: ms; reportInit: the number
    std::wstring line;       // log
    std::string text;        // reportInit: the text; report: the event id
    TagIPCMessageItem item;  // post: the header; `data` says only whether there was one
    std::string payload;     // post
    std::vector<std::pair<std::string, std::string>> fields;  // report
};

struct ClientArguments {
    int endpointId;
    bool receives;
    bool exclusive;
    std::wstring pipeName;
};

struct Companion {
    bool isApp = false;
    bool running = false;
};

struct Callback {
    const void* client;
    int endpointId;
    std::function<void(TagIPCMessageItem&)> function;
};

struct Seam {
    std::vector<Event> events;
    std::vector<ClientArguments> clients;            // every client that was constructed
    std::map<int, std::vector<Callback>> callbacks;  // by message id; each client once
    std::map<std::wstring, Companion> companions;
    std::vector<std::wstring> companionQuestions;  // "running:KEY", "app:KEY"
    bool postResult = true;
    bool connected = true;                                    // what a host is told of the pipe
    bool loggerFails = false;                                 // a line that is logged throws std::bad_alloc
    bool clientThrows = false;                                // a client that is constructed throws std::bad_alloc
    std::function<void(std::uint32_t milliseconds)> onSleep;  // with the sleep recorded already; under the UI turn
    std::function<void(int msgId)> onPost;                    // with the post recorded already

    // Hands a message to every client of the endpoint, by default the page's, that has a callback for its id, in the
    // order in which they registered; false when there is none. Each gets the payload with a zero byte behind it; an
    // empty one is a null pointer. What a callback throws goes to the caller.
    bool Deliver(int msgId, const std::string& payload, int endpointId = 0x270000);
};

Seam& Get();

}  // namespace seam
