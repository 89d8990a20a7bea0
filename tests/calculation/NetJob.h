#ifndef TOVOFORMULA_TESTS_NETJOB_H
#define TOVOFORMULA_TESTS_NETJOB_H

#include <algorithm>
#include <charconv>
#include <random>
#include <tuple>
#include <utility>

#include <TovoFormula/CalculationPass.h>
#include <TovoPlatform/LocaleSettings.h>
#include <calculation/NetObjects.h>
#include <calculation/RandomNet.h>

namespace tovo::test {

// Picks by one seed, the same on every platform.
class Dice {
public:
    explicit Dice(unsigned int seed) : m_Random(seed) {}

    int Below(int count) { return static_cast<int>(m_Random() % static_cast<unsigned int>(count)); }
    bool OneIn(int count) { return Below(count) == 0; }
    template <typename Items>
    auto& Of(Items& items)
    {
        return items[static_cast<std::size_t>(Below(static_cast<int>(items.size())))];
    }
    const char* Of(std::initializer_list<const char*> texts)
    {
        return texts.begin()[Below(static_cast<int>(texts.size()))];
    }

private:
    std::mt19937 m_Random;
};

// A job that is made at random, with a host's objects that act upon it.
//
// What such an object does follows from the turn alone, or is done when it is first asked in a
// turn, so it makes no difference how often it is asked. Outside a held pass each deed is a turn;
// within one, a turn ends only with a note of the host's.
class NetJob {
public:
    NetJob(unsigned int flags, unsigned int seed) : m_Flags(flags), m_Dice(seed)
    {
        if (Has(NET_HOSTS))
            AddSets<HostJobSet>();
        else if (Has(NET_LOOKUP))
            AddSets<LookupSet>();
        else
            AddSets<CalcSetImpl>();
        AddVariables();
        for (int level = 0, count = 3 + m_Dice.Below(3); level < count; ++level)
            AddFormula(Wide("f" + std::to_string(level) + (m_Dice.OneIn(5) ? "?" : "")), true);
        if (Has(NET_NAMES)) {
            AddFormula(CString(), true);
            AddFormula(m_Dice.Of(m_Formulas)->GetName(), false);
        }
        AddTable(0);
        AddTable(1);
        if (Has(NET_HOSTS))
            AddHostObjects();
        AddBareObjects();
    }
    ~NetJob()
    {
        while (!m_Passes.empty())
            m_Passes.pop_back();
        if (Has(NET_BARE)) {
            SetLocaleSetting(LOCALE_SDECIMAL, u"");
            CFmlaExprBase::ReInitExprNames();
        }
    }

    NetJob(const NetJob&) = delete;
    NetJob& operator=(const NetJob&) = delete;

protected:
    bool Has(unsigned int flags) const { return (m_Flags & flags) != 0; }
    int Formulas() const { return static_cast<int>(m_Formulas.size()); }
    template <typename Visit>
    void ForEachSet(Visit visit)
    {
        for (std::size_t index = 0; index < m_Sets.size(); index += 2) // a copy shares its maps
            visit(*m_Sets[index]);
    }

    // Texts. What stands on a level refers to lower levels, but for an accident.
    std::string Nested(int level)
    {
        if (m_Dice.OneIn(30))
            return m_Dice.Of({"F(none)", "T(none)", "F()", "F(f0)", "F(f1)", "T(t1)"});
        if (level == 0)
            return m_Dice.Of(m_VariableTexts);
        if (m_Dice.OneIn(Has(NET_TABLES) ? 2 : 6))
            return m_Dice.Below(std::min(level, 2)) ? "T(t1)" : "T(t0)";
        if (Has(NET_HOSTS) && level > 1 && m_Dice.OneIn(2))
            return m_Dice.Of({"F(h)", "F(h)", "T(ht)", "F(k)"});
        const std::string name = NameBelow(std::min(level, Formulas()));
        return name.ends_with('?') ? "IF(F(" + name + "),1,2)" : "F(" + name + ")";
    }
    std::string NameBelow(int level)
    {
        return m_Formulas[std::size_t(m_Dice.Below(level))]->GetName().ToUtf8();
    }
    std::string Number(int depth, int level)
    {
        const auto part = [&] { return Number(depth - 1, level); };
        switch (m_Dice.Below(depth == 0 ? 4 : 13)) {
        case 0:
            return m_Dice.Of({"0", "1", "2.5", "-1", "PI", "QUANTITY", "DURATION", "JOBSIZE"});
        case 1:
            return m_Dice.Of(m_VariableTexts);
        case 2:
        case 3:
            return Nested(level);
        case 4:
        case 5:
            return Choice(depth - 1, level);
        case 6:
            return m_Dice.Of({"SQRT(", "ABS(", "ASIN(", "COSH("}) + part() + ")";
        case 7:
            return m_Dice.Of({"SUM(", "MAX("}) + part() + "," + part() + ")";
        case 8:
            if (m_Dice.OneIn(Has(NET_FAULTS) ? 2 : 6))
                return m_Dice.Of({"COSH(1000)", "POWER(0,-1)", "SQRT(-1)", "1/0"});
            return m_Dice.OneIn(12) ? m_Dice.Of({"1+", "(2", "3 4", "1.2.3", "MOD(1)", "YES"})
                                    : part();
        default:
            return part() + m_Dice.Of({"+", "-", "*", "/"}) + part();
        }
    }
    std::string Choice(int depth, int level)
    {
        return "IF(" + Condition(depth, level) + "," + Number(depth, level) + "," +
               Number(depth, level) + ")";
    }
    std::string Condition(int depth, int level)
    {
        if (m_Dice.OneIn(5))
            return m_Dice.Of({"V(b?)", "NOT V(b?)", "YES", "V(b?) AND NO"});
        return Number(depth > 0 ? depth - 1 : 0, level) + m_Dice.Of({">", "=", " LE "}) +
               (m_Dice.OneIn(3) ? Nested(level) : m_Dice.Of(m_VariableTexts));
    }
    std::string Element(int level)
    {
        if (m_Dice.OneIn(3))
            return m_Dice.Of({"1000", "2500", "", "Vx", "Vb?", "Vy"});
        if (m_Dice.OneIn(20))
            return m_Dice.Of({"Fnone", "Tt1", "Ff1"});
        if (level > 0 && m_Dice.OneIn(3))
            return "Tt0";
        if (Has(NET_HOSTS) && level > 0 && m_Dice.OneIn(3))
            return m_Dice.Of({"Fh", "Fk", "Vown"});
        return "F" + NameBelow(level + 1);
    }
    template <typename Expression>
    void Fill(Expression& expression, const CString& name, const std::string& text)
    {
        Put("\n" + name.ToUtf8() + " := " + text);
        expression.SetFromEncodedString(Wide(text));
    }
    void FillFormula(FormulaImpl& formula, int level)
    {
        const CString name = formula.GetName();
        if (!name.IsEmpty() && name[name.GetLength() - 1] == u'?')
            Fill(formula, name, Condition(2, level));
        else if (Has(NET_SCANS) && m_Dice.OneIn(2))
            Fill(formula, name, Choice(1, level));
        else
            Fill(formula, name, Number(1 + m_Dice.Below(2), level));
    }
    void FillTable(FormulaTableImpl& table, int level)
    {
        Put("\n" + table.GetName().ToUtf8() + " :=");
        const auto element = [&] {
            const std::string text = Element(level);
            Put(" " + text + ",");
            return Wide(text);
        };
        table.GetRowSelector().init(element());
        table.GetColumnSelector().init(element());
        for (int cell = 0; cell < 2 * table.GetColumnCount(); ++cell) {
            const std::unique_ptr<CFormtblElem> former(table.GetCell(cell % 2, cell / 2));
            table.SetCell(cell % 2, cell / 2, new CFormtblElem(element(), *m_Sets[0]));
        }
    }

    template <typename Set>
    void AddSets()
    {
        m_Sets.push_back(std::make_unique<Set>());
        if (Has(NET_COPIES)) {
            m_Sets.push_back(std::make_unique<Set>(static_cast<Set&>(*m_Sets[0])));
            m_Sets.push_back(std::make_unique<Set>());
        }
        for (const auto& set : m_Sets) {
            set->SetHasDatabase(1);
            set->ErrorTracker().SetError(0, nullptr, u"none");
            set->SetReportFcnDomainErrors(Has(NET_FAULTS) && m_Dice.OneIn(2));
        }
    }
    template <typename Variable = VariableImpl>
    std::unique_ptr<Variable> NewVariable(CString name)
    {
        auto variable = std::make_unique<Variable>(m_Sets[0].get());
        variable->SetName(name);
        variable->SetValue(m_Dice.Below(4) - 1);
        ForEachSet([&](CalcSetImpl& set) { set.AddVariable(variable.get()); });
        return variable;
    }
    void AddVariables()
    {
        for (const char* const name : {"x", "y", "z", "b?"})
            m_Variables.push_back(NewVariable(name));
        if (Has(NET_NAMES))
            m_Variables.push_back(NewVariable(""));
        if (Has(NET_DERIVED)) {
            auto derived = NewVariable<ReadVariable>("d");
            derived->m_OnRead = [this] { ThrowIf(4); };
            m_Variables.push_back(std::move(derived));
            m_VariableTexts.push_back("V(d)");
        }
        for (auto& swapped : m_Swapped)
            swapped = NewVariable("swapped");
        if (Has(NET_CHANGES))
            m_VariableTexts.insert(m_VariableTexts.end(), {"V(swapped)", "V(deep)"});
        if (Has(NET_HOSTS))
            m_VariableTexts.push_back("V(own)");
    }
    std::unique_ptr<FormulaImpl> NewFormula(CString name, int level, bool isInSet)
    {
        CalcSetImpl* const set = m_Dice.Of(m_Sets).get();
        const int kind = Has(NET_DERIVED) ? m_Dice.Below(3) : 0;
        std::unique_ptr<FormulaImpl> formula;
        if (kind == 0)
            formula = std::make_unique<FormulaImpl>(set);
        else if (kind == 1)
            formula = std::make_unique<PlainFormula>(set);
        else
            formula = std::make_unique<PassingFormula>(set);
        formula->SetName(name);
        FillFormula(*formula, level);
        if (isInSet)
            ForEachSet([&](CalcSetImpl& each) { each.AddFormula(formula.get()); });
        return formula;
    }
    void AddFormula(const CString& name, bool isInSet)
    {
        m_Formulas.push_back(NewFormula(name, Formulas(), isInSet));
    }
    void AddTable(int level)
    {
        const int columns = 1 + m_Dice.Below(2);
        CalcSetImpl* const set = m_Dice.Of(m_Sets).get();
        auto table = Has(NET_DERIVED) && m_Dice.OneIn(2)
                         ? std::make_unique<PassingTable>(set, 2, columns)
                         : std::make_unique<FormulaTableImpl>(set, 2, columns);
        CString name = level ? u"t1" : u"t0";
        table->SetName(name);
        table->SetRowLimit(1, 1.0);
        FillTable(*table, level);
        ForEachSet([&](CalcSetImpl& each) { each.AddFormulaTable(table.get()); });
        m_Tables.push_back(std::move(table));
    }
    void AddHostObjects()
    {
        CalcSetImpl& set = *m_Dice.Of(m_Sets);
        m_HostFormula = std::make_unique<OwnFormula>(u"h", set);
        m_HostTable = std::make_unique<OwnTable>(u"ht", set);
        FillHost();
        m_HostFormula->m_OnCheck = [this] { ThrowIf(3); };
        m_HostFormula->m_OnCalculate = [this](CScannedVariables* list) { Disturb(list); };
        m_Own.m_OnRead = [this] { ThrowIf(1); };
        m_Edited = std::make_unique<FormulaImpl>(m_Sets[0].get());
        m_Edited->SetFromEncodedString(u"V(x)+V(y)");
        m_Deep.m_OnRead = [this] {
            unsigned int message = 0;
            std::ignore = m_Edited->Calculate(message, nullptr);
            m_Deep.m_Value = m_Edited->GetValue();
        };
        for (const auto& each : m_Sets) {
            auto& job = static_cast<HostJobSet&>(*each);
            job.m_HostVariables = {{u"own", &m_Own}, {u"deep", &m_Deep}};
            job.m_HostFormulas = {{u"k", &m_Constant}, {u"h", m_HostFormula.get()}};
            job.m_HostTables = {{u"ht", m_HostTable.get()}};
        }
        m_Constant.m_Message = MSG_GENERAL_FAILURE;
    }
    int FillHost()
    {
        Fill(m_HostFormula->m_Expression, u"h", Number(2, 2));
        Fill(m_HostTable->m_Expression, u"ht", Number(2, 2));
        return 1;
    }
    void AddBareObjects()
    {
        for (int index = 0; Has(NET_BARE) && index < 3; ++index) {
            CalcSetImpl& set = *m_Dice.Of(m_Sets);
            m_Bare.push_back(index == 0 ? std::make_unique<PassingExpression>(set)
                                        : std::make_unique<CFmlaExpression>(set));
            Fill(*m_Bare.back(), u"bare", Number(2, Formulas()));
        }
        for (int index = 0; Has(NET_OPERANDS) && index < 2; ++index) {
            m_Operands.push_back(std::make_unique<CalculationOperand>(*m_Dice.Of(m_Sets)));
            CString name = m_Dice.Of(m_Formulas)->GetName();
            std::ignore = m_Operands.back()->LoadFormula(name);
        }
    }

    // What the host's objects do.
    void NewTurn()
    {
        ++m_Turn;
        m_Thrower = Has(NET_THROWS) && m_Dice.OneIn(3) ? 1 + m_Dice.Below(4) : 0;
        m_Own.m_Value = m_Dice.Below(4) - 1;
        m_Constant.m_Value = m_Turn % 3;
        m_Constant.m_Succeeds = m_Turn % 7 != 0;
        for (const auto& set : m_Sets)
            if (auto* const job = dynamic_cast<HostJobSet*>(set.get()))
                job->m_HostQuantity = m_Turn % 4;
    }
    void ThrowIf(int thrower) const
    {
        if (m_Thrower == thrower)
            throw HostTrouble();
    }
    void Disturb(CScannedVariables* list)
    {
        ThrowIf(2);
        if (!Has(NET_CHANGES))
            return;
        m_Variables[0]->SetValue(m_Turn % 3);
        ChangeOneThing(*m_Sets[0]);
        CScannedVariables own;
        m_Formulas[std::size_t(m_Turn) % m_Formulas.size()]->GetVariables(own, 1, 0);
        if (m_Top)
            ComeBack(*m_Top, list);
    }
    void ChangeOneThing(CalcSetImpl& set)
    {
        switch (m_Turn % 7) {
        case 0:
            return m_Edited->SetFromEncodedString(Wide("V(y)*" + std::to_string(m_Turn)));
        case 1:
            return set.AddVariable(m_Swapped[m_Turn % 2].get());
        case 2:
            return set.SetDuration(m_Turn % 3);
        case 3:
            return set.StartNewPass();
        case 4:
            return m_Tables[0]->SetRowLimit(0, m_Turn % 2 - 1.0);
        case 5:
            return m_Tables[1]->SetCalculated(0);
        default:
            return set.SetJobSize(m_Turn % 3);
        }
    }
    // A formula in progress refuses to be checked and calculated again. What the refusal writes is
    // put back, since it would tell how often that was tried.
    void ComeBack(FormulaImpl& top, CScannedVariables* list)
    {
        CFmlaExpression& expression = top.GetExpression();
        CCalcErrorTracker& tracker = expression.CalcSet().ErrorTracker();
        const CCalcErrorTracker chain = tracker;
        const auto found = static_cast<unsigned int>(expression.GetMessageNum());
        unsigned int message = 0;
        const int answer =
            m_Turn % 2 ? top.Calculate(message, list) : top.IsValid(message, m_Turn % 4 / 2);
        EXPECT_EQ(answer, 0);
        EXPECT_EQ(message, MSG_FORMULA_INSIDE_ITSELF);
        expression.TrackError(found);
        tracker = chain;
    }

    void Put(const std::string& text) { m_Seen += text; }
    void Put(const char* text) { m_Seen += text; }
    template <typename... Numbers>
    void Put(Numbers... numbers)
    {
        const auto put = [this](auto number) {
            char text[32];
            m_Seen += ' ';
            if (number == number) // any NaN is as good as another
                m_Seen.append(text, std::to_chars(text, text + sizeof text, number).ptr);
        };
        (put(numbers), ...);
    }

    unsigned int m_Flags;
    Dice m_Dice;
    std::vector<const char*> m_VariableTexts{"V(x)", "V(y)", "V(z)", "V(made up)"};
    std::vector<std::unique_ptr<CalcSetImpl>> m_Sets;
    std::vector<std::unique_ptr<VariableImpl>> m_Variables;
    std::unique_ptr<VariableImpl> m_Swapped[2]; // of one name
    std::vector<std::unique_ptr<FormulaImpl>> m_Formulas;
    std::vector<std::unique_ptr<FormulaTableImpl>> m_Tables;
    std::unique_ptr<FormulaImpl> m_Edited; // never fails, and refers to stock variables only
    HostVariable m_Own{u"own", 2.0};
    HostVariable m_Deep{u"deep", 0.0}; // calculates a formula when it is read
    HostFormula m_Constant{u"k", 0.0};
    std::unique_ptr<OwnFormula> m_HostFormula;
    std::unique_ptr<OwnTable> m_HostTable;
    std::vector<std::unique_ptr<CFmlaExpression>> m_Bare;
    std::vector<std::unique_ptr<CalculationOperand>> m_Operands;
    std::vector<std::unique_ptr<CalculationPass>> m_Passes;

    int m_Turn = 0;
    int m_Thrower = 0;            // of the turn, 0 for none
    FormulaImpl* m_Top = nullptr; // what the present action checks or calculates
    std::string m_Seen;
};

} // namespace tovo::test

#endif
