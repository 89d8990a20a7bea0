#ifndef TOVOFORMULA_EXPRTREE_H
#define TOVOFORMULA_EXPRTREE_H

#include <memory>

#include <TovoFormula/Tree.h>
#include <TovoPlatform/Collections.h>

class CScannedVariables;
struct ICalculationSet;

namespace tovo::detail {
class BoundWork;
}

// An expression as a checked tree: built from tokens one by one, with nothing looked ahead, and
// calculated as often as wanted.
//
// Parentheses are functions: one that follows no function name stands below a TOK_GROUP. A function
// node has its left parenthesis, its arguments with the commas between them, and its right
// parenthesis as children; an operator node has its operands. A node is checked and calculated as
// soon as it is complete, so a fault in a constant part fails the building.
//
// Owns: all nodes and tokens. Does not own: the set. One thread; no locks. A failure is answered
// with 0, the message id in GetMsg and the object at fault in the set's tracker; nothing is thrown.
class TOVO_API CExprTree : public CObject {
public:
    explicit CExprTree(ICalculationSet& calcSet);
    ~CExprTree() override;

    CExprTree(const CExprTree&) = delete;
    CExprTree& operator=(const CExprTree&) = delete;

    // Takes the next token from the left; the position is the token's to keep. Nested counts with
    // the first token only: nonzero calculates formula and table references while the tree is
    // built, zero leaves them untouched. After a refusal the tree is good only for being cleared.
    int InsertToken(int code, CString text, int pos, int nested);
    // Closes the tree behind its last token.
    int EndOfExpression();
    // The message id of the last failure, 0 if there was none since a token was last taken.
    unsigned int GetMsg() const { return m_Msg; }
    // Deletes all nodes. GetMsg stays.
    void Clear();

    // Calculates the active nodes, leaves first: all but the branch of an IF that its condition
    // rules out. With a list, what is reached records itself there. Requires: a closed tree, else
    // 0.
    int Calculate(CScannedVariables* list);
    // These speak of the root token, and answer 0 without one. After a failed calculation they may
    // still tell what an earlier one left.
    int IsLoaded() const;
    int IsCalculated() const;
    int IsNumeric() const;
    // Also answers for a single formula or table reference that was loaded with nested 0.
    int IsBoolean() const;
    double GetValue() const
    {
        const CExprToken* const root = RootToken();
        return root && root->IsCalculated() ? root->GetValue() : 0.0;
    }

    // The references in the order of the text, both branches of an IF included. Find gives the
    // first place, or null. Next gives the text (with its blanks) and the code of the reference at
    // the place, and the place of the following one or null; a null place gives null and nothing
    // else.
    POSITION FindFirstVarFmlOrTbl(int unused = 0) const;
    POSITION GetNextVarFmlOrTbl(int unused, POSITION pos, CString& text, int& code) const;
    POSITION FindFirstFmlOrTbl() const;
    POSITION GetNextFmlOrTbl(POSITION pos, CString& text, int& code) const;

    // Whether the calculation that runs on this thread stands in the condition of an IF or in the
    // selectors of a table, at any depth of nested formulas.
    static int InIfCondition() { return m_InIfConditionCount > 0; }
    static void StartIfCondition() { ++m_InIfConditionCount; }
    static void EndIfCondition() { --m_InIfConditionCount; }

protected:
    int ValidFirstToken(CExprToken* token);
    int TokenOrderOK(CExprToken* token);
    int InsertNewParentToken(CExprToken* token);
    int InsertChildToken(CExprToken* token);
    int MoveUpToFunction(int closed);
    int CheckCurrentChildren();
    int ChildIsOk(int index);
    int CalcCurrentNode(CScannedVariables* list);
    ICalculationSet& CalcSet() const { return m_CalcSet; }

private:
    // Builds trees anew that are known to be good, without calculating anything.
    friend class tovo::detail::BoundWork;

    int Raise(unsigned int message, CObject* object);
    int RefuseToken(CExprToken& token);
    CExprToken* Current() const { return m_Current->GetData(); }
    CExprToken* RootToken() const { return m_Root ? m_Root->GetData() : nullptr; }

    bool PutGroupBefore(const CExprToken& token, int pos, int nested);
    void PlantRoot(std::unique_ptr<CExprToken> token, int nested);
    bool ClimbAbove(int precedence);
    bool InsertOperator(std::unique_ptr<CExprToken>& token);
    bool InsertBelow(std::unique_ptr<CExprToken>& token);
    int RaiseWrongKind(int index);
    int CheckArgumentCount();
    int CalcFromChildren(CScannedVariables* list);
    bool CollectArguments(double* args, int numArgs) const;
    bool CompleteUpToRoot();
    int CalculateActiveNode(CScannedVariables* list);

protected:
    CETree* m_Root = nullptr;          // null while the tree is empty; owned by this tree
    CETree* m_Current = nullptr;       // the node that the last token left open
    CExprToken* m_LastToken = nullptr; // the token taken last, in the tree
    unsigned int m_Msg = 0;
    int m_Nested = 0;
    ICalculationSet& m_CalcSet;

    // The depth of conditions. Kept for each thread; put back as found when a calculation ends,
    // however it ends.
    static constinit thread_local int m_InIfConditionCount;

private:
    bool m_IsShapeOnly = false; // tokens count as calculated while the tree is built
};

#endif
