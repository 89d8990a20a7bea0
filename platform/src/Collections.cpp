#include <TovoPlatform/Collections.h>

#include <algorithm>
#include <bit>
#include <utility>

// 0 stands for no change.
constinit std::atomic<std::uint64_t> MapVersions::s_Last = 1;

namespace {

// A list that has been longer than this is searched by an index.
constexpr std::size_t kShortList = 8;

std::size_t HashOf(const CString& text)
{
    return std::hash<CString>()(text);
}

} // namespace

CStringList::CStringList(int) noexcept
{}

// The nodes of a list are linked, so a copy makes its own.
CStringList::CStringList(const CStringList& other) : CObject(other)
{
    for (const Node* node = other.m_Head; node; node = node->next)
        AddTail(node->text);
}

CStringList& CStringList::operator=(const CStringList& other)
{
    // Swapping leaves the nodes where they are.
    CStringList copy(other);
    m_Nodes.swap(copy.m_Nodes);
    m_Buckets.swap(copy.m_Buckets);
    m_Spare = copy.m_Spare;
    m_Head = copy.m_Head;
    m_Tail = copy.m_Tail;
    m_Count = copy.m_Count;
    return *this;
}

CStringList::~CStringList() = default;

POSITION CStringList::GetHeadPosition() const
{
    return m_Head;
}

// The text stays valid after the move, since it lies in its node.
const CString& CStringList::GetNext(POSITION& position) const
{
    const Node& node = NodeAt(position);
    position = node.next;
    return node.text;
}

const CString& CStringList::GetAt(POSITION position) const
{
    return NodeAt(position).text;
}

POSITION CStringList::AddHead(const CString& text)
{
    return Insert(m_Head, text, HashForIndex(text));
}

POSITION CStringList::AddHeadIfAbsent(const CString& text)
{
    const std::size_t hash = HashForIndex(text);
    return Search(text, hash) ? nullptr : Insert(m_Head, text, hash);
}

POSITION CStringList::AddTail(const CString& text)
{
    return Insert(nullptr, text, HashForIndex(text));
}

POSITION CStringList::Find(const CString& text) const
{
    return Search(text, HashForIndex(text));
}

void CStringList::RemoveAt(POSITION position)
{
    Node& node = NodeAt(position);
    if (IsIndexed())
        TakeFromIndex(node);
    (node.previous ? node.previous->next : m_Head) = node.next;
    (node.next ? node.next->previous : m_Tail) = node.previous;
    --m_Count;
    node.text.Empty();
    node.next = std::exchange(m_Spare, &node);
}

void CStringList::RemoveAll()
{
    m_Buckets.clear();
    m_Nodes.clear();
    m_Spare = m_Head = m_Tail = nullptr;
    m_Count = 0;
}

// Null stands for the end.
POSITION CStringList::Insert(Node* before, const CString& text, std::size_t hash)
{
    std::vector<Node*> buckets = BucketsForOneMore();
    Node& node = TakeSpare();
    node.text = text;
    node.hash = hash;
    node.next = before;
    node.previous = before ? before->previous : m_Tail;
    (node.previous ? node.previous->next : m_Head) = &node;
    (before ? before->previous : m_Tail) = &node;
    ++m_Count;
    if (!buckets.empty())
        MakeIndex(std::move(buckets));
    else if (IsIndexed())
        EnterIntoIndex(node);
    return &node;
}

CStringList::Node& CStringList::TakeSpare()
{
    if (!m_Spare)
        return m_Nodes.emplace_front();
    Node& node = *m_Spare;
    m_Spare = node.next;
    return node;
}

std::size_t CStringList::HashForIndex(const CString& text) const
{
    return IsIndexed() ? HashOf(text) : 0;
}

void CStringList::EnterIntoIndex(Node& node)
{
    node.nextInBucket = std::exchange(BucketOf(node), &node);
}

void CStringList::TakeFromIndex(const Node& node)
{
    Node** link = &BucketOf(node);
    while (*link != &node)
        link = &(*link)->nextInBucket;
    *link = node.nextInBucket;
}

// Those of a larger index, with room for as many nodes again, where one more node calls for it;
// else none.
std::vector<CStringList::Node*> CStringList::BucketsForOneMore() const
{
    const std::size_t count = m_Count + 1;
    if (count <= std::max(m_Buckets.size(), kShortList))
        return {};
    return std::vector<Node*>(std::bit_ceil(2 * count), nullptr);
}

void CStringList::MakeIndex(std::vector<Node*> buckets) noexcept
{
    m_Buckets = std::move(buckets);
    for (Node* node = m_Head; node; node = node->next) {
        node->hash = HashOf(node->text);
        EnterIntoIndex(*node);
    }
}

CStringList::Node* CStringList::Search(const CString& text, std::size_t hash) const
{
    if (!IsIndexed())
        return FirstOf(text);
    Node* found = nullptr;
    for (Node* node = m_Buckets[hash & (m_Buckets.size() - 1)]; node; node = node->nextInBucket)
        if (node->hash == hash && node->text == text) {
            if (found)
                return FirstOf(text);
            found = node;
        }
    return found;
}

CStringList::Node* CStringList::FirstOf(const CString& text) const
{
    Node* node = m_Head;
    while (node && node->text != text)
        node = node->next;
    return node;
}

CStringList::Node& CStringList::NodeAt(POSITION position)
{
    if (!position)
        AfxThrowInvalidArgException();
    return *static_cast<Node*>(position);
}
