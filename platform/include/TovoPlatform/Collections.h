#ifndef TOVOPLATFORM_COLLECTIONS_H
#define TOVOPLATFORM_COLLECTIONS_H

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <forward_list>
#include <iterator>
#include <list>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include <TovoPlatform/InvalidArgument.h>
#include <TovoPlatform/Object.h>
#include <TovoPlatform/WideString.h>

// The collections of the host framework, each over a container of the standard library and with
// the framework's names. They own their elements as values; a pointer kept in one is not owned.
//
// An operation that throws, most often for lack of memory, leaves its collection as it was. An
// array promises that for elements whose copies do not throw, as those of numbers, pointers and
// texts do not. No destructor allocates.

// The base of whatever a POSITION stands for.
struct __POSITION {};

// A place in a list or a map. Opaque; null is the end. It stays good until its element is removed.
using POSITION = __POSITION*;

// Goes through a collection by its places, for a loop over a range. As good as a place: until the
// element that it stands at is removed.
template <typename COLLECTION>
class CPlaceIterator {
public:
    using difference_type = std::ptrdiff_t;
    using reference =
        decltype(std::declval<const COLLECTION&>().GetNext(std::declval<POSITION&>()));
    using value_type = std::remove_cvref_t<reference>;

    CPlaceIterator() = default;
    CPlaceIterator(const COLLECTION& collection, POSITION position)
        : m_Collection(&collection), m_Position(position)
    {}

    reference operator*() const
    {
        POSITION position = m_Position;
        return m_Collection->GetNext(position);
    }
    CPlaceIterator& operator++()
    {
        static_cast<void>(m_Collection->GetNext(m_Position));
        return *this;
    }
    CPlaceIterator operator++(int)
    {
        CPlaceIterator before = *this;
        ++*this;
        return before;
    }
    friend bool operator==(const CPlaceIterator&, const CPlaceIterator&) = default;

private:
    const COLLECTION* m_Collection = nullptr;
    POSITION m_Position = nullptr;
};

// A sequence read and written by index. An index outside it throws CInvalidArgException.
template <typename TYPE, typename ARG_TYPE = const TYPE&>
class CArray : public CObject {
public:
    int GetSize() const { return static_cast<int>(m_Elements.size()); }
    int GetCount() const { return GetSize(); }
    bool IsEmpty() const { return m_Elements.empty(); }

    const TYPE& GetAt(int index) const { return m_Elements[Checked(index)]; }
    const TYPE& operator[](int index) const { return m_Elements[Checked(index)]; }
    TYPE& operator[](int index) { return m_Elements[Checked(index)]; }
    void SetAt(int index, ARG_TYPE element) { m_Elements[Checked(index)] = element; }
    // The elements in a row, until the array is changed; null for an empty one.
    const TYPE* GetData() const { return m_Elements.empty() ? nullptr : m_Elements.data(); }
    auto begin() { return m_Elements.begin(); }
    auto end() { return m_Elements.end(); }
    auto begin() const { return m_Elements.begin(); }
    auto end() const { return m_Elements.end(); }

    // Appends and gives the index of the new element.
    int Add(ARG_TYPE element)
    {
        ExpectMore();
        m_Elements.push_back(element);
        return GetSize() - 1;
    }
    // As SetAt, but an index at or behind the count grows the array first.
    void SetAtGrow(int index, ARG_TYPE element)
    {
        const TYPE kept = element; // it may be one of this array's own
        MakeRoom(index, 1);
        GrowTo(index);
        if (index == GetSize())
            m_Elements.push_back(kept);
        else
            SetAt(index, kept);
    }
    // Moves the elements from the index on up and puts the new ones there; an index behind the
    // count grows the array to it first.
    void InsertAt(int index, ARG_TYPE element, int count = 1)
    {
        const TYPE kept = element; // as above
        ExpectMore();
        MakeRoom(index, count);
        GrowTo(index);
        m_Elements.insert(PlaceAt(index), Unsigned(count), kept);
    }
    void InsertAt(int index, const CArray& other)
    {
        const std::vector<TYPE> elements = other.m_Elements;
        MakeRoom(index, other.GetSize());
        GrowTo(index);
        m_Elements.insert(PlaceAt(index), elements.begin(), elements.end());
    }
    void RemoveAt(int index, int count = 1)
    {
        if (index < 0 || count < 0 || index > GetSize() - count)
            AfxThrowInvalidArgException();
        m_Elements.erase(PlaceAt(index), PlaceAt(index + count));
    }
    void RemoveAll() { m_Elements.clear(); }
    // New elements are zero or empty.
    void SetSize(int count) { m_Elements.resize(Unsigned(count)); }

    friend bool operator==(const CArray& a, const CArray& b)
    {
        return a.m_Elements == b.m_Elements;
    }

private:
    // An array that gets one element mostly gets a few, which fit into the smallest piece of memory
    // that there is.
    void ExpectMore()
    {
        constexpr std::size_t kSmallestPiece = 24;
        if (m_Elements.capacity() == 0)
            m_Elements.reserve(kSmallestPiece / sizeof(TYPE));
    }
    // For count elements at the index or at the end. What follows need not allocate, so it leaves
    // nothing half done.
    void MakeRoom(int index, int count)
    {
        const std::size_t needed = Unsigned(std::max(index, GetSize())) + Unsigned(count);
        if (needed > m_Elements.capacity())
            m_Elements.reserve(std::max(needed, 2 * m_Elements.capacity()));
    }
    void GrowTo(int count)
    {
        if (count > GetSize())
            SetSize(count);
    }
    static std::size_t Unsigned(int count)
    {
        if (count < 0)
            AfxThrowInvalidArgException();
        return static_cast<std::size_t>(count);
    }
    std::size_t Checked(int index) const
    {
        if (index < 0 || static_cast<std::size_t>(index) >= m_Elements.size())
            AfxThrowInvalidArgException();
        return static_cast<std::size_t>(index);
    }
    auto PlaceAt(int index)
    {
        return m_Elements.begin() + static_cast<std::ptrdiff_t>(Unsigned(index));
    }

    std::vector<TYPE> m_Elements;
};

using CObArray = CArray<CObject*, CObject*>;          // of any objects, which it does not own
using CStringArray = CArray<CString, const CString&>; // of texts
using CWordArray = CArray<WORD, WORD>;                // of 16-bit numbers

// A list of strings in which every place found stays good while its element is there.
class TOVO_PLATFORM_API CStringList : public CObject {
public:
    // The block size is a hint that this list has no use for. Allocates nothing.
    explicit CStringList(int blockSize = 10) noexcept;
    CStringList(const CStringList& other);
    CStringList& operator=(const CStringList& other);
    ~CStringList() override;

    int GetCount() const { return static_cast<int>(m_Count); }
    bool IsEmpty() const { return m_Count == 0; }

    // Null in an empty list.
    POSITION GetHeadPosition() const;
    // Gives the string at the place and moves the place to the next one, or to null.
    // Requires: a place of this list; null throws CInvalidArgException.
    const CString& GetNext(POSITION& position) const;
    const CString& GetAt(POSITION position) const;
    CPlaceIterator<CStringList> begin() const { return {*this, GetHeadPosition()}; }
    CPlaceIterator<CStringList> end() const { return {*this, nullptr}; }

    POSITION AddHead(const CString& text);
    // Null, with nothing added, if the list holds exactly the text already.
    POSITION AddHeadIfAbsent(const CString& text);
    POSITION AddTail(const CString& text);
    // The first place that holds exactly the text; null for none. In constant time, unless the list
    // holds the text more than once.
    POSITION Find(const CString& text) const;
    // In constant time. Requires: a place of this list; null throws CInvalidArgException.
    void RemoveAt(POSITION position);
    void RemoveAll();

private:
    struct Node : __POSITION {
        CString text;
        Node* previous = nullptr;
        Node* next = nullptr;
        std::size_t hash = 0;
        Node* nextInBucket = nullptr;
    };

    POSITION Insert(Node* before, const CString& text, std::size_t hash);
    Node& TakeSpare();
    static Node& NodeAt(POSITION position);

    bool IsIndexed() const { return !m_Buckets.empty(); }
    // 0 while there is no index.
    std::size_t HashForIndex(const CString& text) const;
    Node*& BucketOf(const Node& node) { return m_Buckets[node.hash & (m_Buckets.size() - 1)]; }
    void EnterIntoIndex(Node& node);
    void TakeFromIndex(const Node& node);
    std::vector<Node*> BucketsForOneMore() const;
    void MakeIndex(std::vector<Node*> buckets) noexcept;
    Node* Search(const CString& text, std::size_t hash) const;
    Node* FirstOf(const CString& text) const;

    // Nodes never move, and one taken out waits for the next text, so that a list used as a stack
    // need not allocate.
    std::forward_list<Node> m_Nodes;
    Node* m_Spare = nullptr; // linked by next
    Node* m_Head = nullptr;
    Node* m_Tail = nullptr;
    std::size_t m_Count = 0;
    // An index by hash, each bucket a chain of nodes; none while the list is short. Their number is
    // a power of two.
    std::vector<Node*> m_Buckets;
};

// Numbers the changes of all maps of the process.
class TOVO_PLATFORM_API MapVersions {
public:
    // A number that was never given before, on any thread.
    static std::uint64_t Next() { return ++s_Last; }
    // The one given last. As long as it stays, no map has changed that this thread may use.
    static std::uint64_t Last() { return s_Last.load(std::memory_order_relaxed); }

private:
    static std::atomic<std::uint64_t> s_Last;
};

// A map with unique keys. Lookups take constant time; a walk follows the order of insertion.
template <typename KEY, typename ARG_KEY, typename VALUE, typename ARG_VALUE>
class CMap : public CObject {
public:
    CMap() = default;
    CMap(const CMap&) = delete;
    CMap& operator=(const CMap&) = delete;

    int GetCount() const { return static_cast<int>(m_Index.size()); }
    bool IsEmpty() const { return m_Index.empty(); }

    // Another number after every change, unlike that of any other map that holds something; 0 for a
    // map that was never changed. As long as it stays, what was looked up is still so.
    std::uint64_t Version() const { return m_Version; }

    // True, with the value stored, if the key is there; else false with nothing stored.
    bool Lookup(ARG_KEY key, VALUE& value) const
    {
        const auto found = m_Index.find(key);
        if (found == m_Index.end())
            return false;
        value = found->second->value;
        return true;
    }
    // Enters the value, or replaces the one that the key has.
    void SetAt(ARG_KEY key, ARG_VALUE value)
    {
        if (const auto found = m_Index.find(key); found != m_Index.end()) {
            m_Version = MapVersions::Next();
            found->second->value = value;
            return;
        }
        Entries added; // apart until the index has it
        added.push_back(Entry{{}, key, value, {}});
        const auto entry = added.begin();
        entry->self = entry;
        m_Index.emplace(key, entry);
        m_Entries.splice(m_Entries.end(), added);
        m_Version = MapVersions::Next();
    }
    bool RemoveKey(ARG_KEY key)
    {
        const auto found = m_Index.find(key);
        if (found == m_Index.end())
            return false;
        m_Version = MapVersions::Next();
        m_Entries.erase(found->second);
        m_Index.erase(found);
        return true;
    }
    void RemoveAll()
    {
        m_Version = MapVersions::Next();
        m_Index.clear();
        m_Entries.clear();
    }

    // Null for an empty map.
    POSITION GetStartPosition() const
    {
        return m_Entries.empty() ? nullptr : const_cast<Entry*>(&m_Entries.front());
    }
    // Gives the pair at the place and moves the place to the next one, or to null.
    // Requires: a place of this map; null throws CInvalidArgException.
    void GetNextAssoc(POSITION& position, KEY& key, VALUE& value) const
    {
        if (!position)
            AfxThrowInvalidArgException();
        const Entry& entry = *static_cast<const Entry*>(position);
        key = entry.key;
        value = entry.value;
        const auto next = std::next(typename Entries::const_iterator(entry.self));
        position = next == m_Entries.end() ? nullptr : const_cast<Entry*>(&*next);
    }
    // The same as a pair, and a loop over all pairs.
    std::pair<KEY, VALUE> GetNext(POSITION& position) const
    {
        std::pair<KEY, VALUE> entry;
        GetNextAssoc(position, entry.first, entry.second);
        return entry;
    }
    CPlaceIterator<CMap> begin() const { return {*this, GetStartPosition()}; }
    CPlaceIterator<CMap> end() const { return {*this, nullptr}; }

private:
    struct Entry;
    using Entries = std::list<Entry>;
    struct Entry : __POSITION {
        KEY key;
        VALUE value;
        typename Entries::iterator self;
    };

    Entries m_Entries;
    std::unordered_map<KEY, typename Entries::iterator> m_Index;
    std::uint64_t m_Version = 0;
};

#endif
