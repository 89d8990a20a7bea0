#ifndef TOVOFORMULA_SRC_UNDERWAY_H
#define TOVOFORMULA_SRC_UNDERWAY_H

#include <TovoPlatform/Collections.h>

namespace tovo::detail {

// As many formulas and tables may refer to one another in a row. Each level takes some of the
// stack, under sanitizers several times as much; this many fit into 8 MiB even so.
inline constexpr int kDeepestNesting = 1000;

// Marks an object as being validated or calculated on this thread, from construction to
// destruction. Who finds it marked already has come back to it through what it refers to.
class UnderWay {
public:
    explicit UnderWay(const void* object);
    ~UnderWay();

    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;

    // Whether this is the only mark on the object.
    bool IsFirst() const { return m_IsFirst; }
    // Whether too many objects are marked for another to be gone into.
    bool IsTooDeep() const;
    static bool Marks(const void* object);

private:
    bool m_IsFirst;
};

// Enters a name at the head of the list, and takes exactly that entry out again on every way out.
class NestedNameGuard {
public:
    NestedNameGuard(CStringList& names, const CString& name)
        : m_Names(names), m_Entry(names.AddHead(name))
    {}
    ~NestedNameGuard() { m_Names.RemoveAt(m_Entry); }

    NestedNameGuard(const NestedNameGuard&) = delete;
    NestedNameGuard& operator=(const NestedNameGuard&) = delete;

private:
    CStringList& m_Names;
    const POSITION m_Entry;
};

} // namespace tovo::detail

#endif
