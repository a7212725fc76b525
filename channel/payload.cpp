#include "channel/payload.h"

#include <charconv>
#include <limits>

namespace channel {

std::optional<int> Decimal::Number() const {
    int number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::optional<Bytes> detail::Allocate(std::size_t size) {
    if (size == 0) return Bytes(nullptr, 0);
    if (size > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
    std::unique_ptr<char[]> memory(new (std::nothrow) char[size]);
    if (!memory) return std::nullopt;
    return Bytes(std::move(memory), size);
}

void Read(std::string_view, NoPayload&) {}

void Read(std::string_view bytes, DeviceKey& payload) { payload.key = bytes.substr(0, bytes.find('\0')); }

void Read(std::string_view bytes, Decimal& payload) { payload.digits = bytes; }

void Read(std::string_view bytes, Progress& payload) {
    ByteReader reader(bytes);
    ReadRecord(reader, payload);
}

void Read(std::string_view bytes, AccessoryList& payload) {
    ByteReader reader(bytes);
    ReadRecord(reader, payload);
}

}  // namespace channel
