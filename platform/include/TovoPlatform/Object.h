#ifndef TOVOPLATFORM_OBJECT_H
#define TOVOPLATFORM_OBJECT_H

#include <TovoPlatform/Types.h>

// The common base of everything that can be owned or recorded without its type being known.
class TOVO_PLATFORM_API CObject {
public:
    CObject() = default;
    virtual ~CObject();

    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
};

#endif
