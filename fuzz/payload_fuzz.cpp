// The payload of one message of the accessory channel, as the service and as the module's own cursor read it. The
// input's first byte chooses what it is.

#include <new>
#include <string>

#include "channel/payload.h"
#include "fuzz_target.h"
#include "memory_budget.h"
#include "plugin/ipc/ipc_data_io.h"

namespace {

template <class Payload>
void CheckWrittenAgain(const Payload& payload) {
    const std::optional<channel::Bytes> bytes = channel::Encode(payload);
    if (!bytes) return;
    const auto again = channel::Encode(channel::Decode<Payload>(bytes->View()));
    fuzz::Require(again && again->View() == bytes->View(), "a payload that is written can be read");
}

template <class Record>
void CheckModulesCursor(std::string bytes, const Record& expected) {
    TagIPCMessageItem item;
    item.data = bytes.data();
    item.dataLen = static_cast<std::int32_t>(bytes.size());
    IPCDataIO cursor(&item, 64, true, false);
    Record record;
    ReadRecord(cursor, record);
    const auto bytesOf = [](const Record& of) { return channel::Encode(of).value().View().size(); };
    fuzz::Require(bytesOf(record) == bytesOf(expected), "service and module read the same");
}

template <class Record>
void CheckRecord(std::string_view bytes) {
    const auto record = channel::Decode<Record>(bytes);
    CheckWrittenAgain(record);
    CheckModulesCursor(std::string(bytes), record);
}

void CheckPayload(std::uint8_t kind, std::string_view bytes) {
    switch (kind % 4) {
        case 0:
            return CheckRecord<channel::AccessoryList>(bytes);
        case 1:
            return CheckRecord<channel::Progress>(bytes);
        case 2:
            return CheckWrittenAgain(channel::Decode<channel::DeviceKey>(bytes));
        default:
            static_cast<void>(channel::Decode<channel::Decimal>(bytes).Number());
            return CheckWrittenAgain(channel::Decode<channel::Decimal>(bytes));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes = fuzz::TextOf(data, size);
    const std::uint8_t kind = fuzz::TakeByte(bytes);
    const fuzz::MemoryBudget budget(512 * 1024);
    try {
        CheckPayload(kind, bytes);
    } catch (const std::bad_alloc&) {  // counts and lengths are believed: what they ask for may be more than there is
    } catch (const std::length_error&) {
    }
    return 0;
}
