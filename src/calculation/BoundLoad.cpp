#include <cassert>
#include <utility>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>
#include <TovoPlatform/NumberText.h>

#include "../expression_core/Names.h"
#include "../expression_text/TokenScanner.h"
#include "BoundGuards.h"

// The long road: from the text to the tree, token by token. Each reference is checked before its
// token is taken, and a token is calculated as soon as its node is complete; so the first fault
// from the left ends the road, and its message, its position and its chain are made here and below.

namespace tovo::detail {

int BoundWork::LoadNamed(Former& former, const CString& name, int nested)
{
    const int isLoaded = LoadAfresh(former, nested);
    if (name.IsEmpty())
        return isLoaded;
    if (!isLoaded) {
        m_Expression.CalcSet().ErrorTracker().AddObj(&m_Expression, u"Formula: " + name);
        return 0;
    }
    const bool isYesNo = m_Expression.m_Tree.IsBoolean() != 0;
    return isYesNo == IsYesNoName(name.View()) ? 1 : Fail(MSG_WRONG_RESULT_TYPE);
}

int BoundWork::Load(int nested)
{
    State();
    Former former(*this);
    const int isLoaded = LoadAfresh(former, nested);
    former.End();
    return isLoaded;
}

int BoundWork::LoadAfresh(Former& former, int nested)
{
    // A tree that is being built or walked further up must not be torn down.
    const UnderWay underWay(State().marks);
    if (!underWay.IsFirst())
        return Fail(MSG_FORMULA_INSIDE_ITSELF);
    if (underWay.IsTooDeep())
        return Fail(MSG_GENERAL_FAILURE);

    former.TakeTree();
    m_Expression.m_MessageNum = MSG_NONE;
    m_Expression.m_InvalidPos = 0;
    State().isLoadedByProgram = false;
    const int isBuilt = BuildTree(nested);
    if (!nested || !isBuilt)
        NoteDisturbed();
    Forget();
    return isBuilt;
}

// Requires: an empty tree.
int BoundWork::BuildTree(int nested)
{
    CFmlaExpression& expression = m_Expression;
    assert(!expression.m_Tree.RootToken());
    expression.m_ScanPos = 0;
    const std::vector<Reference> references = ReferencesOf(expression.m_VarPtrs);
    TokenScanner scanner(expression.m_ExprText, references, CFmlaExpression::SpellingOf(TL_LOCAL),
                         expression.m_ScanPos);
    CString token;
    int code = TOK_ILLEGAL;
    int pos = 0;
    if (!expression.DeliverToken(scanner, token, code, pos))
        return expression.m_MessageNum ? 0 : Fail(MSG_FORMULA_TEXT_REQUIRED);

    int lastPos = pos;
    do {
        lastPos = pos;
        if (!InsertScanned(code, token, pos, nested))
            return 0;
    } while (expression.DeliverToken(scanner, token, code, pos));
    return CloseTree(lastPos, pos);
}

// Takes one token of the text into the tree, a reference after its check. The position at fault is
// that of the token, until it is taken.
int BoundWork::InsertScanned(int code, const CString& token, int pos, int nested)
{
    m_Expression.m_InvalidPos = pos;
    if (code == TOK_ILLEGAL)
        return Fail(MSG_INVALID_ELEMENT);
    if (nested && !CheckNestedReference(code, token))
        return 0;
    if (!m_Expression.m_Tree.InsertToken(code, token, pos, nested)) {
        m_Expression.m_MessageNum = static_cast<int>(m_Expression.m_Tree.GetMsg());
        return 0;
    }
    m_Expression.m_MessageNum = MSG_NONE;
    m_Expression.m_InvalidPos = 0;
    return 1;
}

// What is left to do when the scanner delivers no more: endPos is where it stopped, lastPos where
// the last token stands.
int BoundWork::CloseTree(int lastPos, int endPos)
{
    if (m_Expression.m_MessageNum) {
        m_Expression.m_InvalidPos = endPos;
        return 0;
    }
    if (m_Expression.m_Tree.EndOfExpression())
        return 1;
    m_Expression.m_MessageNum = static_cast<int>(m_Expression.m_Tree.GetMsg());
    m_Expression.m_InvalidPos = lastPos;
    return 0;
}

// Builds the tree that the program stands for, from the text and the names that it was compiled
// from, for whoever has to walk it. What has been compiled makes a tree.
void BoundWork::BuildTreeOfProgram()
{
    const Program& program = *State().program;
    CExprTree tree(m_Expression.CalcSet());
    std::vector<Reference> references;
    for (const ReferencePlace& place : program.Places())
        references.push_back({place.position, place.length, place.kind});
    const Spelling spelling(program.Names());
    TokenScanner scanner(program.Text(), references, spelling, 0);
    tree.m_IsShapeOnly = true;
    while (scanner.Next() == TokenScanner::Outcome::Token) {
        [[maybe_unused]] const int isTaken =
            tree.InsertToken(scanner.TokenCode(), scanner.TokenString(), scanner.TokenPos(), 1);
        assert(isTaken);
        if (scanner.TokenCode() == TOK_NUMBER)
            tree.m_LastToken->SetValue(
                tovo::ParseDouble(scanner.TokenText(), spelling.DecimalSeparator()));
    }
    [[maybe_unused]] const int isClosed = tree.EndOfExpression();
    assert(isClosed);
    tree.m_Root->GetData()->SetValue(State().value);
    m_Expression.m_Tree.Clear();
    m_Expression.m_Tree.m_Root = std::exchange(tree.m_Root, nullptr);
    m_Expression.m_Tree.m_Msg = tree.m_Msg;
    State().isLoadedByProgram = false;
    State().mayRunAgain = false;
}

} // namespace tovo::detail
