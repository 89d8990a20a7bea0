#include "ExpressionFixture.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <sstream>

namespace tovo::test {

namespace {

// Each word at its code.
// clang-format off
constexpr std::string_view kWords[] = {
    "V", "F", "T", "#", "0", ",", "(", ")", "+", "-", "*", "/", "=", ">=", "<=", "<>", ">", "<",
    "AND", "DURATION", "EQ", "GE", "GT", "JOBSIZE", "LE", "LT", "NE", "NO", "NOT", "OR", "PI",
    "QUANTITY", "YES", "ABS", "ACOS", "ASIN", "ATAN", "AVG", "COS", "COSH", "group", "IF", "MAX",
    "MIN", "MOD", "POWER", "ROUND", "ROUNDTO", "SIN", "SINH", "SQRT", "SUM", "TAN", "TANH",
    "TRUNC"};
// clang-format on
static_assert(std::size(kWords) == kTokenCount);

bool IsReference(std::string_view word)
{
    return word.size() > 1 && word[1] == ':';
}

std::string WithoutOuterBlanks(std::string_view text)
{
    const std::size_t start = std::min(text.find_first_not_of(' '), text.size());
    return std::string(text.substr(start, text.find_last_not_of(' ') + 1 - start));
}

} // namespace

std::vector<Row> RowsOf(std::string_view table)
{
    std::string text(table);
    std::ranges::replace(text, '\n', ';');
    std::istringstream cells(text);
    std::vector<Row> rows;
    while (std::getline(cells, text, ';')) {
        const std::size_t end = text.find("->");
        EXPECT_EQ(end == text.npos, WithoutOuterBlanks(text).empty()) << text << " has no result";
        if (end != text.npos)
            rows.push_back({WithoutOuterBlanks(text.substr(0, end)),
                            WithoutOuterBlanks(text.substr(end + 2))});
    }
    return rows;
}

int CodeOf(std::string_view word)
{
    if (word[0] == '.' || std::isdigit(static_cast<unsigned char>(word[0])))
        return TOK_NUMBER;
    const auto found = std::ranges::find(kWords, IsReference(word) ? word.substr(0, 1) : word);
    return found == std::end(kWords) ? TOK_ILLEGAL : static_cast<int>(found - kWords);
}

int ExpressionTest::Insert(std::string_view word, int nested)
{
    // A reference stands in a text with a blank on either side of its name.
    const CString text =
        IsReference(word) ? CString(' ' + std::string(word.substr(2)) + ' ') : CString(word);
    return m_Tree.InsertToken(CodeOf(word), text, 0, nested);
}

std::string ExpressionTest::Fault(const std::string& place) const
{
    constexpr std::string_view kind = "token: ";
    const CCalcErrorTracker& tracker = m_Set.m_Tracker;
    std::string object = tracker.NumObjs() == 1 ? tracker.GetStr(0).ToUtf8() : Dump(tracker);
    if (object.starts_with(kind))
        object = WithoutOuterBlanks(object.substr(kind.size()));
    const std::string message = std::to_string(m_Tree.GetMsg());
    const std::string recorded = std::to_string(tracker.GetError());
    return WithoutOuterBlanks(message + place + (recorded == message ? "" : ',' + recorded) + ' ' +
                              object);
}

std::string ExpressionTest::Load(const std::string& words, int nested)
{
    m_Tree.Clear();
    std::istringstream rest(words);
    std::string word;
    for (int place = 0; rest >> word; ++place) {
        if (!Insert(word, nested))
            return Fault('@' + std::to_string(place));
    }
    return m_Tree.EndOfExpression() ? Dump(m_Tree) : Fault("@end");
}

void ExpressionTest::ExpectLoads(std::string_view table, int nested)
{
    for (const Row& row : RowsOf(table))
        EXPECT_EQ(Load(row.input, nested), row.result) << row.input;
}

std::string ExpressionTest::Calculate(CScannedVariables* list)
{
    return m_Tree.Calculate(list) ? "" : Fault("");
}

} // namespace tovo::test
