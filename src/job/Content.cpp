#include "Content.h"

#include <cassert>
#include <utility>

namespace tovo {

ObjectName NameOf(const AnyObject& object)
{
    return std::visit([](const auto& known) { return job::NameOf(known); }, object);
}

} // namespace tovo

namespace tovo::job {

RecordChange Reversed(const RecordChange& change)
{
    return {change.after, change.before, change.position};
}

template <typename Object>
Shared<Object> ObjectTable<Object>::Find(std::string_view name) const
{
    const auto position = PositionOf(name);
    return position ? m_Entries[*position] : nullptr;
}

template <typename Object>
std::optional<std::size_t> ObjectTable<Object>::PositionOf(std::string_view name) const
{
    const auto found = m_Positions.find(name);
    if (found == m_Positions.end())
        return std::nullopt;
    return found->second;
}

template <typename Object>
void ObjectTable<Object>::Insert(std::size_t position, Shared<Object> object)
{
    const auto offset = static_cast<std::ptrdiff_t>(position);
    std::size_t* const slot = EnterName(object->name, position);
    m_Entries.insert(m_Entries.begin() + offset, std::move(object));
    m_Slots.insert(m_Slots.begin() + offset, slot);
    for (std::size_t at = position + 1; at < m_Slots.size(); ++at)
        ++*m_Slots[at];
}

template <typename Object>
void ObjectTable<Object>::Erase(std::size_t position)
{
    const auto offset = static_cast<std::ptrdiff_t>(position);
    m_Positions.erase(m_Entries[position]->name);
    m_Entries.erase(m_Entries.begin() + offset);
    m_Slots.erase(m_Slots.begin() + offset);
    for (std::size_t at = position; at < m_Slots.size(); ++at)
        --*m_Slots[at];
}

template <typename Object>
void ObjectTable<Object>::Replace(std::size_t position, Shared<Object> object)
{
    if (m_Entries[position]->name != object->name) {
        m_Positions.erase(m_Entries[position]->name);
        m_Slots[position] = EnterName(object->name, position);
    }
    m_Entries[position] = std::move(object);
}

template <typename Object>
std::size_t* ObjectTable<Object>::EnterName(const std::string& name, std::size_t position)
{
    const auto [entry, isNew] = m_Positions.emplace(name, position);
    assert(isNew);
    return &entry->second;
}

template class ObjectTable<Variable>;
template class ObjectTable<Formula>;
template class ObjectTable<Table>;

namespace {

template <typename Object>
void ApplyTo(ObjectTable<Object>& table, const Shared<Object>& before, const Shared<Object>& after,
             std::size_t position)
{
    if (!before)
        table.Insert(position, after);
    else if (!after)
        table.Erase(position);
    else
        table.Replace(position, after);
}

} // namespace

std::size_t Content::Count() const
{
    return m_Variables.All().size() + m_Formulas.All().size() + m_Tables.All().size();
}

std::size_t Content::CountOf(Kind kind) const
{
    switch (kind) {
    case Kind::Variable:
        return m_Variables.All().size();
    case Kind::Formula:
        return m_Formulas.All().size();
    case Kind::Table:
        return m_Tables.All().size();
    case Kind::JobValue:
        break;
    }
    return 0;
}

bool Content::Has(const ObjectName& object) const
{
    return object.kind == Kind::JobValue || NameOfRecord(Find(object)).has_value();
}

Record Content::Find(const ObjectName& object) const
{
    switch (object.kind) {
    case Kind::Variable:
        return m_Variables.Find(object.name);
    case Kind::Formula:
        return m_Formulas.Find(object.name);
    case Kind::Table:
        return m_Tables.Find(object.name);
    case Kind::JobValue:
        break;
    }
    return m_Values;
}

std::size_t Content::PositionOf(const ObjectName& object) const
{
    switch (object.kind) {
    case Kind::Variable:
        return m_Variables.PositionOf(object.name).value_or(0);
    case Kind::Formula:
        return m_Formulas.PositionOf(object.name).value_or(0);
    case Kind::Table:
        return m_Tables.PositionOf(object.name).value_or(0);
    case Kind::JobValue:
        break;
    }
    return 0;
}

void Content::Apply(const RecordChange& change)
{
    switch (change.after.index()) {
    case 0:
        return ApplyTo(m_Variables, std::get<0>(change.before), std::get<0>(change.after),
                       change.position);
    case 1:
        return ApplyTo(m_Formulas, std::get<1>(change.before), std::get<1>(change.after),
                       change.position);
    case 2:
        return ApplyTo(m_Tables, std::get<2>(change.before), std::get<2>(change.after),
                       change.position);
    default:
        m_Values = std::get<3>(change.after);
    }
}

std::optional<ObjectName> NameOfRecord(const Record& record)
{
    return std::visit(
        [](const auto& object) -> std::optional<ObjectName> {
            if constexpr (std::is_same_v<std::decay_t<decltype(object)>, Shared<JobValues>>)
                return std::nullopt;
            else
                return object ? std::optional(NameOf(*object)) : std::nullopt;
        },
        record);
}

} // namespace tovo::job
