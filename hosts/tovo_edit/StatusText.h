#ifndef TOVO_EDIT_STATUSTEXT_H
#define TOVO_EDIT_STATUSTEXT_H

#include <TovoFormula/FmlaExprBase.h>

#include "Calculation.h"
#include "TextReport.h"

// What the editor says of a formula, in one long line for each thing.

// The value with its unit; or the message, with the formula or table at fault where that is another
// one.
CString ResultText(const FormulaFacts& facts, const TextManner& manner);

// The names that a sound formula reads, directly or through others; of one at fault nothing can be
// calculated, so those that its text holds.
CString DependsText(const FormulaFacts& facts, const CFmlaExprBase& expression, const JobSet& set);

// A kind of reference in a word.
CString KindText(int kind);

#endif
