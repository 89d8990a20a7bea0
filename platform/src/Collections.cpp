#include <TovoPlatform/Collections.h>

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
    for (const Node& node : m_Nodes) {
        if (node.text == text)
            return const_cast<Node*>(&node);
    }
    return nullptr;
}

void CStringList::RemoveAt(POSITION position)
{
    m_Nodes.erase(NodeAt(position).self);
}

void CStringList::RemoveAll()
{
    m_Nodes.clear();
}

// The node learns its own iterator, which lets a place be removed without a search.
POSITION CStringList::Insert(Nodes::const_iterator before, const CString& text)
{
    const Nodes::iterator self = m_Nodes.insert(before, Node{{}, text, {}});
    self->self = self;
    return &*self;
}

CStringList::Node& CStringList::NodeAt(POSITION position)
{
    if (!position)
        AfxThrowInvalidArgException();
    return *static_cast<Node*>(position);
}
