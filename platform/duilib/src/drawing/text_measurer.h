#pragma once

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

#include "duilib/render_engine.h"

namespace DuiLib {

// Measures each text once: the rows of a page show the same few labels. Keeps the texts that were asked for last, and
// none that is long.
class MeasureCache final : public TextMeasurer {
public:
    static constexpr std::size_t kMaxEntries = 1024;
    static constexpr std::size_t kMaxTextLength = 512;

    explicit MeasureCache(TextMeasurer& measurer) : m_measurer(measurer) {}
    CDuiSize Measure(std::wstring_view text, const FontDescription& font, unsigned scale, int maxWidth,
                     bool wrap) override;
    std::size_t EntryCount() const { return m_entries.size(); }

private:
    struct Key {
        std::wstring_view text;
        const FontDescription& font;
        unsigned scale;
        int maxWidth;  // 0 where it does not matter
    };
    struct Entry {
        std::wstring text;
        FontDescription font;
        unsigned scale;
        int maxWidth;
        std::size_t hash;
        CDuiSize size;
    };
    using Entries = std::list<Entry>;

    static std::size_t HashOf(const Key& key);
    Entries::iterator Find(const Key& key, std::size_t hash);
    void DropOldest();

    TextMeasurer& m_measurer;
    Entries m_entries;  // asked for last in front
    std::unordered_multimap<std::size_t, Entries::iterator> m_byHash;
};

// The measurer of the system that the toolkit was built for, with such a cache. UI turn.
TextMeasurer& SystemTextMeasurer();

}  // namespace DuiLib
