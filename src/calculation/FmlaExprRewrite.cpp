#include <TovoFormula/FmlaExpression.h>

#include <algorithm>

#include "../expression_core/Names.h"
#include "../expression_text/ReferenceTable.h"

using namespace tovo::detail;

namespace {

bool IsFormulaAt(const CFmlaExprBase& expression, int index, const CString& name)
{
    return expression.VarType(index) == TOK_FORMULA && expression.VarLength(index) > 0 &&
           expression.VarName(index) == name;
}

// Among the references that the encoded string has. A host's table may hold others.
bool HasFormula(const CFmlaExpression& expression, std::span<const Reference> references,
                const CString& name)
{
    const int length = expression.GetTextStr().GetLength();
    int end = 0;
    for (std::size_t next = NextEffective(references, 0, end, length); next < references.size();
         next = NextEffective(references, next, end, length)) {
        if (IsFormulaAt(expression, static_cast<int>(next), name))
            return true;
        end = references[next].End();
    }
    return false;
}

// Takes out what stood between a removed reference, which was at the index, and the one that is to
// be its neighbour: all in front of the new first reference, or all after the one before except its
// last character. A reference that touches is left alone.
void DeleteUpToNeighbour(CFmlaExprBase& expression, int index)
{
    const bool hasNext = index < expression.NumVars();
    int wholeVar = 0;
    if (index == 0) {
        if (hasNext && expression.VarPos(0) > 0)
            expression.DeleteChars(0, expression.VarPos(0), &wholeVar);
        return;
    }
    const int end = hasNext ? expression.VarPos(index) : expression.GetTextStr().GetLength();
    expression.DeleteChars(expression.VarEndPos(index - 1), end - 1, &wholeVar);
}

// Removes one reference after the other. What a table of a host's own says may change its meaning
// with each of them, where entries overlap or reach beyond the text.
bool RemoveOneByOne(CFmlaExprBase& expression, const CString& name)
{
    bool isFound = false;
    for (int index = 0; index < expression.NumVars();) {
        if (!IsFormulaAt(expression, index, name)) {
            ++index;
            continue;
        }
        isFound = true;
        const int before = expression.NumVars();
        int wholeVar = 0;
        expression.DeleteChars(expression.VarPos(index), expression.VarEndPos(index), &wholeVar);
        // What the text limit puts out of reach stays, and the search continues after it.
        if (expression.NumVars() == before)
            ++index;
        else
            DeleteUpToNeighbour(expression, index);
    }
    return isFound;
}

// Whether the references stand in the order of the text, inside it and apart, as editing and
// loading leave them.
bool AreSound(std::span<const Reference> references, int textLength)
{
    int end = 0;
    for (const Reference& reference : references) {
        if (reference.position < end || reference.length < 2)
            return false;
        end = reference.End();
    }
    return end <= textLength;
}

// Removes all references to a formula from a sound table in one pass: the new text grows from the
// left and always ends where the next reference begins.
class Removal {
public:
    Removal(WideView text, std::span<const Reference> references, int limit)
        : m_Old(text), m_References(references), m_Limit(limit)
    {}

    // Returns whether there was one.
    bool Run(WideView name)
    {
        bool isFound = false;
        AppendGap(0);
        for (std::size_t index = 0; index < m_References.size(); ++index) {
            const bool isNamed = IsNamed(m_References[index], name);
            const bool isRemoved = isNamed && IsInReach(m_References[index]);
            isFound = isFound || isNamed;
            m_HasChanged = m_HasChanged || isRemoved;
            if (!isRemoved)
                Keep(m_References[index]);
            AppendGap(index + 1);
            if (isRemoved)
                CutGap(index + 1 < m_References.size());
        }
        return isFound;
    }

    bool HasChanged() const { return m_HasChanged; }
    WideText TakeText() { return std::move(m_New); }
    const CWordArray& Words() const { return m_Words; }

private:
    int Size() const { return static_cast<int>(m_New.size()); }
    WideView Part(int start, int end) const
    {
        return m_Old.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
    }

    bool IsNamed(const Reference& reference, WideView name) const
    {
        return reference.kind == TOK_FORMULA &&
               BareName(Part(reference.position, reference.End())) == name;
    }
    // What the text limit puts out of reach stays.
    bool IsInReach(const Reference& reference) const
    {
        return m_Limit > 0 && reference.length <= m_Limit - Size();
    }

    void Keep(const Reference& reference)
    {
        AppendReference(m_Words, {Size(), reference.length, reference.kind});
        m_New += Part(reference.position, reference.End());
        m_KeptEnd = Size();
    }
    // The literal text in front of the reference of that index, or at the end of the text.
    void AppendGap(std::size_t index)
    {
        const int start = index == 0 ? 0 : m_References[index - 1].End();
        const int end = index < m_References.size() ? m_References[index].position
                                                    : static_cast<int>(m_Old.size());
        m_New += Part(start, end);
    }
    // As DeleteUpToNeighbour does.
    void CutGap(bool hasNext)
    {
        int count = hasNext ? std::min(Size(), m_Limit) : 0;
        if (m_KeptEnd > 0 && m_KeptEnd < Size())
            count = std::max(std::min(Size() - 1, m_Limit) - m_KeptEnd, 1);
        else if (m_KeptEnd > 0)
            count = 0;
        m_New.erase(static_cast<std::size_t>(m_KeptEnd), static_cast<std::size_t>(count));
    }

    WideView m_Old;
    std::span<const Reference> m_References;
    int m_Limit;
    WideText m_New;
    CWordArray m_Words;
    int m_KeptEnd = 0; // of the last reference that is kept; 0 for none
    bool m_HasChanged = false;
};

} // namespace

int CFmlaExpression::ChangeFormulaInExpression(const CString& oldName, const CString& newName)
{
    if (!HasFormula(*this, ReferencesOf(m_VarPtrs), oldName))
        return 0;
    const Renaming renaming{TOK_FORMULA, oldName.View(), newName.View()};
    SetFromEncodedString(EncodeRenamed(&renaming));
    return 1;
}

int CFmlaExpression::RemoveFormulaFromExpression(const CString& name)
{
    const std::vector<Reference> references = ReferencesOf(m_VarPtrs);
    const bool hasRest = m_VarPtrs.GetSize() % kWordsPerReference != 0;
    if (hasRest || !AreSound(references, m_ExprText.GetLength())) {
        CFmlaExprBase changed(*this);
        if (!RemoveOneByOne(changed, name))
            return 0;
        CFmlaExprBase::operator=(changed);
        return 1;
    }
    const CString text = m_ExprText;
    Removal removal(text.View(), references, m_ExprTextLimit);
    const bool isFound = removal.Run(name.View());
    if (removal.HasChanged())
        SetExpr(CString(removal.TakeText()), removal.Words());
    return isFound ? 1 : 0;
}
