#include "Oracles.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <TovoFormula/MessageIds.h>
#include <TovoFormula/RtfDocument.h>
#include <expression_text/Texts.h>
#include <support/RtfReader.h>

namespace tovo::fuzz {

namespace {

bool isThorough = false;
bool mayBeLong = false;

// How the characters of a text look in a document: literal text, then each kind of reference.
std::string LooksOf(const CFmlaExprBase& expression)
{
    const int length = expression.GetTextStr().GetLength();
    std::string looks(static_cast<std::size_t>(length), 'l');
    int end = 0;
    for (int index = 0; index < expression.NumVars(); ++index) {
        const int start = expression.VarPos(index);
        if (start < end || start >= length || expression.VarLength(index) == 0)
            continue; // stands for nothing
        end = expression.VarEndPos(index);
        for (int pos = start; pos < std::min(end, length); ++pos)
            looks[static_cast<std::size_t>(pos)] = "VFT"[expression.VarType(index)];
    }
    return looks;
}

} // namespace

void BeginInput(const std::uint8_t* bytes, std::size_t count)
{
    std::uint32_t hash = 2166136261; // FNV-1a
    for (std::size_t index = 0; index < count; ++index)
        hash = (hash ^ bytes[index]) * 16777619;
    isThorough = (hash >> 13) % 8 == 0;
    mayBeLong = (hash >> 13) % 64 == 0;
}

bool IsThorough()
{
    return isThorough;
}

bool MayBeLong()
{
    return mayBeLong;
}

void Fail(const char* expected, const std::string& found)
{
    std::fprintf(stderr, "Broken: %s\n", expected);
    std::fwrite(found.data(), 1, found.size(), stderr); // zeros included
    std::fputc('\n', stderr);
    std::abort();
}

void SpeakLanguage(int language)
{
    struct Language {
        const char16_t* decimal;
        const char16_t* list;
        bool isGerman;
    };
    static constexpr Language kSpoken[kLanguages] = {
        {u"", u"", false},  {u",", u";", false}, {u",", u"||", true},
        {u",", u",", true}, {u"'", u" ", false},
    };
    static AFX_EXTENSION_MODULE german;
    static const bool isThere =
        AfxInitExtensionModule(german, test::kGermanNames, std::size(test::kGermanNames)) != 0;
    static std::optional<CDynLinkLibrary> names;
    static int present = 0;
    if (!isThere || language == present)
        return;
    present = language;
    const Language& spoken = kSpoken[language];
    names.reset();
    if (spoken.isGerman)
        names.emplace(german);
    SetLocaleSetting(LOCALE_SDECIMAL, spoken.decimal);
    SetLocaleSetting(LOCALE_SLIST, spoken.list);
    CFmlaExprBase::ReInitExprNames();
}

void RequireSoundTable(const CFmlaExprBase& expression)
{
    const CString text = expression.GetTextStr();
    int end = 0;
    for (int index = 0; index < expression.NumVars(); ++index) {
        const int start = expression.VarPos(index);
        const bool isInPlace = start >= end && expression.VarLength(index) >= 2 &&
                               expression.VarEndPos(index) <= text.GetLength();
        end = expression.VarEndPos(index);
        if (!isInPlace || text[start] != u' ' || text[end - 1] != u' ')
            Fail("a sound reference table", test::Whole(expression));
    }
}

void RequireSettledForm(const CString& encoded)
{
    CFmlaExprBase expression;
    expression.SetFromEncodedString(encoded);
    CString before = expression.GetEncodedString();
    const bool mayTakeLong = before.Find(u'\\') >= 0 || expression.GetMessageNum() != MSG_NONE;
    int rounds = mayTakeLong ? before.GetLength() + 2 : 2;
    for (;;) {
        expression.SetFromEncodedString(before);
        RequireSoundTable(expression);
        const CString after = expression.GetEncodedString();
        if (after == before)
            return;
        if (--rounds == 0)
            Fail("a stored form that stays", before.ToUtf8() + '\n' + after.ToUtf8());
        before = after;
    }
}

void RequireWholeDocument(const CFmlaExprBase& expression)
{
    RtfDocument document(expression.GetTextStr().Left(20), 20);
    document.AddExpression(expression);
    const std::string written = document.GetRTFString().ToUtf8();
    const std::optional<test::RtfContent> shown = test::ReadRtf(written);
    Require(shown && CString(shown->text) == expression.GetTextStr() &&
                shown->looks == LooksOf(expression),
            "a document that shows the expression",
            [&] { return test::Whole(expression) + '\n' + written; });
}

std::string Shown(double value)
{
    char digits[32] = "nan";
    if (!std::isnan(value))
        std::snprintf(digits, sizeof digits, "%a", value);
    return digits;
}

} // namespace tovo::fuzz
