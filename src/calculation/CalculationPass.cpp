#include <TovoFormula/CalculationPass.h>

#include "../expression_core/Pass.h"

using tovo::detail::Pass;

CalculationPass::CalculationPass()
{
    Pass::Enter();
}

CalculationPass::~CalculationPass()
{
    Pass::Leave();
}

void CalculationPass::NoteHostChange()
{
    Pass::NoteChange();
}
