#include <TovoJob/Explanation.h>

#include <algorithm>
#include <unordered_set>
#include <utility>

#include <TovoFormula/CalculationPass.h>
#include <TovoFormula/ExprTree.h>

#include "Access.h"
#include "Validation.h"

namespace tovo {

namespace {

using job::Calculation;
using job::Token;

// The tree of an expression, made and calculated by the engine as in any calculation, and open to
// be looked through.
class OpenTree : public CExprTree {
public:
    using CExprTree::CExprTree;

    bool Build(const CFmlaExpression& expression, const std::vector<Token>& tokens)
    {
        const CString text = expression.GetTextStr();
        for (const Token& token : tokens) {
            const CString part = text.Mid(token.begin, token.end - token.begin);
            if (!InsertToken(token.code, part, token.begin, 1))
                return false;
        }
        return EndOfExpression() && Calculate(nullptr);
    }
    const CETree* Root() const { return m_Root; }
};

// Turns a tree into steps. The nodes do not know where in the text they stand; but a walk that
// passes through each operator after its first operand meets them in the order of the text, so the
// n-th node is the n-th token. Only the nameless function of a plain pair of parentheses has no
// token, and is no step either: it widens the span of what is in it.
class StepMaker {
public:
    StepMaker(const CFmlaExpression& expression, const std::vector<Token>& tokens)
        : m_Text(expression.GetTextStr()), m_Tokens(tokens)
    {}

    // With a stack of its own, since a text may nest deeper than calls can.
    std::vector<Step> Make(const CETree* root)
    {
        Enter(root, true);
        while (!m_Open.empty())
            Advance();
        return std::move(m_Steps);
    }

private:
    struct Open {
        const CETree* node;
        std::size_t step; // or kNone; of a pair of parentheses that of what is in it
        bool isTaken;
        int nextChild = 0;
        int begin; // of the tokens met so far
        int end;
    };
    static constexpr std::size_t kNone = ~std::size_t{0};

    static bool IsInfix(const CETree* node)
    {
        return node->GetData()->IsOperator() && node->NumChildren() == 2;
    }

    void Enter(const CETree* node, bool isTaken)
    {
        const CExprToken& token = *node->GetData();
        Open open{node, kNone, isTaken, 0, m_Tokens.back().end, 0};
        if (!token.IsPunctuation() && token.GetCode() != TOK_GROUP) {
            open.step = m_Steps.size();
            Step step;
            step.depth = m_Depth++;
            step.isYesNo = token.IsBoolean() != 0;
            step.isTaken = isTaken;
            if (token.IsCalculated())
                step.value = token.GetValue();
            m_Steps.push_back(std::move(step));
        }
        m_Open.push_back(open);
        if (token.GetCode() != TOK_GROUP && !IsInfix(node))
            TakeToken();
    }

    void Advance()
    {
        Open& open = m_Open.back();
        if (open.nextChild == 1 && IsInfix(open.node) && !m_HasPassedInfix.contains(open.node)) {
            m_HasPassedInfix.insert(open.node);
            TakeToken();
        }
        if (open.nextChild == open.node->NumChildren())
            return Leave();
        const int child = open.nextChild++;
        Enter(open.node->GetChild(child), open.isTaken && IsChildTaken(open.node, child));
    }

    // Below an IF stand a parenthesis, the condition, a comma, a branch, a comma and the other one.
    static bool IsChildTaken(const CETree* node, int child)
    {
        constexpr int kCondition = 1, kThen = 3, kElse = 5;
        if (node->GetData()->GetCode() != TOK_IF || (child != kThen && child != kElse))
            return true;
        const bool isYes = node->GetChild(kCondition)->GetData()->GetValue() != 0.0;
        return (child == kThen) == isYes;
    }

    // The innermost open node gets the next token of the text.
    void TakeToken()
    {
        Open& open = m_Open.back();
        const Token& token = m_Tokens[m_NextToken++];
        open.begin = std::min(open.begin, token.begin);
        open.end = std::max(open.end, token.end);
        if (open.step != kNone && !token.object.name.empty())
            m_Steps[open.step].refersTo = token.object;
    }

    void Leave()
    {
        const Open open = m_Open.back();
        m_Open.pop_back();
        if (open.node->GetData()->GetCode() != TOK_GROUP && open.step != kNone)
            --m_Depth;
        if (open.step != kNone) {
            Step& step = m_Steps[open.step];
            step.span = m_Text.SpanOf(open.begin, open.end);
            step.text = m_Text.Part(step.span);
        }
        if (m_Open.empty())
            return;
        Open& parent = m_Open.back();
        parent.begin = std::min(parent.begin, open.begin);
        parent.end = std::max(parent.end, open.end);
        if (parent.node->GetData()->GetCode() == TOK_GROUP && open.step != kNone)
            parent.step = open.step;
    }

    const job::TwofoldText m_Text;
    const std::vector<Token>& m_Tokens;
    std::size_t m_NextToken = 0;
    std::size_t m_Depth = 0;
    std::vector<Open> m_Open;
    std::unordered_set<const CETree*> m_HasPassedInfix;
    std::vector<Step> m_Steps;
};

std::vector<Step> StepsOf(Calculation& calculation, const CFmlaExpression& expression)
{
    const std::vector<Token> tokens = job::Scan(expression).tokens;
    OpenTree tree(calculation.Set());
    if (!tree.Build(expression, tokens))
        return {};
    return StepMaker(expression, tokens).Make(tree.Root());
}

Selection SelectionOf(const CFormtblElem& selector, std::size_t index,
                      const std::vector<double>& limits)
{
    Selection selection{selector.value(), index, {}, {}};
    if (index > 0)
        selection.above = limits[index - 1];
    if (index + 1 < limits.size())
        selection.upTo = limits[index];
    return selection;
}

Lookup LookupOf(job::EngineTable& table, const Table& record)
{
    Lookup lookup;
    lookup.row = SelectionOf(table.GetRowSelector(), table.Row(), record.rowLimits);
    if (table.GetColumnCount() > 1)
        lookup.column = SelectionOf(table.GetColumnSelector(), table.Column(), record.columnLimits);
    lookup.cell = record.cells[table.Row()][table.Column()];
    return lookup;
}

// Explains objects one after the other, each followed by what it refers to.
class Explainer {
public:
    explicit Explainer(Job& job) : m_Job(job), m_Calculation(job::Access::InsideOf(job).calculation)
    {}

    Explanation Explain(const ObjectName& object)
    {
        Expect(object);
        Explanation explanation;
        while (!m_Expected.empty()) {
            const ObjectName next = m_Expected.back();
            m_Expected.pop_back();
            if (m_Explained.insert(next).second)
                explanation.objects.push_back(ExplainOne(next));
        }
        return explanation;
    }

private:
    void Expect(const ObjectName& object)
    {
        if (m_Job.Has(object))
            m_Expected.push_back(object);
    }
    void Expect(const Element& element)
    {
        if (const auto* const object = std::get_if<ObjectName>(&element))
            Expect(*object);
    }

    ExplainedObject ExplainOne(const ObjectName& object)
    {
        ExplainedObject explained;
        explained.object = object;
        explained.value = m_Job.ValueOf(object);
        explained.failure = m_Job.FailureOf(object);
        explained.text = m_Job.TextOf(object);
        // The last one expected is the first to be explained.
        const std::size_t expected = m_Expected.size();
        if (const Variable* const variable = FindIn<Variable>(object))
            explained.unit = variable->unit;
        else if (const Formula* const formula = FindIn<Formula>(object))
            ExplainFormula(*formula, explained);
        else if (const Table* const table = FindIn<Table>(object))
            ExplainTable(*table, explained);
        if (explained.failure)
            ExpectCause(*explained.failure, object);
        std::reverse(m_Expected.begin() + static_cast<std::ptrdiff_t>(expected), m_Expected.end());
        return explained;
    }

    template <typename Object>
    const Object* FindIn(const ObjectName& object) const
    {
        const job::Record record = job::Access::InsideOf(m_Job).content.Find(object);
        const auto* const found = std::get_if<job::Shared<Object>>(&record);
        return found ? found->get() : nullptr;
    }

    void ExplainFormula(const Formula& formula, ExplainedObject& explained)
    {
        explained.unit = formula.unit;
        if (formula.linked || !explained.value)
            return;
        explained.steps = StepsOf(m_Calculation, *m_Calculation.ExpressionOf(explained.object));
        for (const Step& step : explained.steps) {
            if (step.refersTo && step.isTaken)
                Expect(*step.refersTo);
        }
    }

    void ExplainTable(const Table& table, ExplainedObject& explained)
    {
        explained.unit = table.unit;
        if (table.linked || !explained.value)
            return;
        explained.lookup = LookupOf(*m_Calculation.TableOf(explained.object), table);
        Expect(table.rowSelector);
        if (explained.lookup->column)
            Expect(table.columnSelector);
        Expect(explained.lookup->cell);
    }

    // The object that this one fails for.
    void ExpectCause(const Failure& failure, const ObjectName& object)
    {
        const auto self = std::find(failure.path.begin(), failure.path.end(), object);
        if (self != failure.path.begin() && self != failure.path.end())
            Expect(*std::prev(self));
    }

    Job& m_Job;
    Calculation& m_Calculation;
    std::vector<ObjectName> m_Expected; // the next one last
    std::unordered_set<ObjectName> m_Explained;
};

} // namespace

Result<Explanation> Explain(Job& job, const ObjectName& object)
{
    if (!job.Has(object))
        return job::UnknownName(object);
    job::Access::InsideOf(job).UpdateQuietly();
    const CalculationPass pass;
    return Explainer(job).Explain(object);
}

} // namespace tovo
