#include <TovoFormula/ExprTree.h>

#include <utility>

#include <TovoFormula/ExprToken.h>

#include "TreeWork.h"

using tovo::detail::TreeWork;

constinit thread_local int CExprTree::m_InIfConditionCount = 0;

namespace {

bool IsFmlOrTbl(const CExprToken& token)
{
    return token.IsFormula() || token.IsFormtbl();
}

bool IsReference(const CExprToken& token)
{
    return token.IsVariable() || IsFmlOrTbl(token);
}

using Filter = bool (*)(const CExprToken&);

// The handle of a place is its node; only this file knows.
POSITION HandleOf(CETree* node)
{
    return reinterpret_cast<POSITION>(node);
}

CETree* NodeAt(POSITION pos)
{
    return reinterpret_cast<CETree*>(pos);
}

// The first twig that passes, from the given one on.
POSITION FirstFrom(CETree* twig, Filter passes)
{
    while (twig && !passes(*twig->GetData()))
        twig = twig->GetNextTwig();
    return HandleOf(twig);
}

POSITION NextAfter(POSITION pos, Filter passes, CString& text, int& code)
{
    if (!pos)
        return nullptr;
    CETree* const node = NodeAt(pos);
    text = node->GetData()->GetText();
    code = node->GetData()->GetCode();
    return FirstFrom(node->GetNextTwig(), passes);
}

} // namespace

CExprTree::CExprTree(ICalculationSet& calcSet) : m_CalcSet(calcSet)
{}

CExprTree::~CExprTree()
{
    delete m_Root;
}

int CExprTree::InsertToken(int code, CString text, int pos, int nested)
{
    return TreeWork(*this).InsertToken(code, std::move(text), pos, nested);
}

int CExprTree::EndOfExpression()
{
    return TreeWork(*this).EndOfExpression();
}

void CExprTree::Clear()
{
    delete m_Root;
    m_Root = nullptr;
    m_Current = nullptr;
    m_LastToken = nullptr;
}

int CExprTree::Calculate(CScannedVariables* list)
{
    return TreeWork(*this).Calculate(list);
}

int CExprTree::IsLoaded() const
{
    const CExprToken* const root = RootToken();
    return root ? root->IsLoaded() : 0;
}

int CExprTree::IsCalculated() const
{
    const CExprToken* const root = RootToken();
    return root ? root->IsCalculated() : 0;
}

int CExprTree::IsNumeric() const
{
    const CExprToken* const root = RootToken();
    return root && root->IsLoaded() && root->IsNumeric() ? 1 : 0;
}

int CExprTree::IsBoolean() const
{
    const CExprToken* const root = RootToken();
    if (!root)
        return 0;
    // A single reference that was not to be touched while the tree was built never becomes loaded,
    // but its name tells its kind.
    const bool isKnown = root->IsLoaded() || (!m_Nested && IsFmlOrTbl(*root));
    return isKnown && root->IsBoolean() ? 1 : 0;
}

POSITION CExprTree::FindFirstVarFmlOrTbl(int) const
{
    return FirstFrom(m_Root ? m_Root->FindFirstTwig() : nullptr, IsReference);
}

POSITION CExprTree::GetNextVarFmlOrTbl(int, POSITION pos, CString& text, int& code) const
{
    return NextAfter(pos, IsReference, text, code);
}

POSITION CExprTree::FindFirstFmlOrTbl() const
{
    return FirstFrom(m_Root ? m_Root->FindFirstTwig() : nullptr, IsFmlOrTbl);
}

POSITION CExprTree::GetNextFmlOrTbl(POSITION pos, CString& text, int& code) const
{
    return NextAfter(pos, IsFmlOrTbl, text, code);
}

int CExprTree::ValidFirstToken(CExprToken* token)
{
    return TreeWork(*this).ValidFirstToken(token);
}

int CExprTree::TokenOrderOK(CExprToken* token)
{
    return TreeWork(*this).TokenOrderOK(token);
}

int CExprTree::InsertNewParentToken(CExprToken* token)
{
    return TreeWork(*this).InsertNewParentToken(token);
}

int CExprTree::InsertChildToken(CExprToken* token)
{
    return TreeWork(*this).InsertChildToken(token);
}

int CExprTree::MoveUpToFunction(int closed)
{
    return TreeWork(*this).MoveUpToFunction(closed);
}

int CExprTree::CheckCurrentChildren()
{
    return TreeWork(*this).CheckCurrentChildren();
}

int CExprTree::ChildIsOk(int index)
{
    return TreeWork(*this).ChildIsOk(index);
}

int CExprTree::CalcCurrentNode(CScannedVariables* list)
{
    return TreeWork(*this).CalcCurrentNode(list);
}
