// A page and its host as the message pipe sees them, with the relay between them and the broker in the same process,
// which the campaign may kill.
//
//     campaign_page PAGE SEED MESSAGES HERE BROKER RECORD LOG [calm]
//
// HERE is the relay's folder, in which the clients look for their pipe; BROKER the folder of the broker's. Posts so
// many requests to the service, and as many notes to the host, at once. Writes down what it handles, "note PAGE
// NUMBER", "news LIFE NUMBER PAGE" and "answer LIFE NUMBER PAGE"; what it has posted, "requests PAGE COUNT" and "notes
// PAGE COUNT"; and each fault, "fault NAME". A line of its input is another request and another note; it ends with its
// input. Calm, the relay lets nothing go wrong.

#include <iostream>
#include <thread>

#include "base/process.h"
#include "base/text.h"
#include "ipc_client/ipc_diagnostics.h"
#include "message_words.h"
#include "random.h"
#include "relay.h"

namespace campaign {
namespace {

// Posts numbered messages of one kind.
class Poster {
public:
    Poster(std::string page, int source, int destination, int message, std::uint64_t seed)
        : m_page(std::move(page)),
          m_destination(destination),
          m_message(message),
          m_random(seed),
          m_isHeavy(m_random.Chance(12)),
          m_client(source, false, false, kPipe) {}

    void PostOne() {
        const bool isLong = m_random.Chance(m_isHeavy ? 30 : 4);
        const int longest = m_isHeavy ? 300'000 : 20'000;
        const int padding = isLong ? m_random.Between(1000, longest) : m_random.Between(0, 200);
        const std::string words = m_page + " " + std::to_string(m_count);
        std::string data = Padded(words, static_cast<std::size_t>(padding));
        if (m_client.PostIPCMessage(Item(0, m_destination, m_message, data))) ++m_count;
    }

    // In bursts, as people and programs do.
    void PostMany(int messages) {
        while (m_count < messages) {
            for (int burst = m_random.Between(1, 12); burst > 0 && m_count < messages; --burst) PostOne();
            std::this_thread::sleep_for(std::chrono::microseconds(m_random.Between(0, 5000)));
        }
    }

    int Count() const { return m_count; }

private:
    const std::string m_page;
    const int m_destination;
    const int m_message;
    Random m_random;
    const bool m_isHeavy;  // posts more than the queues on the way hold
    IPCMessageClient m_client;
    int m_count = 0;
};

void Run(const std::string& page, std::uint64_t seed, int messages, Record& record) {
    IPCMessageClient pageClient(kPageEndpoint, true, false, kPipe);
    pageClient.RegisterMessageCallback(kNews, [&](TagIPCMessageItem& item) { record.AddMessage("news", item); });
    pageClient.RegisterMessageCallback(kAnswer, [&](TagIPCMessageItem& item) { record.AddMessage("answer", item); });
    IPCMessageClient hostClient(kHostEndpoint, true, false, kPipe);
    hostClient.RegisterMessageCallback(kNote, [&](TagIPCMessageItem& item) { record.AddMessage("note", item); });

    Poster requests(page, kPageEndpoint, kServiceEndpoint, kRequest, seed);
    Poster notes(page, kPageEndpoint, kHostEndpoint, kNote, seed + 1);
    std::thread noting([&] { notes.PostMany(messages); });
    requests.PostMany(messages);
    noting.join();
    const auto tell = [&] {
        record.Add("requests " + page + " " + std::to_string(requests.Count()));
        record.Add("notes " + page + " " + std::to_string(notes.Count()));
    };
    tell();
    for (std::string line; std::getline(std::cin, line);) {
        requests.PostOne();
        notes.PostOne();
        tell();
    }
}

}  // namespace
}  // namespace campaign

int main(int argc, char** argv) {
    using namespace campaign;
    const std::filesystem::path here = base::PathFromUtf8(argv[4]);
    const std::filesystem::path broker = base::PathFromUtf8(argv[5]);
    const std::uint64_t seed = std::stoull(argv[2]);
    base::SetVariable("BRINDLE_PIPE_DIR", argv[4]);
    Record record(base::PathFromUtf8(argv[6]));
    Record log(base::PathFromUtf8(argv[7]));
    SetIpcLogSink([&log](int, const std::string& line) { log.Add(line); });
    {
        Relay relay(here / kSocketName, broker / kSocketName, argc > 8 ? std::nullopt : std::optional(seed),
                    [&record](Fault fault) { record.Add("fault " + std::string(NameOf(fault))); });
        Run(argv[1], seed, std::stoi(argv[3]), record);
    }
    SetIpcLogSink({});
}
