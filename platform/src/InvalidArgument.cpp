#include <TovoPlatform/InvalidArgument.h>

// Out of line, so that there is one type information for the exception and a host catches what a
// library threw.
CInvalidArgException::~CInvalidArgException() = default;

void AfxThrowInvalidArgException()
{
    throw CInvalidArgException("An index lies outside its range, or an argument is invalid.");
}
