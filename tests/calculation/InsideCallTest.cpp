#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>

#include "Job.h"

namespace tovo::test {

namespace {

// A formula of a host that does something once while it is asked.
class Actor : public FormulaImpl {
public:
    using FormulaImpl::FormulaImpl;

    int Calculate(unsigned int& message, CScannedVariables* list) override
    {
        const int isDone = FormulaImpl::Calculate(message, list);
        if (const auto act = std::exchange(m_Act, nullptr))
            act(); // may be the end of this object
        return isDone;
    }

    std::function<void()> m_Act;
};

// An expression that keeps a tree and gets no program.
class Derived : public CFmlaExpression {
public:
    using CFmlaExpression::CFmlaExpression;
    using CFmlaExpression::operator=;
};

class Set : public CalcSetImpl {
public:
    explicit Set(bool isStock)
    {
        if (isStock)
            UseStockLookup();
    }
};

struct Scene {
    explicit Scene(bool isStock) : set(isStock)
    {
        set.AddVariable(width.get());
        set.AddFormula(actor.get());
        set.AddFormula(other.get());
        set.AddFormula(caller.get());
        derived.SetFromEncodedString("F(Actor)+V(Width)+F(Other)+V(Nobody)");
    }
    // The value, or what fails.
    std::string Calculate(bool isDerived)
    {
        unsigned int message = 0;
        const bool isDone = isDerived
                                ? derived.IsValid(message, "", 1) && derived.Calculate(nullptr)
                                : caller->Calculate(message, nullptr) != 0;
        const double value = isDerived ? derived.GetValue() : caller->GetValue();
        return isDone ? std::to_string(static_cast<int>(value))
                      : "message " + std::to_string(message);
    }

    Set set;
    std::unique_ptr<CalcSetImpl> second = std::make_unique<CalcSetImpl>();
    std::unique_ptr<VariableImpl> width = std::make_unique<VariableImpl>(&set, u"Width", 2.0);
    std::unique_ptr<Actor> actor = std::make_unique<Actor>(&set, u"Actor", u"1");
    std::unique_ptr<FormulaImpl> other = std::make_unique<FormulaImpl>(&set, u"Other", u"10");
    FormulaImpl newOther{&set, u"Other", u"20"};
    std::unique_ptr<FormulaImpl> caller =
        std::make_unique<FormulaImpl>(&set, u"Caller", u"F(Actor)+V(Width)+F(Other)+V(Nobody)");
    Derived derived{set};
    CFmlaExpression text{set};
};

void ChangeTexts(Scene& scene, void (*change)(CFmlaExpression&))
{
    change(scene.caller->GetExpression());
    change(scene.derived);
}

struct Deed {
    const char* name;
    void (*act)(Scene&);
    const char* during;
    const char* after;
};

// What the call comes to during which it is done, and what the next one does. A program that meets
// a change may have to begin again, and then comes to the second at once.
constexpr Deed kDeeds[] = {
    {"nothing", [](Scene&) {}, "13", "13"},
    {"is gone itself",
     [](Scene& scene) {
         scene.set.RemoveFormula(scene.actor.get());
         scene.actor.reset();
     },
     "message 10732", "message 6614"},
    {"takes itself out", [](Scene& scene) { scene.set.RemoveFormula(scene.actor.get()); },
     "message 10732", "message 6614"},
    {"removes another formula",
     [](Scene& scene) {
         scene.set.RemoveFormula(scene.other.get());
         scene.other.reset();
     },
     "message 6614", "message 6614"},
    {"removes a variable",
     [](Scene& scene) {
         scene.set.RemoveVariable(scene.width.get());
         scene.width.reset();
     },
     "11", "11"},
    {"clears what was made up", [](Scene& scene) { scene.set.ClearMissingVariables(); }, "13",
     "13"},
    {"replaces another formula", [](Scene& scene) { scene.set.AddFormula(&scene.newOther); }, "23",
     "23"},
    {"sets a value", [](Scene& scene) { scene.width->SetValue(3.0); }, "14", "14"},
    {"changes the text",
     [](Scene& scene) {
         ChangeTexts(scene, [](CFmlaExpression& text) { text.SetFromEncodedString("5"); });
     },
     "13", "5"},
    {"clears the text",
     [](Scene& scene) { ChangeTexts(scene, [](CFmlaExpression& text) { text.ClearExpr(); }); },
     "13", "message 6610"},
    {"assigns another text",
     [](Scene& scene) {
         scene.text.SetFromEncodedString("6");
         scene.caller->GetExpression() = scene.text;
         scene.derived = scene.text;
     },
     "13", "6"},
    {"renames the caller",
     [](Scene& scene) {
         CString name = u"Renamed";
         scene.caller->SetName(name);
     },
     "13", "13"},
    {"ends another set", [](Scene& scene) { scene.second.reset(); }, "13", "13"},
    {"makes the set a copy", [](Scene& scene) { scene.set.CalcSetImpl::operator=(*scene.second); },
     "message 10732", "message 6614"},
    {"calculates the caller",
     [](Scene& scene) {
         scene.Calculate(false);
         scene.Calculate(true);
     },
     "13", "13"},
};

TEST(InsideCall, WhatAnObjectMayDo)
{
    for (const Deed& deed : kDeeds)
        for (int way = 0; way < 16; ++way) {
            const bool isStock = (way & 1) != 0;
            const bool isDerived = (way & 2) != 0;
            const bool isCheckedBefore = (way & 4) != 0;
            SCOPED_TRACE(std::string(deed.name) + ' ' + std::to_string(way));
            Scene scene(isStock);
            FormulaImpl there(scene.second.get(), u"There", u"SQRT(0-1)");
            std::optional<CalculationPass> held;
            if ((way & 8) != 0)
                held.emplace();
            EXPECT_EQ(MessageOfCalculation(there), 0u);
            if (isCheckedBefore) {
                EXPECT_EQ(scene.Calculate(isDerived), "13");
                scene.width->SetValue(2.5);
                scene.width->SetValue(2.0);
            }
            scene.actor->m_Act = [&] { deed.act(scene); };
            const std::string during = scene.Calculate(isDerived);
            EXPECT_TRUE(during == deed.during || (!isDerived && during == deed.after)) << during;
            EXPECT_EQ(scene.Calculate(isDerived), deed.after);
        }
}

TEST(InsideCall, TextThatIsClearedInAWalkIsWalkedToItsEnd)
{
    for (const bool isScan : {false, true}) {
        Scene scene(true);
        CFmlaExpression walked(scene.set);
        walked.SetFromEncodedString("F(Actor)+F(Other)");
        unsigned int message = 0;
        EXPECT_EQ(walked.IsValid(message, "", 1), 1);
        scene.actor->m_Act = [&] { walked.ClearExpr(); };
        CScannedVariables list;
        EXPECT_EQ(walked.Calculate(isScan ? &list : nullptr), 1);
        EXPECT_EQ(walked.IsLoaded(), 1);
        EXPECT_EQ(walked.GetValue(), 11.0);
    }
}

// The name that is missing keeps the program from running, and is come to after what throws.
TEST(InsideCall, WhatThrowsLeavesTheFormulasThatWereReached)
{
    class Thrower : public VariableImpl {
    public:
        using VariableImpl::VariableImpl;
        double GetValue() override
        {
            return m_Throws ? throw std::runtime_error("no reading") : m_Value;
        }

        bool m_Throws = false;
    };
    Scene scene(true);
    Thrower reading(&scene.set, u"Reading", 0.0);
    scene.set.AddVariable(&reading);
    scene.other->SetFromEncodedString("V(Reading)+F(None)");
    CFmlaExpression& reached = scene.other->GetExpression();
    EXPECT_EQ(reached.LoadExpressionTree(0), 1);
    reading.m_Throws = true;
    EXPECT_THROW(scene.Calculate(false), std::runtime_error);
    EXPECT_EQ(reached.IsLoaded(), 1);
}

} // namespace

} // namespace tovo::test
