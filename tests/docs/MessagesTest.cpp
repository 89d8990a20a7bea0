#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "DocumentJob.h"
#include "MarkdownTable.h"

namespace tovo::test {
namespace {

using Ids = std::set<unsigned int>;

unsigned int IdIn(const MarkdownRow& row)
{
    return static_cast<unsigned int>(std::stoul(row.cells.at(0)));
}

Ids IdsOf(const std::vector<MarkdownRow>& rows)
{
    Ids ids;
    for (const auto& row : rows)
        ids.insert(IdIn(row));
    return ids;
}

Ids IdsInHeader()
{
    const std::string header = ReadDocument("../include/TovoFormula/MessageIds.h");
    const std::regex entry("MSG_\\w+ = (\\d+)");
    Ids ids;
    for (std::sregex_iterator found(header.begin(), header.end(), entry), end; found != end;
         ++found)
        ids.insert(static_cast<unsigned int>(std::stoul((*found)[1])));
    ids.erase(MSG_NONE);
    return ids;
}

class Messages : public DocumentJob {
protected:
    Messages()
    {
        const std::string document = ReadDocument("messages.md");
        MakeJob(document);
        m_Told = RowsOfTables(document, {"Id", "Text", "When it comes"});
        m_Expressions = RowsOfTables(document, {"Id", "Expression", "Position"});
        m_Situations = RowsOfTables(document, {"Id", "Situation"});
    }

    unsigned int OnTable(const CString& rowSelector, const char* cell)
    {
        return MessageOfCheck(Table("T", rowSelector, {cell, "1000"}), 1);
    }
    // Of a table without cells.
    unsigned int OnLimits(const std::vector<double>& rows, const std::vector<double>& columns)
    {
        FormulaTableImpl table(&m_Set, 3, 3);
        for (int index = 0; index < 3; ++index) {
            table.SetRowLimit(index, rows[static_cast<std::size_t>(index)]);
            table.SetColumnLimit(index, columns[static_cast<std::size_t>(index)]);
        }
        return MessageOfCheck(table, 1);
    }
    unsigned int OnIllegalElement()
    {
        CExprTree tree(m_Set);
        return tree.InsertToken(TOK_ILLEGAL, "?", 0, 0) ? 0 : tree.GetMsg();
    }
    unsigned int OnRowOfFormulas(int count)
    {
        FormulaImpl* first = &Formula("Step 1", "1");
        for (int step = 2; step <= count; ++step) {
            const CString before("F(Step " + std::to_string(step - 1) + ")");
            first = &Formula(CString("Step " + std::to_string(step)), before);
        }
        return MessageOfCheck(*first, 1);
    }
    unsigned int OnOperand(bool (CalculationOperand::*load)(CString&))
    {
        CalculationOperand operand(m_Set);
        CString name("Lost");
        return (operand.*load)(name) ? 0 : operand.GetMsgId();
    }

    std::vector<MarkdownRow> m_Told, m_Expressions, m_Situations;
};

TEST_F(Messages, EachIdIsToldOnceWithItsText)
{
    EXPECT_EQ(IdsOf(m_Told), IdsInHeader());
    EXPECT_EQ(m_Told.size(), IdsInHeader().size());
    for (const auto& row : m_Told)
        EXPECT_EQ(row.cells.at(1), MessageText(IdIn(row))) << "line " << row.line;
}

TEST_F(Messages, EachExpressionRaisesItsIdAtItsPosition)
{
    m_Set.ReportDomainErrors();
    for (const auto& row : m_Expressions) {
        const Outcome outcome = OutcomeOf(row.cells.at(1));
        EXPECT_EQ(outcome.message, IdIn(row)) << "line " << row.line << ": " << row.cells[1];
        EXPECT_EQ(std::to_string(outcome.position), row.cells.at(2)) << "line " << row.line;
    }
}

TEST_F(Messages, FailureOnTheDomainIsSilentUnlessTheSetReportsIt)
{
    for (const auto& row : m_Expressions) {
        const Ids onTheDomain = {6604, 6605, 6611, 6613};
        const unsigned int message = onTheDomain.contains(IdIn(row)) ? 0 : IdIn(row);
        EXPECT_EQ(OutcomeOf(row.cells.at(1)).message, message) << "line " << row.line;
    }
}

TEST_F(Messages, EachSituationRaisesItsId)
{
    ASSERT_EQ(OnRowOfFormulas(1000), MSG_NONE);
    const std::map<std::string, unsigned int> raised = {
        {"A host inserts an illegal element into a tree of its own.", OnIllegalElement()},
        {"A cell of a table holds the table itself.", OnTable("1000", "TT")},
        {"A selector of a table holds a table that is missing.", OnTable("TGone", "1000")},
        {"More than 1000 formulas refer to one another in a row.", OnRowOfFormulas(1001)},
        {"The column limits of a table are 5, 5 and 9.", OnLimits({1, 2, 3}, {5, 5, 9})},
        {"The row limits of a table are 1, 2 and 2.", OnLimits({1, 2, 2}, {5, 6, 9})},
        {"A cell of a table was never set.", OnLimits({1, 2, 3}, {5, 6, 0})},
        {"An operand is loaded with a formula that is missing.",
         OnOperand(&CalculationOperand::LoadFormula)},
        {"An operand is loaded with a table that is missing.",
         OnOperand(&CalculationOperand::LoadFormulaTable)},
    };
    std::map<std::string, unsigned int> told;
    for (const auto& row : m_Situations)
        told.emplace(row.cells.at(1), IdIn(row));
    EXPECT_EQ(raised, told);
}

TEST_F(Messages, EachIdIsRaisedOrNeverRaised)
{
    Ids raised = IdsOf(m_Expressions);
    raised.merge(IdsOf(m_Situations));
    for (const auto& row : m_Told)
        EXPECT_NE(raised.contains(IdIn(row)), row.cells.at(2).starts_with("Never")) << IdIn(row);
}

} // namespace
} // namespace tovo::test
