#include <TovoFormula/Tree.h>

#include <algorithm>
#include <utility>

#include <TovoFormula/ExprToken.h>

#include "BlockCache.h"

namespace {

// The children of an IF, between its parentheses and commas.
constexpr int kCondition = 1;
constexpr int kIfTrue = 3;
constexpr int kIfFalse = 5;

// The list of a node's children, which comes and goes with nearly every node.
class Children : public CObArray {
public:
    static void* operator new(std::size_t size)
    {
        return tovo::detail::BlockCache<sizeof(CObArray)>::Allocate(size);
    }
    static void operator delete(void* memory, std::size_t size) noexcept
    {
        tovo::detail::BlockCache<sizeof(CObArray)>::Free(memory, size);
    }
};

// Without a calculated condition neither branch is ruled out.
bool IsRuledOut(const CETree& ifNode, int index)
{
    if (index != kIfTrue && index != kIfFalse)
        return false;
    const CExprToken* const condition = ifNode.GetChild(kCondition)->GetData();
    if (!condition || !condition->IsCalculated())
        return false;
    const bool isTrue = condition->GetValue() != 0.0;
    return isTrue != (index == kIfTrue);
}

} // namespace

// Deletes all that is below a node, children from the left and each after everything below it, in a
// loop and without allocating.
//
// The work is on one node at a time. The node's list of children has been taken out of it and
// reversed, so that the next child to delete is the last entry. A child without a list is deleted
// on the spot; any other becomes the node to work on. Two pointers lead back from it, and both lie
// where nothing else is needed any more: the child's parent link is set to the node, and the
// child's entry in the node's list is replaced by the list of the level above. When a list is
// empty, its node is deleted and the work returns to the node above. Each entry is handled a
// constant number of times, and a node that is deleted has no list left for its own destructor to
// descend into.
class CTree::Demolition {
public:
    explicit Demolition(CTree& root) : m_Root(root), m_Node(&root), m_Children(TakeChildren(root))
    {}

    void Run()
    {
        while (!m_Children->IsEmpty() || m_Node != &m_Root) {
            if (m_Children->IsEmpty())
                LeaveNode();
            else
                DeleteOrEnter(static_cast<CTree*>(LastEntry()));
        }
        delete m_Children;
    }

private:
    static CObArray* TakeChildren(CTree& node)
    {
        CObArray* const children = std::exchange(node.m_Children, nullptr);
        if (!children->IsEmpty())
            std::reverse(&(*children)[0], &(*children)[0] + children->GetSize());
        return children;
    }
    int LastIndex() const { return m_Children->GetSize() - 1; }
    CObject* LastEntry() const { return m_Children->GetAt(LastIndex()); }

    void DeleteOrEnter(CTree* child)
    {
        if (child && child->m_Children) {
            m_Children->SetAt(LastIndex(), m_Above);
            m_Above = std::exchange(m_Children, TakeChildren(*child));
            child->m_Parent = std::exchange(m_Node, child);
        } else {
            m_Children->RemoveAt(LastIndex());
            delete child;
        }
    }
    void LeaveNode()
    {
        delete std::exchange(m_Children, m_Above);
        m_Above = static_cast<CObArray*>(LastEntry());
        m_Children->RemoveAt(LastIndex());
        delete std::exchange(m_Node, m_Node->m_Parent);
    }

    CTree& m_Root;
    CTree* m_Node;
    CObArray* m_Children;        // the node's, reversed
    CObArray* m_Above = nullptr; // the list in which the node was the last entry; null at the root
};

CTree::CTree(CTree* parent, CObject* data) : m_Parent(parent), m_Data(data)
{}

CTree::~CTree()
{
    Clear();
}

void CTree::PutData(CObject* data, int)
{
    m_Data = data;
}

int CTree::GetChildIndex(const CTree* child) const
{
    for (int index = 0; index < NumChildren(); ++index)
        if (m_Children->GetAt(index) == child)
            return index;
    return -1;
}

CTree* CTree::GetNextChild(const CTree* child) const
{
    const int index = GetChildIndex(child);
    return index >= 0 && index + 1 < NumChildren() ? GetChild(index + 1) : nullptr;
}

CTree* CTree::AddChild(CTree* child)
{
    return child ? InsertChildAt(NumChildren(), child) : InsertChild(NumChildren());
}

CTree* CTree::InsertChild(int index)
{
    return InsertNewChildAt(index, std::make_unique<CTree>(this, nullptr));
}

void CTree::ReplaceChild(CTree* child, CTree* replacement)
{
    const int index = GetChildIndex(child);
    if (index >= 0)
        m_Children->SetAt(index, replacement);
}

CTree* CTree::InsertNode()
{
    return InsertNodeAbove(std::make_unique<CTree>(m_Parent, nullptr));
}

CTree* CTree::FindFirstTwig()
{
    CTree* node = this;
    while (node->NumChildren() > 0)
        node = node->GetChild(0);
    return node;
}

CTree* CTree::GetNextTwig()
{
    for (CTree* node = this; node->m_Parent; node = node->m_Parent)
        if (CTree* const next = node->m_Parent->GetNextChild(node))
            return next->FindFirstTwig();
    return nullptr;
}

CTree* CTree::GetNextTwigOrParent()
{
    if (!m_Parent)
        return nullptr;
    CTree* const next = m_Parent->GetNextChild(this);
    return next ? next->FindFirstTwig() : m_Parent;
}

void CTree::Clear()
{
    if (m_Children)
        Demolition(*this).Run();
    delete std::exchange(m_Data, nullptr);
}

CTree* CTree::InsertChildAt(int index, CTree* child)
{
    // A node whose child cannot be taken in goes on having no list.
    std::unique_ptr<Children> first(m_Children ? nullptr : new Children);
    CObArray& children = m_Children ? *m_Children : *first;
    const bool isPlace = index >= 0 && index <= NumChildren();
    children.InsertAt(isPlace ? index : NumChildren(), child);
    if (first)
        m_Children = first.release();
    return child;
}

CTree* CTree::InsertNewChildAt(int index, std::unique_ptr<CTree> child)
{
    InsertChildAt(index, child.get());
    return child.release();
}

CTree* CTree::InsertNodeAbove(std::unique_ptr<CTree> node)
{
    node->InsertChildAt(0, this);
    if (m_Parent)
        m_Parent->ReplaceChild(this, node.get());
    m_Parent = node.get();
    return node.release();
}

CETree::CETree(CETree* parent, CExprToken* data) : CTree(parent, data)
{}

CETree::~CETree() = default;

void* CETree::operator new(std::size_t size)
{
    return tovo::detail::BlockCache<sizeof(CETree)>::Allocate(size);
}

void CETree::operator delete(void* memory, std::size_t size) noexcept
{
    tovo::detail::BlockCache<sizeof(CETree)>::Free(memory, size);
}

CETree* CETree::GetNextChild(const CETree* child) const
{
    return static_cast<CETree*>(CTree::GetNextChild(child));
}

CETree* CETree::AddChild(CETree* child)
{
    return child ? static_cast<CETree*>(InsertChildAt(NumChildren(), child))
                 : InsertChild(NumChildren());
}

CETree* CETree::InsertChild(int index)
{
    return static_cast<CETree*>(InsertNewChildAt(index, std::make_unique<CETree>(this)));
}

CETree* CETree::InsertNode()
{
    return static_cast<CETree*>(InsertNodeAbove(std::make_unique<CETree>(GetParent())));
}

CETree* CETree::GetNextActiveChild(const CETree* child, int& ifCount) const
{
    const bool isIf = GetData()->GetCode() == TOK_IF;
    const int index = GetChildIndex(child);
    if (isIf && index == kCondition)
        --ifCount;
    if (index < 0 || index + 1 >= NumChildren())
        return nullptr;
    const int next = index + 1;
    if (!isIf)
        return GetChild(next);
    if (next == kCondition)
        ++ifCount;
    if (!IsRuledOut(*this, next))
        return GetChild(next);
    // Behind a branch stands a comma or the right parenthesis, unless the tree was left unfinished.
    return next + 1 < NumChildren() ? GetChild(next + 1) : nullptr;
}

CETree* CETree::GetNextActiveTwigOrParent(int& ifCount) const
{
    CETree* const parent = GetParent();
    if (!parent)
        return nullptr;
    CETree* const next = parent->GetNextActiveChild(this, ifCount);
    return next ? next->FindFirstTwig() : parent;
}
