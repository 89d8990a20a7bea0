#include "MarkdownTable.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace tovo::test {
namespace {

std::string CellOf(std::string text)
{
    constexpr const char* kBlank = " \t";
    text.erase(0, text.find_first_not_of(kBlank));
    text.erase(text.find_last_not_of(kBlank) + 1);
    const bool isCode = text.size() >= 2 && text.front() == '`' && text.back() == '`';
    return isCode ? text.substr(1, text.size() - 2) : text;
}

// The cells of a line of a table; none if the line is none.
std::vector<std::string> CellsOf(const std::string& line)
{
    std::vector<std::string> cells;
    if (!line.starts_with('|'))
        return cells;
    std::string cell;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '\\' && i + 1 < line.size() && line[i + 1] == '|') {
            cell += line[++i];
        } else if (line[i] == '|') {
            cells.push_back(CellOf(std::exchange(cell, {})));
        } else {
            cell += line[i];
        }
    }
    return cells;
}

} // namespace

std::string ReadDocument(const std::string& name)
{
    const std::string path = std::string(TOVO_DOCS) + "/" + name;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error(path + " cannot be read");
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<MarkdownRow> RowsOfTables(const std::string& document,
                                      const std::vector<std::string>& header)
{
    std::vector<MarkdownRow> rows;
    std::istringstream lines(document);
    std::string line;
    // The line under a header draws a rule.
    enum { Outside, AtRule, Inside } place = Outside;
    for (int number = 1; std::getline(lines, line); ++number) {
        std::vector<std::string> cells = CellsOf(line);
        if (cells.empty())
            place = Outside;
        else if (place == Inside)
            rows.push_back({number, std::move(cells)});
        else if (place == AtRule)
            place = Inside;
        else if (cells == header)
            place = AtRule;
    }
    return rows;
}

std::vector<std::string> CodeBlocks(const std::string& document, const std::string& language)
{
    std::vector<std::string> blocks;
    std::istringstream lines(document);
    std::string line;
    bool isInside = false;
    while (std::getline(lines, line)) {
        if (isInside && line == "```") {
            isInside = false;
        } else if (isInside) {
            blocks.back() += line + "\n";
        } else if (line == "```" + language) {
            isInside = true;
            blocks.emplace_back();
        }
    }
    return blocks;
}

} // namespace tovo::test
