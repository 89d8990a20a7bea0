#ifndef TOVOFORMULA_EXPRTREE_H
#define TOVOFORMULA_EXPRTREE_H

#include <TovoFormula/Export.h>
#include <TovoFormula/Tree.h>
#include <TovoPlatform/Collections.h>

class CScannedVariables;
struct ICalculationSet;

namespace tovo::detail {
class BoundWork;
class TreeWork;
} // namespace tovo::detail

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
class TOVO_FORMULA_API CExprTree : public CObject {
public:
    explicit CExprTree(ICalculationSet& calcSet);
    ~CExprTree() override;

    CExprTree(const CExprTree&) = delete;
    CExprTree& operator=(const CExprTree&) = delete;

    // Takes the next token from the left; the position is the token's to keep. Nested counts with
    // the first token only: nonzero calculates formula and table references while the tree is
    // built, zero leaves them untouched. After a refusal the tree is good only for being cleared.
    [[nodiscard]] int InsertToken(int code, CString text, int pos, int nested);
    // Closes the tree behind its last token.
    [[nodiscard]] int EndOfExpression();
    // The message id of the last failure, 0 if there was none since a token was last taken.
    unsigned int GetMsg() const { return m_Msg; }
    // Deletes all nodes. GetMsg stays.
    void Clear();

    // Calculates the active nodes, leaves first: all but the branch of an IF that its condition
    // rules out. With a list, what is reached records itself there. Answers 0 for an empty tree and
    // for one in which an active node is not complete.
    [[nodiscard]] int Calculate(CScannedVariables* list);
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
    // The steps of building. Each returns 1, or 0 with GetMsg set if it says nothing else.

    // Whether the token may begin an expression, or follow m_LastToken. They settle a minus as
    // unary or binary. Requires: a last token, for the second.
    int ValidFirstToken(CExprToken* token);
    int TokenOrderOK(CExprToken* token);
    // Put the token into a new node, above m_Current or as its last child, and make that current.
    // On success the tree owns the token, else the caller still does. Requires: a current node.
    int InsertNewParentToken(CExprToken* token);
    int InsertChildToken(CExprToken* token);
    // Moves m_Current up to the nearest function, completing each node that it leaves; closed
    // nonzero leaves the current node even if it is a function itself. Answers 0 with GetMsg 0 if
    // no function is there. Requires: a current node.
    int MoveUpToFunction(int closed);
    // Compare the kinds of all arguments of m_Current, or of the child at the index, with what
    // m_Current takes, and settle its kinds that are still open. Requires: a current node, and an
    // index of one of its arguments.
    int CheckCurrentChildren();
    int ChildIsOk(int index);
    // Checks m_Current and calculates it from its children; where one that counts has no value yet,
    // the node is left without one too. Formulas and tables are not touched if m_Nested is 0. The
    // list is null while the tree is built. Requires: a current node.
    int CalcCurrentNode(CScannedVariables* list);
    ICalculationSet& CalcSet() const { return m_CalcSet; }

protected:
    CETree* m_Root = nullptr;          // null while the tree is empty; owned by this tree
    CETree* m_Current = nullptr;       // the node that the last token left open
    CExprToken* m_LastToken = nullptr; // the token taken last, in the tree
    unsigned int m_Msg = 0;            // as GetMsg
    int m_Nested = 0;                  // as given with the first token; 0 once the tree is closed
    ICalculationSet& m_CalcSet;        // not owned

    // The depth of conditions. Kept for each thread; put back as found when a calculation ends,
    // however it ends.
    static constinit thread_local int m_InIfConditionCount;

private:
    // Builds trees anew that are known to be good, without calculating anything.
    friend class tovo::detail::BoundWork;
    // Does what the operations above promise.
    friend class tovo::detail::TreeWork;

    CExprToken* RootToken() const { return m_Root ? m_Root->GetData() : nullptr; }

    bool m_IsShapeOnly = false; // tokens count as calculated while the tree is built
};

#endif
