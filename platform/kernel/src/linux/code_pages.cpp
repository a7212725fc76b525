#include "kernel/code_pages.h"

#include <iconv.h>

#include <array>
#include <atomic>
#include <bitset>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/mutex.h"
#include "base/text.h"

namespace kernel {
namespace {

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

constexpr char32_t kUnmapped = 0xFFFFFFFF;

// The pages with lead bytes, and what a pair that means nothing is read as.
struct PairPage {
    unsigned codePage;
    unsigned char ranges[2][2];  // of lead bytes; {0, 0} is no range
    char32_t defaultCharacter;
};
constexpr PairPage kPairPages[] = {
    {932, {{0x81, 0x9F}, {0xE0, 0xFC}}, 0x30FB},
    {936, {{0x81, 0xFE}, {0, 0}}, U'?'},
    {949, {{0x81, 0xFE}, {0, 0}}, U'?'},
    {950, {{0x81, 0xFE}, {0, 0}}, U'?'},
};

const PairPage* FindPairPage(unsigned codePage) {
    for (const PairPage& page : kPairPages) {
        if (page.codePage == codePage) return &page;
    }
    return nullptr;
}

// One direction of the system's converter, used for one character at a time.
class Converter {
public:
    Converter(const std::string& to, const std::string& from) : m_handle(iconv_open(to.c_str(), from.c_str())) {}
    ~Converter() {
        if (IsOpen()) iconv_close(m_handle);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool IsOpen() const { return m_handle != reinterpret_cast<iconv_t>(-1); }

    // The bytes that `bytes` is converted to; empty when it means nothing. Some pages hold a character back in case an
    // accent follows; the second call asks for it.
    std::string Convert(std::string_view bytes) {
        char result[16];
        char* out = result;
        std::size_t room = sizeof result;
        char* in = const_cast<char*>(bytes.data());  // iconv's signature; it does not write there
        std::size_t left = bytes.size();
        iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
        if (iconv(m_handle, &in, &left, &out, &room) != 0) return {};
        if (iconv(m_handle, nullptr, nullptr, &out, &room) != 0) return {};
        return std::string(result, out);
    }

private:
    iconv_t m_handle;
};

constexpr const char* kCodePoints = "UTF-32LE";

char32_t DecodeOne(Converter& decoder, std::string_view bytes) {
    const std::string units = decoder.Convert(bytes);
    if (units.size() != 4) return kUnmapped;
    char32_t character = 0;
    for (std::size_t i = 4; i > 0; --i) character = (character << 8) | static_cast<unsigned char>(units[i - 1]);
    return character;
}

// The bytes that the system chooses where several mean the same character.
std::optional<std::uint16_t> EncodeOne(Converter& encoder, char32_t character) {
    char units[4];
    for (unsigned i = 0; i < 4; ++i) units[i] = static_cast<char>(character >> (8 * i));
    const std::string bytes = encoder.Convert({units, 4});
    if (bytes.size() == 1) return static_cast<unsigned char>(bytes[0]);
    if (bytes.size() != 2) return std::nullopt;
    return static_cast<std::uint16_t>(static_cast<unsigned char>(bytes[0]) << 8 | static_cast<unsigned char>(bytes[1]));
}

// What 1252 has between 80 and 9F.
constexpr char32_t k1252[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

std::unique_ptr<const BytePage> BytePage::Make(unsigned codePage) {
    std::unique_ptr<BytePage> page(new BytePage);
    if (codePage == 1252) {
        for (unsigned byte = 0; byte < 256; ++byte) {
            page->Map(static_cast<std::uint16_t>(byte), byte >= 0x80 && byte < 0xA0 ? k1252[byte - 0x80] : byte);
        }
    } else if (!page->ReadSystemTables(codePage)) {
        return nullptr;
    }
    return page;
}

bool BytePage::ReadSystemTables(unsigned codePage) {
    const std::string name = "CP" + std::to_string(codePage);
    Converter decoder(kCodePoints, name);
    Converter encoder(name, kCodePoints);
    if (!decoder.IsOpen() || !encoder.IsOpen()) return false;

    const PairPage* const pairPage = FindPairPage(codePage);
    for (unsigned byte = 0; pairPage && byte < 256; ++byte) {
        for (const auto& range : pairPage->ranges) {
            if (range[0] != 0 && byte >= range[0] && byte <= range[1]) m_leads.set(byte);
        }
    }
    if (pairPage) m_pairs.assign(0x10000, pairPage->defaultCharacter);

    const auto read = [&](std::uint16_t bytes, std::string_view text) {
        const char32_t character = DecodeOne(decoder, text);
        if (character == kUnmapped) return false;
        Map(bytes, character);
        if (const auto chosen = EncodeOne(encoder, character)) m_bytes[character] = *chosen;
        return true;
    };
    for (unsigned byte = 0; byte < 256; ++byte) {
        const char lead = static_cast<char>(byte);
        if (m_leads[byte]) {
            m_single[byte] = U'?';
            for (unsigned second = 1; second < 256; ++second) {
                const char pair[] = {lead, static_cast<char>(second)};
                read(static_cast<std::uint16_t>(byte << 8 | second), {pair, 2});
            }
        } else if (!read(static_cast<std::uint16_t>(byte), {&lead, 1})) {
            // A byte without a meaning between 80 and 9F is the control character of that number.
            if (byte < 0x80 || byte > 0x9F) {
                m_single[byte] = U'?';
            } else {
                Map(static_cast<std::uint16_t>(byte), byte);
            }
        }
    }
    return m_single['A'] == U'A';
}

void BytePage::Map(std::uint16_t bytes, char32_t character) {
    (bytes < 0x100 ? m_single[bytes] : m_pairs[bytes]) = character;
    m_bytes.try_emplace(character, bytes);
}

base::DecodedCharacter BytePage::Decode(std::string_view text) const {
    const auto first = static_cast<unsigned char>(text[0]);
    if (!m_leads[first] || text.size() < 2 || text[1] == 0) return {m_single[first], 1};
    return {m_pairs[first << 8 | static_cast<unsigned char>(text[1])], 2};
}

std::optional<std::uint16_t> BytePage::Encode(char32_t character) const {
    const auto found = m_bytes.find(character);
    if (found == m_bytes.end()) return std::nullopt;
    return found->second;
}

static_assert(sizeof(wchar_t) == 4, "a wide character is a code point here");

std::atomic<unsigned> g_ansiCodePage{kCodePageUtf8};

unsigned Resolved(unsigned codePage) { return codePage == kCodePageAnsi ? g_ansiCodePage.load() : codePage; }

// The page's tables, built at the first use and kept; null for a page that cannot be converted.
const BytePage* FindBytePage(unsigned codePage) {
    struct Pages {
        base::Mutex mutex;
        std::map<unsigned, std::unique_ptr<const BytePage>> built BASE_GUARDED_BY(mutex);
    };
    static Pages& pages = *new Pages;
    const base::MutexLock lock(pages.mutex);
    const auto [entry, isNew] = pages.built.try_emplace(codePage);
    if (isNew) entry->second = BytePage::Make(codePage);
    return entry->second.get();
}

// The caller's buffer. Counts what does not fit too.
template <typename Character>
class Destination {
public:
    Destination(Character* begin, int capacity) : m_begin(begin), m_capacity(static_cast<std::size_t>(capacity)) {}

    void Put(Character character) {
        if (m_size < m_capacity) m_begin[m_size] = character;
        ++m_size;
    }

    // What the conversion functions return.
    int Result() const {
        const bool fits = m_capacity == 0 || m_size <= m_capacity;
        return fits && m_size <= std::size_t{std::numeric_limits<int>::max()} ? static_cast<int>(m_size) : 0;
    }

private:
    Character* m_begin;
    std::size_t m_capacity;
    std::size_t m_size = 0;
};

template <typename Decode>
int DecodeAll(std::string_view text, Destination<wchar_t> result, Decode decode) {
    while (!text.empty()) {
        const base::DecodedCharacter next = decode(text);
        result.Put(static_cast<wchar_t>(next.character));
        text.remove_prefix(next.size);
    }
    return result.Result();
}

void PutUtf8(Destination<char>& result, char32_t character) {
    char bytes[4];
    const std::size_t size = base::EncodeUtf8(character, bytes);
    for (std::size_t i = 0; i < size; ++i) result.Put(bytes[i]);
}

// A default character stands for each UTF-16 unit that the page lacks.
void PutBytes(Destination<char>& result, const BytePage& page, char32_t character) {
    const auto bytes = page.Encode(character);
    if (!bytes) {
        result.Put('?');
        if (character > 0xFFFF && character <= 0x10FFFF) result.Put('?');
        return;
    }
    if (*bytes > 0xFF) result.Put(static_cast<char>(*bytes >> 8));
    result.Put(static_cast<char>(*bytes & 0xFF));
}

template <typename From, typename To>
bool IsUsable(std::uint32_t flags, const From* source, int length, const To* destination, int capacity) {
    return flags == 0 && source && length > 0 && capacity >= 0 && (capacity == 0 || destination);
}

}  // namespace

int MultiByteToWideChar(unsigned codePage, std::uint32_t flags, const char* source, int length, wchar_t* destination,
                        int capacity) {
    if (!IsUsable(flags, source, length, destination, capacity)) return 0;
    const std::string_view text(source, static_cast<std::size_t>(length));
    const Destination<wchar_t> result(destination, capacity);
    codePage = Resolved(codePage);
    if (codePage == kCodePageUtf8) return DecodeAll(text, result, base::DecodeUtf8);
    const BytePage* const page = FindBytePage(codePage);
    if (!page) return 0;
    return DecodeAll(text, result, [page](std::string_view rest) { return page->Decode(rest); });
}

int WideCharToMultiByte(unsigned codePage, std::uint32_t flags, const wchar_t* source, int length, char* destination,
                        int capacity, const char* defaultCharacter, bool* usedDefaultCharacter) {
    if (!IsUsable(flags, source, length, destination, capacity) || defaultCharacter != nullptr ||
        usedDefaultCharacter != nullptr) {
        return 0;
    }
    std::wstring_view text(source, static_cast<std::size_t>(length));
    Destination<char> result(destination, capacity);
    codePage = Resolved(codePage);
    const BytePage* const page = codePage == kCodePageUtf8 ? nullptr : FindBytePage(codePage);
    if (!page && codePage != kCodePageUtf8) return 0;
    while (!text.empty()) {
        const char32_t character = base::TakeCharacter(text);
        if (page) {
            PutBytes(result, *page, character);
        } else {
            PutUtf8(result, character);
        }
    }
    return result.Result();
}

bool SetAnsiCodePage(unsigned codePage) {
    if (codePage == kCodePageAnsi || (codePage != kCodePageUtf8 && !FindBytePage(codePage))) return false;
    g_ansiCodePage = codePage;
    return true;
}

}  // namespace kernel
