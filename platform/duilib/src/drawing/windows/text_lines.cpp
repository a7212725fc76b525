#include "drawing/windows/text_lines.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "base/text.h"
#include "drawing/windows/gdiplus_library.h"
#include "duilib/ui_culture.h"

namespace DuiLib {

namespace {

constexpr wchar_t kEllipsis = L'\u2026';

bool IsHigh(wchar_t unit) { return (unit & 0xFC00) == 0xD800; }

void PinRendering(Gdiplus::Graphics& graphics) {
    graphics.SetTextRenderingHint(Gdiplus::TextRenderingHintAntiAliasGridFit);
}

std::unique_ptr<Gdiplus::StringFormat> Format(bool rightToLeft, INT more) {
    auto format = std::make_unique<Gdiplus::StringFormat>(Gdiplus::StringFormat::GenericTypographic());
    format->SetFormatFlags(Gdiplus::StringFormatFlagsNoFitBlackBox | Gdiplus::StringFormatFlagsNoClip |
                           (rightToLeft ? Gdiplus::StringFormatFlagsDirectionRightToLeft : 0) | more);
    format->SetTrimming(Gdiplus::StringTrimmingNone);
    return format;
}

// Sets one text's lines.
class Setter {
public:
    Setter(TextLines& lines, const TextSetting& setting)
        : m_lines(lines),
          m_width(std::max(1, setting.width)),
          m_surface({1, 1}),
          m_bitmap(GdiplusView(m_surface)),
          m_graphics(&m_bitmap),
          m_whole(Format(lines.rightToLeft,
                         Gdiplus::StringFormatFlagsNoWrap | Gdiplus::StringFormatFlagsMeasureTrailingSpaces)),
          m_wrapped(Format(lines.rightToLeft, Gdiplus::StringFormatFlagsLineLimit)) {
        PinRendering(m_graphics);
    }

    void AddWhole(std::wstring_view text) { m_lines.lines.push_back({std::wstring(text), Width(text)}); }

    void AddWrapped(std::wstring_view text) {
        while (Width(text) > m_width) {
            const std::size_t fitting = Fitting(text);
            std::wstring_view line = text.substr(0, fitting);
            while (line.size() > 1 && line.back() == L' ') line.remove_suffix(1);
            AddWhole(line);
            text.remove_prefix(fitting);
            while (!text.empty() && text.front() == L' ') text.remove_prefix(1);
            if (text.empty()) return;
        }
        AddWhole(text);
    }

    void AddCut(std::wstring_view text) {
        if (Width(text) <= m_width) return AddWhole(text);
        std::size_t fits = 0;
        std::size_t tooLong = text.size();
        while (tooLong - fits > 1) {
            const std::size_t middle = (fits + tooLong) / 2;
            (Width(Ending(text, middle)) <= m_width ? fits : tooLong) = middle;
        }
        AddWhole(Ending(text, fits));
    }

private:
    static std::wstring Ending(std::wstring_view text, std::size_t kept) {
        if (kept > 0 && IsHigh(text[kept - 1])) --kept;
        return std::wstring(text.substr(0, kept)) + kEllipsis;
    }

    int Width(std::wstring_view text) const {
        if (text.empty()) return 0;
        Gdiplus::RectF extent;
        m_graphics.MeasureString(text.data(), static_cast<INT>(text.size()), m_lines.font, Gdiplus::PointF(),
                                 m_whole.get(), &extent);
        return static_cast<int>(std::ceil(extent.Width));
    }

    // How much of the text makes a line of the width: all that GDI+ puts into a place with room for one line.
    std::size_t Fitting(std::wstring_view text) const {
        INT fitted = 0;
        Gdiplus::SizeF extent;
        const Gdiplus::SizeF room(static_cast<float>(m_width), static_cast<float>(m_lines.lineHeight) * 1.5f);
        m_graphics.MeasureString(text.data(), static_cast<INT>(text.size()), m_lines.font, room, m_wrapped.get(),
                                 &extent, &fitted);
        auto count = static_cast<std::size_t>(std::clamp<INT>(fitted, 1, static_cast<INT>(text.size())));
        if (IsHigh(text[count - 1])) count += count > 1 ? -1 : 1;
        return std::min(count, text.size());
    }

    TextLines& m_lines;
    const int m_width;
    PaintSurface m_surface;
    mutable Gdiplus::Bitmap m_bitmap;
    mutable Gdiplus::Graphics m_graphics;
    const std::unique_ptr<Gdiplus::StringFormat> m_whole;
    const std::unique_ptr<Gdiplus::StringFormat> m_wrapped;
};

}  // namespace

CDuiSize TextLines::Size() const {
    CDuiSize size{0, static_cast<int>(lines.size()) * lineHeight};
    for (const TextLine& line : lines) size.cx = std::max(size.cx, line.width);
    return size;
}

TextLines SetText(const TextSetting& setting) {
    const SystemFont& font = FindFont(setting.font, setting.scale, setting.text);
    TextLines lines{{}, font.font, font.lineHeight, UICulture::GetInstance()->IsRightToLeft()};
    const std::wstring text = base::WideFromUtf8(CharactersToSet(setting.text));
    std::wstring_view rest = text;
    Setter setter(lines, setting);
    for (bool more = true; more;) {
        const std::size_t end = rest.find(L'\n');
        const std::wstring_view paragraph = rest.substr(0, end);
        if (setting.wrap) {
            setter.AddWrapped(paragraph);
        } else if (setting.ellipsis) {
            setter.AddCut(paragraph);
        } else {
            setter.AddWhole(paragraph);
        }
        more = end != rest.npos;
        if (more) rest.remove_prefix(end + 1);
    }
    return lines;
}

CDuiSize SizeOf(const TextSetting& setting) { return SetText(setting).Size(); }

void DrawLine(Gdiplus::Graphics& graphics, const TextLines& lines, const TextLine& line, double x, double y,
              CDuiColor color) {
    PinRendering(graphics);
    const auto format = Format(lines.rightToLeft, Gdiplus::StringFormatFlagsNoWrap);
    const Gdiplus::SolidBrush brush{Gdiplus::Color(color)};
    // As wide as the line: right-to-left texts stand at their place's right edge, or at the left one under Wine.
    const Gdiplus::RectF place(static_cast<float>(x), static_cast<float>(y), static_cast<float>(line.width),
                               static_cast<float>(lines.lineHeight));
    graphics.DrawString(line.text.data(), static_cast<INT>(line.text.size()), lines.font, place, format.get(), &brush);
}

}  // namespace DuiLib
