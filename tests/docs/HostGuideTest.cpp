#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <TovoFormula/TovoFormula.h>
#include <TovoPlatform/Fmt.h>
#include <TovoPlatform/LocaleSettings.h>
#include <TovoPlatform/StringResources.h>
#include <support/Dump.h>

#include "MarkdownTable.h"

// What is included from host-guide/ is a code block of docs/host-guide.md.

namespace tovo::test {

namespace {

void Put(CalcSetImpl& job, VariableImpl& variable, const CString& name, double value)
{
    variable.SetName(name);
    variable.SetValue(value);
    job.AddVariable(&variable);
}

void Put(CalcSetImpl& job, FormulaImpl& formula, const CString& name, const CString& encoded)
{
    formula.SetName(name);
    formula.SetFromEncodedString(encoded);
    job.AddFormula(&formula);
}

// Most blocks of the guide need the messages.
class HostGuide : public testing::Test {
protected:
    HostGuide() { InitTovoFormulaDLL(); }
};

TEST_F(HostGuide, FirstCalculation)
{
#include <host-guide/start.inc>
    EXPECT_EQ(value, 7.5);

    using namespace std::string_view_literals;
#include <host-guide/texts.inc>
    EXPECT_EQ(out.str(), "Länge: Länge");
}

TEST_F(HostGuide, TypingAndMarking)
{
    CalcSetImpl job;
    VariableImpl width(&job);
    Put(job, width, u"Width", 2.5);
#include <host-guide/typing.inc>
    EXPECT_TRUE(isTaken);
    EXPECT_EQ(typed.GetTextStr().ToUtf8() + typed.GetPtrStr().ToUtf8(), "2*( Width +13,7,0,");
    EXPECT_EQ(cursor, 3);
    EXPECT_EQ(typed.InsertString(u"x", 6), 0);
    std::string shown;
#include <host-guide/marking.inc>
    EXPECT_EQ(shown, "Right parenthesis expected.11");
#include <host-guide/delete.inc>
    EXPECT_EQ(wholeReference, 1);
    EXPECT_EQ(typed.GetTextStr().ToUtf8(), "2*(+1");
    EXPECT_EQ(typed.NumVars(), 0);
}

TEST_F(HostGuide, Chain)
{
    CalcSetImpl job;
    FormulaImpl inner(&job), outer(&job);
    Put(job, inner, u"Inner", "1+*2");
    Put(job, outer, u"Outer", "2*F(Inner)");
    std::string chain;
#include <host-guide/chain.inc>
    EXPECT_EQ(message, MSG_UNEXPECTED_OPERATOR);
    EXPECT_EQ(chain, "token: *; Formula: Inner; Formula: Outer; ");
    EXPECT_EQ(outer.GetExpression().GetInvalidPos() * 10 + inner.GetExpression().GetInvalidPos(),
              22);
}

TEST_F(HostGuide, PlacesAreThoseOfTheTable)
{
    CalcSetImpl job;
    const std::vector<MarkdownRow> rows = RowsOfTables(
        ReadDocument("host-guide.md"), {"Encoded string", "Message", "Position", "What it marks"});
    EXPECT_FALSE(rows.empty());
    for (const MarkdownRow& row : rows) {
        CFmlaExpression expression(job);
        expression.SetFromEncodedString(CString(row.cells[0]));
        unsigned int message = MSG_NONE;
        EXPECT_EQ(expression.IsValid(message, u"Total", 1), 0) << row.line;
        EXPECT_EQ(std::to_string(message), row.cells[1]) << row.line;
        EXPECT_EQ(std::to_string(expression.GetInvalidPos()), row.cells[2]) << row.line;
    }
}

TEST_F(HostGuide, ChoicesOfASet)
{
#include <host-guide/set.inc>
    CalcSetImpl job;
    CFmlaExpression tolerant(job), strict(shop);
    for (CFmlaExpression* expression : {&tolerant, &strict})
        expression->SetFromEncodedString("IF(V(x)=0,0,1/V(x))");
    EXPECT_EQ(tolerant.IsValid(), 1);
    EXPECT_EQ(strict.IsValid(), 0);
    EXPECT_EQ(strict.GetMessageNum(), 6604);

    FormulaImpl area(&shop);
    Put(shop, area, u"Area", "7");
#include <host-guide/operand.inc>
    EXPECT_EQ(value, 7.0);
    area.SetCalculated(0);
    EXPECT_EQ(operand.GetValue(), 0.0);
}

TEST_F(HostGuide, Dependencies)
{
    CalcSetImpl job;
    VariableImpl width(&job), length(&job), limit(&job);
    Put(job, width, u"Width", 1);
    Put(job, length, u"Length", 1);
    Put(job, limit, u"Limit", 5);
    FormulaImpl price(&job);
    Put(job, price, u"Price", "IF(V(Width)>V(Limit),V(Length),QUANTITY)");
    std::string found;
#include <host-guide/scan.inc>
    EXPECT_EQ(found, "Width* Limit* ");
    EXPECT_EQ(met.QuantityScanned(), 1);
    CScannedVariables all;
    price.GetVariables(all, 1, 1);
    EXPECT_EQ(all.VariableList().GetCount(), 3);
    EXPECT_EQ(all.QuantityScanned(), 0) << "a static scan records names alone";
}

TEST_F(HostGuide, TableAndPass)
{
    CalcSetImpl job;
    VariableImpl weight(&job);
    Put(job, weight, u"Weight", 3.2);
    FormulaImpl postage(&job);
    Put(job, postage, u"Postage", "T(Rate)*2");
#include <host-guide/table.inc>
    unsigned int message = MSG_NONE;
    EXPECT_EQ(postage.Calculate(message, nullptr), 1);
    EXPECT_EQ(postage.GetValue(), 9.0);
#include <host-guide/pass.inc>
    EXPECT_EQ(before, 9.0);
    EXPECT_EQ(after, 60.0);
}

TEST_F(HostGuide, Renaming)
{
    CalcSetImpl job;
    FormulaImpl area(&job), cost(&job);
    Put(job, area, u"Area", "7");
    Put(job, cost, u"Cost", "F(Area)*V(Area)");
#include <host-guide/rename.inc>
    EXPECT_EQ(cost.GetExpression().GetEncodedString().ToUtf8(), "F(Floor area)*V(Area)");
    EXPECT_EQ(job.GetFormulaObj(u"Area"), nullptr);
    EXPECT_EQ(job.GetFormulaObj(newName), &area);
}

TEST_F(HostGuide, EntriesOfASet)
{
    CalcSetImpl job;
    VariableImpl width(&job, "Width", 2);
    job.AddVariable(&width);
    FormulaImpl cost(&job, "Cost", "V(Width)*V(Wage)");
    cost.SetCalculated(1);
    job.AddFormula(&cost);
    EXPECT_EQ(cost.IsValid(), 1);
    std::string unknown;
#include <host-guide/entries.inc>
    EXPECT_EQ(cost.GetCalculated(), 0);
    EXPECT_EQ(unknown, "Wage ");
    EXPECT_TRUE(job.Variables().IsEmpty() && job.Formulas().IsEmpty());
}

TEST_F(HostGuide, OwnVariable)
{
#include <host-guide/own.inc>
    Clock clock;
    Plant plant(clock);
    FormulaImpl below(&plant), shift(&plant);
    Put(plant, below, u"Below", "V(Clock)*2");
    Put(plant, shift, u"Shift", "F(Below)+V(Unknown)");
    unsigned int message = MSG_NONE;
#include <host-guide/note.inc>
    EXPECT_EQ(early, 0.0);
    EXPECT_EQ(late, 2.0);
}

TEST_F(HostGuide, HeldPass)
{
    CalcSetImpl job;
    VariableImpl width(&job);
    Put(job, width, u"Width", 1);
    FormulaImpl area(&job), cost(&job), wrong(&job);
    Put(job, area, u"Area", "V(Width)*5");
    Put(job, cost, u"Cost", "F(Area)*2");
    Put(job, wrong, u"Wrong", "F(Area)*F(Gone)");
    const std::vector<FormulaImpl*> formulas{&cost, &wrong, &area};
    std::vector<FormulaImpl*> faults;
    unsigned int message = MSG_NONE;
#include <host-guide/held.inc>
    EXPECT_EQ(cost.GetValue(), 40.0);
    EXPECT_EQ(area.GetValue(), 20.0);
    EXPECT_EQ(faults, std::vector<FormulaImpl*>{&wrong});
}

TEST_F(HostGuide, SetWithStockLookup)
{
#include <host-guide/lookup.inc>
    Estimate job;
    VariableImpl width(&job), wider(&job);
    Put(job, width, u"Width", 2);
    FormulaImpl area(&job);
    Put(job, area, u"Area", "V(Width)*QUANTITY");
    unsigned int message = MSG_NONE;
    const auto calculated = [&] { return area.Calculate(message, nullptr) ? area.GetValue() : 0; };
    EXPECT_EQ(calculated(), 2.0);
    job.m_Pieces = 3;
    EXPECT_EQ(calculated(), 6.0);
    Put(job, wider, u"Width", 5);
    EXPECT_EQ(calculated(), 15.0);
}

TEST_F(HostGuide, LanguageOfTheProcess)
{
    CalcSetImpl job;
    FormulaImpl rounded(&job, "Rounded", "ROUND(1.5,0)");
    job.AddFormula(&rounded);
    CFmlaExpression typed(job);
    std::string shown;
    {
#include <host-guide/language.inc>
        EXPECT_EQ(rounded.GetExpression().GetTextStr(), u"ROUND(1,5;0)");
        EXPECT_EQ(rounded.IsValid(), 1);
        EXPECT_EQ(typed.IsValid(), 1);
        EXPECT_EQ(typed.GetEncodedString().ToUtf8(), "IF(YES,1.5,2)");
    }
    SetLocaleSetting(LOCALE_SDECIMAL, CString());
    SetLocaleSetting(LOCALE_SLIST, CString());
    CFmlaExprBase::ReInitExprNames();
    EXPECT_EQ(shown, "WENN(JA;1,5;2)");
    EXPECT_EQ(typed.IsValid(), 0) << "a text of another language";
}

TEST_F(HostGuide, LanguageOfAThread)
{
    CalcSetImpl job;
    FormulaImpl rounded(&job, "Rounded", "ROUND(1.5,0)");
    job.AddFormula(&rounded);
    std::string shown;
#include <host-guide/scope.inc>
    EXPECT_EQ(shown, "Hier fehlt eine Klammer.");
    EXPECT_EQ(rounded.GetExpression().GetTextStr(), u"ROUND(1,5;0)");
}

TEST_F(HostGuide, IdsAreThoseOfTheTable)
{
    const std::vector<MarkdownRow> rows =
        RowsOfTables(ReadDocument("host-guide.md"), {"Id", "Constant", "English"});
    EXPECT_EQ(rows.size(), 51u);
    const std::string header = ReadDocument("../include/TovoFormula/TokenNameIds.h");
    for (const MarkdownRow& row : rows) {
        CString name;
        EXPECT_TRUE(name.LoadString(static_cast<UINT>(std::stoi(row.cells[0])))) << row.line;
        EXPECT_EQ(name, row.cells[2]) << row.line;
        EXPECT_NE(header.find(row.cells[1] + " = " + row.cells[0] + ","), std::string::npos)
            << row.line;
    }
}

TEST_F(HostGuide, RichText)
{
    CalcSetImpl job;
    FormulaImpl area(&job);
    Put(job, area, u"{Area}", u"V(Width)*2");

#include <host-guide/rich-text.inc>
    EXPECT_NE(file.find(R"(\{Area\} = )"), std::string::npos) << file;
    EXPECT_NE(file.find(R"(\cf1\b\ul  Width )"), std::string::npos) << file;
}

} // namespace

} // namespace tovo::test
