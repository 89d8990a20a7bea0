#ifndef TOVOJOB_EXPORT_H
#define TOVOJOB_EXPORT_H

#include <TovoPlatform/Export.h>

// Marks what the library lets hosts see, as TovoPlatform/Export.h tells.
#ifdef TovoJob_EXPORTS
#define TOVO_JOB_API TOVO_EXPORT
#else
#define TOVO_JOB_API TOVO_IMPORT
#endif

#endif
