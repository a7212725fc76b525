#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/text.h"

namespace kernel {

// A code page of one-byte characters, or of one- and two-byte characters where a lead byte announces the second one.
// Immutable once built, so any thread may use it.
class BytePage {
public:
    // Builds the page's tables, or returns null when the system does not know the page, or it is not of this kind.
    static std::unique_ptr<const BytePage> Make(unsigned codePage);

    // Decodes what `text` (not empty) begins with. A byte, or a lead byte with its second byte, that means nothing
    // gives one default character; so does a lead byte before the end or before a zero byte.
    base::DecodedCharacter Decode(std::string_view text) const;

    // The character's bytes: a one-byte character is below 0x100, otherwise the lead byte is the high one. Empty when
    // the page lacks the character.
    std::optional<std::uint16_t> Encode(char32_t character) const;

private:
    BytePage() = default;
    bool ReadSystemTables(unsigned codePage);
    void Map(std::uint16_t bytes, char32_t character);

    std::array<char32_t, 256> m_single{};
    std::bitset<256> m_leads;
    std::vector<char32_t> m_pairs;  // indexed by lead byte and second byte; empty in a page without lead bytes
    std::unordered_map<char32_t, std::uint16_t> m_bytes;
};

}  // namespace kernel
