#include <TovoPlatform/Collections.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <utility>

std::uint64_t NextMapVersion()
{
    static std::atomic<std::uint64_t> last = 0;
    return ++last;
}

namespace {

// A list that has been longer than this is searched by an index.
constexpr std::size_t kShortList = 8;
constexpr std::size_t kMostSpare = 64;

std::size_t HashOf(const CString& text)
{
    return std::hash<CString>()(text);
}

} // namespace

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
    m_Buckets.swap(copy.m_Buckets);
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
    if (!IsIndexed())
        return FirstOf(text);
    const std::size_t hash = HashOf(text);
    Node* found = nullptr;
    for (Node* node = m_Buckets[hash & (m_Buckets.size() - 1)]; node; node = node->nextInBucket)
        if (node->hash == hash && node->text == text) {
            if (found)
                return FirstOf(text);
            found = node;
        }
    return found;
}

void CStringList::RemoveAt(POSITION position)
{
    Node& node = NodeAt(position);
    if (IsIndexed())
        TakeFromIndex(node);
    if (m_Spare.size() >= kMostSpare) {
        m_Nodes.erase(node.self);
        return;
    }
    node.text.Empty();
    m_Spare.splice(m_Spare.begin(), m_Nodes, node.self);
}

void CStringList::RemoveAll()
{
    m_Buckets.clear();
    m_Nodes.clear();
}

// The node learns its own iterator, which lets a place be removed without a search.
POSITION CStringList::Insert(Nodes::const_iterator before, const CString& text)
{
    if (m_Spare.empty())
        m_Spare.emplace_back();
    Node& node = m_Spare.front();
    node.text = text;
    node.self = m_Spare.begin();
    m_Nodes.splice(before, m_Spare, node.self);
    if (m_Nodes.size() > std::max(m_Buckets.size(), kShortList))
        MakeIndex();
    else if (IsIndexed())
        EnterIntoIndex(node);
    return &node;
}

void CStringList::EnterIntoIndex(Node& node)
{
    node.hash = HashOf(node.text);
    node.nextInBucket = std::exchange(BucketOf(node), &node);
}

void CStringList::TakeFromIndex(const Node& node)
{
    Node** link = &BucketOf(node);
    while (*link != &node)
        link = &(*link)->nextInBucket;
    *link = node.nextInBucket;
}

// With room for as many nodes again.
void CStringList::MakeIndex()
{
    m_Buckets.assign(std::bit_ceil(2 * m_Nodes.size()), nullptr);
    for (Node& node : m_Nodes)
        EnterIntoIndex(node);
}

POSITION CStringList::FirstOf(const CString& text) const
{
    const auto node = std::find_if(m_Nodes.begin(), m_Nodes.end(),
                                   [&](const Node& each) { return each.text == text; });
    return node == m_Nodes.end() ? nullptr : const_cast<Node*>(&*node);
}

CStringList::Node& CStringList::NodeAt(POSITION position)
{
    if (!position)
        AfxThrowInvalidArgException();
    return *static_cast<Node*>(position);
}
