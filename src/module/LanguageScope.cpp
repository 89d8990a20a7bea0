#include <TovoFormula/LanguageScope.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <TovoFormula/CalcSetImpl.h>
#include <TovoFormula/FormulaImpl.h>
#include <TovoPlatform/InvalidArgument.h>
#include <TovoPlatform/LocaleSettings.h>
#include <TovoPlatform/NumberText.h>
#include <TovoPlatform/ProcessState.h>
#include <TovoPlatform/ThreadTexts.h>

#include "../expression_core/Pass.h"
#include "../expression_core/TokenCatalogue.h"
#include "../expression_core/UserLanguage.h"
#include "../expression_text/TextExchange.h"
#include "../expression_text/TokenScanner.h"
#include "StringTable.h"

using namespace tovo::detail;

namespace tovo::detail {

struct LanguageTexts {
    ThreadTexts texts;
    UserLanguage language;
};

} // namespace tovo::detail

namespace {

constexpr int kFirstWord = TOK_AND; // from here on every token with a name is a word

[[noreturn]] void Refuse(const std::string& reason)
{
    throw CInvalidArgException("FormulaLanguage: " + reason);
}

void RequireTable(std::span<const AfxStringResource> strings)
{
    AFX_EXTENSION_MODULE record;
    if (!strings.empty() && !AfxInitExtensionModule(record, strings.data(), strings.size()))
        Refuse("an id stands in the table twice, or a text is missing");
}

// A character that has no part in an expression but as a separator.
bool IsMark(char16_t character)
{
    const bool isDigit = character >= u'0' && character <= u'9';
    const bool isSign = WideView(u"()+-*/=<>").find(character) != WideView::npos;
    return character > u' ' && !isDigit && !isSign && !tovo::IsAlphabetic(character);
}

void RequireSeparators(WideView decimal, WideView list)
{
    if (decimal.size() != 1 || !IsMark(decimal[0]))
        Refuse("the decimal separator must be one mark such as a comma");
    if (list.empty() || !std::ranges::all_of(list, IsMark))
        Refuse("the list separator must be of marks such as a semicolon");
    // Digits and their separator are looked for before all else, so a number would swallow it.
    if (list.front() == decimal[0])
        Refuse("the list separator must not begin with the decimal one");
}

void RequireNames(const CExpressionNames& names)
{
    std::set<CString> met;
    for (int code = 0; code < kTokenCount; ++code) {
        const CString& name = names.GetAt(code);
        if (CatalogueOf(code).nameId == kNoName)
            continue;
        if (code >= kFirstWord && !std::ranges::all_of(name.View(), IsWordLetter))
            Refuse(name.ToUtf8() + " must be of the letters A to Z");
        if (!met.insert(name).second)
            Refuse(name.ToUtf8() + " is the name of two tokens");
    }
}

// The host's strings, and after them the library's own for those that it lacks.
tovo::ThreadTexts TextsOf(std::span<const AfxStringResource> strings, const CString& decimal,
                          const CString& list)
{
    std::vector<AfxStringResource> all(strings.begin(), strings.end());
    const std::span own(stringModule.strings, stringModule.stringCount);
    all.insert(all.end(), own.begin(), own.end());
    return {all, {{LOCALE_SDECIMAL, decimal}, {LOCALE_SLIST, list}}};
}

std::shared_ptr<const LanguageTexts> Made(tovo::ThreadTexts texts)
{
    const auto names = std::make_shared<CExpressionNames>();
    {
        const tovo::ThreadTextsInForce inForce(&texts);
        names->Init();
    }
    RequireNames(*names);
    return std::make_shared<const LanguageTexts>(
        LanguageTexts{std::move(texts), UserLanguage(names)});
}

constinit tovo::Everlasting<std::shared_ptr<const LanguageTexts>>
    english; // null until it is needed

std::shared_ptr<const LanguageTexts> English()
{
    const std::lock_guard lock(tovo::LoadingLock());
    if (!english.value)
        english.value = Made(TextsOf({}, CString(u"."), CString(u",")));
    return english.value;
}

} // namespace

FormulaLanguage::FormulaLanguage() : m_Texts(English())
{}

FormulaLanguage::FormulaLanguage(std::span<const AfxStringResource> strings,
                                 const CString& decimalSeparator, const CString& listSeparator)
{
    RequireTable(strings);
    RequireSeparators(decimalSeparator.View(), listSeparator.View());
    m_Texts = Made(TextsOf(strings, decimalSeparator, listSeparator));
}

FormulaLanguage::~FormulaLanguage() = default;

FormulaLanguage::FormulaLanguage(const FormulaLanguage& other) = default;

FormulaLanguage& FormulaLanguage::operator=(const FormulaLanguage& other) = default;

LanguageScope::LanguageScope(const FormulaLanguage& language) noexcept
    : m_Texts(language.m_Texts),
      m_FoundLanguage(std::exchange(languageInForce, &m_Texts->language)),
      m_FoundTexts(tovo::ThreadTexts::Exchange(&m_Texts->texts))
{
    Pass::NoteChange();
}

LanguageScope::~LanguageScope()
{
    languageInForce = m_FoundLanguage;
    tovo::ThreadTexts::Exchange(m_FoundTexts);
    Pass::NoteChange();
}

namespace {

// One expression between two languages. The new text is made apart, so that nothing has changed if
// one of them fails.
struct Conversion {
    CFmlaExprBase& expression;
    CString encoded;
    std::unique_ptr<CFmlaExprBase> converted = nullptr;
};

// A formula that the set holds under several names is converted once.
std::vector<Conversion> Encoded(const CalcSetImpl& set)
{
    std::set<const FormulaImpl*> met;
    std::vector<Conversion> conversions;
    for (const auto& [name, formula] : set.Formulas())
        if (met.insert(formula).second)
            conversions.push_back(
                {formula->GetExpression(), formula->GetExpression().GetEncodedString()});
    return conversions;
}

void ReadBack(std::vector<Conversion>& conversions)
{
    for (Conversion& each : conversions) {
        each.converted = std::make_unique<CFmlaExprBase>();
        each.converted->SetFromEncodedString(each.encoded);
    }
}

void Take(std::vector<Conversion>& conversions) noexcept
{
    for (Conversion& each : conversions)
        TextExchange::Swap(each.expression, *each.converted);
}

} // namespace

void ConvertExpressions(CalcSetImpl& set, const FormulaLanguage& to)
{
    std::vector<Conversion> conversions = Encoded(set);
    {
        const LanguageScope scope(to);
        ReadBack(conversions);
    }
    Take(conversions);
}

void ConvertExpressions(CalcSetImpl& set, const std::function<void()>& change)
{
    std::vector<Conversion> conversions = Encoded(set);
    change();
    ReadBack(conversions);
    Take(conversions);
}
