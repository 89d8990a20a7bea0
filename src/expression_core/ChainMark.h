#ifndef TOVOFORMULA_SRC_CHAINMARK_H
#define TOVOFORMULA_SRC_CHAINMARK_H

#include <vector>

class CCalcErrorTracker;

namespace tovo::detail {

// Takes back what is added to chains during its life, of whichever sets: for a failure that will be
// reported once more. Kept for each thread; the innermost one takes down what is added.
class ChainMark {
public:
    ChainMark() : m_Outer(innermost) { innermost = this; }
    ~ChainMark();

    ChainMark(const ChainMark&) = delete;
    ChainMark& operator=(const ChainMark&) = delete;

    void TakeBack();

    // To be called by a tracker, with the present length of its chain, when that is going to grow.
    static void NoteGrowing(CCalcErrorTracker& tracker, int length)
    {
        if (innermost)
            innermost->m_Grown.push_back({&tracker, length});
    }

private:
    struct Grown {
        CCalcErrorTracker* tracker; // not owned
        int length;                 // before
    };

    static inline constinit thread_local ChainMark* innermost = nullptr;

    ChainMark* const m_Outer;
    std::vector<Grown> m_Grown; // in the order of time
};

} // namespace tovo::detail

#endif
