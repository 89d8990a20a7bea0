#include "ExpressionFixture.h"

#include <cctype>
#include <map>

namespace tovo::test {

namespace {

// clang-format off
const std::map<std::string_view, int> kWords = {
    {",", TOK_COMMA}, {"(", TOK_LPAREN}, {")", TOK_RPAREN},
    {"+", TOK_PLUS}, {"-", TOK_MINUS}, {"*", TOK_TIMES}, {"/", TOK_DIVIDE},
    {"=", TOK_EQ_SIGN}, {">=", TOK_GE_SIGN}, {"<=", TOK_LE_SIGN},
    {"<>", TOK_NE_SIGN}, {">", TOK_GT_SIGN}, {"<", TOK_LT_SIGN},
    {"EQ", TOK_EQ}, {"GE", TOK_GE}, {"LE", TOK_LE}, {"NE", TOK_NE}, {"GT", TOK_GT}, {"LT", TOK_LT},
    {"AND", TOK_AND}, {"OR", TOK_OR}, {"NOT", TOK_NOT},
    {"DURATION", TOK_DURATION}, {"JOBSIZE", TOK_JOBSIZE}, {"QUANTITY", TOK_QUANTITY},
    {"YES", TOK_YES}, {"NO", TOK_NO}, {"PI", TOK_PI},
    {"ABS", TOK_ABS}, {"ACOS", TOK_ACOS}, {"ASIN", TOK_ASIN}, {"ATAN", TOK_ATAN},
    {"AVG", TOK_AVG}, {"COS", TOK_COS}, {"COSH", TOK_COSH}, {"IF", TOK_IF}, {"MAX", TOK_MAX},
    {"MIN", TOK_MIN}, {"MOD", TOK_MOD}, {"POWER", TOK_POWER}, {"ROUND", TOK_ROUND},
    {"ROUNDTO", TOK_ROUNDTO}, {"SIN", TOK_SIN}, {"SINH", TOK_SINH}, {"SQRT", TOK_SQRT},
    {"SUM", TOK_SUM}, {"TAN", TOK_TAN}, {"TANH", TOK_TANH}, {"TRUNC", TOK_TRUNC},
    {"group", TOK_GROUP},
};
// clang-format on

bool IsReference(std::string_view word)
{
    return word.starts_with("V:") || word.starts_with("F:") || word.starts_with("T:");
}

int CodeOfReference(char letter)
{
    if (letter == 'V')
        return TOK_VARIABLE;
    return letter == 'F' ? TOK_FORMULA : TOK_FORMTBL;
}

// A reference stands in a text with a blank on either side of its name.
CString TextOf(std::string_view word)
{
    if (IsReference(word))
        return CString(' ' + std::string(word.substr(2)) + ' ');
    return CString(word);
}

// What stands before the first of the separators, which is taken out with it.
std::string_view TakeUntil(std::string_view separators, std::string_view& text)
{
    const std::size_t end = text.find_first_of(separators);
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return taken;
}

std::string_view WithoutOuterBlanks(std::string_view text)
{
    const std::size_t start = text.find_first_not_of(' ');
    if (start == std::string_view::npos)
        return {};
    return text.substr(start, text.find_last_not_of(' ') - start + 1);
}

} // namespace

std::vector<Row> RowsOf(std::string_view table)
{
    constexpr std::string_view arrow = "->";
    std::vector<Row> rows;
    while (!table.empty()) {
        const std::string_view row = WithoutOuterBlanks(TakeUntil(";\n", table));
        const std::size_t end = row.find(arrow);
        if (end != std::string_view::npos)
            rows.push_back({std::string(WithoutOuterBlanks(row.substr(0, end))),
                            std::string(WithoutOuterBlanks(row.substr(end + arrow.size())))});
        else
            EXPECT_EQ(row, "") << "a row without a result";
    }
    return rows;
}

int CodeOf(std::string_view word)
{
    if (IsReference(word))
        return CodeOfReference(word.front());
    if (word.front() == '.' || std::isdigit(static_cast<unsigned char>(word.front())))
        return TOK_NUMBER;
    const auto found = kWords.find(word);
    return found == kWords.end() ? TOK_ILLEGAL : found->second;
}

int ExpressionTest::Insert(std::string_view word, int nested)
{
    return m_Tree.InsertToken(CodeOf(word), TextOf(word), 0, nested);
}

std::string ExpressionTest::Fault(const std::string& place) const
{
    const std::string message = std::to_string(m_Tree.GetMsg());
    const std::string record = Dump(m_Set.m_Tracker);
    if (record.starts_with(message + ' '))
        return message + place + record.substr(message.size());
    return message + place + ", " + record;
}

std::string ExpressionTest::Load(std::string_view words, int nested)
{
    m_Tree.Clear();
    for (int place = 0; !words.empty(); ++place) {
        if (!Insert(TakeUntil(" ", words), nested))
            return Fault(" at " + std::to_string(place));
    }
    return m_Tree.EndOfExpression() ? Dump(m_Tree) : Fault(" at end");
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
