#ifndef TOVOJOB_TYPING_H
#define TOVOJOB_TYPING_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <TovoJob/Export.h>
#include <TovoJob/Functions.h>
#include <TovoJob/Job.h>
#include <TovoJob/ObjectName.h>
#include <TovoJob/Result.h>
#include <TovoJob/Span.h>

// Help for authors who type. Their texts are in the user's language, with the user's separators;
// names stand in them as they are, without a table that says where. The texts are UTF-8, and may be
// anything: bytes that are none count as a character each. Every operation here takes time linear
// in the text and in the names of the job.

namespace tovo {

// A reference in a text.
struct TypedReference {
    Span span; // with both its blanks
    ObjectName object;
};

// A word that means nothing, or more than one thing.
struct UnresolvedWord {
    Span span; // in the text that was typed
    std::string word;
    bool isAmbiguous = false;
    std::string message; // in the user's language where it has a translation
    // What to type in its place: of an ambiguous word each meaning, of an unknown one the nearest
    // names and words. Of many unknown words only the first ones have some.
    std::vector<std::string> choices;
};

// What a typed text means.
struct TypedExpression {
    // The stored form, as Formula::expression takes it. Words that are unresolved stand in it as
    // they were typed.
    std::string expression;
    // As the job shows it from then on, with its references.
    std::string text;
    std::vector<TypedReference> references;
    std::vector<UnresolvedWord> unresolved; // in the order of the text

    bool IsResolved() const { return unresolved.empty(); }
};

// Finds the names and the words in a text, both in any letter case; at each place the longest that
// stands there. Where a name could be something else as well, "[name]" is the name, and "V(name)",
// "F(name)" or "T(name)" that of a variable, a formula or a table. A text that TextOf returned
// resolves to the same expression if its names are not ambiguous. Only names and words are looked
// at; what else is wrong is a fault of the formula. Refused: a text of more than 65,535 characters.
TOVO_JOB_API Result<TypedExpression> ResolveTyped(std::string_view text, const Job& job);

// What can be typed at a place.
enum class CompletionKind {
    Variable,
    Formula,
    Table,
    Function,
    JobValue,
    Constant, // PI, YES, NO
    Operator, // AND, OR, NOT, EQ and their like
};

// The part of the language that fits.
enum class GrammarPlace {
    Operand,
    Operator,
};

// One thing that may stand at the cursor.
struct Completion {
    CompletionKind kind = CompletionKind::Variable;
    GrammarPlace place = GrammarPlace::Operand;
    std::string label;  // the name
    Span span;          // what is replaced: the part that was typed
    std::string insert; // with brackets, if the name needs them; of a function with its parenthesis
    bool isPrefix = true; // what was typed is its beginning, not some other part of it
};

// What to offer.
struct CompletionOptions {
    // The formula whose text it is: then formulas and tables that depend on it are left out, and so
    // is what cannot evaluate to the kind of value that its name asks for. Empty for none.
    std::string formula = {};
    std::size_t most = 100;
};

// The names, functions and words that fit at the cursor, a byte offset. Those that begin with what
// was typed come first, the longest beginning in front; then those that contain it. Among equals,
// variables, formulas and tables come in their order, then words.
TOVO_JOB_API std::vector<Completion> Complete(std::string_view text, std::size_t cursor,
                                              const Job& job,
                                              const CompletionOptions& options = {});

// The function that the cursor is in.
struct Signature {
    const FunctionInfo* function = nullptr; // never null
    Span call;                              // the function's name in the text
    std::string text;                       // "ROUND(value;places)": in the user's language
    std::vector<Span> parameters;           // in that text
    // The one that the cursor is in; absent after the last one.
    std::optional<std::size_t> parameter;
    std::string example; // in the user's language
};

// The innermost function whose arguments are around the cursor, a byte offset; none outside of all.
TOVO_JOB_API std::optional<Signature> SignatureAt(std::string_view text, std::size_t cursor,
                                                  const Job& job);

} // namespace tovo

#endif
