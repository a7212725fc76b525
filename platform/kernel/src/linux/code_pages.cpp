#include "kernel/code_pages.h"

#include <atomic>
#include <limits>
#include <map>
#include <memory>
#include <string_view>

#include "base/mutex.h"
#include "base/text.h"
#include "byte_page.h"

namespace kernel {
namespace {

static_assert(sizeof(wchar_t) == 4, "a wide character is a code point here");

std::atomic<unsigned> g_ansiCodePage{kCodePageUtf8};

unsigned Resolved(unsigned codePage) { return codePage == kCodePageAnsi ? g_ansiCodePage.load() : codePage; }

// The page's tables, built at the first use and kept; null for a page that cannot be converted.
const BytePage* FindBytePage(unsigned codePage) {
    struct Pages {
        base::Mutex mutex;
        std::map<unsigned, std::unique_ptr<const BytePage>> built GUARDED_BY(mutex);
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
