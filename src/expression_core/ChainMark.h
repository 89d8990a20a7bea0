#ifndef TOVOFORMULA_SRC_CHAINMARK_H
#define TOVOFORMULA_SRC_CHAINMARK_H

#include <cstddef>
#include <vector>

class CCalcErrorTracker;

namespace tovo::detail {

// Takes back what is added to chains during its life, of whichever sets: for a failure that will be
// reported once more. Kept for each thread; the innermost one takes down what is added.
class ChainMark {
public:
    ChainMark()
        : m_Outer(innermost),
          m_Outermost(m_Outer ? m_Outer->m_Outermost : this),
          m_Start(m_Outermost->m_Grown.size())
    {
        innermost = this;
    }
    ~ChainMark() { innermost = m_Outer; }

    ChainMark(const ChainMark&) = delete;
    ChainMark& operator=(const ChainMark&) = delete;

    void TakeBack();

    // To be called by a tracker, with the present length of its chain, when that is going to grow.
    static void NoteGrowing(CCalcErrorTracker& tracker, int length)
    {
        if (innermost)
            innermost->m_Outermost->m_Grown.push_back({&tracker, length});
    }

    // To be called by a tracker that is going.
    static void NoteGone(const CCalcErrorTracker& tracker)
    {
        if (innermost)
            std::erase_if(innermost->m_Outermost->m_Grown,
                          [&](const Grown& grown) { return grown.tracker == &tracker; });
    }

private:
    struct Grown {
        CCalcErrorTracker* tracker; // not owned
        int length;                 // before
    };

    static inline constinit thread_local ChainMark* innermost = nullptr;

    ChainMark* const m_Outer;
    ChainMark* const m_Outermost;
    std::vector<Grown> m_Grown; // in the order of time; of the outermost mark, for all within it
    const std::size_t m_Start;  // where that of this mark begins
};

} // namespace tovo::detail

#endif
