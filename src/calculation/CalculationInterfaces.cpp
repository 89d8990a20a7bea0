#include <TovoFormula/CalculationInterfaces.h>

// Out of line, so that every host shares one type identity of each interface.
IVarObj::~IVarObj() = default;
IFormulaObj::~IFormulaObj() = default;
IFormulaTableObj::~IFormulaTableObj() = default;
ICalculationSet::~ICalculationSet() = default;
