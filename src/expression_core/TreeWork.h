#ifndef TOVOFORMULA_SRC_TREEWORK_H
#define TOVOFORMULA_SRC_TREEWORK_H

#include <cassert>
#include <memory>

#include <TovoFormula/ExprTree.h>

namespace tovo::detail {

// The inside of the operations of a tree: how it is built and how it is calculated.
//
// Whatever returns 0 or false has set the tree's message, unless it says otherwise. A token handed
// over in a std::unique_ptr is released when it enters the tree, not before.
//
// A view on a tree, made where it is needed.
class TreeWork {
public:
    explicit TreeWork(CExprTree& tree) : m_Tree(tree) {}

    // These are the operations of CExprTree.
    int InsertToken(int code, CString text, int pos, int nested);
    int EndOfExpression();
    int Calculate(CScannedVariables* list);
    int ValidFirstToken(CExprToken* token);
    int TokenOrderOK(CExprToken* token);
    int InsertNewParentToken(CExprToken* token);
    int InsertChildToken(CExprToken* token);
    int MoveUpToFunction(int closed);
    int CheckCurrentChildren();
    int ChildIsOk(int index);
    int CalcCurrentNode(CScannedVariables* list);

private:
    // Sets the message and names the object at fault to the tracker. Answers 0.
    int Raise(unsigned int message, CObject* object);
    // Raises a message on the token, unless a more telling one was raised already. Answers 0.
    int RefuseToken(CExprToken& token);
    int RaiseWrongKind(int index);

    // Inserts the nameless function of a left parenthesis that follows no function name.
    bool PutGroupBefore(const CExprToken& token, int pos, int nested);
    void PlantRoot(std::unique_ptr<CExprToken> token, int nested);
    // These two may return false without a message.
    bool InsertOperator(std::unique_ptr<CExprToken>& token);
    bool InsertBelow(std::unique_ptr<CExprToken>& token);
    bool ClimbAbove(int precedence);
    bool CompleteUpToRoot();

    int CheckArgumentCount();
    int CalcFromChildren(CScannedVariables* list);
    bool CollectArguments(double* args, int numArgs) const;
    int CalculateActiveNode(CScannedVariables* list);

    // Requires: a current node.
    CExprToken& Current() const
    {
        assert(m_Tree.m_Current);
        return *m_Tree.m_Current->GetData();
    }

    CExprTree& m_Tree;
};

} // namespace tovo::detail

#endif
