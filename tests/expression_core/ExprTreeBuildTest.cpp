#include <set>

#include "ExpressionFixture.h"

namespace tovo::test {

namespace {

class TreeBuilding : public ExpressionTest {};

TEST_F(TreeBuilding, ShapeFollowsFromPrecedenceAndPlace)
{
    ExpectLoads(R"(
        1 + 2 * 3 -> +(1 *(2 3));     1 * 2 + 3 * 4 -> +(*(1 2) *(3 4));  1 + 2 GE 3 -> GE(+(1 2) 3)
        1 = 2 + 3 -> =(1 +(2 3));     V:x / F:f - T:t -> -(/(V:x F:f) T:t)
        NOT YES = NO -> =(NOT(YES) NO);         1 = 2 AND 3 < 4 + 5 -> AND(=(1 2) <(3 +(4 5)))
        YES AND NOT NO OR YES -> OR(AND(YES NOT(NO)) YES)

        1 - 2 - 3 -> -(-(1 2) 3);     8 / 4 * 2 -> *(/(8 4) 2)
        YES OR NO AND NO -> AND(OR(YES NO) NO);         YES = YES = YES -> =(=(YES YES) YES)

        - - 1 -> -(-(1));             2 - - - 3 -> -(2 -(-(3)));      NOT NOT YES -> NOT(NOT(YES))
        - 2 * 3 -> *(-(2) 3);         2 * - 3 -> *(2 -(3));               - 2 - 3 -> -(-(2) 3)
        ( - 1 ) - 2 -> -(group(-(1)) 2);                2 - - ABS ( 3 ) * 4 -> -(2 *(-(ABS(3)) 4))
        MAX ( - 1 , 2 - 3 ) -> MAX(-(1) -(2 3))

        ( 1 + 2 ) * 3 -> *(group(+(1 2)) 3);            1 + ABS ( 2 ) * 3 -> +(1 *(ABS(2) 3))
        ( ( 1 ) ) -> group(group(1));                   MAX ( MIN ( 1 , 2 ) , 3 ) -> MAX(MIN(1 2) 3)
        SUM ( 1 + 2 , 3 * ( 4 ) ) -> SUM(+(1 2) *(3 group(4)))
        NOT ( 1 = 2 ) AND YES -> AND(NOT(group(=(1 2))) YES)
        IF ( 1 = 2 , 3 , 4 ) + 1 -> +(IF(=(1 2) 3 4) 1)
    )");
}

TEST_F(TreeBuilding, TokensOutOfOrderAreRefusedWhereTheyStand)
{
    ExpectLoads(R"(
        * 2 -> 6628@0 *;    1 - = 2 -> 6628@2 =;    ABS + 1 -> 6628@1 +;    1 NOT YES -> 6628@1 NOT
        , 1 -> 6621@0 ,;    SUM ( , 1 ) -> 6621@2 ,;    ABS ( 1 + , -> 6621@4 ,
        SUM ( 1 , , 1 ) -> 6621@4 ,;    1 , 2 -> 6621@1 ,;  - ( 1 ) , 2 -> 6621@4 ,
        ) 1 -> 6629@0 );    ROUND ( 1 , ) -> 6629@4 );  ( ) -> 6629@1 );    ABS ( 1 + ) -> 6629@4 )
        1 + 2 ) -> 6629@3 );    ABS ( 1 ) ) -> 6629@4 );    1 2 -> 6627@1 2;    V:x V:y -> 6627@1 y
        ABS 1 -> 6627@1 1;  ( 1 ) 2 -> 6627@3 2;    1 ABS ( 2 ) -> 6623@1 ABS
        ABS ABS ( 1 ) -> 6623@1 ABS;    # 1 -> 6630@0 #;    1 # -> 6630@1 #
    )");
    // It is the nameless function in front of the parenthesis that is out of place, and the tracker
    // keeps that; whoever typed the text sees a parenthesis only.
    ExpectLoads("2 ( 3 ) -> 6624@1,6623;  SUM ( 1 ) ( 2 ) -> 6624@4,6623");
    m_Tree.Clear();
    EXPECT_EQ(m_Tree.GetMsg(), 6624u) << "the message stays, and the next tree starts without it";
    EXPECT_FALSE(m_Tree.EndOfExpression());
    EXPECT_EQ(Load("1"), "1");
    EXPECT_EQ(m_Tree.GetMsg(), 0u);
}

TEST_F(TreeBuilding, FunctionsTakeTheirNumberOfArguments)
{
    ExpectLoads(R"(
        ABS ( 1 , 2 ) -> 6619@3 ,;          ROUND ( 1 , 2 , 3 ) -> 6619@5 ,
        ( 1 , 2 ) -> 6619@2 ,;  IF ( YES , 1 , 2 , 3 ) -> 6619@7 ,; IF ( YES ) -> 6600@3 )
        SUM ( MOD ( 1 ) , 2 ) -> 6600@5 );  ROUND ( 1 , 2 ) -> ROUND(1 2)
    )");
    EXPECT_EQ(m_Tree.Root()->NumChildren(), 5) << "punctuation has nodes of its own";

    std::string words = "SUM ( 1";
    for (int i = 1; i < 99; ++i)
        words += " , 1";
    Load(words + " )");
    EXPECT_EQ(m_Tree.GetValue(), 99.0);
    EXPECT_EQ(Load(words + " , 1 )"), "6619@199 ,");
}

TEST_F(TreeBuilding, WhatIsUnfinishedIsFoundAtTheEnd)
{
    ExpectLoads(R"(
        ABS -> 6600@end ABS;    POWER ( 1 -> 6600@end POWER;    ROUND ( 1 -> 6601@end ROUND
        ABS ( 1 -> 6619@end ABS;    SUM ( 1 , ( 2 -> 6619@end;  ABS ( -> 10732@end ABS
        ( -> 10732@end; YES AND NOT -> 10732@end NOT;   1 + -> 10732@end +
        SUM ( 2 * - -> 10732@end -; SUM ( F:f , -> 10732@end SUM;   POWER ( 1 , -> 10732@end POWER
        IF ( YES , -> 10732@end IF; 1 + SUM ( 2 , -> 10732@end SUM
    )");
    EXPECT_EQ(m_Set.m_Tracker.GetObj(0), m_Tree.Root()->GetChild(1)->GetData());
    Load("SUM ( 1 ,");
    EXPECT_FALSE(m_Tree.IsCalculated()) << "the arguments so far would do, but must not be taken";
}

TEST_F(TreeBuilding, OperandsAndArgumentsMustHaveTheirKind)
{
    ExpectLoads(R"(
        1 + YES -> 6617@2 YES;  1 + V:ok? -> 6617@2 ok?;    - NOT YES -> 6617@1 NOT
        2 * YES = YES -> 6617@2 YES;    YES = 1 -> 6618@end =;  1 = 2 = 3 -> 6618@end =
        YES AND 1 -> 6618@end AND;  YES AND 1 OR NO -> 6618@3 AND;  YES + 1 -> 6626@1 +
        F:ok? + 1 -> 6626@1 +;  NOT 1 -> 6625@end NOT;  NOT - 1 -> 6625@end NOT
        1 + ( YES ) -> 6617@end +;  ( YES ) * 2 -> 6626@3 *;    - ( 1 = 2 ) -> 6626@end -
        F:f? = T:t? -> =(F:f? T:t?);    ABS ( YES ) -> 6617@3 ABS;  SUM ( 1 , YES ) -> 6617@5 SUM
        SUM ( YES , 1 ) -> 6617@3 SUM;  SUM ( 1 , YES -> 6617@end SUM
        SUM ( ( YES ) ) -> 6617@5 SUM;  IF ( ( 1 ) , 2 ) -> 6618@5 IF;  SUM ( 1 = 2 ) -> 6625@3 =
        IF ( 1 , 2 , 3 ) -> 6618@3 IF;  IF ( YES , 1 , YES ) -> 6617@7 IF
        IF ( YES , YES , 1 ) -> 6618@7 IF;  IF ( YES , 1 , 2 = 3 ) -> 6625@7 =
        IF ( YES , YES , NO ) + 1 -> 6626@8 +;  IF ( V:x? , 1 > 2 , NO ) -> IF(V:x? >(1 2) NO)
        IF ( IF ( YES , NO ) , 1 ) -> IF(IF(YES NO) 1); 1 AND YES -> 6625@1 AND
    )");
    // An operator whose left operand is of the wrong kind is in the tree by then and stays there.
    EXPECT_EQ(Dump(m_Tree), "AND(1)");
}

TEST_F(TreeBuilding, KindIsResolvedFromTheLeavesUp)
{
    // Of a reference alone, which is left untouched, only the name tells, and only a yes/no one.
    for (const Row& row : RowsOf(R"(
        V:x -> numeric; DURATION -> numeric;    ( F:f ) -> numeric;     IF ( YES , 1 ) -> numeric
        V:x? -> yes/no; ( YES ) -> yes/no;      ( F:f? ) -> yes/no;     IF ( YES , NO ) -> yes/no
        F:f -> none;    T:t -> none;    F:f? -> yes/no; T:t? -> yes/no
    )")) {
        Load(row.input);
        EXPECT_EQ(m_Tree.IsNumeric(), row.result == "numeric") << row.input;
        EXPECT_EQ(m_Tree.IsBoolean(), row.result == "yes/no") << row.input;
    }
    m_Set.AddFormula("f");
    Load("F:f", 1);
    EXPECT_TRUE(m_Tree.IsNumeric());
}

TEST_F(TreeBuilding, ConstantPartsAreCalculatedAtOnce)
{
    ExpectLoads(R"(
        1 / V:zero -> 6604@end /;       1 / 0 + 1 -> 6604@3 /;          SQRT ( - 1 ) -> 6611@4 SQRT
        IF ( NO , 1 / 0 , 2 ) -> 6604@7 /;              1 / F:zero -> /(1 F:zero)
    )");
    m_Set.m_ReportDomainErrors = false;
    ExpectLoads("IF ( NO , 1 / 0 , 2 ) -> IF(NO /(1 0) 2);  SQRT ( - 1 ) + 5 -> +(SQRT(-(1)) 5)");
    EXPECT_EQ(m_Tree.GetValue(), 5.0);
}

TEST_F(TreeBuilding, NestedOfTheFirstTokenDecidesOnFormulasAndTables)
{
    HostFormula& formula = m_Set.AddFormula("f", 2.0);
    m_Set.AddTable("t", 3.0);
    Load("( F:f * T:t )");
    EXPECT_FALSE(m_Tree.IsCalculated());
    m_Tree.Clear();
    EXPECT_TRUE(Insert("1", 0) && Insert("+", 1) && Insert("F:f", 1) && m_Tree.EndOfExpression());
    EXPECT_TRUE(m_Set.m_Lookups.empty());

    Load("( F:f * T:t )", 1);
    EXPECT_EQ(m_Tree.GetValue(), 6.0);
    formula.m_Succeeds = false;
    formula.m_Message = 6609;
    EXPECT_EQ(Load("F:f + 1", 1), "6609@1 f");
}

// A token that fails without a message must not end in a fault without one.
TEST_F(TreeBuilding, FailureWithoutMessageIsWordedByThePlaceThatMetIt)
{
    m_Set.m_NullForUnknownVariables = true;
    ExpectLoads("F:f -> 10732@end Unknown Object", 1);
    ExpectLoads(R"(
        V:x + 1 -> 10732@1 +;                   SUM ( V:x , 1 ) -> 6621@3 ,
        ( V:x ) -> 6629@2 );                    V:x -> 10732@end Unknown Object
    )");
    EXPECT_EQ(m_Set.m_Tracker.GetObj(0), m_Tree.Root());
}

// Builds every sequence of a few tokens, leaving out those that begin with a refused one.
class EverySequence : public ExpressionTest {
protected:
    void TryAllBehind(const std::string& prefix, int length)
    {
        static const std::set<unsigned int> messages = {6600, 6601, 6617, 6618, 6619, 6621, 6623,
                                                        6624, 6625, 6626, 6627, 6628, 6629, 10732};
        for (const char* word : {"1", "YES", "F:f", "+", "-", "=", "(", ")", ",", "SUM", "IF"}) {
            const std::string words = prefix + word;
            const std::string result = Load(words);
            if (m_Tree.GetMsg() == 0) {
                ++m_Accepted;
                // A formula reference alone is not loaded, so it has no kind.
                EXPECT_EQ(m_Tree.IsNumeric() + m_Tree.IsBoolean(), words != "F:f") << words;
                EXPECT_EQ(Calculate(), "") << words;
                const double value = m_Tree.GetValue();
                EXPECT_EQ(Calculate(), "") << words;
                EXPECT_EQ(m_Tree.GetValue(), value) << words;
            } else {
                EXPECT_TRUE(messages.contains(m_Tree.GetMsg())) << words << ": " << result;
            }
            const bool isRefused = result.find('@' + std::to_string(length)) != result.npos;
            if (!isRefused && length < 5)
                TryAllBehind(words + ' ', length + 1);
        }
    }

    int m_Accepted = 0;
};

TEST_F(EverySequence, FailsWithAMessageOrCalculatesTheSameTwice)
{
    m_Set.AddFormula("f", 3.0);
    TryAllBehind("", 0);
    EXPECT_GT(m_Accepted, 300);
}

} // namespace

} // namespace tovo::test
