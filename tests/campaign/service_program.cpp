// A broker and the client of the service's endpoint, in a process that the campaign kills and starts anew.
//
//     campaign_service LIFE RECORD LOG
//
// Answers each request with news to every page. Writes down what it handles before the callback returns: "request PAGE
// NUMBER", "told LIFE NUMBER PAGE". Says "serving" and ends with its input.

#include <iostream>

#include "base/text.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_diagnostics.h"
#include "message_words.h"

namespace campaign {
namespace {

void Serve(const std::string& life, Record& record) {
    IPCBroker broker(kPipe);
    broker.Start();
    IPCMessageClient client(kServiceEndpoint, true, false, kPipe);
    int newsNumber = 0;
    client.RegisterMessageCallback(kRequest, [&](TagIPCMessageItem& item) {
        record.AddMessage("request", item);
        const std::string words = WordsOf(item).value_or("damaged");
        const std::string news = life + " " + std::to_string(newsNumber) + " " + words.substr(0, words.find(' '));
        if (!Post(client, kServiceEndpoint, kPageEndpoint, kNews,
                  Padded(news, static_cast<std::size_t>(item.dataLen)))) {
            record.Add("refused");
            return;
        }
        record.Add("told " + news);
        ++newsNumber;
    });
    std::cout << "serving" << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
    }
    client.UnRegisterMessageCallbackAll();
}

}  // namespace
}  // namespace campaign

int main(int, char** argv) {
    campaign::Record record(base::PathFromUtf8(argv[2]));
    campaign::Record log(base::PathFromUtf8(argv[3]));
    SetIpcLogSink([&log](int, const std::string& line) { log.Add(line); });
    campaign::Serve(argv[1], record);
    SetIpcLogSink({});
}
