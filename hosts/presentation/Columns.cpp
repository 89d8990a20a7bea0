#include "Columns.h"

#include <algorithm>

namespace {

// Besides the control characters these are the line separators, and the marks that turn the
// direction of writing: with them a name could make a line read as something that it does not say.
bool IsControl(char16_t character)
{
    const bool isDirection = (character >= 0x202A && character <= 0x202E) ||
                             (character >= 0x2066 && character <= 0x2069);
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x2028 ||
           character == 0x2029 || isDirection;
}

} // namespace

std::string Printable(const CString& text)
{
    WideText printable(text.View());
    std::replace_if(printable.begin(), printable.end(), IsControl, u'\uFFFD');
    return CString(std::move(printable)).ToUtf8();
}

std::string Printable(std::string_view text)
{
    // Most texts are of nothing but these.
    if (std::all_of(text.begin(), text.end(), [](char byte) { return byte >= ' ' && byte < 0x7F; }))
        return std::string(text);
    return Printable(CString(text));
}

std::string Trimmed(std::string text)
{
    text.erase(text.find_last_not_of(' ') + 1);
    text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
    return text;
}

// Every byte but those that continue a code point begins one.
std::size_t WidthOf(std::string_view text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string Columns::Print() const
{
    std::vector<std::size_t> widths(m_Alignment.size(), 0);
    for (const auto& row : m_Rows) {
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], WidthOf(row[column]));
    }

    std::string lines;
    for (const auto& row : m_Rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            const std::size_t padding = widths[column] - WidthOf(row[column]);
            const bool isRight = m_Alignment[column] == 'r';
            line.append(isRight ? padding + 2 : 2, ' ');
            line += row[column];
            if (!isRight && column + 1 < row.size())
                line.append(padding, ' ');
        }
        // What pads empty cells at the end would only make lines break on a narrow terminal.
        line.erase(line.find_last_not_of(' ') + 1);
        lines += line + "\n";
    }
    return lines;
}
