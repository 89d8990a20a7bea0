#include <TovoFormula/Tree.h>

#include <utility>
#include <vector>

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
        ClearChildren();
    delete std::exchange(m_Data, nullptr);
}

void CTree::ClearChildren()
{
    // A node taken apart here has no list left, so that its own destructor finds nothing to descend
    // into: the depth of the tree costs memory of the heap, not of the stack.
    struct Level {
        std::unique_ptr<CTree> node; // null for this node itself
        std::unique_ptr<CObArray> children;
        int next = 0;
    };
    std::vector<Level> levels;
    const auto open = [&levels](CTree& node, std::unique_ptr<CTree> owner) {
        std::unique_ptr<CObArray> children(std::exchange(node.m_Children, nullptr));
        if (children)
            levels.push_back({std::move(owner), std::move(children), 0});
    };

    open(*this, nullptr);
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next == level.children->GetSize()) {
            levels.pop_back();
            continue;
        }
        auto* const child = static_cast<CTree*>(level.children->GetAt(level.next++));
        if (child)
            open(*child, std::unique_ptr<CTree>(child));
    }
}

CTree* CTree::InsertChildAt(int index, CTree* child)
{
    if (!m_Children)
        m_Children = new Children;
    const bool isPlace = index >= 0 && index <= NumChildren();
    m_Children->InsertAt(isPlace ? index : NumChildren(), child);
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
