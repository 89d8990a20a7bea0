#include "UserLanguage.h"

#include <atomic>

#include "TokenCatalogue.h"

namespace tovo::detail {
namespace {

std::atomic<WCHAR> processDecimalSeparator{u'.'};

bool AreEnglish(const CExpressionNames& names)
{
    for (int code = 0; code < kTokenCount; ++code) {
        const CatalogueRow& row = CatalogueOf(code);
        if (row.nameId != kNoName && names.GetAt(code) != row.englishName)
            return false;
    }
    return true;
}

} // namespace

UserLanguage::UserLanguage(std::shared_ptr<const CExpressionNames> loaded)
    : names(std::move(loaded)), areNamesEnglish(AreEnglish(*names))
{}

WCHAR LocalDecimalSeparator()
{
    return HasOwnLanguage() ? NamesInForce()->GetAt(TOK_NUMBER)[0]
                            : processDecimalSeparator.load(std::memory_order_relaxed);
}

void SetProcessDecimalSeparator(WCHAR separator)
{
    processDecimalSeparator.store(separator, std::memory_order_relaxed);
}

} // namespace tovo::detail
