#include <TovoFormula/FmlaExpression.h>

#include "../expression_text/ReferenceTable.h"

using namespace tovo::detail;

namespace {

bool IsFormulaAt(const CFmlaExpression& expression, int index, const CString& name)
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
// be its neighbour: all in front of the new first reference, or all behind the one before but for
// its last character. A reference that touches is left alone.
void DeleteUpToNeighbour(CFmlaExpression& expression, int index)
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
    bool isFound = false;
    for (int index = 0; index < NumVars();) {
        if (!IsFormulaAt(*this, index, name)) {
            ++index;
            continue;
        }
        isFound = true;
        const int before = NumVars();
        int wholeVar = 0;
        DeleteChars(VarPos(index), VarEndPos(index), &wholeVar);
        // What the text limit puts out of reach stays, and the search goes on behind it.
        if (NumVars() == before)
            ++index;
        else
            DeleteUpToNeighbour(*this, index);
    }
    return isFound ? 1 : 0;
}
