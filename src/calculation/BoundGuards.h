#ifndef TOVOFORMULA_SRC_BOUNDGUARDS_H
#define TOVOFORMULA_SRC_BOUNDGUARDS_H

#include <memory>
#include <utility>

#include <TovoFormula/MessageIds.h>

#include "BoundWork.h"
#include "UnderWay.h"

namespace tovo::detail {

// What an expression had of its last check and calculation, while it is checked anew. If that
// throws, for lack of memory or in an object of the host, the expression has it again.
//
// Requires: an expression that has a state.
class BoundWork::Former {
public:
    explicit Former(BoundWork& work)
        : m_Work(work),
          m_Value(work.m_Expression.m_State->value),
          m_TreeMessage(work.m_Expression.m_Tree.m_Msg),
          m_Message(work.m_Expression.m_MessageNum),
          m_InvalidPos(work.m_Expression.m_InvalidPos),
          m_ScanPos(work.m_Expression.m_ScanPos),
          m_IsLoadedByProgram(work.m_Expression.m_State->isLoadedByProgram)
    {}
    ~Former()
    {
        if (m_HasEnded)
            return;
        m_Work.NoteDisturbed();
        PutBack();
    }

    Former(const Former&) = delete;
    Former& operator=(const Former&) = delete;

    void End() { m_HasEnded = true; }
    // For a road that ends with nothing done that shows. What follows may take all once more.
    void PutBack()
    {
        CFmlaExpression& expression = m_Work.m_Expression;
        ExpressionState& state = *expression.m_State;
        m_Work.Forget();
        if (m_Program) {
            state.program = std::move(m_Program);
            state.textOfProgram = 0;
        }
        if (std::exchange(m_HasTakenTree, false)) {
            expression.m_Tree.Clear();
            expression.m_Tree.m_Root = m_Root.release();
        }
        expression.m_Tree.m_Msg = m_TreeMessage;
        state.isLoadedByProgram = m_IsLoadedByProgram;
        state.value = m_Value;
        expression.m_MessageNum = m_Message;
        expression.m_InvalidPos = m_InvalidPos;
        expression.m_ScanPos = m_ScanPos;
    }

    // Leaves the expression without a tree.
    void TakeTree()
    {
        CExprTree& tree = m_Work.m_Expression.m_Tree;
        if (!m_HasTakenTree)
            m_Root.reset(std::exchange(tree.m_Root, nullptr));
        m_HasTakenTree = true;
        tree.Clear();
    }
    // Leaves the state without a program, and keeps one that the expression was loaded by.
    void TakeProgram()
    {
        std::unique_ptr<Program>& program = m_Work.m_Expression.m_State->program;
        if (m_IsLoadedByProgram && !m_Program)
            m_Program = std::move(program);
    }

private:
    BoundWork& m_Work;
    std::unique_ptr<CETree> m_Root;
    std::unique_ptr<Program> m_Program;
    const double m_Value;
    const unsigned int m_TreeMessage;
    const int m_Message;
    const int m_InvalidPos;
    const int m_ScanPos;
    const bool m_IsLoadedByProgram;
    bool m_HasTakenTree = false;
    bool m_HasEnded = false;
};

// An expression whose program is run again. What is in progress is known by its names, but as long
// as nothing looks for them, they need not be entered.
class BoundWork::Rerun {
public:
    Rerun(BoundWork& work, ExpressionState& state)
        : m_Work(work), m_State(state), m_Mark(state.marks), m_Outer(innermost)
    {
        if (!m_Outer)
            outermost = this;
        innermost = this;
    }
    ~Rerun()
    {
        innermost = m_Outer;
        if (m_Entry)
            CFmlaExpression::m_NestedFmlaNames.RemoveAt(m_Entry);
        if (!m_HasEnded)
            PutBack();
    }

    Rerun(const Rerun&) = delete;
    Rerun& operator=(const Rerun&) = delete;

    void End() { m_HasEnded = true; }

    // Whether the outermost one, which need not be in its set, bears the name.
    static bool IsNamed(const CString& name)
    {
        return innermost && outermost->m_State.checkedName == name;
    }
    // To be called before names are looked for or entered.
    static void EnterNames()
    {
        if (innermost && !innermost->m_IsEntered)
            innermost->EnterWithOuter();
    }

private:
    void EnterWithOuter()
    {
        if (m_Outer && !m_Outer->m_IsEntered)
            m_Outer->EnterWithOuter();
        if (!m_State.checkedName.IsEmpty())
            m_Entry = CFmlaExpression::m_NestedFmlaNames.AddHead(m_State.checkedName);
        m_IsEntered = true;
    }
    // What has thrown has run on a program that was the one loaded last, and has left its value.
    void PutBack()
    {
        m_Work.NoteDisturbed();
        m_Work.Forget();
        m_State.isLoadedByProgram = true;
        m_Work.m_Expression.m_MessageNum = MSG_NONE;
        m_Work.m_Expression.m_InvalidPos = 0;
    }

    static inline constinit thread_local Rerun* innermost = nullptr;
    static inline constinit thread_local Rerun* outermost = nullptr;

    BoundWork& m_Work;
    ExpressionState& m_State;
    UnderWay m_Mark;
    Rerun* const m_Outer;
    POSITION m_Entry = nullptr;
    bool m_IsEntered = false;
    bool m_HasEnded = false;
};

} // namespace tovo::detail

#endif
