#include <calculation/RandomNet.h>

#include <optional>

#include <calculation/NetJob.h>

#include "../../src/expression_core/Pass.h"

namespace tovo::test {
namespace {

// What a host does with a job, and what it then sees.
class Net : NetJob {
public:
    Net(unsigned int flags, unsigned int seed) : NetJob(flags, seed) { ChooseDeeds(); }
    std::string Live(int actions)
    {
        for (int count = 0; count < actions; ++count)
            Act();
        return std::move(m_Seen);
    }

private:
    // Deeds of the host, by what they are done to. Each returns a number to be seen.
    struct Deed {
        const char* name;
        int (Net::*go)();
    };

    void ChooseDeeds()
    {
        const auto add = [this](unsigned int flags, std::size_t weight, const Deed& deed) {
            if (flags == 0 || Has(flags))
                m_Deeds.insert(m_Deeds.end(), weight, deed);
        };
        add(0, 10, {"Change", &Net::Change});
        add(0, 20, {"Calculate", &Net::Calculate});
        add(0, 10, {"Scan", &Net::Scan});
        add(NET_SCANS, 20, {"Scan", &Net::Scan});
        add(0, 10, {"WorkOnTable", &Net::WorkOnTable});
        add(NET_TABLES, 5, {"ChangeTable", &Net::ChangeTable});
        add(NET_NAMES, 6, {"Rename", &Net::Rename});
        add(NET_HOSTS, 5, {"AskHost", &Net::AskHost});
        add(NET_HELD, 14, {"HoldPass", &Net::HoldPass});
        add(NET_BARE, 20, {"WorkOnBare", &Net::WorkOnBare});
        add(NET_OPERANDS, 15, {"WorkOnOperand", &Net::WorkOnOperand});
    }
    // What a deed picks is seen too.
    int Pick(int count)
    {
        const int picked = m_Dice.Below(count);
        Put(picked);
        return picked;
    }
    template <typename Objects>
    auto& One(Objects& objects)
    {
        return objects[static_cast<std::size_t>(Pick(static_cast<int>(objects.size())))];
    }
    CScannedVariables& List() { return m_Dice.OneIn(2) ? *m_Kept : *m_Fresh; }
    CScannedVariables* ListOrNull() { return m_Dice.OneIn(2) ? &List() : nullptr; }

    int Change()
    {
        const int level = Pick(Formulas());
        auto& formula = m_Formulas[std::size_t(level)];
        CalcSetImpl& set = *One(m_Sets);
        switch (Pick(9)) {
        case 0:
            FillFormula(*formula, level);
            break;
        case 1:
            set.SetDuration(m_Dice.Below(3));
            set.SetJobSize(m_Dice.Below(3));
            set.SetQuantity(m_Dice.Below(3));
            break;
        case 2: // under a name that was changed, the set would keep the one that goes
            if (!Has(NET_NAMES))
                formula = NewFormula(formula->GetName(), level, true);
            break;
        case 3:
            set.SetReportFcnDomainErrors(Has(NET_FAULTS) && m_Dice.OneIn(2));
            break;
        case 4:
            ForgetFlags();
            break;
        case 5:
            return formula->GetExpression().InsertString(m_Dice.Of({"1", "+1", " ", "2*"}), 0);
        default:
            One(m_Variables)->SetValue(m_Dice.Below(4) - 1);
        }
        return level;
    }
    // A scan does not tell whether it has failed; the messages do.
    int HasScanned()
    {
        if (!Has(NET_CHANGES))
            return 1;
        const auto isClear = [](const auto& holder) {
            return holder->GetExpression().GetMessageNum() == 0;
        };
        return std::ranges::all_of(m_Formulas, isClear) &&
               m_HostFormula->m_Expression.GetMessageNum() == 0 &&
               m_HostTable->m_Expression.GetMessageNum() == 0;
    }
    int Calculate()
    {
        m_Top = One(m_Formulas).get();
        const CString other = One(m_Formulas)->GetName();
        switch (Pick(12)) {
        case 0:
        case 1:
        case 2:
            return m_Top->IsValid(m_Message, m_Dice.Below(2));
        case 3:
            return m_Top->GetExpression().Calculate(ListOrNull());
        case 4:
            return std::exchange(m_Top, nullptr)->GetExpression().NestedFormulasOK();
        case 5:
            return m_Top->GetExpression().IsValid(m_Message, other, 1);
        case 6:
            return std::exchange(m_Top, nullptr)->GetExpression().CheckNestedFormula(other);
        default:
            return m_Top->Calculate(m_Message, nullptr);
        }
    }
    int Scan()
    {
        FormulaImpl& formula = *One(m_Formulas);
        CScannedVariables& list = List();
        if (m_Dice.OneIn(3)) {
            formula.GetVariables(list, m_Dice.Below(2), m_Dice.Below(2));
            return HasScanned();
        }
        m_Top = &formula;
        return formula.Calculate(m_Message, &list);
    }
    int WorkOnTable()
    {
        FormulaTableImpl& table = *One(m_Tables);
        switch (Pick(Has(NET_TABLES) ? 8 : 12)) {
        case 0:
        case 1:
            table.SetValidated(0);
            return table.IsValid(m_Message, m_Dice.Below(2));
        case 2:
        case 3:
            table.GetVariables(List(), m_Dice.Below(2), m_Dice.Below(2));
            return HasScanned();
        case 4:
        case 5:
        case 6:
            return table.Calculate(m_Message, ListOrNull());
        default:
            One(m_Sets)->StartNewPass();
            return 1;
        }
    }
    int ChangeTable()
    {
        const int level = Pick(2);
        FormulaTableImpl& table = *m_Tables[std::size_t(level)];
        switch (Pick(3)) {
        case 0:
            FillTable(table, level);
            break;
        case 1:
            table.SetRowLimit(0, m_Dice.Below(2) - 1.0);
            break;
        default:
            table.SetScanned(m_Dice.Below(2));
            table.SetScannedInCondition(m_Dice.Below(2));
            table.SetCalculated(m_Dice.Below(2));
        }
        return level;
    }
    int Rename()
    {
        CString name = One(m_Formulas)->GetName();
        FormulaImpl& formula = *One(m_Formulas);
        VariableImpl& variable = *One(m_Variables);
        CString other = m_Dice.Of({"x", "y", "z", "b?", "", "other"});
        const bool isEntered = m_Dice.OneIn(2);
        if (m_Dice.OneIn(2)) {
            formula.SetName(name);
            if (isEntered)
                m_Sets[0]->AddFormula(&formula);
        } else {
            variable.SetName(other);
            if (isEntered)
                m_Sets[0]->AddVariable(&variable);
        }
        return isEntered;
    }
    int AskHost()
    {
        CScannedVariables* const list = ListOrNull();
        switch (Pick(5)) {
        case 0:
            return FillHost();
        case 1:
            return m_HostFormula->IsValid(m_Message, 1);
        case 2:
            return m_HostFormula->Calculate(m_Message, list);
        case 3:
            return m_HostTable->Calculate(m_Message, list);
        default:
            m_HostFormula->GetVariables(List(), m_Dice.Below(2), m_Dice.Below(2));
            return HasScanned();
        }
    }
    int HoldPass()
    {
        const int choice = Pick(5);
        if (choice < 2 && m_Passes.size() < 3)
            m_Passes.push_back(std::make_unique<CalculationPass>());
        else if (choice == 3 && !m_Passes.empty())
            m_Passes.pop_back();
        else if (!m_Passes.empty()) {
            NewTurn();
            m_Passes.back()->NoteHostChange();
        }
        return static_cast<int>(m_Passes.size());
    }
    int WorkOnBare()
    {
        CFmlaExpression& bare = *One(m_Bare);
        switch (Pick(10)) {
        case 0:
            return bare.IsValid();
        case 1:
            return bare.LoadExpressionTree(m_Dice.Below(2));
        case 2:
        case 3:
            return bare.IsValid(m_Message, m_Dice.Of({"", "f0", "bare", "bare?"}), m_Dice.Below(2));
        case 4:
            bare.GetVariables(List(), m_Dice.Below(2), m_Dice.Below(2));
            return HasScanned();
        case 5:
        case 6:
            return EditBare(bare);
        default:
            return bare.Calculate(ListOrNull());
        }
    }
    int EditBare(CFmlaExpression& bare)
    {
        int isWhole = 0;
        switch (Pick(8)) {
        case 0:
            return bare.InsertString(m_Dice.Of({"-", "1+", " ", "(", "2.5*"}), 0);
        case 1:
            return bare.InsertVariable(u"x", 0, TOK_VARIABLE);
        case 2:
            return bare.DeleteChars(0, 1 + m_Dice.Below(2), &isWhole);
        case 3:
            bare = *One(m_Bare);
            break;
        case 4:
            SetLocaleSetting(LOCALE_SDECIMAL, m_Dice.Of({"", ",", ";"}));
            CFmlaExprBase::ReInitExprNames();
            break;
        default:
            Fill(bare, u"bare", Number(2, Formulas()));
        }
        return bare.NumVars();
    }
    int WorkOnOperand()
    {
        CalculationOperand& operand = *One(m_Operands);
        switch (Pick(6)) {
        case 0:
            return LoadOperand(operand);
        case 1:
            return operand.IsValid(m_Dice.OneIn(2));
        case 2:
            return operand.GetVariables(List(), m_Dice.OneIn(2), m_Dice.OneIn(2));
        default:
            const int isDone = operand.Calculate() ? 1 : 0;
            Put(isDone);
            Put(operand.GetValue(), operand.GetCalculated() ? 1 : 0);
            return isDone;
        }
    }
    int LoadOperand(CalculationOperand& operand)
    {
        CString formula = One(m_Formulas)->GetName();
        CString table = m_Dice.Of({"t0", "t1", "t1", "ht"});
        CString variable = m_Dice.Of({"x", "d", "own"});
        for (const auto& each : m_Formulas)
            each->SetCalculated(m_Dice.Below(2));
        switch (Pick(5)) {
        case 0:
            return operand.LoadFormula(formula);
        case 1:
            return operand.LoadFormulaTable(table);
        case 2:
            return operand.LoadVariable(variable);
        default:
            return operand.LoadEncodedExpression(Wide(Number(2, Formulas())));
        }
    }
    void ForgetFlags()
    {
        for (const auto& variable : m_Variables)
            variable->SetInCond(m_Dice.Below(2));
        for (const auto& set : m_Sets) {
            set->SetDURATIONInCondition(0);
            set->SetJOBSIZEInCondition(0);
            set->SetQuantityInCondition(0);
            set->SetQuantityInCalculations(0);
            set->ClearMissingVariables();
        }
        m_Kept = std::make_unique<CScannedVariables>();
    }

    void Act()
    {
        if (m_Passes.empty())
            NewTurn();
        m_Fresh.emplace();
        m_Message = 77;
        m_Top = nullptr;
        const Deed& deed = m_Dice.Of(m_Deeds);
        Put("\n> ");
        Put(deed.name);
        try {
            const int answer = (this->*deed.go)();
            Put(answer);
            Put(static_cast<int>(m_Message));
            // Where an object fails, those that change things are asked once more.
            if (answer == 0 && Has(NET_CHANGES))
                BeginAnew();
            else
                Look(answer != 0);
            if (answer == 0)
                for (const auto& set : m_Sets)
                    set->SetStrError(CString());
        } catch (const HostTrouble&) {
            Put(" thrown");
            TidyUp();
        }
        CalculateEdited();
        LookAtExpressions();
    }
    void CalculateEdited()
    {
        if (!Has(NET_CHANGES))
            return;
        try {
            unsigned int message = 0;
            std::ignore = m_Edited->Calculate(message, nullptr);
        } catch (const HostTrouble&) { // a variable that throws may have the name of one it reads
        }
    }
    void BeginAnew()
    {
        TidyUp();
        m_Thrower = 0;
        LoadNestedAnew();
        for (const auto& bare : m_Bare)
            static_cast<void>(bare->LoadExpressionTree(0));
        for (const auto& operand : m_Operands)
            if (operand->IsExpression())
                static_cast<void>(operand->GetFmlaExpression().LoadExpressionTree(0));
    }
    void LoadNestedAnew()
    {
        for (const auto& formula : m_Formulas)
            static_cast<void>(formula->GetExpression().LoadExpressionTree(0));
        if (!Has(NET_HOSTS))
            return;
        static_cast<void>(m_HostFormula->m_Expression.LoadExpressionTree(0));
        static_cast<void>(m_HostTable->m_Expression.LoadExpressionTree(0));
    }
    // After an exception only the expressions are looked at; whatever else it may have left half
    // done begins anew.
    void TidyUp()
    {
        ForgetFlags();
        m_Own.m_InCond = m_Deep.m_InCond = 0;
        m_Variables[0]->SetValue(0);
        for (const auto& table : m_Tables)
            table->SetValidated(0);
        for (const auto& set : m_Sets) {
            set->StartNewPass();
            set->SetStrError(CString());
            set->ErrorTracker().SetError(0, nullptr, u"none");
        }
    }
    void Look(bool isDone)
    {
        for (const CScannedVariables* list : {m_Kept.get(), &*m_Fresh}) {
            Put("\nlist " + Names(*list));
            Put(list->DURATIONScanned(), list->JOBSIZEScanned(), list->QuantityScanned());
        }
        for (const auto& table : m_Tables) {
            Put("\n" + table->GetName().ToUtf8());
            Put(table->GetCalculated() ? table->GetValue() : 0.0);
            Put(table->GetCalculated(), table->GetScanned(), table->GetScannedInCondition());
        }
        for (const auto& variable : m_Variables) {
            Put("\n" + variable->GetName().ToUtf8());
            Put(variable->VariableImpl::GetValue());
            Put(variable->InCond());
        }
        Put("\nown, deep");
        Put(m_Own.m_InCond, m_Deep.m_InCond);
        for (const auto& set : m_Sets) {
            // A failure is found more than once, and leaves the text of the last time.
            Put("\nset " + Dump(set->ErrorTracker()));
            Put(isDone ? set->GetStrError().ToUtf8() : std::string());
            Put(set->GetDURATIONInCondition(), set->GetJOBSIZEInCondition(),
                set->GetQuantityInCondition(), set->GetQuantityInCalculations());
        }
        for (const auto& operand : m_Operands) {
            Put("\noperand");
            Put(static_cast<int>(operand->GetMsgId()), operand->GetInvalidPos());
        }
    }
    void LookAtExpressions()
    {
        for (const auto& formula : m_Formulas)
            See(formula->GetName().ToUtf8(), formula->GetExpression());
        if (Has(NET_HOSTS)) {
            See("h", m_HostFormula->m_Expression);
            See("ht", m_HostTable->m_Expression);
            See("edited", m_Edited->GetExpression());
        }
        for (const auto& bare : m_Bare)
            See("bare", *bare);
        for (const auto& operand : m_Operands)
            if (operand->IsExpression())
                See("operand", operand->GetFmlaExpression());
        Put("\nbetween calls" + Names(NestedNames::m_NestedFmlaNames));
        Put(CExprTree::InIfCondition());
    }
    void See(const std::string& name, const CFmlaExpression& expression)
    {
        Put("\n" + name);
        Put(expression.GetValue());
        Put(expression.GetMessageNum(), expression.GetInvalidPos(), expression.IsLoaded(),
            expression.IsCalculated(), expression.IsBoolean(), expression.IsNumeric());
    }

    std::vector<Deed> m_Deeds;
    unsigned int m_Message = 0;
    std::unique_ptr<CScannedVariables> m_Kept = std::make_unique<CScannedVariables>();
    std::optional<CScannedVariables> m_Fresh; // another one at one place for each action
};

} // namespace

std::string LiveOfNet(unsigned int flags, unsigned int seed, bool isRemembering)
{
    detail::Pass::SetRemembering(isRemembering);
    std::string seen = Net(flags, seed).Live(50);
    detail::Pass::SetRemembering(true);
    return seen;
}

} // namespace tovo::test
