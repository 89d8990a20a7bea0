#ifndef TOVOFORMULA_LANGUAGESCOPE_H
#define TOVOFORMULA_LANGUAGESCOPE_H

#include <functional>
#include <memory>
#include <span>

#include <TovoFormula/Export.h>
#include <TovoPlatform/StringResources.h>
#include <TovoPlatform/WideString.h>

class CalcSetImpl;

namespace tovo {
class ThreadTexts;
}
namespace tovo::detail {
struct LanguageTexts;
struct UserLanguage;
} // namespace tovo::detail

// A language of authors: the token names, the separators, and the texts of the messages.
//
// Made once and used by any number of scopes, on any threads. Copies share what they hold. What the
// process has, by its modules and settings, has no part in it.
class TOVO_FORMULA_API FormulaLanguage {
public:
    // English, with "." and ",".
    FormulaLanguage();
    // The strings by their ids, as in a module's table: token names (TokenNameIds.h), messages
    // (MessageIds.h), and whatever else the host loads. Names and messages that the table lacks are
    // English. Its texts must live as long as the language is used.
    //
    // Throws CInvalidArgException, whose what() tells why, for a table that holds an id twice or a
    // text that is missing, for a word that is not of the letters A to Z, for two tokens of one
    // name, and for separators that a number or an expression could be mistaken for: the decimal
    // one must be one mark, the list one of marks that do not begin with it.
    FormulaLanguage(std::span<const AfxStringResource> strings, const CString& decimalSeparator,
                    const CString& listSeparator);
    ~FormulaLanguage();

    FormulaLanguage(const FormulaLanguage& other);
    FormulaLanguage& operator=(const FormulaLanguage& other);

private:
    friend class LanguageScope;

    std::shared_ptr<const tovo::detail::LanguageTexts> m_Texts;
};

// Puts a language in force on this thread, from construction to destruction: texts are read and
// written in it, numbers for the user have its separators, LoadString finds its messages. The
// language of the process, and that of other threads, stays what it is; SetLocaleSetting and
// ReInitExprNames still speak of the process.
//
// What an expression holds is not converted: within a scope, a text counts as one in its language.
// Scopes nest, and the innermost counts. One thread: destroy it where it was made, in reverse
// order. Costs no allocation.
class TOVO_FORMULA_API LanguageScope {
public:
    [[nodiscard]] explicit LanguageScope(const FormulaLanguage& language) noexcept;
    ~LanguageScope();

    LanguageScope(const LanguageScope&) = delete;
    LanguageScope& operator=(const LanguageScope&) = delete;

private:
    std::shared_ptr<const tovo::detail::LanguageTexts> m_Texts;
    const tovo::detail::UserLanguage* m_FoundLanguage;
    const tovo::ThreadTexts* m_FoundTexts;
};

// Converts the texts of all formulas in the set from the language in force on this thread to the
// one given. Without it, a text would count as one in the new language: the ROUND(1.5,0)
// of one that takes a comma for the decimal separator is ROUND(1.5.0) in English.
//
// Elements of tables need no conversion. Expressions that are not in the set, operands among them,
// go through their encoded string in the same way. A text with a fault in a number is converted up
// to that number. If memory runs out, all texts are as they were.
TOVO_FORMULA_API void ConvertExpressions(CalcSetImpl& set, const FormulaLanguage& to);
// The same to the language that is in force after the change, for a host that changes that of the
// process there. If the change throws, all texts are as they were.
TOVO_FORMULA_API void ConvertExpressions(CalcSetImpl& set, const std::function<void()>& change);

#endif
