#include <TovoFormula/CalculationPass.h>

#include "../expression_core/Pass.h"

using tovo::detail::Pass;

CalculationPass::CalculationPass()
{
    Pass::Hold();
}

CalculationPass::~CalculationPass()
{
    Pass::Release();
}

void CalculationPass::NoteHostChange()
{
    Pass::NoteChange();
}
