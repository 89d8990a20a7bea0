#ifndef TOVOFORMULA_TESTS_DUMP_H
#define TOVOFORMULA_TESTS_DUMP_H

#include <string>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/ExprTree.h>

// Results as one short line, so that a test compares the whole of them at once.

namespace tovo::test {

// The token's text, "group" for the nameless function, and "V:x", "F:x" or "T:x" for a reference.
std::string Dump(const CExprToken& token);

// The node with its children in brackets, punctuation left out, such as "*(group(+(1 2)) 3)"; a
// function without arguments yet as "SUM()". Goes down by recursion: for small trees only.
std::string Dump(const CETree& node);
// "(empty)" for a tree without a root.
std::string Dump(const CExprTree& tree);

// The message id and the texts of the chain, innermost first: "6614 [token: x | Formula: A]".
std::string Dump(const CCalcErrorTracker& tracker);

} // namespace tovo::test

#endif
