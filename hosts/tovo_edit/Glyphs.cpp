#include "Glyphs.h"

#include <algorithm>

#include <wchar.h>

#include "Columns.h"
#include "Surrogates.h"

namespace {

constexpr wchar_t kReplacement = L'\uFFFD';

// The character at a position, and how many 16-bit ones it takes.
wchar_t CharacterAt(WideView text, std::size_t pos, std::size_t& length)
{
    length = 1;
    const char16_t first = text[pos];
    if (!IsHighSurrogate(first))
        return IsLowSurrogate(first) ? kReplacement : static_cast<wchar_t>(first);
    if (pos + 1 == text.size() || !IsLowSurrogate(text[pos + 1]))
        return kReplacement;
    length = 2;
    return static_cast<wchar_t>(0x10000 + ((first - 0xD800) << 10) + (text[pos + 1] - 0xDC00));
}

} // namespace

std::vector<Glyph> GlyphsOf(const CString& text)
{
    // Puts one 16-bit character in place of each, so positions stay.
    const CString printable(std::string_view(Printable(text)));
    const WideView view = printable.View();
    std::vector<Glyph> glyphs;
    std::size_t length = 0;
    for (std::size_t pos = 0; pos < view.size(); pos += length) {
        const wchar_t character = CharacterAt(view, pos, length);
        const int width = wcwidth(character);
        if (width == 0 && !glyphs.empty()) {
            glyphs.back().characters += character;
            glyphs.back().length += static_cast<int>(length);
            continue;
        }
        // A mark with nothing to stand on, or a character that no terminal knows.
        const bool isShown = width > 0;
        glyphs.push_back({static_cast<int>(pos), static_cast<int>(length), isShown ? width : 1,
                          std::wstring(1, isShown ? character : kReplacement)});
    }
    return glyphs;
}

int WidthOf(const CString& text)
{
    int width = 0;
    for (const Glyph& glyph : GlyphsOf(text))
        width += glyph.width;
    return width;
}

// A character of two columns that would fit by half is left out.
CString Clipped(const CString& text, int width)
{
    int column = 0;
    for (const Glyph& glyph : GlyphsOf(text)) {
        column += glyph.width;
        if (column > width)
            return text.Left(glyph.position);
    }
    return text;
}

CString Padded(const CString& text, int width)
{
    const CString clipped = Clipped(text, width);
    return clipped + CString(u' ', width - WidthOf(clipped));
}

// The blank that a line breaks at stays at its end, where it is not seen.
std::vector<CString> WrappedLines(const CString& text, int width, std::size_t mostLines)
{
    std::vector<CString> lines;
    CString rest = text;
    while (!rest.IsEmpty() && lines.size() < mostLines) {
        CString line = Clipped(rest, width);
        const std::size_t blank = line.View().rfind(u' ');
        if (line.GetLength() < rest.GetLength() && blank != WideView::npos && blank > 0)
            line = line.Left(static_cast<int>(blank) + 1);
        // A single character may be wider than the line.
        rest = rest.Mid(std::max(line.GetLength(), 1));
        lines.push_back(line);
    }
    if (!rest.IsEmpty() && !lines.empty())
        lines.back() = Clipped(lines.back(), width - 1) + u"\u2026";
    return lines;
}

TextLayout::TextLayout(const CString& text, int width) : m_Rows(1), m_Length(text.GetLength())
{
    m_Rows.back().position = 0;
    int column = 0;
    for (Glyph& glyph : GlyphsOf(text)) {
        if (column + glyph.width > width) {
            m_Rows.push_back({glyph.position, {}});
            column = 0;
        }
        column += glyph.width;
        m_Rows.back().glyphs.push_back(std::move(glyph));
    }
    // The cursor behind a full row stands in the next one.
    if (column >= width)
        m_Rows.push_back({m_Length, {}});
}

// A position within a glyph, between a character and its mark, has the glyph's place.
TextLayout::Place TextLayout::PlaceOf(int position) const
{
    const auto next = std::upper_bound(m_Rows.begin() + 1, m_Rows.end(), position,
                                       [](int pos, const Row& row) { return pos < row.position; });
    const auto row = next - 1;
    int column = 0;
    for (const Glyph& glyph : row->glyphs) {
        if (glyph.position + glyph.length > position)
            break;
        column += glyph.width;
    }
    return {static_cast<int>(row - m_Rows.begin()), column};
}

int TextLayout::PositionAt(Place place) const
{
    const int last = static_cast<int>(m_Rows.size()) - 1;
    const int index = std::clamp(place.row, 0, last);
    const Row& row = m_Rows[static_cast<std::size_t>(index)];
    int column = 0;
    for (const Glyph& glyph : row.glyphs) {
        column += glyph.width;
        if (column > place.column)
            return glyph.position;
    }
    if (index == last)
        return m_Length;
    // The gap behind a full row is the beginning of the next one.
    return row.glyphs.empty() ? row.position : row.glyphs.back().position;
}
