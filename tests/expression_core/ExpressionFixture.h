#ifndef TOVOFORMULA_TESTS_EXPRESSIONFIXTURE_H
#define TOVOFORMULA_TESTS_EXPRESSIONFIXTURE_H

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <TovoFormula/ExprToken.h>
#include <TovoFormula/ExprTree.h>
#include <TovoFormula/ScannedVariables.h>
#include <support/Dump.h>
#include <support/HostObjects.h>

namespace tovo::test {

// The rows of a table written as text: "input -> result", one in a line or several with ";"
// between them.
struct Row {
    std::string input;
    std::string result;
};
std::vector<Row> RowsOf(std::string_view table);

// The code of a word: a name of the language, "V:x", "F:x" or "T:x" for a reference, a number.
// TOK_ILLEGAL for anything else.
int CodeOf(std::string_view word);

class InspectedTree : public CExprTree {
public:
    using CExprTree::CExprTree;

    CETree* Root() const { return m_Root; }
    static int ConditionDepth() { return m_InIfConditionCount; }
};

// A tree over a host's own set. An expression is written as words separated by blanks, such as
// "IF ( V:x > 1 , 2 , 3 )"; a place is the number of a word, counted from 0.
class ExpressionTest : public testing::Test {
protected:
    int Insert(std::string_view word, int nested = 0);

    // Builds the expression in a cleared tree. Gives the tree as Dump has it, or for a fault its
    // message, its place and the text of the token in the tracker: "6628@0 *", with the tracker's
    // message before that if it is another one: "6624@1,6623".
    std::string Load(const std::string& words, int nested = 0);
    void ExpectLoads(std::string_view table, int nested = 0);

    // Calculates the tree. Gives the fault like Load, without a place, or an empty text.
    std::string Calculate(CScannedVariables* list = nullptr);

    HostSet m_Set;
    InspectedTree m_Tree{m_Set};

private:
    std::string Fault(const std::string& place) const;
};

} // namespace tovo::test

#endif
