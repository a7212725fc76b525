// A broker and the client of the service's endpoint, in a process that the campaign kills and starts anew.
//
//     campaign_service LIFE RECORD LOG
//
// Tells every page of each request, and answers the page that asked. Writes down what it handles before the callback
// returns: "request PAGE NUMBER", "told LIFE NUMBER PAGE", "answered LIFE NUMBER PAGE". Says "serving" and ends with
// its input.

#include <iostream>
#include <map>
#include <utility>

#include "base/text.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_diagnostics.h"
#include "message_words.h"

namespace campaign {
namespace {

class Service {
public:
    Service(std::string life, Record& record)
        : m_life(std::move(life)), m_record(record), m_client(kServiceEndpoint, true, false, kPipe) {
        m_client.RegisterMessageCallback(kRequest, [this](TagIPCMessageItem& item) { Take(item); });
    }

    void Stop() { m_client.UnRegisterMessageCallbackAll(); }

private:
    void Take(const TagIPCMessageItem& request) {
        m_record.AddMessage("request", request);
        const std::string words = WordsOf(request).value_or("damaged");
        const std::string page = words.substr(0, words.find(' '));
        const auto size = static_cast<std::size_t>(request.dataLen);
        const std::string news = m_life + " " + std::to_string(m_newsCount) + " " + page;
        std::string data = Padded(news, size);
        if (m_client.PostIPCMessage(Item(kServiceEndpoint, kPageEndpoint, kNews, data))) {
            m_record.Add("told " + news);
            ++m_newsCount;
        }
        const std::string answer = m_life + " " + std::to_string(m_answerCounts[page]) + " " + page;
        data = Padded(answer, size);
        const IpcLife asker = CurrentIpcSender().life;
        if (m_client.PostTo({&asker, 1}, Item(kServiceEndpoint, kPageEndpoint, kAnswer, data))) {
            m_record.Add("answered " + answer);
            ++m_answerCounts[page];
        }
    }

    const std::string m_life;
    Record& m_record;
    int m_newsCount = 0;
    std::map<std::string, int> m_answerCounts;  // by page
    IPCMessageClient m_client;                  // last: its callback uses the rest
};

// The broker stops first: what the service has not handled by then stays with its senders, for the next one.
void Serve(const std::string& life, Record& record) {
    IPCBroker broker(kPipe);
    broker.Start();
    Service service(life, record);
    std::cout << "serving" << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
    }
    broker.Stop();
    service.Stop();
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
