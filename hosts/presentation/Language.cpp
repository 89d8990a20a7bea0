#include "Language.h"

#include <algorithm>
#include <stdexcept>

#include <TovoFormula/ExprToken.h>
#include <TovoFormula/FmlaExprBase.h>
#include <TovoPlatform/LocaleSettings.h>
#include <TovoPlatform/NumberText.h>

#include "JsonFile.h"

namespace {

constexpr int kFirstWord = TOK_AND; // from here on every token with a name is a word

CString NameInForce(int code)
{
    CString name;
    CFmlaExprBase::GetTokenString(code, name);
    return name;
}

// The token without a name has no resource that could be translated.
std::map<int, CString> WordsInForce()
{
    std::map<int, CString> words;
    for (int code = kFirstWord; code < kTokenCount; ++code) {
        if (CExprToken::GetTokCodeNameId(code) > 0)
            words[code] = NameInForce(code);
    }
    return words;
}

// The scanner takes these letters for a word in every language, and no others.
bool IsWord(const CString& text)
{
    const WideView view = text.View();
    return !view.empty() && std::all_of(view.begin(), view.end(), [](char16_t character) {
        return character >= u'A' && character <= u'Z';
    });
}

// A character that has no part in an expression but as a separator.
bool IsFree(char16_t character)
{
    const bool isDigit = character >= u'0' && character <= u'9';
    const bool isSign = WideView(u"()+-*/=<>").find(character) != WideView::npos;
    return character > u' ' && !isDigit && !isSign && !tovo::IsAlphabetic(character);
}

// What is wrong with the separators, an empty one counting as none; null if nothing is.
const char* FaultOfDecimal(const CString& decimal)
{
    const bool isUsable = decimal.IsEmpty() || (decimal.GetLength() == 1 && IsFree(decimal[0]));
    return isUsable ? nullptr : "the decimal separator must be one mark such as a comma";
}

const char* FaultOfList(const CString& list, const CString& decimal)
{
    const WideView view = list.View();
    if (!std::all_of(view.begin(), view.end(), IsFree))
        return "the list separator must be of marks such as a semicolon";
    // Digits and their separator are looked for before all else, so a number would swallow it.
    if (!decimal.IsEmpty() && view.starts_with(decimal.View()))
        return "the list separator must not begin with the decimal one";
    return nullptr;
}

std::map<int, CString> ReadWords(const JsonPlace& tokens)
{
    const std::map<int, CString> english = WordsInForce();
    std::map<int, CString> words;
    for (const auto& [key, unused] : tokens.Object()) {
        const JsonPlace place = tokens.Member(key);
        const CString name((std::string_view(key)));
        const auto found = std::find_if(english.begin(), english.end(),
                                        [&](const auto& word) { return word.second == name; });
        if (found == english.end())
            place.Refuse("is no word of the language");
        const CString word((std::string_view(place.Text())));
        if (!IsWord(word))
            place.Refuse("must be of the letters A to Z");
        words[found->first] = word;
    }
    return words;
}

// Two tokens of one name: the scanner would never find the second. The words that the file does
// not name keep theirs.
void RefuseSharedWords(const JsonPlace& tokens, const std::map<int, CString>& words)
{
    const std::map<int, CString> english = WordsInForce();
    std::map<int, CString> all = words;
    all.insert(english.begin(), english.end());
    std::map<CString, int> codes;
    for (const auto& [code, word] : all) {
        const auto [first, isNew] = codes.emplace(word, code);
        if (isNew)
            continue;
        // Of the two, the complaint goes to one that the file names.
        const int translated = words.contains(code) ? code : first->second;
        const int other = translated == code ? first->second : code;
        tokens.Member(english.at(translated).ToUtf8())
            .Refuse("is the name of " + english.at(other).ToUtf8() + " too");
    }
}

// Without the key the separator is the usual one, for which an empty text stands here.
CString ReadSeparator(const JsonPlace& file, const char* key)
{
    const auto place = file.FindMember(key);
    if (!place)
        return CString();
    const CString separator((std::string_view(place->Text())));
    if (separator.IsEmpty())
        place->Refuse("must not be empty");
    return separator;
}

void Require(const char* fault)
{
    if (fault)
        throw std::invalid_argument(fault);
}

} // namespace

Language ReadLanguageFile(const std::string& path)
{
    const nlohmann::json document = ReadJsonFile(path);
    const JsonPlace file(path, document);
    file.ExpectKeys({"tokens", "decimal", "list"});

    Language language;
    const JsonPlace tokens = file.Member("tokens");
    language.words = ReadWords(tokens);
    RefuseSharedWords(tokens, language.words);
    language.decimal = ReadSeparator(file, "decimal");
    language.list = ReadSeparator(file, "list");
    if (const char* fault = FaultOfDecimal(language.decimal))
        file.Member("decimal").Refuse(fault);
    if (const char* fault = FaultOfList(language.list, language.decimal))
        file.Member("list").Refuse(fault);
    return language;
}

Language LanguageOf(const LanguageOptions& options)
{
    Language language;
    if (!options.file.empty())
        language = ReadLanguageFile(options.file);
    if (!options.decimal.empty())
        language.decimal = CString(std::string_view(options.decimal));
    if (!options.list.empty())
        language.list = CString(std::string_view(options.list));
    return language;
}

LanguageInForce::LanguageInForce(const Language& language) : m_Words(language.words)
{
    const CString decimal = language.decimal.IsEmpty() ? CString(u".") : language.decimal;
    // Where the comma is the decimal separator, lists are written with semicolons.
    const CString usualList = decimal == CString(u",") ? CString(u";") : CString(u",");
    const CString list = language.list.IsEmpty() ? usualList : language.list;
    Require(FaultOfDecimal(decimal));
    Require(FaultOfList(list, decimal));

    for (const auto& [code, word] : m_Words)
        m_Strings.push_back(
            {static_cast<UINT>(CExprToken::GetTokCodeNameId(code)), word.GetString()});
    // A table without strings makes no module, and none is needed then.
    if (AfxInitExtensionModule(m_Module, m_Strings.data(), m_Strings.size()))
        m_OnChain.emplace(m_Module);
    SetLocaleSetting(LOCALE_SDECIMAL, decimal);
    SetLocaleSetting(LOCALE_SLIST, list);
    // Reading the file has loaded the names already, in English.
    CFmlaExprBase::ReInitExprNames();
    m_DecimalSeparator = decimal.ToUtf8();
}
