#ifndef TOVO_EDIT_GLYPHS_H
#define TOVO_EDIT_GLYPHS_H

#include <cstddef>
#include <string>
#include <vector>

#include <TovoPlatform/WideString.h>

// What a text looks like on a terminal, in columns of its cells.

// A character with the marks that combine with it.
struct Glyph {
    int position; // in the text, in 16-bit characters
    int length;
    int width; // 1 or 2 columns
    std::wstring characters;
};

// Has U+FFFD for what would steer the terminal or cannot be shown.
std::vector<Glyph> GlyphsOf(const CString& text);

int WidthOf(const CString& text);

// The part of a text that fits into so many columns.
CString Clipped(const CString& text, int width);

// The text filled up with blanks to a width, or clipped to it.
CString Padded(const CString& text, int width);

// A text for people in lines of a width, broken at blanks where it can be, and clipped to so many
// lines.
std::vector<CString> WrappedLines(const CString& text, int width, std::size_t mostLines);

// A text broken into rows of a width, wherever a row is full.
class TextLayout {
public:
    struct Row {
        int position; // where the row begins in the text
        std::vector<Glyph> glyphs;
    };
    struct Place {
        int row;
        int column;
    };

    // Requires: a width of 2 or more.
    TextLayout(const CString& text, int width);

    // At least one; the last has room for a cursor behind the text.
    const std::vector<Row>& Rows() const { return m_Rows; }
    Place PlaceOf(int position) const;
    // The position at a place, or the one nearest to it.
    int PositionAt(Place place) const;

private:
    std::vector<Row> m_Rows;
    int m_Length;
};

#endif
