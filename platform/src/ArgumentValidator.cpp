#include <TovoPlatform/ArgumentValidator.h>

#include <string>

#include <TovoPlatform/InvalidArgument.h>

namespace {

// A caller that cannot name a part must still get its exception.
std::string OrUnknown(const char* name)
{
    return name ? name : "?";
}

// The place comes first, in the form in which compilers give theirs, so that tools can jump to it.
[[noreturn]] void Refuse(const char* file, int line, const char* argument, const char* function,
                         const char* demand)
{
    throw CInvalidArgException(OrUnknown(file) + "(" + std::to_string(line) + "): the argument " +
                               OrUnknown(argument) + " of " + OrUnknown(function) + demand);
}

} // namespace

void CArgumentValidator::ValidateNonNullPointer(const char* file, int line, const void* pointer,
                                                const char* argument, const char* function)
{
    if (!pointer)
        Refuse(file, line, argument, function, " must not be null.");
}

void CArgumentValidator::ValidateIsTrue(const char* file, int line, bool condition,
                                        const char* argument, const char* function)
{
    if (!condition)
        Refuse(file, line, argument, function, " does not meet its condition.");
}
