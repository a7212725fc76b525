#pragma once

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

#include "duilib/render_engine.h"

namespace DuiLib {

// A text as it is to be set by the system's text library: linux/ and windows/ lay it out in lines, once for measuring
// and painting, so that both agree.
struct TextSetting {
    std::wstring_view text;
    const FontDescription& font;
    unsigned scale;         // [percent] that font sizes are multiplied by
    int width = -1;         // [device px] to break or cut at; -1: neither
    bool wrap = false;      // at the width, between words where possible
    bool ellipsis = false;  // "…" where a text that is not wrapped is cut
};

// ... within a width [device px]. `style` is CRenderEngine's text flags, here and below.
TextSetting SettingOf(std::wstring_view text, const FontDescription& font, unsigned scale, int width, unsigned style);

// The characters of a text that are set, in UTF-8: without a last line feed, with blanks for zeros, at which the
// systems' texts end, and U+FFFD for halves of surrogate pairs.
std::string CharactersToSet(std::wstring_view text);

// [device px] What the text takes, rounded up; a last line feed does not count. UI turn.
CDuiSize SizeOf(const TextSetting& setting);

// Where a line of a text starts, relative to the left edge of its area [device px], which is `space` wider.
double LineOffset(unsigned style, bool rightToLeft, double space);

// ... and its first line, relative to the top of an area that is `space` higher than all lines.
double TextTop(unsigned style, double space);

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
