#ifndef TOVOFORMULA_SRC_NAMES_H
#define TOVOFORMULA_SRC_NAMES_H

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/TokenCodes.h>

namespace tovo::detail {

// What ends the name of a yes/no value. It alone says which kind an object is.
inline constexpr char16_t kYesNoMark = u'?';

inline bool IsYesNoName(WideView name)
{
    return !name.empty() && name.back() == kYesNoMark;
}

inline VALUETYPE ValueTypeOfName(WideView name)
{
    if (name.empty())
        return VALUE_NONE;
    return IsYesNoName(name) ? VALUE_BOOLEAN : VALUE_NUMERIC;
}

// The kind of value of a reference follows from its text alone; white space only has none.
inline RESULT_KIND KindOfReference(WideView text)
{
    const WideView name = tovo::TrimmedRight(text);
    if (name.empty())
        return RT_ANY;
    return IsYesNoName(name) ? RT_BOOLEAN : RT_NUMERIC;
}

// The name in a reference's stretch: less one blank at its start and one at its end. A name with
// blanks of its own keeps them.
inline WideView BareName(WideView stretch)
{
    if (!stretch.empty() && stretch.front() == u' ')
        stretch.remove_prefix(1);
    if (!stretch.empty() && stretch.back() == u' ')
        stretch.remove_suffix(1);
    return stretch;
}

// The same as a string; a text without such blanks is passed on, not copied.
inline CString BareName(const CString& stretch)
{
    const WideView bare = BareName(stretch.View());
    return bare.size() == stretch.View().size() ? stretch : CString(bare);
}

} // namespace tovo::detail

#endif
