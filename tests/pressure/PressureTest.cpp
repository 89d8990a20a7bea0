#include <functional>
#include <new>
#include <ostream>
#include <thread>

#include <gtest/gtest.h>

#include <TovoFormula/LanguageScope.h>
#include <TovoFormula/TokenNameIds.h>

#include "Memory.h"
#include "Shop.h"

// Every operation in a process whose memory ends: it succeeds, or it throws std::bad_alloc and has
// changed nothing.

namespace tovo::test {
namespace {

struct Scenario {
    const char* name;
    const char* target; // whose results an operation that throws leaves as they were
    std::function<std::string(Shop&)> act;
    std::function<void(Shop&)> prepare = [](Shop&) {};

    friend void PrintTo(const Scenario& scenario, std::ostream* out) { *out << scenario.name; }
};

std::string Answer(int number)
{
    return std::to_string(number);
}

FormulaImpl& Named(Shop& shop, const CString& name)
{
    for (const auto& formula : shop.formulas)
        if (formula->GetName() == name)
            return *formula;
    throw std::logic_error("no such formula");
}

Scenario Calculating(const char* name, bool isCalculatedBefore)
{
    Scenario scenario{name, name, [name](Shop& shop) { return shop.Calculate(Named(shop, name)); }};
    if (isCalculatedBefore)
        scenario.prepare = [](Shop& shop) {
            shop.CalculateAll();
            shop.width.SetValue(3.5);
            shop.set.StartNewPass();
        };
    return scenario;
}

Scenario Scanning(const char* name, int all)
{
    return {name, name,
            [name, all](Shop& shop) {
                Named(shop, name).GetVariables(shop.scanned, all, 1);
                return Answer(shop.names.GetCount());
            },
            [](Shop& shop) {
                shop.CalculateAll();
                shop.set.StartNewPass();
            }};
}

Scenario Editing(const char* name, std::function<int(CFmlaExpression&)> edit)
{
    return {name, "typed", [edit](Shop& shop) { return Answer(edit(shop.typed)); },
            [](Shop& shop) { shop.CalculateAll(); }};
}

Scenario Loading(const char* name, std::function<bool(Shop&)> load)
{
    return {name, "operand", [load](Shop& shop) { return Answer(load(shop)); }};
}

std::vector<Scenario> Evaluations()
{
    std::vector<Scenario> all;
    for (const char* const name :
         {"Area", "Chain", "Large?", "Root", "Fault", "Below", "Circle", "Gone", "Wide", "Abroad"})
        for (const bool isCalculatedBefore : {false, true})
            all.push_back(Calculating(name, isCalculatedBefore));
    for (const char* const name : {"Chain", "Wide", "Abroad"})
        for (const int isAll : {0, 1})
            all.push_back(Scanning(name, isAll));
    all.push_back({"Calculate with a list", "Chain",
                   [](Shop& shop) { return shop.Calculate(Named(shop, "Chain"), &shop.scanned); }});
    all.push_back({"held pass", "Chain",
                   [](Shop& shop) {
                       const CalculationPass pass;
                       shop.width.SetValue(1.5);
                       return shop.Calculate(Named(shop, "Chain"));
                   },
                   [](Shop& shop) { shop.width.SetValue(1.5); }});
    for (const int nested : {0, 1})
        all.push_back({"check", "typed",
                       [nested](Shop& shop) { return shop.Check(shop.typed, "Typed?", nested); }});
    all.push_back(
        {"load", "typed", [](Shop& shop) { return Answer(shop.typed.LoadExpressionTree(1)); }});
    all.push_back({"table", "Rate", [](Shop& shop) {
                       unsigned int message = 77;
                       const int isDone = shop.rate.Calculate(message, &shop.scanned);
                       return Answer(isDone) + ' ' + Answer(static_cast<int>(message));
                   }});
    all.push_back({"table of a fault", "Rate",
                   [](Shop& shop) {
                       unsigned int message = 77;
                       const int isDone = shop.rate.IsValid(message, 1);
                       return Answer(isDone) + ' ' + Answer(static_cast<int>(message));
                   },
                   [](Shop& shop) { shop.rate.GetCell(1, 1)->SetFormula(u"Below"); }});
    all.push_back({"element", "element",
                   [](Shop& shop) {
                       unsigned int message = 77;
                       return Answer(shop.element.CheckNestedFormulas(message)) + ' ' +
                              Answer(static_cast<int>(message));
                   },
                   [](Shop& shop) { shop.element.SetFormula(u"Gone"); }});
    all.push_back({"operand", "operand", [](Shop& shop) {
                       return Answer(shop.operand.Calculate()) +
                              std::to_string(shop.operand.GetValue());
                   }});
    return all;
}

std::vector<Scenario> Changes()
{
    std::vector<Scenario> all = {
        Editing("InsertString", [](auto& text) { return text.InsertString(u"1+", 0); }),
        Editing("InsertVariable",
                [](auto& text) { return text.InsertVariable(u"Height", 6, TOK_VARIABLE); }),
        Editing("InsertFormulaTable",
                [](auto& text) { return text.InsertFormulaTable(u"Rate", 0); }),
        Editing("DeleteChars",
                [](auto& text) {
                    int isWhole = 0;
                    return text.DeleteChars(0, 0, &isWhole) + 2 * isWhole;
                }),
        Editing("rename",
                [](auto& text) { return text.ChangeFormulaInExpression(u"Area", u"Floor area"); }),
        Editing("remove", [](auto& text) { return text.RemoveFormulaFromExpression(u"Area"); }),
        Editing("encoded",
                [](auto& text) {
                    text.SetFromEncodedString("V(Height)+F(Area)*SUM(1.5,2)");
                    return 1;
                }),
        Editing("encoded with a fault",
                [](auto& text) {
                    text.SetFromEncodedString("V(Height)+1.2.3");
                    return text.GetMessageNum();
                }),
        Editing("SetExpr",
                [](auto& text) {
                    text.SetExpr(u" Width +1", u"0,7,0,");
                    return text.NumVars();
                }),
        Editing("stored forms",
                [](auto& text) {
                    return text.GetEncodedString().GetLength() + text.GetPtrStr().GetLength() +
                           text.GetRTFString(u"Serif", 20).GetLength();
                }),
        Editing("scan",
                [](auto& text) {
                    CString token;
                    int code = 0;
                    int pos = 0;
                    return text.FindFirstToken(token, code, pos, 2, TL_LOCAL) + code + pos;
                }),
        Editing("translate",
                [](auto& text) {
                    text.TranslateText(TL_ENGLISH);
                    return 1;
                }),
        Loading("LoadVariable",
                [](Shop& shop) {
                    CString name = u"Somebody";
                    return shop.operand.LoadVariable(name);
                }),
        Loading("LoadFormula",
                [](Shop& shop) {
                    CString name = u"No such formula";
                    return shop.operand.LoadFormula(name);
                }),
        Loading("LoadEncodedExpression",
                [](Shop& shop) { return shop.operand.LoadEncodedExpression("1+V(Width)"); }),
        Loading("LoadEncodedExpression of one reference",
                [](Shop& shop) { return shop.operand.LoadEncodedExpression("T(Rate)"); }),
        Loading("LoadExpression",
                [](Shop& shop) { return shop.operand.LoadExpression(u"1 Width ", u"1,7,0,"); }),
        Loading("LoadPrefixedString",
                [](Shop& shop) { return shop.operand.LoadPrefixedString(u"VNew one"); }),
        Loading("LoadNumericConstant",
                [](Shop& shop) { return shop.operand.LoadNumericConstant(12345.678), true; }),
        Loading("assignment", [](Shop& shop) { return shop.operand = shop.plain, true; }),
        Loading("assignment to a plain one",
                [](Shop& shop) { return shop.plain = shop.operand, true; }),
    };
    const std::initializer_list<std::pair<const char*, void (*)(Shop&)>> plain = {
        {"text assignment", [](Shop& shop) { shop.typed = shop.text; }},
        {"text copies",
         [](Shop& shop) {
             const CFmlaExpression copy(shop.typed);
             const std::unique_ptr<CFmlaExprBase> clone(shop.typed.Clone());
         }},
        {"element",
         [](Shop& shop) { shop.element.SetFromCombinedString("VSome long other name"); }},
        {"element number", [](Shop& shop) { shop.rate.GetCell(0, 0)->XSetName("1.25"); }},
        {"cell", [](Shop& shop) { shop.rate.SetRowSelector(shop.element); }},
        {"AddVariable",
         [](Shop& shop) {
             CString name = u"Width";
             shop.height.SetName(name);
             shop.set.AddVariable(&shop.height);
         }},
        {"AddFormula", [](Shop& shop) { shop.other.AddFormula(shop.area); }},
        {"missing variable", [](Shop& shop) { shop.set.GetVarObj(u"Anybody", 1, 0); }},
        {"RemoveFormula", [](Shop& shop) { shop.set.RemoveFormula(shop.area); }},
        {"ClearMissingVariables", [](Shop& shop) { shop.set.ClearMissingVariables(); }},
        {"set copies",
         [](Shop& shop) {
             CalcSetImpl copy(shop.set);
             copy = shop.other;
         }},
        {"rename a formula",
         [](Shop& shop) {
             CString name = u"A name that needs memory";
             shop.area->SetName(name);
         }},
        {"list", [](Shop& shop) { shop.names.AddTail(u"a name that needs memory"); }},
        {"list head", [](Shop& shop) { shop.names.AddHeadIfAbsent(u"Width"); }},
        {"list copy",
         [](Shop& shop) {
             const CStringList copy(shop.names);
             shop.names = copy;
         }},
        {"array", [](Shop& shop) { shop.strings.SetAtGrow(5, u"grown"); }},
        {"array insertion", [](Shop& shop) { shop.strings.InsertAt(3, u"inserted", 4); }},
        {"array of arrays", [](Shop& shop) { shop.strings.InsertAt(9, shop.strings); }},
        {"string", [](Shop& shop) { shop.string.Insert(3, u"more"); }},
        {"string sum", [](Shop& shop) { shop.string += shop.string + u"tail"; }},
        {"string format", [](Shop& shop) { shop.string.Format(u"%s of %d", u"text", 123456); }},
        {"string replacement", [](Shop& shop) { shop.string.Replace(u"text", u"much more text"); }},
        {"chain", [](Shop& shop) { shop.tracker.AddObj(shop.area); }},
        {"new chain", [](Shop& shop) { shop.tracker.SetError(9, &shop.typed); }},
        {"locale settings", [](Shop&) { SetLocaleSetting(LOCALE_SLIST, u";"); }},
        {"token names", [](Shop&) { CFmlaExprBase::ReInitExprNames(); }},
        {"modules",
         [](Shop&) {
             static constexpr AfxStringResource kStrings[] = {{6600, u"newest"}};
             AFX_EXTENSION_MODULE record;
             EXPECT_EQ(AfxInitExtensionModule(record, kStrings, 1), 1);
             const CDynLinkLibrary newest(record);
         }},
        {"a language of its own",
         [](Shop&) {
             constexpr AfxStringResource words[] = {{TOKEN_NAME_SUM, u"SUMME"}};
             const FormulaLanguage made(words, u",", u";");
         }},
        {"conversion",
         [](Shop& shop) { ConvertExpressions(shop.set, FormulaLanguage({}, u",", u";")); }},
        {"tree",
         [](Shop& shop) {
             CTree root;
             static_cast<void>(root.AddChild(nullptr)->InsertNode());
             shop.tree.Clear();
         }},
    };
    for (const auto& [name, act] : plain)
        all.push_back({name, name, [act = act](Shop& shop) {
                           act(shop);
                           return std::string();
                       }});
    // Lists get an index when they have become longer.
    for (Scenario& scenario : all)
        if (std::string(scenario.name).starts_with("list"))
            scenario.prepare = [](Shop& shop) {
                for (int name = 0; name < 7; ++name)
                    shop.names.AddTail(CString(std::to_string(name)));
            };
    return all;
}

// What an undisturbed process sees: before, the answer, after, and what everything is then.
struct Course {
    Sights before;
    std::string answer;
    Sights after;
    std::string all;
};

Course Undisturbed(const Scenario& scenario, bool isStock)
{
    Shop shop(isStock);
    Course course;
    scenario.prepare(shop);
    course.before = shop.Look();
    course.answer = scenario.act(shop);
    course.after = shop.Look();
    course.all = shop.CalculateAll();
    SetLocaleSetting(LOCALE_SLIST, u"");
    return course;
}

// What was given is as it was, and so are the results of the object at hand. Others that were
// reached have either their former results or new ones, a table also some of them; a chain may have
// begun.
void ExpectNothingChanged(const Scenario& scenario, const Sights& present, const Course& course)
{
    ASSERT_EQ(present.size(), course.before.size());
    for (std::size_t index = 0; index < present.size(); ++index) {
        const Sight& before = course.before[index];
        const Sight& now = present[index];
        EXPECT_EQ(now.given, before.given) << now.label;
        const bool isReached = now.label != scenario.target && now.label != "chain" &&
                               now.results == course.after[index].results;
        const bool isBegun = now.label == "chain" || now.label == "Rate" ||
                             now.label == "missing" || now.label == "flags";
        EXPECT_TRUE(isReached || isBegun || now.results == before.results)
            << now.label << " has " << now.results << ", had " << before.results;
    }
}

void ExpectSame(const Sights& present, const Sights& expected)
{
    ASSERT_EQ(present.size(), expected.size());
    for (std::size_t index = 0; index < present.size(); ++index) {
        EXPECT_EQ(present[index].given, expected[index].given) << present[index].label;
        EXPECT_EQ(present[index].results, expected[index].results) << present[index].label;
    }
}

// Refuses one piece of memory to the operation, then lets it have all. False if it did not ask for
// that many.
bool Disturb(const Scenario& scenario, bool isStock, const Course& course, int count)
{
    Shop shop(isStock);
    scenario.prepare(shop);
    std::string answer;
    bool hasThrown = false;
    bool hasHappened = false;
    {
        const Refusal refusal(count);
        try {
            answer = scenario.act(shop);
        } catch (const std::bad_alloc&) {
            hasThrown = true;
        }
        hasHappened = refusal.HasHappened();
    }
    if (hasThrown) {
        ExpectNothingChanged(scenario, shop.Look(), course);
        answer = scenario.act(shop);
    }
    EXPECT_EQ(answer, course.answer);
    ExpectSame(shop.Look(), course.after);
    EXPECT_EQ(shop.CalculateAll(), course.all);
    SetLocaleSetting(LOCALE_SLIST, u"");
    return hasHappened;
}

void TryAll(const Scenario& scenario, bool isStock)
{
    SCOPED_TRACE(isStock);
    const Course course = Undisturbed(scenario, isStock);
    int count = 1;
    for (bool hasHappened = true; hasHappened && !testing::Test::HasFailure(); ++count) {
        SCOPED_TRACE(count);
        hasHappened = Disturb(scenario, isStock, course, count);
        const long inUse = PiecesInUse();
        std::thread([&] { Disturb(scenario, isStock, course, count); }).join();
        EXPECT_EQ(PiecesInUse(), inUse) << "what a thread takes it gives back";
    }
}

class Pressure : public ::testing::TestWithParam<Scenario> {};

TEST_P(Pressure, SucceedsOrChangesNothing)
{
    InitTovoFormulaDLL();
    TryAll(GetParam(), true);
    TryAll(GetParam(), false);
    const CalculationPass held;
    TryAll(GetParam(), true);
}

INSTANTIATE_TEST_SUITE_P(Evaluation, Pressure, ::testing::ValuesIn(Evaluations()));
INSTANTIATE_TEST_SUITE_P(Change, Pressure, ::testing::ValuesIn(Changes()));

} // namespace
} // namespace tovo::test
