#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "../src/expression_core/Pass.h"

#include "Job.h"
#include "Oracles.h"
#include "Reader.h"

// Texts are typed into the formulas of a job, checked, calculated and scanned, while its values and
// texts change. Inputs that are examined thoroughly run twice, once without anything remembered: a
// host must see the same.

namespace tovo::fuzz {
namespace {

using detail::Pass;

constexpr int kMostActions = 40;
constexpr int kLongestExpression = 300;
// Without remembering, the work doubles at every level.
constexpr int kMostNested = 8;

constexpr std::array kValues = {0.0, 1.0, -1.0, 0.5, 2.0, 90.0, 1000.0, 1e300};

constexpr std::array<const char*, 18> kOperands = {
    "V(x)", "V(y)", "F(A)", "F(B)", "F(D)",     "T(T)",     "T(S)",    "0",      "1",
    "2.5",  "-1",   "90",   "PI",   "QUANTITY", "DURATION", "JOBSIZE", "V(own)", "F(host)"};
constexpr std::array<const char*, 10> kFunctions = {"(",     "-(",    "SQRT(", "ABS(", "ASIN(",
                                                    "ACOS(", "COSH(", "TAN(",  "SUM(", "ROUND("};
constexpr std::array<const char*, 7> kFunctionsOfTwo = {"POWER(", "MOD(", "ROUND(", "ROUNDTO(",
                                                        "MAX(",   "AVG(", "TRUNC("};
constexpr std::array<const char*, 5> kOperators = {"+", "-", "*", "/", " - "};
constexpr std::array<const char*, 6> kConditions = {"V(b?)", "NOT V(b?)", "F(C?)",
                                                    "YES",   "NO",        "V(x)>1"};
constexpr std::array<const char*, 4> kComparisons = {"=", "<", ">=", " NE "};

// That something differs was seen in records that are not written.
struct NotWritten {};

void FailOn(const char* expected, const Record& first, const Record& second)
{
    if (!first.IsWritten())
        throw NotWritten();
    Fail(expected, first.Text() + '\n' + second.Text());
}

class Play {
public:
    Play(Reader reader, bool isWritten)
        : m_Reader(reader),
          m_IsWritten(isWritten),
          m_IsStockSet(m_Reader.Pick(2) == 0),
          m_Job(m_IsStockSet, m_Reader.Pick(2) != 0),
          m_Free(m_Job.Set())
    {
        SpeakLanguage(m_Reader.Pick(kLanguages));
    }

    // What was seen after each action.
    std::vector<Record> Run()
    {
        while (!m_Reader.AtEnd() && m_Seen.size() < kMostActions) {
            m_Result = Record(m_IsWritten);
            Act();
            m_Job.Show(m_Result);
            Show(m_Result, m_Free);
            m_Seen.push_back(m_Result);
        }
        return std::move(m_Seen);
    }

private:
    FormulaImpl& Formula() { return m_Job.Formula(m_Reader.Pick(Job::kFormulas)); }
    FormulaTableImpl& Table() { return m_Job.Table(m_Reader.Pick(Job::kTables)); }
    // One of the formulas' expressions, or one that is in no formula.
    CFmlaExpression& Expression()
    {
        const int index = m_Reader.Pick(Job::kFormulas + 1);
        return index < Job::kFormulas ? m_Job.Formula(index).GetExpression() : m_Free;
    }

    template <typename Choices>
    auto One(const Choices& choices)
    {
        return choices[static_cast<std::size_t>(m_Reader.Pick(static_cast<int>(choices.size())))];
    }

    void Act()
    {
        const int action = m_Reader.Pick(24);
        m_Result << action << ": ";
        switch (action) {
        case 0: {
            VariableImpl& variable = m_Job.Variable(m_Reader.Pick(Job::kVariables));
            return variable.SetValue(m_Reader.Number());
        }
        case 1:
            return Type(Expression());
        case 2:
            return Check(Formula());
        case 3:
            return Calculate(Formula(), false);
        case 4:
            return Calculate(Formula(), true);
        case 5:
            return Scan(Formula());
        case 6:
            return Check(Expression());
        case 7:
            return Edit(Expression());
        case 8: {
            FormulaTableImpl& table = Table();
            CFormtblElem& element = m_Job.Element(table, m_Reader.Pick(6));
            return element.init(m_Reader.Text());
        }
        case 9:
            return Calculate(Table(), false);
        case 10:
            return Scan(Table());
        case 11:
            return Check(Table());
        case 12:
            return m_Job.Set().StartNewPass();
        case 13:
            return SpeakLanguage(m_Reader.Pick(kLanguages));
        case 14:
            return SetJobValue(m_Reader.Pick(3), m_Reader.Number());
        case 15:
            return Rename(Formula());
        case 16:
            return m_Job.Set().ClearMissingVariables();
        case 17: {
            const int row = m_Reader.Pick(2);
            return Table().SetRowLimit(row, m_Reader.Number());
        }
        case 18:
            return Recalculate(Expression());
        case 19:
            return Rewrite(Expression());
        case 20:
            return Compose(m_Reader.Pick(Job::kFormulas));
        case 21: {
            VariableImpl& variable = m_Job.Variable(m_Reader.Pick(Job::kVariables));
            return variable.SetValue(One(kValues));
        }
        case 22:
            return UseCopyOfSet();
        default:
            return TakeOutOrPutBack();
        }
    }

    // A copy finds what its source finds by name, and a change of either shows in both.
    void UseCopyOfSet()
    {
        CalcSetImpl copy(m_Job.Set());
        CFmlaExpression expression(copy);
        expression.SetFromEncodedString(CString(m_Reader.Pick(2) == 0 ? Number(2) : Condition(2)));
        Check(expression);
        Recalculate(expression);
        CalcSetImpl other;
        other.SetQuantity(m_Reader.Number());
        other = copy;
        m_Result << other.GetQuantity() << copy.GetStrError();
    }
    void TakeOutOrPutBack()
    {
        CalcSetImpl& set = m_Job.Set();
        const int object = m_Reader.Pick(Job::kFormulas);
        switch (m_Reader.Pick(6)) {
        case 0:
            m_Result << set.RemoveFormula(&m_Job.Formula(object));
            return;
        case 1:
            m_Result << set.RemoveFormula(m_Job.Formula(object).GetName());
            return;
        case 2:
            m_Result << set.RemoveVariable(&m_Job.Variable(object % Job::kVariables));
            return;
        case 3:
            m_Result << set.RemoveFormulaTable(&m_Job.Table(object % Job::kTables));
            return;
        case 4:
            return set.AddVariable(&m_Job.Variable(object % Job::kVariables));
        default:
            set.AddFormula(&m_Job.Formula(object));
            return set.AddFormulaTable(&m_Job.Table(object % Job::kTables));
        }
    }

    bool IsTooMuch() { return m_Job.CountNested() + CountNested(m_Free) > kMostNested; }

    void Type(CFmlaExpression& expression)
    {
        expression.SetFromEncodedString(m_Reader.Text().Left(kLongestExpression));
        if (IsTooMuch())
            expression.SetExpr(CString());
    }
    // A formula's text that is mostly sound: the reader's choices lead through a grammar.
    void Compose(int index)
    {
        CFmlaExpression& expression = m_Job.Formula(index).GetExpression();
        const bool isYesNo = m_Job.Formula(index).IsBoolean();
        expression.SetFromEncodedString(CString(isYesNo ? Condition(2) : Number(3)));
        if (IsTooMuch())
            expression.SetExpr(CString());
    }
    std::string Number(int depth)
    {
        const int kind = depth == 0 ? 0 : m_Reader.Pick(6);
        if (kind < 2)
            return One(kOperands);
        if (kind == 2)
            return One(kFunctions) + Number(depth - 1) + ')';
        if (kind == 3)
            return One(kFunctionsOfTwo) + Number(depth - 1) + ',' + Number(depth - 1) + ')';
        if (kind == 4)
            return "IF(" + Condition(depth - 1) + ',' + Number(depth - 1) + ',' +
                   Number(depth - 1) + ')';
        return Number(depth - 1) + One(kOperators) + Number(depth - 1);
    }
    std::string Condition(int depth)
    {
        const int kind = depth == 0 ? 0 : m_Reader.Pick(4);
        if (kind < 2)
            return One(kConditions);
        if (kind == 2)
            return Condition(depth - 1) + " AND NOT (" + Condition(depth - 1) + ')';
        return Number(depth - 1) + One(kComparisons) + Number(depth - 1);
    }
    void Edit(CFmlaExpression& expression)
    {
        const int pos = m_Reader.Int();
        int wholeVar = 0;
        expression.DeleteChars(pos, m_Reader.Pick(3) == 0 ? m_Reader.Int() : pos, &wholeVar);
        expression.InsertString(m_Reader.Text().Left(kLongestExpression), pos);
    }
    void Rewrite(CFmlaExpression& expression)
    {
        const CString name = m_Reader.Name();
        if (m_Reader.Pick(2) == 0)
            expression.RemoveFormulaFromExpression(name);
        else
            expression.ChangeFormulaInExpression(name, m_Reader.Name());
        if (IsTooMuch())
            expression.SetExpr(CString());
    }
    void SetJobValue(int which, double value)
    {
        CalcSetImpl& set = m_Job.Set();
        which == 0   ? set.SetDuration(value)
        : which == 1 ? set.SetJobSize(value)
                     : set.SetQuantity(value);
    }
    // The set may come to have one formula under two names, and to lose another.
    void Rename(FormulaImpl& formula)
    {
        CString name = m_Reader.Name();
        formula.SetName(name);
        if (m_Reader.Pick(2) == 0)
            m_Job.Set().AddFormula(&formula);
    }

    // Does it two to five times. In a stock set nothing changes meanwhile, so each must come to the
    // same.
    template <typename Object, typename Work>
    void Repeat(Object& object, Work work)
    {
        if (IsTooMuch())
            return;
        Record first;
        for (int times = 2 + m_Reader.Pick(4); times > 0; --times) {
            unsigned int message = MSG_NONE;
            const int answer = work(message);
            Require(answer == 0 || message == MSG_NONE, "no message with a success");
            Record found(m_IsWritten);
            found << answer << message << object.GetValue();
            if (answer == 0)
                Show(found, m_Job.Set().ErrorTracker());
            const bool isFirst = first.Hash() == 0;
            if (isFirst)
                first = found;
            if (m_IsStockSet && found.Hash() != first.Hash())
                FailOn("the same once more", first, found);
            m_Result << found.Text().c_str() << found.Hash();
        }
    }
    void Check(CFmlaExpression& expression)
    {
        const CString name = m_Reader.Name();
        const int nested = m_Reader.Pick(2);
        Repeat(expression,
               [&](unsigned int& message) { return expression.IsValid(message, name, nested); });
    }
    template <typename Object>
    void Check(Object& object)
    {
        const int nested = m_Reader.Pick(2);
        Repeat(object, [&](unsigned int& message) { return object.IsValid(message, nested); });
    }
    template <typename Object>
    void Calculate(Object& object, bool isScan)
    {
        CScannedVariables list;
        // A scan calculates a table again whose value is that of a former pass.
        unsigned int message = MSG_NONE;
        if (isScan && !IsTooMuch())
            m_Result << object.Calculate(message, &list);
        Repeat(object, [&](unsigned int& failure) {
            return object.Calculate(failure, isScan ? &list : nullptr);
        });
        Show(m_Result, list);
    }
    void Recalculate(CFmlaExpression& expression)
    {
        Repeat(expression, [&](unsigned int&) { return expression.Calculate(nullptr); });
    }
    template <typename Object>
    void Scan(Object& object)
    {
        const int all = m_Reader.Pick(2);
        if (IsTooMuch())
            return;
        CScannedVariables list;
        object.GetVariables(list, all, m_Reader.Pick(2));
        Show(m_Result, list);
    }

    Reader m_Reader;
    const bool m_IsWritten;
    const bool m_IsStockSet;
    Job m_Job;
    CFmlaExpression m_Free;
    Record m_Result; // of the present action
    std::vector<Record> m_Seen;
};

std::vector<Record> Seen(Reader reader, bool isRemembering, bool isWritten)
{
    Pass::SetRemembering(isRemembering);
    return Play(reader, isWritten).Run();
}

void RequireSameAfresh(Reader reader, bool isWritten)
{
    const std::vector<Record> remembered = Seen(reader, true, isWritten);
    if (!IsThorough())
        return;
    const std::vector<Record> fresh = Seen(reader, false, isWritten);
    for (std::size_t action = 0; action < fresh.size(); ++action)
        if (remembered[action].Hash() != fresh[action].Hash())
            FailOn("the same without remembering", remembered[action], fresh[action]);
}

} // namespace
} // namespace tovo::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    using namespace tovo::fuzz;
    BeginInput(bytes, count);
    const Reader reader(bytes, count);
    try {
        RequireSameAfresh(reader, false);
    } catch (const NotWritten&) {
        RequireSameAfresh(reader, true);
    }
    return 0;
}
