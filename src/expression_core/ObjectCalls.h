#ifndef TOVOFORMULA_SRC_OBJECTCALLS_H
#define TOVOFORMULA_SRC_OBJECTCALLS_H

#include <cstdint>

class CalcSetImpl;
class CString;
struct ICalculationSet;
struct IFormulaObj;
struct IVarObj;

namespace tovo::detail {

struct ExpressionState;

// As long as the numbers of a set stay the same, it has the same objects under the same names.
struct LookupState {
    std::uint64_t variables = 0;
    std::uint64_t nested = 0; // of formulas and tables

    friend bool operator==(const LookupState&, const LookupState&) = default;
};

// What evaluation needs of named objects beyond their interfaces: what can be known of an object
// that is exactly a stock one. A class derived from a stock one may do anything, so nothing is
// known of it. Declared here and defined by the layer that has the stock classes.
namespace ObjectCalls {

// The set as a stock one, if it finds names in its own entries only; else null.
const CalcSetImpl* WithStockLookup(const ICalculationSet& calcSet);
LookupState LookupStateOf(const CalcSetImpl& calcSet);
// Whether job values and choices, too, are those of the stock set: asking calls nothing of a host.
bool IsStock(const ICalculationSet& calcSet);
bool IsStrErrorClear(const ICalculationSet& calcSet);

// Where a stock variable keeps its value, null for any other.
const double* ValueOf(const IVarObj& variable);
// What a formula that is a stock one or derives from it keeps beside its text, null for any other;
// and whether it is anything but exactly a stock one.
ExpressionState* StateOf(IFormulaObj& formula, bool& isHost);
// Notes that the set has the formula under that name. If it is its own, no other formula of the set
// has it. Requires: a formula that has a state.
void NoteFound(ExpressionState& formula, const CString& name);

// Calculates a stock formula by its program, and has it asked before whether it is valid or not.
// False if that gave up, with nothing done that shows.
bool CalculateByProgram(ExpressionState& formula, const CString& name, bool withIsValid);

} // namespace ObjectCalls

} // namespace tovo::detail

#endif
