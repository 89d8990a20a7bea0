#include "Pass.h"

namespace tovo::detail {

thread_local CString StrError::last;

} // namespace tovo::detail
