#include <algorithm>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <TovoFormula/RtfDocument.h>
#include <TovoPlatform/NumberText.h>
#include <expression_text/Texts.h>

#include "Job.h"

// Twice as much of anything that a text or a job can hold takes about twice as long. A fault that
// costs a square shows as four times as long, whatever the machine.

namespace tovo::test {

namespace {

using Work = std::function<void()>;
using Prepare = std::function<Work(int size)>;

constexpr double kMostGrowth = 2.5;
// In seconds of processor time: from there on clock and caches weigh little.
constexpr double kEnough = 0.001;
constexpr int kMostTries = 6;
constexpr int kLargest = 1 << 19;
// As many as positions of references go, which are 16-bit numbers.
constexpr int kMostReferences = 1 << 13;

double CostOf(const Work& work)
{
    double best = 1e9;
    for (int run = 0; run < 3; ++run) {
        const std::clock_t start = std::clock();
        work();
        best = std::min(best, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    return best;
}

// Measures a size that takes long enough and one twice as large; once more, with larger ones, where
// they seem to differ too much.
void ExpectLinear(const std::string& what, int largest, const Prepare& prepare)
{
    // Once a large block was freed, common allocators keep what they get, so that the engine is
    // measured and not the system's paging.
    static const int kept = CString(u' ', 15'000'000).GetLength();
    ASSERT_GT(kept, 0);
    int size = 64;
    double cost = CostOf(prepare(size));
    double growth = kMostGrowth + 1.0;
    for (int attempt = 0; growth > kMostGrowth && attempt < kMostTries;) {
        const bool isLargest = size * 4 > largest;
        const double twice = CostOf(prepare(size * 2));
        if (cost >= kEnough || isLargest) {
            // What takes no time at its largest cannot grow.
            growth = twice < kEnough ? 0.0 : twice / cost;
            ++attempt;
        }
        size = isLargest ? size : size * 2;
        cost = isLargest ? CostOf(prepare(size)) : twice;
    }
    EXPECT_LE(growth, kMostGrowth) << what << " at " << size;
}

struct Texts {
    const char* name;
    const char* start;
    const char* part;
    const char* end;
    const char* closing; // once for each part
    int largest = kLargest;
};

constexpr Texts kTexts[] = {
    {"terms", "", "1+", "1", ""},
    {"terms that climb", "", "1+1*", "1", ""},
    {"terms unfinished", "", "1*", "", ""},
    {"terms with a wrong kind last", "", "1+", "(1>2)", ""},
    {"terms with a domain error last", "", "1+", "1/0", ""},
    {"brackets", "", "(", "1", ")"},
    {"brackets left open", "", "(", "", ""},
    {"brackets that close nothing", "1", ")", "", ""},
    {"functions", "", "ABS(", "1", ")"},
    {"conditions", "", "IF(YES,1,", "2", ")"},
    {"conditions of conditions", "", "IF(", "YES", ",YES,NO)"},
    {"conjunctions", "YES", " AND NO", "", ""},
    {"arguments", "SUM(", "1,", "1)", ""},
    {"commas", "1", ",", "", ""},
    {"minus signs", "", "-", "1", ""},
    {"negations", "", "NOT ", "YES", ""},
    {"comparisons", "1", "<1", "", ""},
    {"blanks", "1+", " ", "1", ""},
    {"a word", "", "A", "", ""},
    {"words", "", "AND ", "", ""},
    {"a number", "", "1", "", ""},
    {"decimal points", "", ".", "", ""},
    {"foreign characters", "", "\xD0\x96", "", ""},
    {"variables", "", "V(x)+", "1", "", kMostReferences},
    {"variables side by side", "", "V(x)", "", "", kMostReferences},
    {"formulas", "", "F(f)*", "1", "", kMostReferences},
    {"formulas side by side", "", "F(f)", "", "", kMostReferences},
    {"formulas that are missing", "", "F(none)+", "1", "", kMostReferences},
    {"formulas that fail", "", "F(bad)+", "1", "", kMostReferences},
    {"tables", "", "T(t)-", "1", "", kMostReferences},
    {"a name", "V(", "x", ")+1", ""},
    {"names that do not end", "", "V(", "", ""},
    {"backslashes", "V(", "\\", "", ""},
    {"backslashes after names that do not end", "", "V(\\\\F(", "", ""},
    {"brackets in a name", "F(", "\\)", ")", ""},
    {"control words", "", "\\bin9{", "", ""},
};

std::string TextOf(const Texts& texts, int size)
{
    std::string text = texts.start + Repeated(texts.part, size) + texts.end;
    return text + Repeated(texts.closing, size);
}

struct OpenExpression : CFmlaExpression {
    using CFmlaExpression::CFmlaExpression;
    using CFmlaExpression::operator=;
};

// A job that texts refer to, and an expression that does not lack room for editing.
struct Bench {
    Bench()
    {
        CString name;
        x.SetName(name = u"x");
        set.AddVariable(&x);
        for (FormulaImpl* formula : {&f, &bad}) {
            formula->SetName(name = formula == &f ? u"f" : u"bad");
            set.AddFormula(formula);
        }
        f.SetFromEncodedString(u"V(x)+1");
        bad.SetFromEncodedString(u"1+");
        t.SetName(name = u"t");
        t.GetRowSelector().init(u"Vx");
        for (int row = 0; row < 2; ++row) {
            t.SetRowLimit(row, row);
            t.SetCell(row, 0, new CFormtblElem(u"01", set));
        }
        set.AddFormulaTable(&t);
        expression.SetExprTextLimit(100'000'000);
        derived.SetExprTextLimit(100'000'000);
    }

    CalcSetImpl set;
    VariableImpl x{&set};
    FormulaImpl f{&set}, bad{&set};
    FormulaTableImpl t{&set, 2, 1};
    CFmlaExpression expression{set};
    OpenExpression derived{set};
    CalcOpBase operand;
};

void Check(CFmlaExpression& expression)
{
    unsigned int message = MSG_NONE;
    expression.IsValid(message, CString(), 1);
    expression.Calculate(nullptr);
}

void ScanTokens(CFmlaExpression& expression)
{
    CString token;
    int code = 0;
    int pos = 0;
    for (int found = expression.FindFirstToken(token, code, pos, 0, TL_LOCAL); found;)
        found = expression.FindNextToken(token, code, pos, TL_LOCAL);
}

// The expression has read the text in its stored form before each of them.
const struct {
    const char* name;
    std::function<void(Bench&, const CString& text)> act;
} kActs[] = {
    {"checked", [](Bench& bench, const CString&) { Check(bench.expression); }},
    {"checked as typed",
     [](Bench& bench, const CString& text) {
         bench.expression.SetExpr(text);
         Check(bench.expression);
     }},
    {"checked with a tree",
     [](Bench& bench, const CString& text) {
         bench.derived.SetFromEncodedString(text);
         Check(bench.derived);
     }},
    {"checked with domain errors reported",
     [](Bench& bench, const CString&) {
         bench.set.SetReportFcnDomainErrors(1);
         Check(bench.expression);
     }},
    {"scanned",
     [](Bench& bench, const CString&) {
         CScannedVariables list;
         bench.expression.GetVariables(list, 1, 1);
         bench.expression.GetVariables(list, 0, 1);
     }},
    {"scanned by token", [](Bench& bench, const CString&) { ScanTokens(bench.expression); }},
    {"stored",
     [](Bench& bench, const CString&) {
         const CString stored = bench.expression.GetEncodedString();
         const CString pointers = bench.expression.GetPtrStr();
         bench.expression.SetExpr(bench.expression.GetTextStr(), pointers);
         bench.operand.LoadEncodedExpression(stored);
     }},
    {"translated",
     [](Bench& bench, const CString& text) {
         const UserLanguage german(u",", u";", kGermanNames);
         bench.expression.SetFromEncodedString(text);
         bench.expression.GetEncodedString();
     }},
    {"written as rich text",
     [](Bench& bench, const CString&) {
         bench.expression.GetRTFString(u"Arial", 20);
         RtfDocument document(u"Arial", 20);
         document.AddExpression(bench.expression);
         document.GetRTFString();
     }},
    {"edited",
     [](Bench& bench, const CString&) {
         int wholeVar = 0;
         const int length = bench.expression.GetTextStr().GetLength();
         bench.expression.InsertString(u"1+", 0);
         bench.expression.InsertFormula(u"f", length / 3);
         bench.expression.DeleteChars(length / 2, length / 2, &wholeVar);
         bench.expression.DeleteChars(bench.expression.FixPos(length / 3, FD_LEFT),
                                      bench.expression.FixPos(length / 3 * 2, FD_LEFT), &wholeVar);
     }},
    {"renamed in",
     [](Bench& bench, const CString&) {
         bench.expression.ChangeFormulaInExpression(u"f", u"fff");
     }},
    {"removed from",
     [](Bench& bench, const CString&) { bench.expression.RemoveFormulaFromExpression(u"f"); }},
    {"copied",
     [](Bench& bench, const CString&) {
         CFmlaExpression copy(bench.expression);
         copy = bench.expression;
         const std::unique_ptr<CFmlaExprBase> clone(copy.Clone());
     }},
};

class Growth : public ::testing::TestWithParam<std::size_t> {}; // an index of kTexts

TEST_P(Growth, OfATextIsLinear)
{
    const Texts& texts = kTexts[GetParam()];
    for (const auto& act : kActs)
        ExpectLinear(std::string(texts.name) + ", " + act.name, texts.largest, [&](int size) {
            return [&act, text = CString(TextOf(texts, size))] {
                Bench bench;
                bench.expression.SetFromEncodedString(text);
                act.act(bench, text);
            };
        });
}

INSTANTIATE_TEST_SUITE_P(Texts, Growth, ::testing::Range<std::size_t>(0, std::size(kTexts)));

// A net of formulas, each of which reads what a row says of its number.
struct Net {
    const char* name;
    int largest;
    std::function<std::string(int number, int size)> text;
};

std::string Ref(char letter, int number)
{
    return letter + ("(" + std::to_string(number)) + ")";
}

const Net kNets[] = {
    {"formulas side by side", 1 << 15, [](int, int) { return "V(x)+1"; }},
    {"variables that the set creates", 1 << 15, [](int number, int) { return Ref('V', number); }},
    {"faults", 1 << 15, [](int, int) { return "1+"; }},
    {"one that all read", 1 << 15,
     [](int number, int) { return number == 0 ? "V(x)" : Ref('F', 0); }},
    {"one that reads all", 8192,
     [](int number, int size) {
         std::string text = "V(x)";
         for (int other = 1; number == 0 && other < size; ++other)
             text += "+" + Ref('F', other);
         return text;
     }},
    {"a chain", 1000,
     [](int number, int size) { return number + 1 < size ? Ref('F', number + 1) : "V(x)"; }},
    {"a chain of pairs", 1000,
     [](int number, int size) {
         return number + 1 < size ? Ref('F', number + 1) + "+" + Ref('F', number + 1) : "V(x)";
     }},
    {"pairs of pairs", 1 << 15,
     [](int number, int size) {
         const int below = 2 * number + 1;
         return below + 1 < size ? Ref('F', below) + "*" + Ref('F', below + 1) : "V(x)";
     }},
    {"chains under a table", 1000,
     [](int number, int size) {
         return number + 1 < size ? "T(t)+" + Ref('F', number + 1) : "V(x)";
     }},
};

// Within a pass each formula costs what its own text does. A scan reads all that it reaches
// each time, so there is one of each kind.
TEST(GrowthOf, ANetIsLinear)
{
    for (const Net& net : kNets)
        ExpectLinear(net.name, net.largest, [&net](int size) {
            return [&net, size] {
                Bench bench;
                std::vector<std::unique_ptr<FormulaImpl>> formulas;
                for (int number = 0; number < size; ++number) {
                    formulas.push_back(std::make_unique<FormulaImpl>(&bench.set));
                    CString name(std::to_string(number));
                    formulas.back()->SetName(name);
                    formulas.back()->SetFromEncodedString(CString(net.text(number, size)));
                    bench.set.AddFormula(formulas.back().get());
                }
                const CalculationPass pass;
                CScannedVariables list;
                unsigned int message = MSG_NONE;
                for (const auto& formula : formulas) {
                    formula->IsValid(message, 1);
                    formula->Calculate(message, nullptr);
                }
                formulas.front()->Calculate(message, &list);
                formulas.front()->GetVariables(list, 1, 1);
            };
        });
}

// A cycle of formulas is found once from where the check begins.
TEST(GrowthOf, ACycleIsLinear)
{
    for (const char* const first : {"F(0)", "F(0)+F(0)", "IF(YES,1,F(0))"})
        ExpectLinear(std::string("a cycle that ends in ") + first, 1000, [first](int size) {
            return [first, size] {
                Bench bench;
                std::vector<std::unique_ptr<FormulaImpl>> formulas;
                for (int number = 0; number < size; ++number) {
                    formulas.push_back(std::make_unique<FormulaImpl>(&bench.set));
                    CString name(std::to_string(number));
                    formulas.back()->SetName(name);
                    const std::string next = Ref('F', number + 1);
                    formulas.back()->SetFromEncodedString(
                        CString(number + 1 < size ? next : std::string(first)));
                    bench.set.AddFormula(formulas.back().get());
                }
                unsigned int message = MSG_NONE;
                CScannedVariables list;
                formulas.front()->IsValid(message, 1);
                formulas.front()->Calculate(message, &list);
                formulas.front()->GetVariables(list, 1, 1);
            };
        });
}

TEST(GrowthOf, ATableIsLinear)
{
    for (const char* const cell : {"01.5", "Vx", "Ff", "Fnone", "Tt", ""})
        for (const bool isWide : {false, true})
            ExpectLinear(
                std::string(isWide ? "columns" : "rows") + " of " + cell, 16384,
                [cell, isWide](int size) {
                    return [cell, isWide, size] {
                        Bench bench;
                        FormulaTableImpl table(&bench.set, isWide ? 2 : size, isWide ? size : 1);
                        table.GetRowSelector().init(u"Vx");
                        table.GetColumnSelector().init(u"Vx");
                        for (int row = 0; row < table.GetRowCount(); ++row)
                            table.SetRowLimit(row, row);
                        for (int column = 0; column < table.GetColumnCount(); ++column) {
                            table.SetColumnLimit(column, column);
                            for (int row = 0; row < table.GetRowCount(); ++row)
                                table.SetCell(row, column, new CFormtblElem(cell, bench.set));
                        }
                        bench.x.SetValue(size - 1);
                        unsigned int message = MSG_NONE;
                        CScannedVariables list;
                        table.IsValid(message, 1);
                        table.Calculate(message, &list);
                        table.GetVariables(list, 1, 1);
                    };
                });
}

} // namespace

} // namespace tovo::test
