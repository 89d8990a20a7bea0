#include <set>
#include <string>
#include <vector>

#include <expression_text/Texts.h>

#include "DocumentJob.h"
#include "MarkdownTable.h"

namespace tovo::test {
namespace {

class LanguageDocument : public DocumentJob {
protected:
    LanguageDocument() : m_Document(ReadDocument("language.md"))
    {
        m_Set.ReportDomainErrors();
        MakeJob(m_Document);
        const auto rows = Rows({"Width up to", "Rate"});
        FormulaTableImpl& rate = Table("Rate", "VWidth", {"", "", ""});
        for (int row = 0; row < 3; ++row) {
            const auto& cells = rows.at(static_cast<std::size_t>(row)).cells;
            rate.SetRowLimit(row, row < 2 ? std::stod(cells.at(0)) : 1e9);
            rate.GetCell(row, 0)->XSetName(CString(cells.at(1)));
        }
    }

    // A table that is not found is a fault, or nothing would be tested.
    std::vector<MarkdownRow> Rows(const std::vector<std::string>& header) const
    {
        auto rows = RowsOfTables(m_Document, header);
        EXPECT_GE(rows.size(), 3u) << header[0];
        return rows;
    }

    void ExpectMessages(const std::vector<MarkdownRow>& rows)
    {
        for (const auto& row : rows) {
            const unsigned int message = OutcomeOf(row.cells.at(0)).message;
            EXPECT_EQ(std::to_string(message), row.cells.at(1))
                << "line " << row.line << ": " << row.cells[0];
            EXPECT_EQ(MessageText(message), row.cells.at(2)) << "line " << row.line;
        }
    }

    std::set<int> ElementsOf(const std::string& text) const
    {
        CFmlaExprBase expression;
        Type(expression, text);
        std::set<int> codes;
        CString token;
        int code = TOK_ILLEGAL;
        for (int pos = 0; expression.FindNextToken(token, code, pos, TL_ENGLISH);)
            codes.insert(code);
        return codes;
    }

    const std::string m_Document;
};

TEST_F(LanguageDocument, EachExampleHasItsValue)
{
    for (const auto& row : Rows({"Expression", "Value"})) {
        const Outcome outcome = OutcomeOf(row.cells.at(0));
        EXPECT_EQ(outcome.value, row.cells.at(1))
            << "line " << row.line << ": " << row.cells[0] << ", message " << outcome.message;
    }
}

TEST_F(LanguageDocument, EachFaultHasItsMessage)
{
    ExpectMessages(Rows({"Expression", "Message", "Text"}));
}

TEST_F(LanguageDocument, EachElementHasAnExample)
{
    std::set<int> shown = {TOK_ILLEGAL, TOK_GROUP};
    for (const auto& row : Rows({"Expression", "Value"}))
        shown.merge(ElementsOf(row.cells.at(0)));
    for (int code = 0; code < kTokenCount; ++code) {
        CString name;
        CFmlaExprBase::GetTokenString(code, name);
        EXPECT_TRUE(shown.contains(code)) << "element " << code << ": " << name.ToUtf8();
    }
}

TEST_F(LanguageDocument, EachFunctionTakesTheArgumentsTold)
{
    std::multiset<int> told = {TOK_GROUP};
    for (const auto& row : Rows({"Function", "Arguments", "Result", "Fails"})) {
        const std::set<int> codes = ElementsOf(row.cells.at(0).substr(0, row.cells[0].find('(')));
        ASSERT_EQ(codes.size(), 1u) << "line " << row.line;
        const int code = *told.insert(*codes.begin());
        const int least = CExprToken::GetTokCodeMinArgs(code);
        const int most = CExprToken::GetTokCodeMaxArgs(code);
        const std::string joined = (most - least == 1 ? " or " : " to ") + std::to_string(most);
        EXPECT_EQ(row.cells[1], std::to_string(least) + (least == most ? "" : joined))
            << row.cells[0];
    }
    for (int code = 0; code < kTokenCount; ++code)
        EXPECT_EQ(told.count(code), CExprToken::GetTokCodeType(code) == TT_FUNCTION) << code;
}

TEST_F(LanguageDocument, GermanTextMeansTheSameAsTheEnglishOne)
{
    const UserLanguage german(",", ";");
    for (const auto& row : Rows({"German", "English", "Value"})) {
        EXPECT_EQ(OutcomeOf(row.cells.at(0)).value, row.cells.at(2)) << "line " << row.line;
        CFmlaExprBase expression;
        Type(expression, row.cells[0]);
        expression.TranslateText(TL_ENGLISH);
        EXPECT_EQ(expression.GetTextStr().ToUtf8(), row.cells[1]) << "line " << row.line;
    }
    ExpectMessages(Rows({"German", "Message", "Text"}));
}

} // namespace
} // namespace tovo::test
