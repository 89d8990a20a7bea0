#ifndef TOVOPLATFORM_INVALIDARGUMENT_H
#define TOVOPLATFORM_INVALIDARGUMENT_H

#include <stdexcept>

#include <TovoPlatform/Types.h>

// What an index outside a string or an array, and a refused argument, end in. what() says which.
class TOVO_PLATFORM_API CInvalidArgException : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
    ~CInvalidArgException() override;
};

// Throws a CInvalidArgException by value.
[[noreturn]] TOVO_PLATFORM_API void AfxThrowInvalidArgException();

#endif
