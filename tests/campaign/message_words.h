#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include "base/file.h"
#include "ipc_client/ipc_message_client.h"

// What the programs of the campaign say to each other, and how they write down what they heard.
namespace campaign {

inline constexpr wchar_t kPipe[] = L"\\\\.\\Pipe\\Campaign";
inline constexpr char kSocketName[] = "Campaign.sock";

inline constexpr int kServiceEndpoint = 0xB20001;
inline constexpr int kPageEndpoint = 0x270000;
inline constexpr int kHostEndpoint = 0xB20018;
inline constexpr int kRequest = 1;  // from a page to the service: "PAGE NUMBER"
inline constexpr int kNote = 2;     // from a page to the host in its process: "PAGE NUMBER"
inline constexpr int kNews = 3;     // from the service to every page, one for each request: "LIFE NUMBER PAGE"
inline constexpr int kAnswer =
    4;  // from the service to the page that asked: "LIFE NUMBER PAGE", numbered for each page

// The words, a blank, and `padding` letters that follow from them: a message that is damaged or mixed is noticed.
inline std::string Padded(const std::string& words, std::size_t padding) {
    char letter = 'a';
    for (const char character : words) letter = static_cast<char>('a' + (letter + character) % 26);
    return words + " " + std::string(padding, letter);
}

// The words of a message; none when it is damaged.
inline std::optional<std::string> WordsOf(const TagIPCMessageItem& item) {
    const std::string_view data(item.data, item.data == nullptr ? 0 : static_cast<std::size_t>(item.dataLen));
    const std::size_t end = data.rfind(' ');
    if (end == std::string_view::npos) return std::nullopt;
    std::string words(data.substr(0, end));
    if (Padded(words, data.size() - end - 1) != data) return std::nullopt;
    return words;
}

// The item of a message; it refers to `data`.
inline TagIPCMessageItem Item(int source, int destination, int message, std::string& data) {
    TagIPCMessageItem item;
    item.destId = destination;
    item.sourceId = source;
    item.msgId = message;
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(data.size());
    return item;
}

// Lines that survive the death of whoever writes them. Any thread.
class Record {
public:
    explicit Record(const std::filesystem::path& file) : m_file(file) {}

    void Add(const std::string& line) {
        const std::lock_guard lock(m_mutex);
        m_file.Append(line + "\n");
    }

    // "KIND WORDS", or "damaged KIND".
    void AddMessage(const std::string& kind, const TagIPCMessageItem& item) {
        const std::optional<std::string> words = WordsOf(item);
        Add(words ? kind + " " + *words : "damaged " + kind);
    }

private:
    std::mutex m_mutex;
    base::AppendFile m_file;
};

}  // namespace campaign
