#include "Oracles.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <expression_text/Texts.h>

namespace tovo::fuzz {

void Fail(const char* expected, const std::string& found)
{
    std::fprintf(stderr, "Broken: %s\n%s\n", expected, found.c_str());
    std::abort();
}

void SpeakLanguage(int language)
{
    static std::optional<test::UserLanguage> spoken;
    static int present = 0;
    if (language == present)
        return;
    present = language;
    spoken.reset();
    switch (language) {
    case 1:
        spoken.emplace(u",", u";");
        break;
    case 2:
        spoken.emplace(u",", u"||", test::kGermanNames);
        break;
    case 3:
        spoken.emplace(u",", u",", test::kGermanNames);
        break;
    case 4:
        spoken.emplace(u"'", u" ");
        break;
    default:
        break;
    }
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
    int rounds = before.Find(u'\\') < 0 ? 2 : before.GetLength() + 2;
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

std::string Shown(double value)
{
    char digits[32] = "nan";
    if (!std::isnan(value))
        std::snprintf(digits, sizeof digits, "%a", value);
    return digits;
}

} // namespace tovo::fuzz
