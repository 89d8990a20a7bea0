#include <TovoFormula/FmlaExpression.h>

#include "../expression_text/ReferenceTable.h"

using namespace tovo::detail;

int CFmlaExpression::ChangeFormulaInExpression(const CString& oldName, const CString& newName)
{
    if (!HasFormula(oldName))
        return 0;
    const Renaming renaming{TOK_FORMULA, oldName.View(), newName.View()};
    SetFromEncodedString(EncodeRenamed(&renaming));
    return 1;
}

int CFmlaExpression::RemoveFormulaFromExpression(const CString& name)
{
    bool isFound = false;
    for (int index = 0; index < NumVars();) {
        if (!IsFormulaAt(index, name)) {
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
            DeleteUpToNeighbour(index);
    }
    return isFound ? 1 : 0;
}

bool CFmlaExpression::IsFormulaAt(int index, const CString& name) const
{
    return VarType(index) == TOK_FORMULA && VarLength(index) > 0 && VarName(index) == name;
}

// Among the references that the encoded string has. A host's table may hold others.
bool CFmlaExpression::HasFormula(const CString& name) const
{
    const std::vector<Reference> references = ReferencesOf(m_VarPtrs);
    const int length = m_ExprText.GetLength();
    int end = 0;
    for (std::size_t next = NextEffective(references, 0, end, length); next < references.size();
         next = NextEffective(references, next, end, length)) {
        if (IsFormulaAt(static_cast<int>(next), name))
            return true;
        end = references[next].End();
    }
    return false;
}

// Takes out what stood between a removed reference, which was at the index, and the one that is to
// be its neighbour: all in front of the new first reference, or all behind the one before but for
// its last character. A reference that touches is left alone.
void CFmlaExpression::DeleteUpToNeighbour(int index)
{
    const bool hasNext = index < NumVars();
    int wholeVar = 0;
    if (index == 0) {
        if (hasNext && VarPos(0) > 0)
            DeleteChars(0, VarPos(0), &wholeVar);
        return;
    }
    const int end = hasNext ? VarPos(index) : m_ExprText.GetLength();
    DeleteChars(VarEndPos(index - 1), end - 1, &wholeVar);
}
