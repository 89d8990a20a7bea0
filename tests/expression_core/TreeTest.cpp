#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <TovoFormula/ExprToken.h>
#include <TovoFormula/Tree.h>

namespace tovo::test {

namespace {

// Data that notes its deletion.
class Letter : public CObject {
public:
    Letter(char letter, std::string& deleted) : m_Letter(letter), m_Deleted(deleted) {}
    ~Letter() override { m_Deleted += m_Letter; }

    const char m_Letter;

private:
    std::string& m_Deleted;
};

// The tree of a + b * c. A node without data shows as "?".
class TreeNodes : public testing::Test {
protected:
    CTree* AddLetter(CTree& parent, char letter)
    {
        CTree* const child = parent.AddChild(nullptr);
        child->PutData(new Letter(letter, m_Deleted));
        return child;
    }

    // Puts a null entry behind the node's last child.
    static void AddGap(CTree& parent)
    {
        const std::unique_ptr<CTree> child(parent.AddChild(nullptr));
        parent.ReplaceChild(child.get(), nullptr);
    }

    static std::string Walk(CTree* node, CTree* (CTree::*next)())
    {
        std::string letters;
        for (; node; node = (node->*next)()) {
            const auto* const letter = static_cast<const Letter*>(node->GetData());
            letters += letter ? letter->m_Letter : '?';
        }
        return letters;
    }

    std::string All() { return Walk(m_Sum->FindFirstTwig(), &CTree::GetNextTwigOrParent); }

    std::string m_Deleted;
    std::unique_ptr<CTree> m_Sum = std::make_unique<CTree>(nullptr, new Letter('+', m_Deleted));
    CTree* m_A = AddLetter(*m_Sum, 'a');
    CTree* m_Product = AddLetter(*m_Sum, '*');
    CTree* m_B = AddLetter(*m_Product, 'b');
    CTree* m_C = AddLetter(*m_Product, 'c');
};

TEST_F(TreeNodes, WhatIsNotThereIsAnsweredAsAbsent)
{
    EXPECT_EQ(Walk(m_Sum->FindFirstTwig(), &CTree::GetNextTwig), "abc");
    EXPECT_EQ(m_Product->GetNextTwig(), nullptr);
    for (const CTree* other : {m_Product, m_B, static_cast<CTree*>(nullptr)})
        EXPECT_EQ(m_Sum->GetNextChild(other), nullptr);
    EXPECT_EQ(m_Sum->GetChildIndex(m_B), -1);
    EXPECT_EQ(m_A->GetChildIndex(m_B), -1);
    for (const int index : {-1, 2}) {
        EXPECT_THROW(m_Sum->GetChild(index), CInvalidArgException) << index;
        EXPECT_EQ(m_A->GetChild(index), nullptr) << index;
    }
}

TEST_F(TreeNodes, NewNodesComeWhereAskedForOrElseLast)
{
    for (const int index : {1, 0, 4, 6, -1})
        EXPECT_EQ(m_Product->InsertChild(index)->GetParent(), m_Product) << index;
    EXPECT_EQ(All(), "a?b?c???*+");
    EXPECT_NE(m_A->InsertChild(7), nullptr);
    EXPECT_EQ(All(), "?a?b?c???*+");
    EXPECT_EQ(m_A->InsertNode()->GetParent(), m_Sum.get());
    EXPECT_EQ(All(), "?a??b?c???*+");
}

TEST_F(TreeNodes, GivenNodesKeepTheirParentLink)
{
    EXPECT_EQ(m_Product->AddChild(new CTree(m_A))->GetParent(), m_A);
    const std::unique_ptr<CTree> replaced(m_B);
    m_Product->ReplaceChild(m_B, new CTree);
    m_Product->ReplaceChild(m_B, m_A);
    EXPECT_EQ(m_Product->NumChildren(), 3);
    EXPECT_EQ(m_Product->GetChild(0)->GetParent(), nullptr);
    EXPECT_EQ(m_B->GetParent(), m_Product);
}

TEST_F(TreeNodes, DeletingANodeDeletesAllBelowIt)
{
    const std::unique_ptr<CObject> formerData(m_A->GetData());
    m_A->PutData(new Letter('d', m_Deleted));
    m_Product->Clear();
    EXPECT_EQ(All(), "d?+");
    EXPECT_EQ(m_Deleted, "bc*");
    m_Sum.reset();
    EXPECT_EQ(m_Deleted, "bc*d+");
}

TEST_F(TreeNodes, DeletingCopesWithMissingChildrenAndForeignParentLinks)
{
    AddGap(*m_A);
    CTree* const ofC = m_A->AddChild(new CTree(m_C, new Letter('x', m_Deleted)));
    AddLetter(*ofC, 'y');
    AddGap(*ofC);
    AddGap(*m_A);
    CTree* const ofNone = m_A->AddChild(new CTree(nullptr, new Letter('z', m_Deleted)));
    AddGap(*ofNone);
    AddGap(*m_A);
    m_Sum.reset();
    EXPECT_EQ(m_Deleted, "yxzabc*+");
}

TEST_F(TreeNodes, DeletingStandsAnyDepthAndBreadth)
{
    constexpr int kMany = 200'000;
    CTree* deepest = m_B;
    for (int count = 0; count < kMany; ++count) {
        deepest = AddLetter(*deepest, 'd');
        AddLetter(*m_C, 'w');
    }
    m_Sum.reset();
    const std::string deep(kMany, 'd');
    const std::string wide(kMany, 'w');
    EXPECT_TRUE(m_Deleted == "a" + deep + "b" + wide + "c*+");
}

} // namespace

} // namespace tovo::test
