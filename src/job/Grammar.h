#ifndef TOVOJOB_SRC_GRAMMAR_H
#define TOVOJOB_SRC_GRAMMAR_H

#include <cstddef>
#include <vector>

#include <TovoFormula/TokenCodes.h>

namespace tovo::job {

// What can stand at a place.
enum class Expected {
    AnyOperand,
    Number,
    YesNo,
    Operator,
    Parenthesis, // a function's name is there, without its arguments
};

// Parentheses that are open.
struct OpenCall {
    int function = TOK_GROUP;
    std::size_t element = 0; // which element is the function's name, or the parenthesis of a group
    std::size_t commas = 0;
    Expected wanted = Expected::AnyOperand; // where the function or the group stands
};

// Where in an expression one is after its elements up to there. Follows the text also where it is
// wrong: an author who is still typing is in the middle of it.
class Grammar {
public:
    // Resulting: what a whole expression has to evaluate to.
    explicit Grammar(Expected resulting = Expected::AnyOperand) : m_Resulting(resulting) {}

    // Takes the next element. Whatever was meant as a name counts as TOK_VARIABLE.
    void Take(int code);

    Expected Here() const { return m_Here; }
    bool TakesOperand() const { return m_Here < Expected::Operator; }
    // Whether a comparison, AND or OR could follow an operand that stands here.
    bool TakesYesNo() const { return ArgumentWanted() != Expected::Number; }
    // The innermost last.
    const std::vector<OpenCall>& Open() const { return m_Open; }

private:
    Expected ArgumentWanted() const;
    void TakeOperator(int code);

    Expected m_Resulting;
    Expected m_Here = m_Resulting;
    Expected m_WantedOfFunction = Expected::AnyOperand;
    int m_Function = TOK_GROUP; // whose parenthesis is expected
    std::size_t m_Elements = 0;
    std::vector<OpenCall> m_Open;
};

} // namespace tovo::job

#endif
