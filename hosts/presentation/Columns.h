#ifndef TOVO_PRESENTATION_COLUMNS_H
#define TOVO_PRESENTATION_COLUMNS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <TovoPlatform/WideString.h>

// Texts in UTF-8 for people to read. A width counts code points.

// The text with U+FFFD in place of each control character and of broken UTF-8, since names and
// messages come from files and must not steer the terminal.
std::string Printable(std::string_view text);
std::string Printable(const CString& text);

// The text without the blanks that it has around a reference at either end.
std::string Trimmed(std::string text);

std::size_t WidthOf(std::string_view text);

// Rows of cells that print as aligned columns.
class Columns {
public:
    // A column for each letter: 'l' flush left, 'r' flush right.
    explicit Columns(std::string alignment) : m_Alignment(std::move(alignment)) {}

    // Requires: a cell for each column.
    void AddRow(std::vector<std::string> cells) { m_Rows.push_back(std::move(cells)); }
    // One line for each row, each with an indentation and without trailing blanks.
    std::string Print() const;

private:
    std::string m_Alignment;
    std::vector<std::vector<std::string>> m_Rows;
};

#endif
