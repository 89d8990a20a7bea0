#ifndef TOVOFORMULA_EXPORT_H
#define TOVOFORMULA_EXPORT_H

#include <TovoPlatform/Export.h>

// Marks what the library lets hosts see, as TovoPlatform/Export.h tells.
#ifdef TovoFormula_EXPORTS
#define TOVO_FORMULA_API TOVO_EXPORT
#else
#define TOVO_FORMULA_API TOVO_IMPORT
#endif

#endif
