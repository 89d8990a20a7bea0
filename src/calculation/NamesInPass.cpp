#include "NamesInPass.h"

#include <unordered_map>

namespace tovo::detail {

void NamesInPass::TakeDown(const CString& name, const FormulaImpl& formula)
{
    static thread_local std::unordered_map<CString, const FormulaImpl*> formulas;
    if (!state.isTakingDown) {
        formulas.clear();
        state.isTakingDown = true;
        // Those that were checked before are not among the names.
        Pass::NoteChange();
    }
    if (formulas.emplace(name, &formula).first->second != &formula)
        Pass::Forget();
}

} // namespace tovo::detail
