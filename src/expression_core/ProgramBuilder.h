#ifndef TOVOFORMULA_SRC_PROGRAMBUILDER_H
#define TOVOFORMULA_SRC_PROGRAMBUILDER_H

#include <memory>
#include <vector>

#include "Program.h"

namespace tovo::detail {

// Compiles the tokens of a text, one by one from the left, into a program.
//
// Operators wait on a stack until what follows binds less tightly, functions until they are closed;
// what is complete is written behind its arguments. The places and the kinds of all elements are
// those of the catalogue, so whatever is accepted here would be accepted as a tree, and comes to
// the same value. What is refused may still be a good text: the tree decides.
class ProgramBuilder {
public:
    // The length is that of the text, in characters.
    ProgramBuilder(ICalculationSet& calcSet, int length);

    // Takes the next token, with its text; a reference with its place in the text. False if it is
    // refused, and nothing but destroying the builder is of use then.
    bool Take(int code, WideView text);
    bool TakeReference(const ReferencePlace& place, WideView text);
    // The program of the text and the names that its tokens were scanned from; null if the text
    // ends too early.
    std::unique_ptr<Program> Finish(const CString& text,
                                    std::shared_ptr<const CExpressionNames> names);

private:
    using Instruction = Program::Instruction;

    // An operator or a function whose arguments are not complete.
    struct Open {
        std::uint8_t code;
        std::uint8_t precedence; // 0 for a function
        std::uint8_t argsNeeded; // of an operator
        std::uint8_t argsTaken;  // of a function, complete ones
        std::uint8_t kind;       // of the arguments, RT_ANY until it is known
        std::uint32_t branch;    // of an IF, the instruction that waits for its goal
    };

    bool TakeOperand(Operation operation, RESULT_KIND kind, const Instruction& instruction);
    bool TakeOperator(int code);
    bool TakeFunction(int code);
    bool OpenParenthesis();
    bool TakeComma();
    bool CloseParenthesis();
    bool CloseOperators(int precedence);
    bool CloseOperator(const Open& open);
    bool CloseArgument(bool isLast);
    void WriteFunction(const Open& open);
    void WriteOperator(const Open& open);
    void WriteBranch(Open& open, bool isLast);
    void Write(Operation operation, std::uint32_t index = 0, std::uint16_t count = 0);
    std::uint32_t BindingOf(const ReferencePlace& place, WideView name);

    std::unique_ptr<Program> m_Program;
    std::vector<Open> m_Open;
    std::vector<std::uint8_t> m_Kinds; // of the values that are complete
    std::vector<WideView> m_Names;     // of the bindings
    std::size_t m_Deepest = 0;
    bool m_NeedsOperand = true;
    bool m_NeedsParenthesis = false;
};

} // namespace tovo::detail

#endif
