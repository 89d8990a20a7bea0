#include "NamesInPass.h"

#include <unordered_map>

namespace tovo::detail {

bool NamesInPass::TakeDown(const CString& name, const FormulaImpl& formula)
{
    // Null where there is more than one.
    static thread_local std::unordered_map<CString, const FormulaImpl*> formulas;
    if (!state.isTakingDown) {
        formulas.clear();
        state.isTakingDown = true;
        // Those that were checked before are not among the names.
        Pass::NoteChange();
    }
    const FormulaImpl*& owner = formulas.emplace(name, &formula).first->second;
    if (owner && owner != &formula) {
        owner = nullptr;
        Pass::NoteChange();
    }
    return !owner;
}

} // namespace tovo::detail
