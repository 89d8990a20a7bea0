#ifndef TOVOJOB_SRC_CONTENT_H
#define TOVOJOB_SRC_CONTENT_H

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include <TovoJob/Edit.h>
#include <TovoJob/Objects.h>

namespace tovo::job {

// An object as the job holds it: never changed, only replaced, so that edits, copies of a job and
// its history share it.
template <typename Object>
using Shared = std::shared_ptr<const Object>;

using Record = std::variant<Shared<Variable>, Shared<Formula>, Shared<Table>, Shared<JobValues>>;

// One record in place of another of the same type. Null stands for none: then the other is put in,
// or taken out, at the position among its kind.
struct RecordChange {
    Record before;
    Record after;
    std::size_t position = 0;
};

// The same change taken back.
RecordChange Reversed(const RecordChange& change);

// The objects of one kind in their order, found by name.
template <typename Object>
class ObjectTable {
public:
    using Entries = std::vector<Shared<Object>>;

    const Entries& All() const { return m_Entries; }
    // Null, and nothing, if there is none.
    Shared<Object> Find(std::string_view name) const;
    std::optional<std::size_t> PositionOf(std::string_view name) const;

    void Insert(std::size_t position, Shared<Object> object);
    void Erase(std::size_t position);
    void Replace(std::size_t position, Shared<Object> object);

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const
        {
            return std::hash<std::string_view>()(name);
        }
    };

    std::size_t* EnterName(const std::string& name, std::size_t position);

    Entries m_Entries;
    std::unordered_map<std::string, std::size_t, Hash, std::equal_to<>> m_Positions;
    // Where the map keeps each entry's position, so that moving many needs no lookups.
    std::vector<std::size_t*> m_Slots;
};

// What a job says, without what follows from it.
class Content {
public:
    const ObjectTable<Variable>& Variables() const { return m_Variables; }
    const ObjectTable<Formula>& Formulas() const { return m_Formulas; }
    const ObjectTable<Table>& Tables() const { return m_Tables; }
    const Shared<JobValues>& Values() const { return m_Values; }

    std::size_t Count() const;
    std::size_t CountOf(Kind kind) const;
    bool Has(const ObjectName& object) const;
    // The object's record; one that holds null if there is none.
    Record Find(const ObjectName& object) const;
    std::size_t PositionOf(const ObjectName& object) const;
    // Requires: a change made for this content as it is now.
    void Apply(const RecordChange& change);

private:
    ObjectTable<Variable> m_Variables;
    ObjectTable<Formula> m_Formulas;
    ObjectTable<Table> m_Tables;
    Shared<JobValues> m_Values = std::make_shared<JobValues>();
};

// The name of what a record holds; nothing for none and for job values.
std::optional<ObjectName> NameOfRecord(const Record& record);

inline ObjectName NameOf(const Variable& object)
{
    return {Kind::Variable, object.name};
}
inline ObjectName NameOf(const Formula& object)
{
    return {Kind::Formula, object.name};
}
inline ObjectName NameOf(const Table& object)
{
    return {Kind::Table, object.name};
}

} // namespace tovo::job

#endif
