#ifndef TOVOJOB_SRC_EXPRESSIONTEXT_H
#define TOVOJOB_SRC_EXPRESSIONTEXT_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <TovoFormula/FmlaExprBase.h>
#include <TovoFormula/TokenCodes.h>

#include <TovoJob/ObjectName.h>
#include <TovoJob/Span.h>

#include "TextOffsets.h"

namespace tovo::job {

inline CString Wide(std::string_view utf8)
{
    return CString(utf8);
}

// The token codes that are spelled as words.
inline constexpr int kFirstWordCode = TOK_AND;
inline constexpr int kLastWordCode = TOK_TRUNC;

// A text in both encodings. Making it takes time linear in the text, a span of it then takes none.
class TwofoldText {
public:
    explicit TwofoldText(const CString& text);

    // The stretch between two gaps counted in UTF-16 units, which are cut to the text.
    Span SpanOf(int begin, int end) const;
    std::string Part(const Span& span) const;

private:
    std::string m_Utf8;
    TextOffsets m_Offsets;
};

// What a reference of the table refers to. Requires: an index of the table.
ObjectName ReferredBy(const CFmlaExprBase& expression, int index);

// One element of an expression.
struct Token {
    int code = 0;
    int begin = 0; // in UTF-16 units of the text
    int end = 0;
    bool inCondition = false; // within the first argument of an IF, at any depth
    ObjectName object = {};   // of references and job values
};

// What there is to know of an expression from its text alone.
struct ScannedText {
    std::vector<Token> tokens; // up to a number that is none, with the references behind it
    std::size_t nesting = 0;   // of parentheses, at the deepest place
};

ScannedText Scan(const CFmlaExprBase& expression);

// The end of the token that begins at a position, or the position itself if none does.
int EndOfTokenAt(const CFmlaExprBase& expression, int position);

// The English word of a job value's token code; nothing for any other code.
std::optional<std::string_view> JobValueWord(int code);

} // namespace tovo::job

#endif
