#include <TovoFormula/ExpressionNames.h>

#include <array>

#include <TovoFormula/TokenCodes.h>
#include <TovoPlatform/LocaleSettings.h>
#include <TovoPlatform/ThreadTexts.h>

#include "../expression_core/TokenCatalogue.h"
#include "../expression_core/UserLanguage.h"

using tovo::detail::CatalogueOf;
using tovo::detail::kNoName;

namespace {

// The English name stands in for what no module names: an empty name would make the scanner stand
// still.
CString LoadName(int code)
{
    CString name;
    const int id = CatalogueOf(code).nameId;
    if (id != kNoName && name.LoadString(static_cast<UINT>(id)) && !name.IsEmpty())
        return name;
    return id == kNoName ? CString() : CString(CatalogueOf(code).englishName);
}

CString WithUsersDecimalSeparator(CString digits)
{
    const CString separator = GetLocaleSetting(LOCALE_SDECIMAL, CString(digits[0]));
    if (separator.GetLength() == 1)
        digits.SetAt(0, separator[0]);
    return digits;
}

CString UsersListSeparator(const CString& fromResource)
{
    const CString separator = GetLocaleSetting(LOCALE_SLIST, fromResource);
    return separator.IsEmpty() ? fromResource : separator;
}

} // namespace

CExpressionNames::~CExpressionNames() = default;

void CExpressionNames::Init()
{
    std::array<CString, kTokenCount> names;
    for (int code = 0; code < kTokenCount; ++code)
        names[static_cast<std::size_t>(code)] = LoadName(code);
    names[TOK_NUMBER] = WithUsersDecimalSeparator(names[TOK_NUMBER]);
    names[TOK_COMMA] = UsersListSeparator(names[TOK_COMMA]);
    if (GetSize() < kTokenCount)
        SetSize(kTokenCount);
    for (int code = 0; code < kTokenCount; ++code)
        SetAt(code, names[static_cast<std::size_t>(code)]);
    if (!tovo::ThreadTexts::InForce())
        tovo::detail::SetProcessDecimalSeparator(GetAt(TOK_NUMBER)[0]);
}
