#ifndef TOVOFORMULA_SRC_BOUNDGUARDS_H
#define TOVOFORMULA_SRC_BOUNDGUARDS_H

#include <TovoFormula/MessageIds.h>

#include "BoundWork.h"
#include "UnderWay.h"

namespace tovo::detail {

// Leaves an expression without a tree if an object throws while it is being checked.
class BoundWork::Throwing {
public:
    explicit Throwing(BoundWork& work) : m_Work(work) {}
    ~Throwing()
    {
        if (m_HasEnded)
            return;
        m_Work.NoteDisturbed();
        m_Work.Forget();
        m_Work.m_Expression.m_Tree.Clear();
        m_Work.m_Expression.m_Tree.m_Msg = MSG_NONE;
        m_Work.m_Expression.m_MessageNum = MSG_NONE;
        m_Work.m_Expression.m_InvalidPos = 0;
    }

    Throwing(const Throwing&) = delete;
    Throwing& operator=(const Throwing&) = delete;

    void End() { m_HasEnded = true; }

private:
    BoundWork& m_Work;
    bool m_HasEnded = false;
};

// An expression whose program is run again. What is in progress is known by its names, but as long
// as nothing looks for them, they need not be entered.
class BoundWork::Rerun {
public:
    Rerun(BoundWork& work, ExpressionState& state)
        : m_Throwing(work), m_State(state), m_Mark(state.marks), m_Outer(innermost)
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
    }

    Rerun(const Rerun&) = delete;
    Rerun& operator=(const Rerun&) = delete;

    void End() { m_Throwing.End(); }

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
        m_IsEntered = true;
        if (!m_State.checkedName.IsEmpty())
            m_Entry = CFmlaExpression::m_NestedFmlaNames.AddHead(m_State.checkedName);
    }

    static inline constinit thread_local Rerun* innermost = nullptr;
    static inline constinit thread_local Rerun* outermost = nullptr;

    Throwing m_Throwing;
    ExpressionState& m_State;
    UnderWay m_Mark;
    Rerun* const m_Outer;
    POSITION m_Entry = nullptr;
    bool m_IsEntered = false;
};

} // namespace tovo::detail

#endif
