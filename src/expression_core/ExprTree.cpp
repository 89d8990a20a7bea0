#include <TovoFormula/ExprTree.h>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/ExprToken.h>
#include <TovoFormula/MessageIds.h>

#include "Sequence.h"

using tovo::detail::Sequence;

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
    m_Sequence.reset();
}

// What is built from now on is recorded, until the tree is cleared. Requires: an empty tree.
void CExprTree::Record()
{
    m_Sequence = std::make_unique<Sequence>(CalcSet());
}

bool CExprTree::IsRecorded() const
{
    return m_Sequence && m_Sequence->IsFinished() && !m_Sequence->IsReenacted();
}

// Makes a recorded tree what it is while it is being built, to the eyes of whoever asks it.
Sequence& CExprTree::StartAgain(int nested)
{
    m_Nested = nested;
    m_Current = nullptr;
    m_Root->GetData()->SetLoaded(0);
    m_Root->GetData()->SetCalculated(0);
    m_Sequence->Start();
    return *m_Sequence;
}

void CExprTree::ConcludeAgain()
{
    m_Msg = MSG_NONE;
    m_Nested = 0;
    m_Current = m_Root;
    m_Root->GetData()->SetLoaded(1);
}

// Makes way for building the tree anew, beside its sequence.
std::unique_ptr<CETree> CExprTree::TakeOut()
{
    m_Current = nullptr;
    m_LastToken = nullptr;
    return std::unique_ptr<CETree>(std::exchange(m_Root, nullptr));
}

void CExprTree::EndReenacting()
{
    m_Sequence.reset();
}

bool CExprTree::IsReenacted() const
{
    return m_Sequence && m_Sequence->IsReenacted();
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
