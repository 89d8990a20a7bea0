#ifndef TOVOPLATFORM_LOCALESETTINGS_H
#define TOVOPLATFORM_LOCALESETTINGS_H

#include <TovoPlatform/WideString.h>

// The user's regional settings, as the host gives them. No environment variable and no process
// locale is read. Safe to call from any thread.

inline constexpr int LOCALE_SLIST = 12;    // the list separator
inline constexpr int LOCALE_SDECIMAL = 14; // the decimal separator

// What this thread has of its own for the code, else what the host set for the process, else the
// default text.
TOVO_PLATFORM_API CString GetLocaleSetting(int code, CString defaultText);
// Sets the text of a code for the process; an empty text takes the setting away.
TOVO_PLATFORM_API void SetLocaleSetting(int code, CString text);

#endif
