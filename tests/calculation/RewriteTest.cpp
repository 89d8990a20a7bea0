#include <random>

#include <expression_text/Texts.h>

#include "Job.h"

namespace tovo::test {

namespace {

// An expression whose tree can be looked at.
struct OpenExpression : CFmlaExpression {
    using CFmlaExpression::CFmlaExpression;
    using CFmlaExpression::operator=;

    std::string Tree() const { return Dump(m_Tree); }
};

class Rewriting : public Job {
protected:
    std::string Rename(const CString& encoded, const CString& oldName, const CString& newName,
                       int expected)
    {
        m_Expression.SetFromEncodedString(encoded);
        EXPECT_EQ(m_Expression.ChangeFormulaInExpression(oldName, newName), expected);
        return Whole(m_Expression);
    }
    std::string Remove(const CString& encoded, const CString& name, int expected,
                       int limit = kDefaultTextLimit)
    {
        m_Expression.SetFromEncodedString(encoded);
        m_Expression.SetExprTextLimit(limit);
        EXPECT_EQ(m_Expression.RemoveFormulaFromExpression(name), expected);
        return Whole(m_Expression);
    }

    OpenExpression m_Expression{m_Set};
};

TEST_F(Rewriting, RenamingChangesExactlyTheFormula)
{
    const struct {
        const char* encoded;
        const char* oldName;
        const char* newName;
        const char* renamed;
    } rows[] = {
        {"F(X)F(X)F(X)", "X", "Y", "F(Y)F(Y)F(Y)"},
        {"V(X)+F(X)+T(X)", "X", "Y", "V(X)+F(Y)+T(X)"},
        {"F(XX)+F( X)+F(x)+F(X)", "X", "", "F(XX)+F( X)+F(x)+F()"},
        {"F()+F(X)", "", "Y", "F(Y)+F(X)"},
        {"IF(1)+IF(F(1)>0,1,2)", "1", "2", "IF(1)+IF(F(2)>0,1,2)"},
        {"V(F(X\\))+F(F(X\\))+F(X)", "X", "Y", "V(F(X\\))+F(F(X\\))+F(Y)"},
        {"F(a\\)b)+F(a)", "a)b", "c\\d)", "F(c\\\\d\\))+F(a)"},
        {"F(X)+1.2.3+F(X)", "X", "Y", "F(Y)+1.2.3+F(Y)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Rename(row.encoded, row.oldName, row.newName, 1), Whole(Read(row.renamed)));
    const char* const absent[][2] = {
        {"IF(1)+NOT(X)", "1"}, {"V(X)+T(X)+F(Y)", "X"}, {"V(F(X\\))", "X"},
        {"F(a\\)b)", "a\\)b"}, {"F(a\\)b)", "a"},       {"", ""},
    };
    for (const auto& [encoded, name] : absent)
        EXPECT_EQ(Rename(encoded, name, "new", 0), Whole(Read(encoded))) << name;
}

TEST_F(Rewriting, RenamingPassesThroughTheEncodedString)
{
    m_Expression.SetExpr("NOT X +1", "3,3,1");
    m_Expression.SetInvalidPos(4);
    EXPECT_EQ(m_Expression.ChangeFormulaInExpression("Y", "Z"), 0);
    EXPECT_EQ(Whole(m_Expression), "NOT X +1[3,3,1,]");
    EXPECT_EQ(m_Expression.GetInvalidPos(), 4);
    m_Expression.SetExpr(" X  Y ", "3,3,1,0,3,1");
    EXPECT_EQ(m_Expression.ChangeFormulaInExpression("X", "Z"), 0) << "behind Y, it is literal";
    EXPECT_EQ(Whole(m_Expression), " X  Y [3,3,1,0,3,1,]");
    const UserLanguage german(",", ";", kGermanNames);
    EXPECT_EQ(Rename("IF(F(X)>1.5,F(X),2)", "X", "Yy", 1), "WENN( Yy >1,5; Yy ;2)[5,4,1,14,4,1,]");
    EXPECT_EQ(m_Expression.GetInvalidPos(), -1);
}

TEST_F(Rewriting, RemovingTakesTheOperandAndOneSign)
{
    const struct {
        const char* encoded;
        const char* name;
        const char* left;
    } rows[] = {
        {"F(X)+F(Y)+F(Z)", "Y", "F(X)+F(Z)"},
        {"F(X)+F(Y)+F(Z)", "Z", "F(X)+F(Y)"},
        {"F(X)", "X", ""},
        {"F(X)+1", "X", "+1"},
        {"1+F(X)", "X", "1+"},
        {"1+F(X)*F(Y)", "X", "F(Y)"},
        {"F(X)+F(Y)+F(X)+F(X)", "X", "F(Y)"},
        {"V(X)+F(X)*T(X)", "X", "V(X)*T(X)"},
        {"F(XX)+F( X)+F(x)+F(X)", "X", "F(XX)+F( X)+F(x)"},
        {"F(a\\))-F(b)+F(a\\\\)", "a)", "F(b)+F(a\\\\)"},
        // What touches a reference is another one, and stays.
        {"F(X)F(Y)F(Z)", "X", "F(Y)F(Z)"},
        {"F(X)F(Y)F(Z)", "Y", "F(X)F(Z)"},
        {"F(X)F(Y)F(Z)", "Z", "F(X)F(Y)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Remove(row.encoded, row.name, 1), Whole(Read(row.left)))
            << row.encoded << row.name;
    for (const char* absent : {"", "V(X)+T(X)+1", "IF(X)+F(Y)", "F(X\\))"})
        EXPECT_EQ(Remove(absent, "X", 0), Whole(Read(absent)));
    EXPECT_EQ(Remove(CString(Repeated("F(X)+", 1000) + "F(X)"), "X", 1), "[]");
}

TEST_F(Rewriting, RemovingPassesOverWhatTheLimitKeeps)
{
    const struct {
        const char* encoded;
        int limit;
        const char* left;
    } rows[] = {
        {"F(Y)+F(X)", 7, "F(Y)"},      {"F(Y)+F(X)", 6, "F(Y)+F(X)"},
        {"F(X)+F(X)", 3, ""},          {"F(X)+F(Y)+F(X)", 4, "F(Y)+F(X)"},
        {"F(X)+F(X)", 2, "F(X)+F(X)"}, {"F(X)+F(X)", -1, "F(X)+F(X)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Remove(row.encoded, "X", 1, row.limit), Whole(Read(row.left))) << row.limit;
}

// Removes one reference after the other: its own text, then what joined it to a neighbour.
int RemoveOneByOne(CFmlaExpression& expression, const CString& name)
{
    int isFound = 0;
    int wholeVar = 0;
    for (int index = 0; index < expression.NumVars();) {
        const int count = expression.NumVars();
        if (expression.VarType(index) != TOK_FORMULA || expression.VarLength(index) == 0 ||
            expression.VarName(index) != name) {
            ++index;
            continue;
        }
        isFound = 1;
        expression.DeleteChars(expression.VarPos(index), expression.VarEndPos(index), &wholeVar);
        const bool isLast = index >= expression.NumVars();
        if (expression.NumVars() == count)
            ++index;
        else if (index > 0)
            expression.DeleteChars(
                expression.VarEndPos(index - 1),
                (isLast ? expression.GetTextStr().GetLength() : expression.VarPos(index)) - 1,
                &wholeVar);
        else if (!isLast && expression.VarPos(0) > 0)
            expression.DeleteChars(0, expression.VarPos(0), &wholeVar);
    }
    return isFound;
}

TEST_F(Rewriting, RemovingAllAtOnceIsRemovingOneByOne)
{
    std::mt19937 random(7);
    const auto pick = [&random](std::size_t count) { return random() % count; };
    for (int round = 0; round < 20000; ++round) {
        CString text;
        CWordArray words;
        for (std::size_t piece = pick(9); piece > 0; --piece) {
            static constexpr const char16_t* kPieces[] = {u"",    u"+",   u" * ", u"(",   u" X ",
                                                          u" X ", u" X ", u"  ",  u" Yy "};
            const std::size_t chosen = pick(std::size(kPieces));
            const CString stretch = kPieces[chosen];
            // Now and then one that overlaps, is empty or reaches beyond the text.
            const std::size_t isOdd = pick(60) == 0 ? 1 + pick(3) : 0;
            if (chosen > 3) {
                words.Add(static_cast<WORD>(
                    std::max<std::size_t>(static_cast<std::size_t>(text.GetLength()), isOdd) -
                    isOdd));
                words.Add(static_cast<WORD>(isOdd == 3 ? pick(9) : stretch.View().size()));
                words.Add(static_cast<WORD>(pick(5) == 0 ? pick(4) : 1));
            }
            text += stretch;
        }
        const int limit = pick(3) == 0 ? static_cast<int>(pick(20)) - 1 : kDefaultTextLimit;
        CFmlaExpression atOnce(m_Set), oneByOne(m_Set);
        for (CFmlaExpression* expression : {&atOnce, &oneByOne}) {
            expression->SetExpr(text, words);
            expression->SetExprTextLimit(limit);
            expression->SetInvalidPos(0);
        }
        const std::string before = Whole(atOnce) + " limit " + std::to_string(limit);
        ASSERT_EQ(atOnce.RemoveFormulaFromExpression(u"X"), RemoveOneByOne(oneByOne, u"X"))
            << before;
        ASSERT_EQ(Whole(atOnce), Whole(oneByOne)) << before;
        ASSERT_EQ(atOnce.GetInvalidPos(), oneByOne.GetInvalidPos()) << before;
    }
}

TEST_F(Rewriting, TreeStaysUntilTheNextCheck)
{
    Formula("X", "2");
    Formula("Y", "5");
    m_Expression.SetFromEncodedString("F(X)*F(Y)");
    EXPECT_EQ(m_Expression.IsValid(), 1);
    EXPECT_EQ(m_Expression.ChangeFormulaInExpression("X", "Y"), 1);
    EXPECT_EQ(m_Expression.Tree(), "*(F:X F:Y)");
    EXPECT_EQ(m_Expression.RemoveFormulaFromExpression("Y"), 1);
    EXPECT_EQ(m_Expression.Tree(), "*(F:X F:Y)");
    EXPECT_EQ(m_Expression.Calculate(nullptr), 1);
    EXPECT_EQ(m_Expression.GetValue(), 10.0);
}

} // namespace

} // namespace tovo::test
