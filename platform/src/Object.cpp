#include <TovoPlatform/Object.h>

CObject::~CObject() = default;
