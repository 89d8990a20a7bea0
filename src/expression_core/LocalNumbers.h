#ifndef TOVOFORMULA_SRC_LOCALNUMBERS_H
#define TOVOFORMULA_SRC_LOCALNUMBERS_H

#include <TovoPlatform/Types.h>

class CExpressionNames;

namespace tovo::detail {

// The user's names of the tokens as they were loaded last; compared, never followed.
inline constinit const CExpressionNames* namesInForce = nullptr;
// Whether they are the English ones, separators included.
inline constinit bool areNamesEnglish = false;

// The decimal separator of texts in the user's language, "." at first. Whoever loads the token
// names sets it, so that a number is read as it was scanned. Kept for the process; safe from any
// thread.
WCHAR LocalDecimalSeparator();
void SetLocalDecimalSeparator(WCHAR separator);

} // namespace tovo::detail

#endif
