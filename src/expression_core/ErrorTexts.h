#ifndef TOVOFORMULA_SRC_ERRORTEXTS_H
#define TOVOFORMULA_SRC_ERRORTEXTS_H

#include <cstdint>
#include <vector>

#include "ObjectCalls.h"

namespace tovo::detail {

// The number of a run-time error, 0 for none. It stands for the text that a set is given of it.
using RuntimeError = int;

// What a calculation has left in a set as the text of the last mathematical error.
struct LeftText {
    ICalculationSet* calcSet; // not owned; compared, and followed only within its pass
    RuntimeError error;
    std::uint64_t turn; // grows with each text that is given
};

// Gives sets the texts of mathematical errors, and knows what it gave last within a pass: whoever
// is answered from memory leaves the texts that its calculation would have left. A token gives its
// own set a text, so with formulas of several sets there are several. Kept for each thread.
class ErrorTexts {
public:
    static void Give(ICalculationSet& calcSet, RuntimeError error)
    {
        // Nearly every token clears the text, and nearly always it is clear.
        if (error == 0 && ObjectCalls::IsStrErrorClear(calcSet))
            Note(calcSet, error);
        else
            Set(calcSet, error);
    }
    // What the set was given last in this pass, 0 for none.
    static RuntimeError LastOf(const ICalculationSet& calcSet);
    // What other sets than this one were given since the turn, in that order.
    static std::vector<LeftText> GivenElsewhere(const ICalculationSet& calcSet,
                                                std::uint64_t since);
    static std::uint64_t Turn() { return turns; }
    // For whoever would not give the same texts again. Whatever has come by it leaves other texts
    // the next time.
    static void NoteOnce() { once = turns; }
    static bool HasOnce(std::uint64_t since) { return once > since; }

    // Whether more sets than one were given texts.
    static bool HasOthers() { return hasOthers; }

    // To be called by a set that is going.
    static void NoteGone(const ICalculationSet& calcSet);

    // Forgets what was given, for the sets may be gone.
    static void BeginPass()
    {
        last.calcSet = nullptr;
        if (hasOthers)
            ForgetOthers();
    }

private:
    static void Set(ICalculationSet& calcSet, RuntimeError error);
    static void Note(ICalculationSet& calcSet, RuntimeError error)
    {
        if (last.calcSet && last.calcSet != &calcSet)
            MoveToOthers(calcSet);
        last = {&calcSet, error, ++turns};
    }
    static void MoveToOthers(const ICalculationSet& calcSet);
    static void MakeRoom(const ICalculationSet& calcSet);
    static void ForgetOthers();
    static std::vector<LeftText>& Others();

    static inline constinit thread_local LeftText last = {};
    static inline constinit thread_local std::uint64_t turns = 0;
    static inline constinit thread_local std::uint64_t once = 0; // the turn of the last such text
    static inline constinit thread_local bool hasOthers = false;
};

} // namespace tovo::detail

#endif
