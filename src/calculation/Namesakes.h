#ifndef TOVOFORMULA_SRC_NAMESAKES_H
#define TOVOFORMULA_SRC_NAMESAKES_H

#include "../expression_core/Pass.h"
#include "../expression_core/Program.h"

namespace tovo::detail {

// Detects two expressions that are checked under one name within a pass.
//
// What is in progress is known by name. So of two formulas of one name, as a host makes them that
// renames one without adding it anew, each fails while the other is in progress, and a success that
// was remembered says nothing there: they are checked in a pass apart, and not remembered.
//
// A formula that its set has under its own name is no namesake of another such one. All other
// expressions that are checked under a name are strays, and are taken down. Kept for each thread.
class Namesakes {
public:
    // In the outermost call nothing has been remembered yet that a namesake could be hidden by.
    static bool MayExist() { return Pass::HasHistory(); }
    // Whether strays have been taken down in this pass.
    static bool AreKnown() { return knownIn == Pass::First(); }
    // Whether no other expression can bear the name of this one, as is known of a formula that was
    // found under its own name in the set that the pass began with. May fail to know.
    static bool AreNone(const ExpressionState& state)
    {
        return !MayExist() || (plainIn == Pass::First() && knownIn != plainIn &&
                               plainSet == &state.calcSet && IsKnownByName(state));
    }
    // Whether another expression bears the name under which this one is going to be checked.
    static bool AreThere(ExpressionState& state, const CString& name);
    // To be called by a set that is going.
    static void NoteGone(const ICalculationSet& calcSet);

    // Whether the set has the formula under its own name, as far as it is known.
    static bool IsKnownByName(const ExpressionState& state)
    {
        return state.ownNameIn == Pass::Present() || state.ownNameAt == MapVersions::Last();
    }

private:
    static inline constinit thread_local PassNumber knownIn = kNeverInPass;
    // The pass whose first set is known, and that set.
    static inline constinit thread_local PassNumber plainIn = kNeverInPass;
    static inline constinit thread_local const ICalculationSet* plainSet = nullptr;
};

} // namespace tovo::detail

#endif
