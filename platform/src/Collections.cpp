#include <TovoPlatform/Collections.h>

#include <algorithm>
#include <atomic>

std::uint64_t NextMapVersion()
{
    static std::atomic<std::uint64_t> last = 0;
    return ++last;
}

CStringList::CStringList(int)
{}

// Each node knows where it stands, so nodes are made anew and not copied.
CStringList::CStringList(const CStringList& other) : CObject(other)
{
    for (const Node& node : other.m_Nodes)
        AddTail(node.text);
}

CStringList& CStringList::operator=(const CStringList& other)
{
    // Swapping nodes keeps the places in them, so the copy's places become this list's.
    CStringList copy(other);
    m_Nodes.swap(copy.m_Nodes);
    m_Index.swap(copy.m_Index);
    return *this;
}

CStringList::~CStringList() = default;

// A place does not say whether its list may be changed, hence the casts here and below; only the
// operations of a changeable list change anything through one.
POSITION CStringList::GetHeadPosition() const
{
    return IsEmpty() ? nullptr : const_cast<Node*>(&m_Nodes.front());
}

// The text stays valid after the move, since it lies in its node.
const CString& CStringList::GetNext(POSITION& position) const
{
    const Node& node = NodeAt(position);
    const auto next = std::next(Nodes::const_iterator(node.self));
    position = next == m_Nodes.end() ? nullptr : const_cast<Node*>(&*next);
    return node.text;
}

const CString& CStringList::GetAt(POSITION position) const
{
    return NodeAt(position).text;
}

POSITION CStringList::AddHead(const CString& text)
{
    return Insert(m_Nodes.begin(), text);
}

POSITION CStringList::AddTail(const CString& text)
{
    return Insert(m_Nodes.end(), text);
}

POSITION CStringList::Find(const CString& text) const
{
    const auto [first, end] = m_Index.equal_range(text);
    if (first == end)
        return nullptr;
    if (std::next(first) == end)
        return const_cast<Node*>(first->second);
    const auto node = std::find_if(m_Nodes.begin(), m_Nodes.end(),
                                   [&](const Node& each) { return each.text == text; });
    return const_cast<Node*>(&*node);
}

void CStringList::RemoveAt(POSITION position)
{
    const Node& node = NodeAt(position);
    const auto [first, end] = m_Index.equal_range(node.text);
    m_Index.erase(std::find_if(first, end, [&](const auto& each) { return each.second == &node; }));
    m_Nodes.erase(node.self);
}

void CStringList::RemoveAll()
{
    m_Index.clear();
    m_Nodes.clear();
}

// The node learns its own iterator, which lets a place be removed without a search.
POSITION CStringList::Insert(Nodes::const_iterator before, const CString& text)
{
    const Nodes::iterator self = m_Nodes.insert(before, Node{{}, text, {}});
    self->self = self;
    m_Index.emplace(text, &*self);
    return &*self;
}

CStringList::Node& CStringList::NodeAt(POSITION position)
{
    if (!position)
        AfxThrowInvalidArgException();
    return *static_cast<Node*>(position);
}
