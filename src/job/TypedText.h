#ifndef TOVOJOB_SRC_TYPEDTEXT_H
#define TOVOJOB_SRC_TYPEDTEXT_H

#include <cstddef>
#include <string>
#include <vector>

#include "Grammar.h"
#include "KnownNames.h"
#include "TextChanges.h"

namespace tovo::job {

// One element of a text in which names stand as they were typed. Positions are UTF-16.
struct TypedElement {
    enum class What {
        Token,     // of the language, in whatever letter case; TOK_ILLEGAL for an unknown sign
        Reference, // in the reference table already
        Name,      // typed, and known
        Ambiguous,
        Unknown,
    };

    What what = What::Token;
    int code = TOK_ILLEGAL; // of a token; of an ambiguous word, the one that it may be
    std::size_t begin = 0;
    std::size_t end = 0;
    KnownNames::Names names = {}; // one for a name; what an ambiguous word may be
    bool isCalled = false;        // a parenthesis follows

    // What the element is to the grammar.
    int GrammarCode() const { return what == What::Token ? code : static_cast<int>(TOK_VARIABLE); }
};

// Reads a text from the left. At each place the longest of what may stand there is taken: a name in
// any letter case, or a token. A name in brackets is always a name, and a reference may be written
// as in the stored form. Where a name and a word of the language are equally long, the grammar
// decides; where both fit, the word is ambiguous, unless it is spelled exactly as the word and the
// name is not.
//
// Takes time linear in the text, times the number of different lengths of names.
std::vector<TypedElement> ReadTyped(const CFmlaExprBase& expression, const KnownNames& names);

// What is to be changed so that the names that were found are references, and the words of the
// language are spelled as they must be. A reference takes the blanks beside it.
std::vector<TextChange> Resolve(const CFmlaExprBase& expression,
                                const std::vector<TypedElement>& elements);

// The same for one element.
std::vector<TextChange> Resolve(const CFmlaExprBase& expression, const TypedElement& element);

// How to type an object, so that it alone is meant: its name, "[name]" for one that is also
// something else, "F(name)" for one that several kinds share.
std::string TypedAs(const ObjectName& object, const KnownNames& names);
std::string InBrackets(const ObjectName& object, const KnownNames& names);

// Blanks and what people paste for blanks.
bool IsBlank(char16_t character);

} // namespace tovo::job

#endif
