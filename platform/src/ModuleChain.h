#ifndef TOVOPLATFORM_MODULECHAIN_H
#define TOVOPLATFORM_MODULECHAIN_H

#include <TovoPlatform/Types.h>

namespace tovo {

// The text of that id: the thread's own, else from the newest module on the chain that has it; null
// if none has. The text
// stays good when its module leaves the chain.
const char16_t* FindStringResource(UINT id);

} // namespace tovo

#endif
