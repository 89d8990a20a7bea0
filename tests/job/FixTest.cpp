#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <expression_text/Texts.h>

#include "Jobs.h"

using namespace tovo;
using namespace tovo::test;

namespace {

Job JobWithNames()
{
    Job job;
    job.AddVariable("Length", 4).Value();
    job.AddVariable("Width", 3).Value();
    job.AddVariable("Unit price", 2).Value();
    job.AddVariable("Heated?", 1).Value();
    job.AddFormula("Area", "V(Length)*V(Width)").Value();
    job.AddFormula("Large?", "F(Area)>5").Value();
    job.AddTable(StepTable("Rate", FormulaNamed("Area"), {10, 20}, {1.0, 2.0})).Value();
    return job;
}

std::string Applied(std::string text, const std::vector<TextEdit>& edits)
{
    for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit)
        text.replace(edit->span.begin.utf8, edit->span.end.utf8 - edit->span.begin.utf8,
                     edit->replacement);
    return text;
}

const Fault* FaultOf(const std::vector<Fault>& faults, const ObjectName& object)
{
    for (const Fault& fault : faults) {
        if (fault.object == object)
            return &fault;
    }
    return nullptr;
}

// Holds each fix of an object's first fault against what it promises.
std::vector<Fix> Checked(Job& job, const ObjectName& object)
{
    job.Update();
    const std::vector<Fault> faults = job.Faults();
    const Fault* const fault = FaultOf(faults, object);
    if (!fault)
        return {};
    const std::vector<Fix> fixes = FixesFor(*fault, job);
    for (const Fix& fix : fixes) {
        EXPECT_FALSE(fix.description.empty());
        if (object.kind == Kind::Formula) {
            EXPECT_EQ(Applied(job.TextOf(object), fix.edits), fix.text);
        }
        EXPECT_TRUE(job.Apply(fix.change));
        job.Update();
        const std::vector<Fault> rest = job.Faults();
        const Fault* const other = FaultOf(rest, object);
        EXPECT_EQ(fix.isSound, other == nullptr) << fix.text;
        if (other) {
            EXPECT_FALSE(other->message == fault->message && other->offender == fault->offender &&
                         other->place.span->begin == fault->place.span->begin)
                << fix.text;
        }
        job.Undo();
    }
    job.Update();
    return fixes;
}

std::string FirstFixes(const std::string& expression, std::size_t most = 1,
                       const std::string& name = "New")
{
    Job job = JobWithNames();
    job.AddFormula(name, expression).Value();
    std::string dump;
    for (const Fix& fix : Checked(job, FormulaNamed(name))) {
        if (most-- > 0)
            dump += (dump.empty() ? "" : "; ") +
                    std::get<Formula>(std::get<ChangeObject>(fix.change).object).expression;
    }
    return dump;
}

} // namespace

TEST(Fixes, CorrectWhatPeopleType)
{
    struct Case {
        const char* expression;
        const char* fixed;
    };
    const Case cases[] = {
        {"2*V(Lenght)", "2*V(Length)"},
        {"V(area)+V(area)", "F(Area)+F(Area)"},
        {"F(Length)", "V(Length)"},
        {"T(Rates)+1", "T(Rate)+1"},
        {"2*(Length+Width)", "2*(V(Length)+V(Width))"},
        {"2*unit price", "2*V(Unit price)"},
        {"round(2.5)+max(1,2)", "ROUND(2.5)+MAX(1,2)"},
        {"SQR(2)", "SQRT(2)"},
        {"2^3", "POWER(2,3)"},
        {"-V(Length)^-2", "-POWER(V(Length),-2)"},
        {"SUM(1,2)**(1+2)", "POWER(SUM(1,2),(1+2))"},
        {"V(Length)*5%", "V(Length)*5/100"},
        {"10/5%", "10/(5/100)"},
        {"7%3", "MOD(7,3)"},
        {"IF(V(Heated?)&&F(Large?),1,2)", "IF(V(Heated?)AND F(Large?),1,2)"},
        {"IF(1>2||NO,1,2)", "IF(1>2 OR NO,1,2)"},
        {"IF(1!=2,1,2)", "IF(1<>2,1,2)"},
        {"IF(1==2,1,2)", "IF(1=2,1,2)"},
        {"IF(1=>2,1,2)", "IF(1>=2,1,2)"},
        {"IF(1> =2,1,2)", "IF(1>=2,1,2)"},
        {"IF(1\xE2\x89\xA4"
         "2,1,2)",
         "IF(1<=2,1,2)"},
        {"IF(!V(Heated?),1,2)", "IF(NOT V(Heated?),1,2)"},
        {"3\xC3\x97"
         "4",
         "3*4"},
        {"MAX(1;2)", "MAX(1,2)"},
        {"1,5*2", "1.5*2"},
        {"2V(Length)", "2*V(Length)"},
        {"2(3+4)", "2*(3+4)"},
        {"V(Length)V(Width)", "V(Length)*V(Width)"},
        {"2SQRT(4)", "2*SQRT(4)"},
        {"SQRT 4", "SQRT (4)"},
        {"2*(3+4", "2*(3+4)"},
        {"2*(3+(4", "2*(3+(4))"},
        {"2*3)", "2*3"},
        {"2+*3", "2+3"},
        {"2+", "2"},
        {"MAX(1,)", "MAX(1)"},
        {"[Length]*2", "V(Length)*2"},
        // Several faults, of which the first is cleared.
        {"2^3+4^5", "POWER(2,3)+4^5"},
        // Nothing that helps.
        {"", ""},
        {"1/0", ""},
        {"V(Xyzzy)", ""},
        {"2*3", ""},
        {"V(", ""}, // with a ")" it would be shown as a reference without a name
    };
    for (const Case& row : cases) {

        EXPECT_EQ(FirstFixes(row.expression), row.fixed) << row.expression;
    }
}

TEST(Fixes, HonourTheUsersLanguage)
{
    const UserLanguage german(",", ";", kGermanNames);
    // The stored form is English, the text that is corrected is German.
    EXPECT_EQ(FirstFixes("wenn(YES,2.5,1)"), "IF(YES,2.5,1)");
    EXPECT_EQ(FirstFixes("NICH YES", 1, "New?"), "NOT YES");
    EXPECT_EQ(FirstFixes("2^(1.5)"), "POWER(2,(1.5))");
    EXPECT_EQ(FirstFixes("YES&&NO", 1, "New?"), "YES AND NO");
}

TEST(Fixes, MakeNoCycle)
{
    Job job = JobWithNames();
    job.AddFormula("Are", "1").Value();
    job.SetExpression("Area", "2*V(Ara)").Value();
    for (const Fix& fix : Checked(job, FormulaNamed("Area")))
        EXPECT_EQ(fix.text, "2* Are ");
    EXPECT_EQ(Checked(job, FormulaNamed("Area")).size(), 1u);
}

TEST(Fixes, ReplaceNamesInTables)
{
    Job job = JobWithNames();
    job.AddTable(StepTable("New", VariableNamed("Widht"), {1, 2}, {1.0, TableNamed("Rat")}))
        .Value();
    const std::vector<Fix> fixes = Checked(job, TableNamed("New"));
    ASSERT_FALSE(fixes.empty());
    EXPECT_EQ(fixes[0].description, "Use variable \"Width\"");
    EXPECT_FALSE(fixes[0].isSound); // Rat is there still
}

TEST(Fixes, ForeignFaultsHaveNone)
{
    Job job = JobWithNames();
    job.AddFormula("New", "2*V(Lenght)").Value();
    job.Update();
    Fault fault = *FaultOf(job.Faults(), FormulaNamed("New"));
    EXPECT_FALSE(FixesFor(fault, job).empty());
    fault.place.span = Span{{500, 500}, {900, 900}};
    EXPECT_TRUE(FixesFor(fault, job).empty());
    fault.object = FormulaNamed("Gone");
    EXPECT_TRUE(FixesFor(fault, job).empty());
}

TEST(Fixes, KeepTheirPromisesForAnyText)
{
    const char* const parts[] = {
        "V(Length)", "F(Area)", "width", "V(Unit)", "1",   "2.5", "1,5",      "^",
        "%",         "&&",      "(",     ")",       "(",   ")",   ",",        ";",
        "+",         "*",       " ",     "MAX(",    "if(", "==",  "\xC3\x97", "\xF0\x9F\x98\x80",
        "[",         "]",       "!",     "1.2.3"};
    std::mt19937 random(11);
    for (int run = 0; run < 400; ++run) {
        std::string expression;
        for (auto count = 1 + random() % 9; count > 0; --count)
            expression += parts[random() % std::size(parts)];
        SCOPED_TRACE(expression);
        Job job = JobWithNames();
        job.AddFormula("New", expression).Value();
        (void)Checked(job, FormulaNamed("New"));
    }
}

// The span of a fault in a word is the whole word.
TEST(Fixes, FaultsNameTheWord)
{
    Job job;
    for (const char* const expression : {"2*LOG(5)", "2*log(5)"}) {
        job.AddFormula(expression, expression).Value();
        job.Update();
        const Fault fault = *FaultOf(job.Faults(), FormulaNamed(expression));
        const std::string word(expression + 2, 3);
        EXPECT_EQ(fault.text, word + " is not a function of this language.");
        EXPECT_EQ(fault.offender, word);
        EXPECT_EQ(fault.place.span->end.utf8, 5u);
    }
}
