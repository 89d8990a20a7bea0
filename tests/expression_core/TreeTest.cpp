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

    char Get() const { return m_Letter; }

private:
    char m_Letter;
    std::string& m_Deleted;
};

// The tree of a + b * c.
class TreeNodes : public testing::Test {
protected:
    CTree* AddLetter(CTree& parent, char letter)
    {
        CTree* const child = parent.AddChild(nullptr);
        child->PutData(new Letter(letter, m_Deleted));
        return child;
    }

    static char LetterOf(const CTree& node)
    {
        return node.GetData() ? static_cast<const Letter*>(node.GetData())->Get() : '?';
    }

    static std::string Walk(CTree* node, CTree* (CTree::*next)())
    {
        std::string letters;
        for (; node; node = (node->*next)())
            letters += LetterOf(*node);
        return letters;
    }

    static std::string Children(const CTree& node)
    {
        std::string letters;
        for (int i = 0; i < node.NumChildren(); ++i)
            letters += LetterOf(*node.GetChild(i));
        return letters;
    }

    std::string m_Deleted;
    std::unique_ptr<CTree> m_Sum = std::make_unique<CTree>(nullptr, new Letter('+', m_Deleted));
    CTree* m_A = AddLetter(*m_Sum, 'a');
    CTree* m_Product = AddLetter(*m_Sum, '*');
    CTree* m_B = AddLetter(*m_Product, 'b');
    CTree* m_C = AddLetter(*m_Product, 'c');
};

TEST_F(TreeNodes, WalksGoFromTheLeft)
{
    EXPECT_EQ(Walk(m_Sum->FindFirstTwig(), &CTree::GetNextTwig), "abc");
    EXPECT_EQ(Walk(m_Sum->FindFirstTwig(), &CTree::GetNextTwigOrParent), "abc*+");
    EXPECT_EQ(m_B->FindFirstTwig(), m_B);
    EXPECT_EQ(m_Product->GetNextTwig(), nullptr);
    EXPECT_EQ(m_Sum->GetNextTwigOrParent(), nullptr);
}

TEST_F(TreeNodes, WhatIsNoChildIsAnsweredAsAbsent)
{
    EXPECT_EQ(m_Sum->GetNextChild(m_A), m_Product);
    for (const CTree* other : {m_Product, m_B, static_cast<CTree*>(nullptr)})
        EXPECT_EQ(m_Sum->GetNextChild(other), nullptr);
    EXPECT_EQ(m_Sum->GetChildIndex(m_Product), 1);
    EXPECT_EQ(m_Sum->GetChildIndex(m_B), -1);
    EXPECT_EQ(m_A->GetChildIndex(m_B), -1);
    EXPECT_EQ(m_A->GetNextChild(m_B), nullptr);
}

TEST_F(TreeNodes, BadIndexThrowsWhereThereAreChildren)
{
    for (const int index : {-1, 2, 5}) {
        EXPECT_THROW(m_Sum->GetChild(index), CInvalidArgException) << index;
        EXPECT_EQ(m_A->GetChild(index), nullptr) << index;
    }
    EXPECT_EQ(m_Sum->GetChild(1), m_Product);
}

TEST_F(TreeNodes, InsertChildTakesAnyIndex)
{
    const struct {
        int index;
        const char* children;
    } rows[] = {{0, "?ab"}, {1, "a?b"}, {2, "ab?"}, {3, "ab?"}, {-1, "ab?"}};
    for (const auto& row : rows) {
        CTree parent;
        AddLetter(parent, 'a');
        AddLetter(parent, 'b');
        EXPECT_EQ(parent.InsertChild(row.index)->GetParent(), &parent) << row.index;
        EXPECT_EQ(Children(parent), row.children) << row.index;
    }
    EXPECT_NE(m_A->InsertChild(7), nullptr);
    EXPECT_EQ(Children(*m_A), "?");
}

TEST_F(TreeNodes, InsertNodeComesBetweenNodeAndParent)
{
    CTree* const between = m_A->InsertNode();
    EXPECT_EQ(Children(*m_Sum), "?*");
    EXPECT_EQ(Children(*between), "a");
    EXPECT_EQ(between->GetParent(), m_Sum.get());
    EXPECT_EQ(m_A->GetParent(), between);

    CTree* const root = m_Sum->InsertNode();
    EXPECT_EQ(root->GetParent(), nullptr);
    EXPECT_EQ(m_Sum->GetParent(), root);
    EXPECT_EQ(m_Sum.release()->GetParent(), root);
    m_Sum.reset(root);
    EXPECT_EQ(Walk(m_Sum->FindFirstTwig(), &CTree::GetNextTwigOrParent), "a?bc*+?");
}

TEST_F(TreeNodes, GivenNodesKeepTheirParentLink)
{
    auto* const child = new CTree(m_A);
    EXPECT_EQ(m_Product->AddChild(child), child);
    EXPECT_EQ(Children(*m_Product), "bc?");
    EXPECT_EQ(child->GetParent(), m_A);

    const std::unique_ptr<CTree> replaced(m_B);
    auto* const replacement = new CTree;
    m_Product->ReplaceChild(m_B, replacement);
    m_Product->ReplaceChild(m_B, m_A);
    EXPECT_EQ(Children(*m_Product), "?c?");
    EXPECT_EQ(replacement->GetParent(), nullptr);
    EXPECT_EQ(m_B->GetParent(), m_Product);
    EXPECT_EQ(m_Deleted, "");
}

TEST_F(TreeNodes, DeletingANodeDeletesAllBelowIt)
{
    const std::unique_ptr<CObject> formerData(m_A->GetData());
    m_A->PutData(new Letter('d', m_Deleted));
    m_Product->Clear();
    EXPECT_EQ(m_Product->NumChildren(), 0);
    EXPECT_EQ(m_Product->GetData(), nullptr);
    EXPECT_EQ(m_Deleted, "bc*");
    m_Sum.reset();
    EXPECT_EQ(m_Deleted, "bc*d+");
}

TEST_F(TreeNodes, AreDeletedAtAnyDepth)
{
    CTree* node = m_C;
    for (int i = 0; i < 200000; ++i)
        node = node->AddChild(nullptr);
    AddLetter(*node, 'z');
    m_Sum.reset();
    EXPECT_EQ(m_Deleted, "abzc*+");
}

// A node that a CETree makes must answer to the operations of a CETree.
TEST(ExpressionNodes, MakeNodesOfTheirOwnClass)
{
    auto leaf = std::make_unique<CETree>();
    for (CTree* made :
         {static_cast<CTree*>(leaf->AddChild(nullptr)), static_cast<CTree*>(leaf->InsertChild(0)),
          static_cast<CTree*>(leaf->InsertNode())})
        EXPECT_NE(dynamic_cast<CETree*>(made), nullptr);
    const std::unique_ptr<CETree> root(leaf.release()->GetParent());
    EXPECT_EQ(root->NumChildren(), 1);
}

} // namespace

} // namespace tovo::test
