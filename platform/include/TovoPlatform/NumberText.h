#ifndef TOVOPLATFORM_NUMBERTEXT_H
#define TOVOPLATFORM_NUMBERTEXT_H

#include <TovoPlatform/WideString.h>

// Numbers as text, in both directions. Nothing here looks at the process's locale: what varies is
// the decimal separator that GetLocaleSetting gives (below: the user's), "." without one.

// What goes by a name of this project's own. Outside stands what goes by the name that hosts use.
namespace tovo {

// The number that the text begins with, 0.0 if it begins with none: white space, a sign, digits
// with one decimal separator, an exponent; the rest is passed over. The separator given counts as
// well as ".". Correctly rounded; too large gives an infinity, too small 0.0.
TOVO_PLATFORM_API double ParseDouble(WideView text, char16_t decimalSeparator = u'.');
// The same of a CString.
TOVO_PLATFORM_API double ParseDouble(const CString& text, char16_t decimalSeparator = u'.');

// The whole number that the text begins with, 0 if it begins with none; saturates.
TOVO_PLATFORM_API int ParseInt(const CString& text);

// True for any letter of any alphabet: Unicode category L, within the Basic Multilingual Plane.
TOVO_PLATFORM_API bool IsAlphabetic(char16_t character);

// The run-time library's text for an error number, at most 1028 characters.
TOVO_PLATFORM_API CString RuntimeErrorText(int errorNumber);

} // namespace tovo

// Writes the value as plain fixed decimals with ".", without grouping or exponent; never "-0".
// Infinities and NaN are written as 0. Decimals outside 0 to 15 are cut to that range.
TOVO_PLATFORM_API void ftoa(double value, CString& text, short decimals);

// Takes out of a number text the characters that can only be there for the eye, white space of any
// kind and apostrophes, and rounds the number to so many decimals, half away from zero; decimals
// above 15 count as 15. The number is read as CleanIntlNumericString does. One that is rounded
// comes with the user's decimal separator and without grouping; one that has no more decimals keeps
// its own. The flags have no effect. Returns 1.
TOVO_PLATFORM_API int FormatNumString(CString& text, int flag, unsigned int decimals, int group);

// Writes the display text of a value: the user's decimal separator, so many decimals, no grouping.
// The flags have no effect. Answers 1.
TOVO_PLATFORM_API int FloatToNumString(double value, CString& text, int flag, unsigned int decimals,
                                       int group);

// Turns a display text or a clean text into a clean one: ".", no grouping, no trailing zeros behind
// the separator. Neither kind of text has grouping, so "." and the user's separator are both the
// decimal one. The flag has no effect.
TOVO_PLATFORM_API void CleanNumericString(CString& text, int flag);

// The same for what a user typed, which may be grouped in the user's manner or the international
// one. Of two kinds of separator the last is the decimal one; a kind that occurs more than once
// groups; the user's decimal separator, alone, is decimal; another one, alone, groups if it stands
// behind one to three digits (not a lone 0) and before exactly three, else it is decimal.
TOVO_PLATFORM_API void CleanIntlNumericString(CString& text, int flag);

#endif
