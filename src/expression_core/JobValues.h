#ifndef TOVOFORMULA_SRC_JOBVALUES_H
#define TOVOFORMULA_SRC_JOBVALUES_H

class CScannedVariables;
struct ICalculationSet;

namespace tovo::detail {

// The present value of DURATION, JOBSIZE or QUANTITY, by its token code. With a list, records that
// it was met. Requires: one of these codes.
double ReadJobValue(int code, ICalculationSet& calcSet, CScannedVariables* list);

} // namespace tovo::detail

#endif
