#include "scripted_broker.h"

#include <algorithm>
#include <asio/buffer.hpp>
#include <iterator>
#include <thread>
#include <utility>

#include "fuzz_target.h"

namespace fuzz {

using namespace ipc_client;
using std::chrono::steady_clock;

namespace {

constexpr std::chrono::seconds kPatience{10};  // with a client that must come, or say something

}  // namespace

void ScriptedBroker::Accept(bool isAnother) {
    if (m_connection) return;
    bool hasCome = false;
    m_listener.AsyncAccept([&](std::error_code error, PipeSocket socket) {
        Require(!error, "a client can be taken");
        socket.non_blocking(true);
        m_connection.emplace(std::move(socket));
        hasCome = true;
    });
    const auto until = steady_clock::now() + kPatience;
    m_io.restart();
    while (!hasCome && steady_clock::now() < until) m_io.run_one_until(until);
    Require(hasCome, "a client connects anew");
    m_reader.emplace();
    m_unsent.clear();
    const std::optional<FrameView> frame = Next(until);
    Require(frame && frame->type == FrameType::kIntroduction, "a client introduces itself");
    Introduce(DecodeIntroduction(frame->body), isAnother);
}

void ScriptedBroker::Introduce(const Introduction& client, bool isAnother) {
    const bool isFirst = m_client == IpcLife();
    Require(isFirst || client.life == m_client, "a client has one life");
    Require(client.connection > m_connections, "a client counts its connections");
    m_client = client.life;
    m_connections = client.connection;
    IpcLife life;
    if (isAnother || isFirst) {
        ++m_generation;
        m_expected = client.first;
        m_notDone.clear();
        m_kept.clear();
        m_nextDelivery = client.received;
    } else if (m_isTrusted) {
        life = m_client;
        Require(client.first <= m_expected, "a client keeps what is not done");
        Require(client.received <= m_nextDelivery, "a client has received what was sent");
        Require(m_kept.empty() || client.received >= m_kept.begin()->first, "a client has received what it handled");
    }
    Introduction own;
    own.life.bytes.fill(m_generation);
    own.known = life;
    own.first = m_kept.empty() ? m_nextDelivery : m_kept.begin()->first;
    own.received = m_expected;
    std::string frames;
    AppendHello(frames);
    AppendIntroduction(frames, own);
    for (auto kept = m_kept.lower_bound(client.received); kept != m_kept.end(); ++kept) frames += kept->second.frame;
    Send(frames);
}

void ScriptedBroker::Cut() { m_connection.reset(); }

void ScriptedBroker::Send(std::string_view bytes) {
    if (!m_connection) return;
    m_unsent += bytes;
    m_unsent.erase(0, WriteNow(*m_connection, m_unsent));
}

void ScriptedBroker::Deliver(std::int32_t serial, std::size_t bytes) {
    if (!m_connection) return;
    std::string data(bytes, static_cast<char>(serial));
    TagIPCMessageItem item;
    item.destId = 1;
    item.msgId = 1;
    item.headerWord1 = serial;
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(bytes);
    std::string message, frame;
    AppendMessage(message, item);
    Stamp stamp;
    stamp.sender.life.bytes.fill(0xFF);
    stamp.number = static_cast<std::uint64_t>(serial);
    AppendDelivery(frame, stamp, std::string_view(message).substr(kFrameHeadBytes));
    m_kept[m_nextDelivery++] = {serial, frame};
    Send(frame);
}

void ScriptedBroker::TellDone(std::size_t place) {
    if (!m_connection || m_notDone.empty()) return;
    const auto number = std::next(m_notDone.begin(), static_cast<std::ptrdiff_t>(place % m_notDone.size()));
    std::string frame;
    AppendNumbers(frame, FrameType::kAcknowledge, std::vector<NumberRange>{{*number, *number + 1}});
    m_done.insert(*number);
    m_notDone.erase(number);
    Send(frame);
}

void ScriptedBroker::TellWaiting() {
    if (m_notDone.empty()) return;
    std::string frame;
    AppendNumbers(frame, FrameType::kWaiting, std::vector<NumberRange>{{*m_notDone.begin(), *m_notDone.begin() + 1}});
    Send(frame);
}

void ScriptedBroker::Refuse() {
    std::string frame;
    AppendRefusal(frame, RefusalCode::kLimit, "too much\nof it");
    Send(frame);
    Cut();
}

void ScriptedBroker::Answer(bool isRead) {
    std::string frame;
    AppendAnswer(frame, isRead);
    Send(frame);
}

void ScriptedBroker::SendAnything(std::string_view bytes) {
    m_isTrusted = false;
    Send(bytes);
}

// False when nothing is there.
bool ScriptedBroker::ReadSome() {
    const std::span<char> space = m_reader->Space();
    std::error_code error;
    const std::size_t bytes = m_connection->read_some(asio::buffer(space.data(), space.size()), error);
    m_reader->Commit(bytes);
    if (error && error != asio::error::would_block) Cut();
    return bytes != 0;
}

std::optional<FrameView> ScriptedBroker::Next(steady_clock::time_point until) {
    while (m_connection && steady_clock::now() < until) {
        if (m_reader->TakeHello()) {
            if (std::optional<FrameView> frame = m_reader->Next()) return frame;
        }
        if (!ReadSome()) std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
    return std::nullopt;
}

void ScriptedBroker::Receive() {
    Send({});
    while (m_connection) {
        const bool hasCome = ReadSome();
        while (const std::optional<FrameView> frame = m_reader->TakeHello() ? m_reader->Next() : std::nullopt) {
            if (m_isTrusted) TakeFrame(*frame);
        }
        if (!hasCome) return;
    }
}

void ScriptedBroker::TakeFrame(const FrameView& frame) {
    switch (frame.type) {
        case FrameType::kMessage:
            return TakeMessage(DecodeMessage(frame.body));
        case FrameType::kSkip:
            return Skip(DecodeSkip(frame.body));
        case FrameType::kAcknowledge:
            for (const NumberRange& range : DecodeNumbers(frame.body)) TakeHandled(range);
            return;
        case FrameType::kQuestion:
            return Answer(true);
        case FrameType::kAnnounce:
        case FrameType::kWithdraw:
            return void(DecodeRoutes(frame.body));
        default:
            Require(frame.type == FrameType::kFarewell, "a client sends no such frame");
    }
}

void ScriptedBroker::TakeMessage(const MessageView& message) {
    Require(static_cast<std::uint64_t>(message.headerWord1) == m_expected, "a message comes under its number");
    Require(m_done.count(m_expected) == 0, "what is done does not come again");
    m_notDone.insert(m_expected++);
}

void ScriptedBroker::Skip(std::uint64_t count) {
    for (; count != 0; --count) Require(m_done.count(m_expected++) != 0, "only what is done is left out");
}

void ScriptedBroker::TakeHandled(const NumberRange& range) {
    Require(range.behind <= m_nextDelivery, "what is acknowledged was sent");
    const auto begin = m_kept.lower_bound(range.first), end = m_kept.lower_bound(range.behind);
    const bool isHandled = std::all_of(begin, end, [&](const auto& kept) { return m_isHandled(kept.second.serial); });
    Require(isHandled, "what is acknowledged was handled");
    m_kept.erase(begin, end);
}

}  // namespace fuzz
