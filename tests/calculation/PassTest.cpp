#include <array>
#include <cstdlib>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <type_traits>

#include <calculation/Job.h>

#include "../../src/expression_core/Pass.h"

namespace tovo::test {
namespace {

using detail::Pass;

CString Wide(const std::string& text)
{
    return CString(std::string_view(text));
}

int NetCount()
{
    const char* const wanted = std::getenv("TOVO_NETS");
    return wanted ? std::atoi(wanted) : 400;
}

// Without remembering, what formulas share is worked on at each place that names it.
constexpr int kHostCalls = 6;

// Picks by one seed, the same on every platform.
class Dice {
public:
    explicit Dice(unsigned int seed) : m_Random(seed) {}

    int Below(int count) { return static_cast<int>(m_Random() % static_cast<unsigned int>(count)); }
    bool OneIn(int count) { return Below(count) == 0; }
    const char* Of(std::initializer_list<const char*> texts)
    {
        return texts.begin()[Below(static_cast<int>(texts.size()))];
    }

private:
    std::mt19937 m_Random;
};

// A job of formulas, tables, variables and host's objects that refer to one another at random, and
// all that a host can see of what it then does with them.
template <typename Set>
class Net {
public:
    explicit Net(unsigned int seed) : m_Dice(seed)
    {
        const int formulas = 2 + m_Dice.Below(4);
        for (int index = 0; index < 4; ++index)
            AddVariable(index);
        for (int index = 0; index < formulas; ++index)
            AddFormula(index);
        for (int index = 0; index < 2; ++index)
            AddTable(index);
        AddHostObjects();
    }

    std::string Live(int actions)
    {
        for (int count = 0; count < actions; ++count)
            Act();
        return m_Seen.str();
    }

private:
    std::string Variable() { return m_Dice.Of({"V(x)", "V(y)", "V(z)", "V(made up)", "V(own)"}); }
    std::string Nested()
    {
        if (m_Dice.OneIn(40))
            return m_Dice.Of({"F(none)", "T(none)", "F(q?)", "F()"});
        if (m_Dice.OneIn(6))
            return m_Dice.Of({"T(t0)", "T(t1)", "F(host)"});
        return "F(f" + std::to_string(m_Dice.Below(static_cast<int>(m_Formulas.size()) + 1)) + ")";
    }
    std::string Number(int depth)
    {
        const int kind = depth == 0 ? m_Dice.Below(4) : m_Dice.Below(14);
        switch (kind) {
        case 0:
            return m_Dice.Of({"0", "1", "2.5", "-1", "PI", "QUANTITY", "DURATION", "JOBSIZE"});
        case 1:
        case 2:
            return Variable();
        case 3:
        case 4:
            return Nested();
        case 5:
            return "IF(" + Condition(depth - 1) + "," + Number(depth - 1) + "," +
                   Number(depth - 1) + ")";
        case 6:
            return m_Dice.Of({"SQRT(", "ABS(", "ASIN(", "COSH("}) + Number(depth - 1) + ")";
        case 7:
            return m_Dice.Of({"SUM(", "MAX("}) + Number(depth - 1) + "," + Number(depth - 1) + ")";
        case 8:
            return m_Dice.OneIn(8) ? m_Dice.Of({"1+", "(2", "3 4", "1.2.3", "MOD(1)", "YES"})
                                   : "-(" + Number(depth - 1) + ")";
        default:
            return Number(depth - 1) + m_Dice.Of({"+", "-", "*", "/"}) + Number(depth - 1);
        }
    }
    std::string Condition(int depth)
    {
        if (m_Dice.OneIn(5))
            return m_Dice.Of({"V(b?)", "NOT V(b?)", "YES", "F(f1?)", "V(b?) AND NO"});
        return Number(depth > 0 ? depth - 1 : 0) + m_Dice.Of({">", "=", " LE "}) + Variable();
    }
    std::string Element()
    {
        if (m_Dice.OneIn(3))
            return m_Dice.Of({"1000", "2500", "", "Vx", "Vb?", "Fnone"});
        const std::string name = Nested();
        return name.substr(0, 1) + name.substr(2, name.size() - 3);
    }

    void AddVariable(int index)
    {
        auto& variable = *m_Variables.emplace_back(std::make_unique<VariableImpl>(&m_Set));
        CString name = Wide(std::array{"x", "y", "z", "b?"}[std::size_t(index)]);
        variable.SetName(name);
        variable.SetValue(m_Dice.Below(4) - 1);
        m_Set.AddVariable(&variable);
    }
    void AddFormula(int index)
    {
        auto& formula = *m_Formulas.emplace_back(std::make_unique<FormulaImpl>(&m_Set));
        CString name = Wide("f" + std::to_string(index) + (m_Dice.OneIn(5) ? "?" : ""));
        formula.SetName(name);
        formula.SetFromEncodedString(Wide(Text(name)));
        m_Set.AddFormula(&formula);
    }
    void AddTable(int index)
    {
        auto& table = *m_Tables.emplace_back(
            std::make_unique<FormulaTableImpl>(&m_Set, 2, 1 + m_Dice.Below(2)));
        CString name = Wide("t" + std::to_string(index));
        table.SetName(name);
        table.GetRowSelector().init(Wide(Element()));
        table.GetColumnSelector().init(Wide(Element()));
        for (int row = 0; row < 2; ++row)
            table.SetRowLimit(row, row);
        for (int cell = 0; cell < 2 * table.GetColumnCount(); ++cell)
            table.SetCell(cell % 2, cell / 2, new CFormtblElem(Wide(Element()), m_Set));
        m_Set.AddFormulaTable(&table);
    }
    // A formula that changes what others read and calculates one of them, and a variable of the
    // host's; a set that is exactly the stock one has no place for them.
    void AddHostObjects()
    {
        if constexpr (std::is_same_v<Set, JobSet>) {
            m_Set.m_HostFormulas[u"host"] = &m_HostFormula;
            m_HostFormula.m_OnCalculate = [this](CScannedVariables* list) {
                ThrowIf(2);
                m_Variables[0]->SetValue(m_Variables[0]->GetValue() + 1.0);
                m_HostVariable.m_Value = -m_HostVariable.m_Value;
                m_HostFormula.m_Value = 0.0;
                if (++m_HostCalls > kHostCalls)
                    return;
                FormulaImpl& inner = *m_Formulas[0];
                unsigned int message = 0;
                if (inner.Calculate(message, list))
                    m_HostFormula.m_Value = inner.GetValue();
            };
            m_Set.m_HostVariables[u"own"] = &m_HostVariable;
            m_HostVariable.m_OnRead = [this] { ThrowIf(1); };
            if (m_Dice.OneIn(2))
                m_Set.ReportDomainErrors();
        }
    }

    void ThrowIf(int thrower) const
    {
        if (m_Thrower == thrower)
            throw std::runtime_error("a host's object");
    }

    std::string Text(const CString& name)
    {
        const bool isYesNo = name[name.GetLength() - 1] == u'?';
        return isYesNo ? Condition(2) : Number(1 + m_Dice.Below(2));
    }
    template <typename Objects>
    auto& One(Objects& objects)
    {
        return *objects[static_cast<std::size_t>(m_Dice.Below(static_cast<int>(objects.size())))];
    }

    void Act()
    {
        CScannedVariables list;
        unsigned int message = 77;
        int result = -1;
        const int action = m_Dice.Below(19);
        m_Thrower = m_Dice.OneIn(6) ? 1 + m_Dice.Below(2) : 0;
        // Who is thrown through while it is come back to may keep the message of that.
        m_HostCalls = m_Thrower ? kHostCalls : 0;
        try {
            Do(action, list, message, result);
        } catch (const std::runtime_error&) {
            result = -2;
        }
        m_Thrower = 0;
        m_Seen << '\n'
               << action << ' ' << result << ' ' << message << ' ' << Names(list)
               << list.DURATIONScanned() << list.JOBSIZEScanned() << list.QuantityScanned();
        Look();
    }
    void Do(int action, CScannedVariables& list, unsigned int& message, int& result)
    {
        FormulaImpl& formula = One(m_Formulas);
        FormulaTableImpl& table = One(m_Tables);
        switch (action) {
        case 0:
            One(m_Variables).SetValue(m_Dice.Below(4) - 1);
            break;
        case 1:
            formula.SetFromEncodedString(Wide(Text(formula.GetName())));
            break;
        case 2:
            result = formula.IsValid(message, 0);
            break;
        case 3:
            result = formula.IsValid(message, 1);
            break;
        case 4:
            result = formula.Calculate(message, &list);
            break;
        case 5:
            formula.GetVariables(list, 0, 1);
            break;
        case 6:
            formula.GetVariables(list, 1, 1);
            break;
        case 7:
            result = formula.GetExpression().Calculate(nullptr);
            break;
        case 8:
            result = formula.GetExpression().NestedFormulasOK();
            break;
        case 9:
            result = formula.GetExpression().IsValid(message, u"f0", 1);
            break;
        case 10:
            table.SetValidated(0);
            result = table.IsValid(message, m_Dice.Below(2));
            break;
        case 11:
            m_Set.StartNewPass();
            result = table.Calculate(message, &list);
            break;
        case 12:
            table.GetVariables(list, m_Dice.Below(2), 1);
            break;
        case 13:
            formula.GetExpression().InsertString(m_Dice.Of({"1", "+1", " ", "("}), 0);
            break;
        case 14:
            if (m_Dice.OneIn(8)) { // the entry in the set stays
                CString name = One(m_Formulas).GetName();
                formula.SetName(name);
            }
            break;
        default:
            m_Set.StartNewPass();
            result = formula.Calculate(message, nullptr);
        }
    }
    void Look()
    {
        for (const auto& formula : m_Formulas) {
            CFmlaExpression& expression = formula->GetExpression();
            m_Seen << " | " << formula->GetValue() << ' ' << expression.GetMessageNum() << '@'
                   << expression.GetInvalidPos() << expression.IsLoaded()
                   << expression.IsCalculated() << expression.IsBoolean() << expression.IsNumeric();
        }
        for (const auto& table : m_Tables)
            m_Seen << " T " << table->GetValue() << table->GetCalculated() << table->GetScanned()
                   << table->GetScannedInCondition();
        for (const auto& variable : m_Variables)
            m_Seen << " V " << variable->GetValue() << variable->InCond();
        m_Seen << ' ' << Dump(m_Set.ErrorTracker()) << m_Set.GetStrError().ToUtf8()
               << m_Set.GetDURATIONInCondition() << m_Set.GetJOBSIZEInCondition()
               << m_Set.GetQuantityInCondition() << m_Set.GetQuantityInCalculations()
               << CExprTree::InIfCondition() << Names(NestedNames::m_NestedFmlaNames);
    }

    Dice m_Dice;
    Set m_Set;
    std::vector<std::unique_ptr<VariableImpl>> m_Variables;
    std::vector<std::unique_ptr<FormulaImpl>> m_Formulas;
    std::vector<std::unique_ptr<FormulaTableImpl>> m_Tables;
    HostFormula m_HostFormula{u"host", 0.0};
    HostVariable m_HostVariable{u"own", 2.0};
    int m_HostCalls = 0; // in the present action
    int m_Thrower = 0;   // of the present action: 1 the variable, 2 the formula, 0 none
    std::ostringstream m_Seen;
};

template <typename Set>
std::string Seen(unsigned int seed, bool isRemembering)
{
    Pass::SetRemembering(isRemembering);
    std::string seen = Net<Set>(seed).Live(60);
    Pass::SetRemembering(true);
    return seen;
}

TEST(Pass, RememberingShowsInNothingButTime)
{
    for (int net = 0; net < NetCount(); ++net) {
        const auto seed = static_cast<unsigned int>(net);
        ASSERT_EQ(Seen<JobSet>(seed, true), Seen<JobSet>(seed, false)) << seed;
        ASSERT_EQ(Seen<CalcSetImpl>(seed, true), Seen<CalcSetImpl>(seed, false)) << seed;
    }
}

class PassJob : public Job {
protected:
    // Formulas 0 to count, each built from the one before it.
    FormulaImpl& Chain(int count, const std::string& text)
    {
        FormulaImpl* last = &Formula(u"0", "1");
        for (int index = 1; index <= count; ++index) {
            std::string encoded = text;
            const std::string below = "F(" + std::to_string(index - 1) + ")";
            for (std::size_t place; (place = encoded.find('@')) != std::string::npos;)
                encoded.replace(place, 1, below);
            last = &Formula(Wide(std::to_string(index)), Wide(encoded));
        }
        return *last;
    }
};

TEST_F(PassJob, AThousandFormulasDeep)
{
    FormulaImpl& tooDeep = Chain(1000, "@+1");
    unsigned int message = 0;
    FormulaImpl* const deepest = dynamic_cast<FormulaImpl*>(m_Set.GetFormulaObj(u"999"));
    EXPECT_EQ(deepest->Calculate(message, nullptr), 1);
    EXPECT_EQ(deepest->GetValue(), 1000.0);
    EXPECT_EQ(tooDeep.Calculate(message, nullptr), 0);
    EXPECT_EQ(message, 10732u);
}

// There are 3^25 ways down.
TEST_F(PassJob, FormulasThatShareFormulasAreWorkedOnOnce)
{
    FormulaImpl& top = Chain(25, "IF(@>0,@,0)+@");
    CScannedVariables list;
    unsigned int message = 0;
    EXPECT_EQ(top.Calculate(message, &list), 1);
    EXPECT_EQ(top.GetValue(), 33554432.0);
}

TEST_F(PassJob, TwoFormulasOfOneNameMultiplyNoWork)
{
    Chain(25, "@+@");
    CString name = u"3";
    Formula(u"Twin", "1").SetName(name);
    FormulaImpl& both = Formula(u"Both", "F(Twin)+F(25)+F(Twin)");
    unsigned int message = 0;
    EXPECT_EQ(both.Calculate(message, nullptr), 1);
    EXPECT_EQ(both.GetValue(), 33554434.0);
}

} // namespace
} // namespace tovo::test
