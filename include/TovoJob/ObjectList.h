#ifndef TOVOJOB_OBJECTLIST_H
#define TOVOJOB_OBJECTLIST_H

#include <cstddef>
#include <iterator>
#include <memory>
#include <vector>

namespace tovo {

// The objects of one kind in their order, to walk over and to index. Looks at the job's own list:
// valid until the job changes.
template <typename Object>
class ObjectList {
public:
    using Entries = std::vector<std::shared_ptr<const Object>>;

    // Walks forward; what it points at is const.
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Object;
        using difference_type = std::ptrdiff_t;
        using pointer = const Object*;
        using reference = const Object&;

        Iterator() = default;
        explicit Iterator(typename Entries::const_iterator at) : m_At(at) {}
        reference operator*() const { return **m_At; }
        pointer operator->() const { return m_At->get(); }
        Iterator& operator++()
        {
            ++m_At;
            return *this;
        }
        Iterator operator++(int) { return Iterator(m_At++); }
        friend bool operator==(const Iterator&, const Iterator&) = default;

    private:
        typename Entries::const_iterator m_At;
    };

    explicit ObjectList(const Entries& entries) : m_Entries(&entries) {}

    std::size_t size() const { return m_Entries->size(); }
    bool empty() const { return m_Entries->empty(); }
    // Requires: an index below size().
    const Object& operator[](std::size_t index) const { return *(*m_Entries)[index]; }
    Iterator begin() const { return Iterator(m_Entries->begin()); }
    Iterator end() const { return Iterator(m_Entries->end()); }

private:
    const Entries* m_Entries;
};

} // namespace tovo

#endif
