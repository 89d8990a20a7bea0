#include <TovoFormula/ExprTree.h>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/ExprToken.h>
#include <TovoFormula/MessageIds.h>

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

void CExprTree::Clear()
{
    delete m_Root;
    m_Root = nullptr;
    m_Current = nullptr;
    m_LastToken = nullptr;
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

int CExprTree::Raise(unsigned int message, CObject* object)
{
    m_Msg = message;
    CalcSet().ErrorTracker().SetError(message, object);
    return 0;
}
