#ifndef TOVOFORMULA_TESTS_MARKDOWNTABLE_H
#define TOVOFORMULA_TESTS_MARKDOWNTABLE_H

#include <string>
#include <vector>

// The documents as tests read them: what stands in them as a table or as code is held to be true.

namespace tovo::test {

// The text of a file in docs/. A file that cannot be read throws std::runtime_error.
std::string ReadDocument(const std::string& name);

struct MarkdownRow {
    int line; // in the document, counted from 1
    std::vector<std::string> cells;
};

// The rows of all tables in the document whose header has exactly these cells. A cell is trimmed,
// loses the backticks around it, and has | where the document has \|.
std::vector<MarkdownRow> RowsOfTables(const std::string& document,
                                      const std::vector<std::string>& header);

// The fenced blocks of that language, without their fences.
std::vector<std::string> CodeBlocks(const std::string& document, const std::string& language);

} // namespace tovo::test

#endif
