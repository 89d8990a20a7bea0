#ifndef TOVOPLATFORM_ARGUMENTVALIDATOR_H
#define TOVOPLATFORM_ARGUMENTVALIDATOR_H

#include <TovoPlatform/Types.h>

// Checks of what a caller hands in. A check that fails throws a CInvalidArgException whose what()
// names the source file, the line, the argument and the function; a check that holds does nothing.
class TOVO_PLATFORM_API CArgumentValidator {
public:
    static void ValidateNonNullPointer(const char* file, int line, const void* pointer,
                                       const char* argument, const char* function);
    static void ValidateIsTrue(const char* file, int line, bool condition, const char* argument,
                               const char* function);
};

#endif
