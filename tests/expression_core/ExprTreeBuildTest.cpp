#include <set>

#include "ExpressionFixture.h"

namespace tovo::test {

namespace {

class TreeBuilding : public ExpressionTest {};

TEST_F(TreeBuilding, PrecedencePutsOperatorsAboveTheirOperands)
{
    ExpectLoads(R"(
        1 + 2 * 3                 -> +(1 *(2 3))
        1 * 2 + 3 * 4             -> +(*(1 2) *(3 4))
        1 + 2 GE 3                -> GE(+(1 2) 3)
        1 = 2 + 3                 -> =(1 +(2 3))
        1 = 2 AND 3 < 4 + 5       -> AND(=(1 2) <(3 +(4 5)))
        NOT YES = NO              -> =(NOT(YES) NO)
        YES AND NOT NO OR YES     -> OR(AND(YES NOT(NO)) YES)
        V:x / F:f - T:t           -> -(/(V:x F:f) T:t)
    )");
}

TEST_F(TreeBuilding, EqualPrecedenceGroupsFromTheLeft)
{
    ExpectLoads(R"(
        1 - 2 - 3        -> -(-(1 2) 3)
        8 / 4 * 2        -> *(/(8 4) 2)
        YES OR NO AND NO -> AND(OR(YES NO) NO)
        YES = YES = YES  -> =(=(YES YES) YES)
        1 < 2 = NO       -> =(<(1 2) NO)
    )");
}

TEST_F(TreeBuilding, PlaceDecidesBetweenUnaryAndBinaryMinus)
{
    ExpectLoads(R"(
        - 1       -> -(1);          - - 1     -> -(-(1));       2 - - - 3 -> -(2 -(-(3)))
        - 2 * 3   -> *(-(2) 3);     2 * - 3   -> *(2 -(3));     - 2 - 3   -> -(-(2) 3)
        2 - - ABS ( 3 ) * 4  -> -(2 *(-(ABS(3)) 4))
        MAX ( - 1 , 2 - 3 )  -> MAX(-(1) -(2 3))
        ( - 1 ) - 2          -> -(group(-(1)) 2)
        NOT NOT YES          -> NOT(NOT(YES))
    )");
}

TEST_F(TreeBuilding, ParenthesesAreFunctions)
{
    ExpectLoads(R"(
        ( 1 + 2 ) * 3             -> *(group(+(1 2)) 3)
        ( ( 1 ) )                 -> group(group(1))
        1 + ABS ( 2 ) * 3         -> +(1 *(ABS(2) 3))
        SUM ( 1 + 2 , 3 * ( 4 ) ) -> SUM(+(1 2) *(3 group(4)))
        MAX ( MIN ( 1 , 2 ) , 3 ) -> MAX(MIN(1 2) 3)
        NOT ( 1 = 2 ) AND YES     -> AND(NOT(group(=(1 2))) YES)
        IF ( 1 = 2 , 3 , 4 ) + 1  -> +(IF(=(1 2) 3 4) 1)
    )");

    // The parentheses and the commas are nodes of their own.
    Load("ROUND ( 1 , 2 )");
    EXPECT_EQ(m_Tree.Root()->NumChildren(), 5);
}

TEST_F(TreeBuilding, TokensOutOfOrderAreRefusedWhereTheyStand)
{
    ExpectLoads(R"(
        * 2          -> 6628 at 0 [token: *];   1 - = 2         -> 6628 at 2 [token: =]
        1 + * 2      -> 6628 at 2 [token: *];   1 NOT YES       -> 6628 at 1 [token: NOT]
        , 1          -> 6621 at 0 [token: ,];   SUM ( , 1 )     -> 6621 at 2 [token: ,]
        ABS ,        -> 6621 at 1 [token: ,];   SUM ( 1 , , 1 ) -> 6621 at 4 [token: ,]
        ABS ( 1 + ,  -> 6621 at 4 [token: ,];   ABS ( 1 + )     -> 6629 at 4 [token: )]
        ) 1          -> 6629 at 0 [token: )];   ROUND ( 1 , )   -> 6629 at 4 [token: )]
        ( )          -> 6629 at 1 [token: )];   ABS )           -> 6629 at 1 [token: )]
        1 2          -> 6627 at 1 [token: 2];   V:x V:y         -> 6627 at 1 [token:  y ]
        ABS 1        -> 6627 at 1 [token: 1];   ( 1 ) 2         -> 6627 at 3 [token: 2]
        ABS + 1      -> 6628 at 1 [token: +];   ABS ABS ( 1 )   -> 6623 at 1 [token: ABS]
        1 ABS ( 2 )  -> 6623 at 1 [token: ABS]; ( 1 ) ABS ( 2 ) -> 6623 at 3 [token: ABS]
        # 1          -> 6630 at 0 [token: #];   1 #             -> 6630 at 1 [token: #]
    )");
}

// It is the nameless function in front of the parenthesis that is out of place, and the tracker
// keeps that; whoever typed the text sees a parenthesis only.
TEST_F(TreeBuilding, ParenthesisBehindAnOperandIsReportedAsSuch)
{
    ExpectLoads(R"(
        2 ( 3 )             -> 6624 at 1, 6623 [token: ]
        V:x ( 3 )           -> 6624 at 1, 6623 [token: ]
        ( ( 1 ) ( 2 ) )     -> 6624 at 4, 6623 [token: ]
        SUM ( 1 ) ( 2 )     -> 6624 at 4, 6623 [token: ]
    )");
}

TEST_F(TreeBuilding, CommasAndClosingParenthesesNeedAFunction)
{
    ExpectLoads(R"(
        1 )         -> 6629 at 1 [token: )];   1 , 2         -> 6621 at 1 [token: ,]
        ABS ( 1 ) ) -> 6629 at 4 [token: )];   ABS ( 1 ) , 2 -> 6621 at 4 [token: ,]
        1 + 2 )     -> 6629 at 3 [token: )];   - ( 1 ) , 2   -> 6621 at 4 [token: ,]
    )");
}

TEST_F(TreeBuilding, FunctionsTakeTheirNumberOfArguments)
{
    ExpectLoads(R"(
        ABS ( 1 , 2 ) -> 6619 at 3 [token: ,]; ROUND ( 1 , 2 , 3 )    -> 6619 at 5 [token: ,]
        ( 1 , 2 )     -> 6619 at 2 [token: ,]; IF ( YES , 1 , 2 , 3 ) -> 6619 at 7 [token: ,]
        POWER ( 1 )   -> 6600 at 3 [token: )]; SUM ( MOD ( 1 ) , 2 )  -> 6600 at 5 [token: )]
        IF ( YES )    -> 6600 at 3 [token: )]; ROUND ( 1 , 2 )        -> ROUND(1 2)
    )");

    std::string words = "SUM ( 1";
    for (int i = 1; i < 99; ++i)
        words += " , 1";
    Load(words + " )");
    EXPECT_EQ(m_Tree.GetValue(), 99.0);
    EXPECT_EQ(Load(words + " , 1 )"), "6619 at 199 [token: ,]");
}

TEST_F(TreeBuilding, WhatIsUnfinishedIsFoundAtTheEnd)
{
    ExpectLoads(R"(
        ABS             -> 6600 at end [token: ABS];   POWER ( 1   -> 6600 at end [token: POWER]
        ROUND ( 1       -> 6601 at end [token: ROUND]; ABS ( 1     -> 6619 at end [token: ABS]
        SUM ( 1 , ( 2   -> 6619 at end [token: ];      ( ABS ( 1 ) -> 6619 at end [token: ]
        ABS (           -> 10732 at end [token: ABS];  (           -> 10732 at end [token: ]
        1 +             -> 10732 at end [token: +];    -           -> 10732 at end [token: -]
        1 + SUM ( 2 * - -> 10732 at end [token: -];    YES AND NOT -> 10732 at end [token: NOT]
    )");
    EXPECT_EQ(m_Set.m_Tracker.GetObj(0), m_Tree.Root()->GetChild(1)->GetData());
}

TEST_F(TreeBuilding, CommaAtTheVeryEndIsRefusedOnItsFunction)
{
    ExpectLoads(R"(
        SUM ( F:f ,              -> 10732 at end [token: SUM]
        1 + SUM ( 2 , 3 ,        -> 10732 at end [token: SUM]
        SUM ( 1 , ABS ( 2 ) ,    -> 10732 at end [token: SUM]
        POWER ( 1 ,              -> 10732 at end [token: POWER]
        IF ( YES ,               -> 10732 at end [token: IF]
        IF ( YES , 1 ,           -> 10732 at end [token: IF]
        ABS ( 1 ,                -> 6619 at 3 [token: ,]
        SUM ( YES ,              -> 6617 at 3 [token: SUM]
        SUM ( 1 ,                -> 10732 at end [token: SUM]
    )");
    EXPECT_FALSE(m_Tree.IsCalculated()) << "the arguments so far would do, but must not be taken";
}

TEST_F(TreeBuilding, OperandsMustHaveTheKindOfTheirOperator)
{
    ExpectLoads(R"(
        1 + YES          -> 6617 at 2 [token: YES];    1 + V:ok?       -> 6617 at 2 [token:  ok? ]
        - YES            -> 6617 at 1 [token: YES];    - NOT YES       -> 6617 at 1 [token: NOT]
        1 = YES          -> 6617 at 2 [token: YES];    2 * YES = YES   -> 6617 at 2 [token: YES]
        YES = 1          -> 6618 at end [token: =];    YES = 1 + 2     -> 6618 at end [token: =]
        1 = 2 = 3        -> 6618 at end [token: =];    YES AND 1       -> 6618 at end [token: AND]
        YES + 1          -> 6626 at 1 [token: +];      V:ok? + 1       -> 6626 at 1 [token: +]
        F:ok? + 1        -> 6626 at 1 [token: +];      YES AND 1 OR NO -> 6618 at 3 [token: AND]
        NOT 1            -> 6625 at end [token: NOT];  NOT - 1         -> 6625 at end [token: NOT]
        1 + ( YES )      -> 6617 at end [token: +];    ( YES ) * 2     -> 6626 at 3 [token: *]
        - ( 1 = 2 )      -> 6626 at end [token: -];    ( 1 = 2 ) + 1   -> 6626 at 5 [token: +]
        F:f = T:t?       -> 6617 at 2 [token:  t? ];   F:f? = T:t?     -> =(F:f? T:t?)
        1 AND YES        -> 6625 at 1 [token: AND]
    )");

    // An operator whose left operand is of the wrong kind is in the tree by then and stays there.
    EXPECT_EQ(Dump(m_Tree), "AND(1)");
    EXPECT_EQ(m_Set.m_Tracker.GetObj(0), m_Tree.Root()->GetData());
}

TEST_F(TreeBuilding, ArgumentsMustHaveTheKindOfTheirFunction)
{
    ExpectLoads(R"(
        ABS ( YES )      -> 6617 at 3 [token: ABS]; SUM ( ABS ( YES ) ) -> 6617 at 5 [token: ABS]
        SUM ( YES , 1 )  -> 6617 at 3 [token: SUM]; SUM ( 1 , YES )     -> 6617 at 5 [token: SUM]
        SUM ( ( YES ) )  -> 6617 at 5 [token: SUM]; SUM ( 1 , YES       -> 6617 at end [token: SUM]
        SUM ( 1 = 2 )    -> 6625 at 3 [token: =];   IF ( 1 , 2 , 3 )    -> 6618 at 3 [token: IF]
        IF ( V:x , 2 )   -> 6618 at 3 [token: IF];  IF ( ( 1 ) , 2 )    -> 6618 at 5 [token: IF]
        SUM ( IF ( YES , NO ) )        -> 6617 at 8 [token: SUM]
        IF ( YES , 1 , YES )           -> 6617 at 7 [token: IF]
        IF ( YES , YES , 1 )           -> 6618 at 7 [token: IF]
        IF ( YES , 1 , 2 = 3 )         -> 6625 at 7 [token: =]
        IF ( YES , YES , NO ) + 1      -> 6626 at 8 [token: +]
        IF ( V:x? , 1 > 2 , NO )       -> IF(V:x? >(1 2) NO)
        IF ( IF ( YES , NO ) , 1 )     -> IF(IF(YES NO) 1)
    )");
}

TEST_F(TreeBuilding, KindIsResolvedFromTheLeavesUp)
{
    // Of a reference alone, which is left untouched, only the name tells, and only a yes/no one.
    const std::vector<Row> rows = RowsOf(R"(
        1 -> numeric;         V:x -> numeric;       DURATION -> numeric;  ( F:f ) -> numeric
        YES -> yes/no;        V:x? -> yes/no;       ( 1 = 2 ) -> yes/no;  ( F:f? ) -> yes/no
        ( ( YES ) ) -> yes/no;                      F:f? = F:g? -> yes/no
        IF ( YES , 1 ) -> numeric;                  IF ( F:c? , T:t , 1 ) -> numeric
        IF ( YES , YES , NO ) -> yes/no;            IF ( YES , F:f? ) -> yes/no
        F:f -> none;          T:t -> none;          F:f? -> yes/no;       T:t? -> yes/no
    )");
    for (const Row& row : rows) {
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
        1 / 0        -> 6604 at end [token: /];     1 / 0 + 1             -> 6604 at 3 [token: /]
        1 / V:zero   -> 6604 at end [token: /];     IF ( NO , 1 / 0 , 2 ) -> 6604 at 7 [token: /]
        SQRT ( - 1 ) -> 6611 at 4 [token: SQRT];    1 / F:zero            -> /(1 F:zero)
    )");
    m_Set.m_ReportDomainErrors = false;
    ExpectLoads(R"(
        1 / V:zero   -> /(1 V:zero);                IF ( NO , 1 / 0 , 2 ) -> IF(NO /(1 0) 2)
        SQRT ( - 1 ) -> SQRT(-(1));                 1 / 0 + 5             -> +(/(1 0) 5)
    )");
    EXPECT_EQ(m_Tree.GetValue(), 5.0);
}

TEST_F(TreeBuilding, NestedOfTheFirstTokenDecidesOnFormulasAndTables)
{
    HostFormula& formula = m_Set.AddFormula("f", 2.0);
    m_Set.AddTable("t", 3.0);

    Load("( F:f * T:t )");
    EXPECT_TRUE(m_Set.m_Lookups.empty());
    EXPECT_FALSE(m_Tree.IsCalculated());
    Load("( F:f * T:t )", 1);
    EXPECT_EQ(m_Tree.GetValue(), 6.0);

    m_Tree.Clear();
    m_Set.m_Lookups.clear();
    Insert("1", 0);
    Insert("+", 1);
    Insert("F:f", 1);
    EXPECT_TRUE(m_Tree.EndOfExpression());
    EXPECT_TRUE(m_Set.m_Lookups.empty());

    formula.m_Value = 0.0;
    EXPECT_EQ(Load("1 / F:f", 1), "6604 at end [token: /]");
    formula.m_Succeeds = false;
    formula.m_Message = 6609;
    EXPECT_EQ(Load("F:f + 1", 1), "6609 at 1 [token:  f ]");
}

// A token that fails without a message must not end in a fault without one.
TEST_F(TreeBuilding, FailureWithoutMessageIsWordedByThePlaceThatMetIt)
{
    m_Set.m_NullForUnknownVariables = true;
    ExpectLoads("F:f -> 10732 at end [Unknown Object]", 1);
    ExpectLoads(R"(
        V:x + 1         -> 10732 at 1 [token: +];   SUM ( V:x , 1 ) -> 6621 at 3 [token: ,]
        ( V:x )         -> 6629 at 2 [token: )];    V:x             -> 10732 at end [Unknown Object]
    )");
    EXPECT_EQ(m_Set.m_Tracker.GetObj(0), m_Tree.Root());
}

TEST_F(TreeBuilding, ClearedTreeStartsAgainAndKeepsItsMessage)
{
    Load("1 + * 2");
    m_Tree.Clear();
    EXPECT_EQ(m_Tree.GetMsg(), 6628u);
    EXPECT_FALSE(m_Tree.EndOfExpression());
    EXPECT_EQ(Dump(m_Tree), "(empty)");
    EXPECT_EQ(Load("1"), "1");
    EXPECT_EQ(m_Tree.GetMsg(), 0u);
}

// Builds every sequence of a few tokens, leaving out those that begin with a refused one.
class EverySequence : public ExpressionTest {
protected:
    static constexpr int kLongest = 6;

    void TryAllBehind(const std::string& prefix, int length)
    {
        for (const std::string word :
             {"1", "YES", "F:f", "+", "-", "=", "NOT", "(", ")", ",", "SUM", "IF"}) {
            const std::string words = prefix + word;
            const std::string result = Load(words);
            if (m_Tree.GetMsg() == 0)
                ExpectSound(words);
            else
                ExpectKnownMessage(words, result);
            const bool isRefused = result.find(" at " + std::to_string(length)) != result.npos;
            if (!isRefused && length + 1 < kLongest)
                TryAllBehind(words + ' ', length + 1);
        }
    }

    int m_Accepted = 0;

private:
    void ExpectSound(const std::string& words)
    {
        ++m_Accepted;
        // A formula reference alone is not loaded, so it has no kind.
        EXPECT_EQ(m_Tree.IsNumeric() + m_Tree.IsBoolean(), words == "F:f" ? 0 : 1) << words;
        EXPECT_EQ(Calculate(), "") << words;
        const double value = m_Tree.GetValue();
        EXPECT_EQ(Calculate(), "") << words;
        EXPECT_EQ(m_Tree.GetValue(), value) << words;
    }

    void ExpectKnownMessage(const std::string& words, const std::string& result)
    {
        static const std::set<unsigned int> messages = {6600, 6601, 6617, 6618, 6619, 6621, 6623,
                                                        6624, 6625, 6626, 6627, 6628, 6629, 10732};
        EXPECT_TRUE(messages.contains(m_Tree.GetMsg())) << words << ": " << result;
        EXPECT_EQ(m_Set.m_Tracker.NumObjs(), 1) << words;
    }
};

TEST_F(EverySequence, FailsWithAMessageOrCalculatesTheSameTwice)
{
    m_Set.AddFormula("f", 3.0);
    TryAllBehind("", 0);
    EXPECT_GT(m_Accepted, 500);
}

} // namespace

} // namespace tovo::test
