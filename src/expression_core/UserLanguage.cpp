#include "UserLanguage.h"

#include <atomic>

#include "TokenCatalogue.h"

namespace tovo::detail {
namespace {

std::atomic<char16_t> processDecimalSeparator{u'.'};

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

char16_t LocalDecimalSeparator()
{
    return HasOwnLanguage() ? NamesInForce()->GetAt(TOK_NUMBER)[0]
                            : processDecimalSeparator.load(std::memory_order_relaxed);
}

void SetProcessDecimalSeparator(char16_t separator)
{
    processDecimalSeparator.store(separator, std::memory_order_relaxed);
}

} // namespace tovo::detail
