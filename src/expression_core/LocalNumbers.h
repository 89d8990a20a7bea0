#ifndef TOVOFORMULA_SRC_LOCALNUMBERS_H
#define TOVOFORMULA_SRC_LOCALNUMBERS_H

#include <TovoPlatform/Types.h>

namespace tovo::detail {

// The decimal separator of texts in the user's language, "." at first. Whoever loads the token
// names sets it, so that a number is read as it was scanned. Kept for the process; safe from any
// thread.
WCHAR LocalDecimalSeparator();
void SetLocalDecimalSeparator(WCHAR separator);

} // namespace tovo::detail

#endif
