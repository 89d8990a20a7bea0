#ifndef TOVOFORMULA_SRC_UNDERWAY_H
#define TOVOFORMULA_SRC_UNDERWAY_H

#include <cstdint>
#include <limits>

#include <TovoPlatform/Collections.h>

namespace tovo::detail {

// As many formulas and tables may refer to one another in a row, where the stack has room for them.
inline constexpr int kDeepestNesting = 1000;

// Tells when a call must not go deeper, since the stack of its thread is nearly used up. What is
// left then is enough for one more level, for the report of a failure, and for what a host's object
// may need that is called there.
class StackSpace {
public:
    static bool IsShort()
    {
        const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
        return here < enough && IsShortAt(here);
    }

private:
    // Asks for the stack on a thread's first use, and where this may be another stack.
    static bool IsShortAt(std::uintptr_t here);

    // What lies above leaves enough room on the thread's own stack.
    static inline constinit thread_local std::uintptr_t enough =
        std::numeric_limits<std::uintptr_t>::max();
};

// Marks an object as being validated or calculated, from construction to destruction, in a count
// that the object keeps. Who finds it marked already has come back to it through what it refers to.
class UnderWay {
public:
    explicit UnderWay(int& marks) : m_Marks(marks)
    {
        ++m_Marks;
        ++depth;
    }
    ~UnderWay()
    {
        --m_Marks;
        --depth;
    }

    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;

    // Whether this is the only mark on the object.
    bool IsFirst() const { return m_Marks == 1; }
    // Whether too many objects are marked on this thread for another to be gone into.
    bool IsTooDeep() const { return depth > kDeepestNesting || StackSpace::IsShort(); }
    // Whether one more would be too many.
    static bool IsDeepest() { return depth >= kDeepestNesting || StackSpace::IsShort(); }

private:
    static inline constinit thread_local int depth = 0;

    int& m_Marks;
};

// Enters a name at the head of the list, unless it is there, and takes exactly that entry out again
// on every way out.
class NestedNameGuard {
public:
    NestedNameGuard(CStringList& names, const CString& name)
        : m_Names(names), m_Entry(names.AddHeadIfAbsent(name))
    {}
    ~NestedNameGuard()
    {
        if (m_Entry)
            m_Names.RemoveAt(m_Entry);
    }

    NestedNameGuard(const NestedNameGuard&) = delete;
    NestedNameGuard& operator=(const NestedNameGuard&) = delete;

    bool HasEntered() const { return m_Entry != nullptr; }

private:
    CStringList& m_Names;
    const POSITION m_Entry;
};

} // namespace tovo::detail

#endif
