#include <algorithm>
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

// The lines between "[guide: ...]" and "[end]" are those of the code blocks of docs/host-guide.md.

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

TEST_F(HostGuide, CodeIsWhatIsCompiledHere)
{
    std::vector<std::string> blocks = CodeBlocks(ReadDocument("host-guide.md"), "cpp");
    std::vector<std::string> regions =
        GuideRegions(ReadDocument("../tests/docs/HostGuideTest.cpp"));
    std::sort(blocks.begin(), blocks.end());
    std::sort(regions.begin(), regions.end());
    EXPECT_EQ(blocks, regions);
    EXPECT_GE(blocks.size(), 10u);
}

TEST_F(HostGuide, FirstCalculation)
{
    // [guide: start]
    InitTovoFormulaDLL(); // once, before the first expression

    CalcSetImpl job;
    VariableImpl width(&job, "Width", 2.5);
    job.AddVariable(&width); // by the name that it has now
    job.SetQuantity(3);

    FormulaImpl area(&job, "Area", "V(Width)*QUANTITY");
    job.AddFormula(&area);

    unsigned int message = MSG_NONE;
    const double value = area.Calculate(message, nullptr) ? area.GetValue() : 0.0; // 7.5
    // [end]
    EXPECT_EQ(value, 7.5);

    using namespace std::string_view_literals;
    // [guide: texts]
    const std::string typed = "Länge"; // UTF-8
    VariableImpl length(&job);
    length.SetName(typed); // or u"Länge", "Länge", a view, another CString
    job.AddVariable(&length);

    std::string found;
    if (job.GetVarObj(typed, 1, 0)->GetName() == u"Länge"sv)
        found = fmt::format("{:>6}", length.GetName()); // with TovoPlatform/Fmt.h
    std::ostringstream out;
    out << length.GetName() << ":" << found; // Länge: Länge
    // [end]
    EXPECT_EQ(out.str(), "Länge: Länge");
}

TEST_F(HostGuide, TypingAndMarking)
{
    CalcSetImpl job;
    VariableImpl width(&job);
    Put(job, width, u"Width", 2.5);
    // [guide: typing]
    CFmlaExpression typed(job);
    const bool isTaken = typed.InsertString(u"2*(+1", 0) &&
                         typed.InsertVariable(u"Width", 3, TOK_VARIABLE); // 2*( Width +1
    const int cursor = typed.FixPos(6, FD_LEFT); // 3: never inside a reference
    // [end]
    EXPECT_TRUE(isTaken);
    EXPECT_EQ(typed.GetTextStr().ToUtf8() + typed.GetPtrStr().ToUtf8(), "2*( Width +13,7,0,");
    EXPECT_EQ(cursor, 3);
    EXPECT_EQ(typed.InsertString(u"x", 6), 0);
    std::string shown;
    // [guide: marking]
    unsigned int message = MSG_NONE;
    if (!typed.IsValid(message, u"Total", 1)) {
        CString words;
        if (!words.LoadString(message)) // 10732, 10846 and 10847 have no text
            words = u"This formula cannot be calculated.";
        shown = words.ToUtf8();                         // Right parenthesis expected.
        shown += std::to_string(typed.GetInvalidPos()); // 11, the place of the 1
    }
    // [end]
    EXPECT_EQ(shown, "Right parenthesis expected.11");
    // [guide: delete]
    int wholeReference = 0;
    typed.DeleteChars(3, 3, &wholeReference); // the Delete key: 2*(+1
    // [end]
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
    // [guide: chain]
    unsigned int message = MSG_NONE;
    if (!outer.IsValid(message, 1)) { // 6628, unexpected operator
        const CCalcErrorTracker& tracker = job.ErrorTracker();
        for (int index = 0; index < tracker.NumObjs(); ++index)
            chain += tracker.GetStr(index).ToUtf8() + "; ";
    } // token: *; Formula: Inner; Formula: Outer;
    // [end]
    EXPECT_EQ(message, MSG_UNEXPECTED_OPERATOR);
    EXPECT_EQ(chain, "token: *; Formula: Inner; Formula: Outer; ");
    EXPECT_EQ(outer.GetExpression().GetInvalidPos() * 10 + inner.GetExpression().GetInvalidPos(),
              22);
}

TEST_F(HostGuide, PlacesAreThoseOfTheTable)
{
    CalcSetImpl job;
    const std::vector<MarkdownRow> rows = RowsOfTables(
        ReadDocument("host-guide.md"), {"Encoded string", "Message", "Place", "What it marks"});
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
    // [guide: set]
    CalcSetImpl shop;
    shop.SetReportFcnDomainErrors(1); // 1/0 is an error, not 0
    shop.SetHasDatabase(1);           // operands may refer to formulas
    // [end]
    CalcSetImpl job;
    CFmlaExpression tolerant(job), strict(shop);
    for (CFmlaExpression* expression : {&tolerant, &strict})
        expression->SetFromEncodedString("IF(V(x)=0,0,1/V(x))");
    EXPECT_EQ(tolerant.IsValid(), 1);
    EXPECT_EQ(strict.IsValid(), 0);
    EXPECT_EQ(strict.GetMessageNum(), 6604);

    FormulaImpl area(&shop);
    Put(shop, area, u"Area", "7");
    // [guide: operand]
    CalculationOperand operand(shop);
    const bool done = operand.LoadEncodedExpression("F(Area)") && // one reference, so no expression
                      operand.IsFormula() && operand.Calculate();
    area.SetCalculated(1); // the host says that the value of its formula is current
    const double value = done ? operand.GetValue() : 0.0; // 7
    // [end]
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
    // [guide: scan]
    unsigned int message = MSG_NONE;
    if (!price.IsValid(message, 1)) // a scan walks the tree that a check has built
        return;
    CScannedVariables met;
    job.StartNewPass();
    price.GetVariables(met, 0, 1); // what a calculation reaches; 1, 1 for the whole text
    for (const CString& name : met.VariableList())
        found += name.ToUtf8() + (job.GetVarObj(name, 1, 0)->InCond() ? "* " : " ");
    // Width* Limit*
    // [end]
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
    // [guide: table]
    FormulaTableImpl rate(&job, 2, 1); // up to 5 kg, and above
    rate.SetName("Rate");
    rate.GetRowSelector().SetVariable(u"Weight");
    rate.SetRowLimit(0, 5);
    rate.SetRowLimit(1, 20); // must rise, though everything above 5 falls here
    rate.SetCell(0, 0, new CFormtblElem("4500", job)); // 4.5, in thousandths
    rate.SetCell(1, 0, new CFormtblElem("VWeight", job));
    job.AddFormulaTable(&rate);
    // [end]
    unsigned int message = MSG_NONE;
    EXPECT_EQ(postage.Calculate(message, nullptr), 1);
    EXPECT_EQ(postage.GetValue(), 9.0);
    // [guide: pass]
    const auto calculated = [&] {
        return postage.Calculate(message, nullptr) ? postage.GetValue() : 0.0;
    };
    weight.SetValue(30);
    const double before = calculated(); // 9: the table answers from its flag
    job.StartNewPass();
    const double after = calculated(); // 60
    // [end]
    EXPECT_EQ(before, 9.0);
    EXPECT_EQ(after, 60.0);
}

TEST_F(HostGuide, Renaming)
{
    CalcSetImpl job;
    FormulaImpl area(&job), cost(&job);
    Put(job, area, u"Area", "7");
    Put(job, cost, u"Cost", "F(Area)*V(Area)");
    // [guide: rename]
    const CString newName = u"Floor area";
    area.SetName(newName);
    job.RemoveFormula(&area); // the entry under the old name
    job.AddFormula(&area);
    for (const auto& [name, formula] : job.Formulas())
        formula->GetExpression().ChangeFormulaInExpression(u"Area", newName);
    // [end]
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
    // [guide: entries]
    for (const auto& [name, formula] : job.Formulas())
        formula->SetCalculated(0);
    for (const auto& [name, variable] : job.MissingVariables())
        unknown += name.ToUtf8() + " ";

    job.RemoveFormula("Cost");  // by its name
    job.RemoveVariable(&width); // under whatever names it is there
    // [end]
    EXPECT_EQ(cost.GetCalculated(), 0);
    EXPECT_EQ(unknown, "Wage ");
    EXPECT_TRUE(job.Variables().IsEmpty() && job.Formulas().IsEmpty());
}

TEST_F(HostGuide, OwnVariable)
{
    // [guide: own]
    class Clock : public IVarObj {
    public:
        void Tick() { ++m_Seconds; }

        CString& GetName() override { return m_Name; }
        void SetName(CString& name) override { m_Name = name; }
        double GetValue() override { return m_Seconds; } // the same throughout a pass
        void SetValue(double) override {}
        void SetInCond(int inCondition) override { m_InCond = inCondition; }
        bool IsNumeric() override { return true; }
        bool IsBoolean() override { return false; }
        CString& GetUnit(long) override { return m_Unit; }
        int InCond() override { return m_InCond; }
        VALUETYPE GetType() override { return VALUE_NUMERIC; }

    private:
        CString m_Name = u"Clock";
        CString m_Unit = u"s";
        double m_Seconds = 0;
        int m_InCond = 0;
    };

    class Plant : public CalcSetImpl {
    public:
        explicit Plant(Clock& clock) : m_Clock(clock) {}

        IVarObj* GetVarObj(CExString name, int flag, long key) override
        {
            return name == m_Clock.GetName() ? &m_Clock : CalcSetImpl::GetVarObj(name, flag, key);
        }

    private:
        Clock& m_Clock;
    };
    // [end]
    Clock clock;
    Plant plant(clock);
    FormulaImpl below(&plant), shift(&plant);
    Put(plant, below, u"Below", "V(Clock)*2");
    Put(plant, shift, u"Shift", "F(Below)+V(Unknown)");
    unsigned int message = MSG_NONE;
    // [guide: note]
    CalculationPass pass;
    const double early = shift.Calculate(message, nullptr) ? shift.GetValue() : -1.0; // 0
    clock.Tick();
    pass.NoteHostChange();
    const double late = shift.Calculate(message, nullptr) ? shift.GetValue() : -1.0; // 2
    // [end]
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
    // [guide: held]
    width.SetValue(4);
    job.StartNewPass(); // the flags of tables, see below
    {
        CalculationPass pass;
        for (FormulaImpl* formula : formulas)
            if (!formula->Calculate(message, nullptr))
                faults.push_back(formula);
    }
    // [end]
    EXPECT_EQ(cost.GetValue(), 40.0);
    EXPECT_EQ(area.GetValue(), 20.0);
    EXPECT_EQ(faults, std::vector<FormulaImpl*>{&wrong});
}

TEST_F(HostGuide, SetWithStockLookup)
{
    // [guide: lookup]
    class Estimate : public CalcSetImpl {
    public:
        Estimate() { UseStockLookup(); }

        double GetQuantity() override { return m_Pieces; } // asked as before

        int m_Pieces = 1;
    };
    // [end]
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
        // [guide: language]
        static constexpr AfxStringResource kGerman[] = {{TOKEN_NAME_IF, u"WENN"},
                                                        {TOKEN_NAME_YES, u"JA"}};
        AFX_EXTENSION_MODULE record;
        if (!AfxInitExtensionModule(record, kGerman, std::size(kGerman)))
            return; // an id stands there twice
        std::optional<CDynLinkLibrary> german;
        ConvertExpressions(job, [&] {
            german.emplace(record); // in force as long as it lives
            SetLocaleSetting(LOCALE_SDECIMAL, u",");
            SetLocaleSetting(LOCALE_SLIST, u";");
            CFmlaExprBase::ReInitExprNames();
        }); // ROUND(1.5,0) is now ROUND(1,5;0)

        typed.SetFromEncodedString("IF(YES,1.5,2)");
        shown = typed.GetTextStr().ToUtf8(); // WENN(JA;1,5;2)
        // [end]
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
    // [guide: scope]
    static constexpr AfxStringResource kStrings[] = {
        {TOKEN_NAME_IF, u"WENN"},
        {MSG_COMMA_OR_RPAREN_EXPECTED, u"Hier fehlt eine Klammer."},
        {MSG_GENERAL_FAILURE, u"Das ist nicht zu berechnen."}, // has no English text
    };
    const FormulaLanguage german(kStrings, u",", u";"); // once, for all threads
    {
        const LanguageScope scope(german); // in each request of an author who writes German
        CFmlaExpression typed(job);
        typed.SetExpr(u"WENN(1,5>1;2");
        CString words;
        if (!typed.IsValid() && words.LoadString(static_cast<UINT>(typed.GetMessageNum())))
            shown = words.ToUtf8();
    }
    ConvertExpressions(job, german); // the job goes to an author who writes German
    // [end]
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

    // [guide: rich text]
    RtfDocument document(u"Arial", 22); // 11 points
    document.AddText(area.GetName() + u" = ");
    document.AddExpression(area.GetExpression());
    document.EndParagraph();
    const std::string file = document.GetRTFString().ToUtf8();
    // [end]
    EXPECT_NE(file.find(R"(\{Area\} = )"), std::string::npos) << file;
    EXPECT_NE(file.find(R"(\cf1\b\ul  Width )"), std::string::npos) << file;
}

} // namespace

} // namespace tovo::test
