#ifndef TOVOJOB_OBJECTNAME_H
#define TOVOJOB_OBJECTNAME_H

#include <compare>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <TovoJob/Export.h>
#include <TovoPlatform/Types.h>

namespace tovo {

// The kinds of things that have a value. Variables, formulas and tables have a name space each.
enum class Kind {
    Variable,
    Formula,
    Table,
    JobValue, // one of the three that every job has: DURATION, JOBSIZE, QUANTITY
};

// How a job's objects are told apart: by kind and name. Names compare exactly, blanks and letter
// case included. A name that ends in "?" stands for a yes/no value, any other for a number.
struct ObjectName {
    Kind kind = Kind::Variable;
    std::string name; // UTF-8; of a job value its English word

    // NOLINTNEXTLINE(modernize-use-nullptr): it sees a 0 in what is defaulted
    friend auto operator<=>(const ObjectName&, const ObjectName&) = default;
};

// The three that a job owns, by name.
inline ObjectName VariableNamed(std::string name)
{
    return {Kind::Variable, std::move(name)};
}
// As VariableNamed.
inline ObjectName FormulaNamed(std::string name)
{
    return {Kind::Formula, std::move(name)};
}
// As VariableNamed.
inline ObjectName TableNamed(std::string name)
{
    return {Kind::Table, std::move(name)};
}

// Whether the name stands for a yes/no value.
TOVO_JOB_API bool IsYesNoName(std::string_view name);

// "variable", "formula", "table" or "job value".
TOVO_JOB_API std::string_view WordFor(Kind kind);

// The object as a reference is written in a stored expression: V(Width), F(Edge), T(Rate), with a
// backslash in front of each ")" and "\" of the name; a job value as its word.
TOVO_JOB_API std::string WriteReference(const ObjectName& object);
// Reads a whole text that is one reference to a variable, a formula or a table; nothing for any
// other text.
TOVO_JOB_API std::optional<ObjectName> ReadReference(std::string_view text);

} // namespace tovo

// Makes an object's name a key of the standard library's hashed containers.
template <>
struct std::hash<tovo::ObjectName> {
    std::size_t operator()(const tovo::ObjectName& object) const noexcept
    {
        return std::hash<std::string>()(object.name) * 4 + static_cast<std::size_t>(object.kind);
    }
};

#endif
