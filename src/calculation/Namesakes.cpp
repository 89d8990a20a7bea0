#include "Namesakes.h"

#include <unordered_map>

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/FormulaImpl.h>

#include "ObjectsOfSet.h"

namespace tovo::detail {
namespace {

// The strays of one pass, by name: null where a name has several.
struct Strays {
    PassNumber pass = kNeverInPass;
    // The set that the pass began with, and what tells its names from those of other sets.
    ICalculationSet* calcSet = nullptr;
    const void* names = nullptr;
    std::unordered_map<CString, const ExpressionState*> byName;
};

thread_local Strays strays;

Strays& StraysOfPass()
{
    if (strays.pass != Pass::First()) {
        strays.pass = Pass::First();
        strays.calcSet = nullptr;
        strays.byName.clear();
    }
    return strays;
}

bool IsUnderOwnName(ExpressionState& state, const CString& name)
{
    const bool isOwn = state.formulaName && *state.formulaName == name;
    // A derived class may have changed the name since then.
    if (isOwn && state.checkedName == name && Namesakes::IsKnownByName(state))
        return true;
    const std::uint64_t version = MapVersions::Last();
    const bool isFound = StateOfStockFormula(state.calcSet.GetFormulaObj(name)) == &state;
    const bool staysFound = isFound && isOwn && ObjectCalls::WithStockLookup(state.calcSet);
    state.ownNameAt = staysFound ? version : 0;
    return isFound;
}

// A host's own formula may be the one whose expression this is.
bool HasAnotherFormula(ICalculationSet& calcSet, const ExpressionState& state, const CString& name)
{
    const ExpressionState* const found = StateOfStockFormula(calcSet.GetFormulaObj(name));
    return found && found != &state;
}

} // namespace

bool Namesakes::AreThere(ExpressionState& state, const CString& name)
{
    if (name.IsEmpty())
        return false;
    Strays& present = StraysOfPass();
    if (!present.calcSet) {
        present.calcSet = &state.calcSet;
        present.names = NamesOfFormulas(state.calcSet);
        plainIn = Pass::First();
        plainSet = &state.calcSet;
    }
    if (present.names == NamesOfFormulas(state.calcSet) && IsUnderOwnName(state, name)) {
        const auto found = present.byName.find(name);
        if (found != present.byName.end() && found->second != &state)
            found->second = nullptr;
        return found != present.byName.end() && !found->second;
    }
    knownIn = Pass::First();
    const auto [stray, isNew] = present.byName.emplace(name, &state);
    if (stray->second != &state || (isNew && HasAnotherFormula(*present.calcSet, state, name)))
        stray->second = nullptr;
    return !stray->second;
}

// The next set that is asked takes its place. Whether a formula was found under its own name in the
// one that is gone, nobody can tell any more.
void Namesakes::NoteGone(const ICalculationSet& calcSet)
{
    if (plainSet != &calcSet || plainIn != Pass::First())
        return;
    strays.calcSet = nullptr;
    strays.names = nullptr;
    plainIn = kNeverInPass;
    plainSet = nullptr;
    knownIn = Pass::First();
}

} // namespace tovo::detail
