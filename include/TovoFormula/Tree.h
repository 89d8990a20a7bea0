#ifndef TOVOFORMULA_TREE_H
#define TOVOFORMULA_TREE_H

#include <cstddef>
#include <memory>

#include <TovoFormula/Export.h>
#include <TovoFormula/ExprToken.h>
#include <TovoPlatform/Collections.h>

// A node of an ordered tree.
//
// Owns: its children and its data; deleting a node deletes everything below it. That needs neither
// recursion nor memory, so it works at any depth and when memory is out. Does not own: its parent.
// A function that takes a node or gives a new one leaves it to the tree that it enters. An index
// counts children from 0; a bad one throws CInvalidArgException where the operation does not say
// otherwise. A twig is a node without children.
class TOVO_FORMULA_API CTree : public CObject {
public:
    // The node does not enter the parent's list by this.
    explicit CTree(CTree* parent = nullptr, CObject* data = nullptr);
    ~CTree() override;

    CTree(const CTree&) = delete;
    CTree& operator=(const CTree&) = delete;

    CTree* GetParent() const { return m_Parent; }
    CObject* GetData() const { return m_Data; }
    // The former data is not deleted; the int has no effect.
    void PutData(CObject* data, int unused = 0);

    int NumChildren() const { return m_Children ? m_Children->GetSize() : 0; }
    // Null, whatever the index, if the node has no children at all.
    CTree* GetChild(int index) const
    {
        return m_Children ? static_cast<CTree*>(m_Children->GetAt(index)) : nullptr;
    }
    // -1 for what is no child.
    int GetChildIndex(const CTree* child) const;
    // Null behind the last child and for what is no child.
    CTree* GetNextChild(const CTree* child) const;

    // Appends the node, which keeps the parent link that it has, and gives it back; null appends
    // a new empty node of this parent.
    CTree* AddChild(CTree* child);
    // Puts a new empty node at the index, or behind the last child for any index out of range.
    CTree* InsertChild(int index);
    // Puts the second node where the first one is, if it is a child; nothing is deleted.
    void ReplaceChild(CTree* child, CTree* replacement);
    // Puts a new node without data between this node and its parent. With no parent, the new node
    // becomes the root of this one.
    CTree* InsertNode();

    // The leftmost twig, this node itself if it has no children.
    CTree* FindFirstTwig();
    // The next twig to the right; null after the last.
    CTree* GetNextTwig();
    // The next node in post-order; null after the root.
    CTree* GetNextTwigOrParent();

    // Deletes the children from the left, each with its subtree, then the data. Runs when the node
    // is deleted. Meanwhile no node involved shows any children, and the parent link of a node
    // that had some is set to the node that owned it.
    void Clear();

protected:
    CTree* InsertChildAt(int index, CTree* child);
    CTree* InsertNewChildAt(int index, std::unique_ptr<CTree> child);
    CTree* InsertNodeAbove(std::unique_ptr<CTree> node);

    CTree* m_Parent;
    CObArray* m_Children = nullptr; // null until the first child is added; owned by this node
    CObject* m_Data;                // owned by this node

private:
    class Demolition;
};

// A node of an expression tree: every node is a CETree and its data is a CExprToken. The operations
// of CTree's names mean the same.
class TOVO_FORMULA_API CETree : public CTree {
public:
    explicit CETree(CETree* parent = nullptr, CExprToken* data = nullptr);
    ~CETree() override;

    // Nodes come and go by the dozen, so the library keeps some of their memory for the next ones.
    static void* operator new(std::size_t size);
    static void operator delete(void* memory, std::size_t size) noexcept;

    CETree* GetParent() const { return static_cast<CETree*>(m_Parent); }
    CExprToken* GetData() const { return static_cast<CExprToken*>(m_Data); }
    CETree* GetChild(int index) const { return static_cast<CETree*>(CTree::GetChild(index)); }
    CETree* GetNextChild(const CETree* child) const;
    CETree* AddChild(CETree* child);
    CETree* InsertChild(int index);
    CETree* InsertNode();
    CETree* FindFirstTwig() { return static_cast<CETree*>(CTree::FindFirstTwig()); }
    CETree* GetNextTwig() { return static_cast<CETree*>(CTree::GetNextTwig()); }
    CETree* GetNextTwigOrParent() { return static_cast<CETree*>(CTree::GetNextTwigOrParent()); }

    // The child to calculate after the given one, null after the last. Below an IF whose condition
    // is calculated the branch not taken is left out. The count goes up by 1 when the walk enters
    // the condition of an IF and down by 1 when it leaves it.
    CETree* GetNextActiveChild(const CETree* child, int& ifCount) const;
    // The next node of the walk that leaves out such branches; null after the root.
    CETree* GetNextActiveTwigOrParent(int& ifCount) const;
};

#endif
