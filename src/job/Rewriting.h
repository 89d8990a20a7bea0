#ifndef TOVOJOB_SRC_REWRITING_H
#define TOVOJOB_SRC_REWRITING_H

#include <optional>
#include <string>
#include <variant>

#include <TovoFormula/FmlaExprBase.h>

#include <TovoJob/Objects.h>

namespace tovo::job {

// What is to stand wherever an object is referred to.
struct Replacement {
    ObjectName object;
    std::variant<ObjectName, double> by; // another object, or the object's value
};

// The stored form of the expression after the replacement; nothing if it does not refer to the
// object. The text around the references stays as it is, to the character.
std::optional<std::string> Rewrite(const CFmlaExprBase& expression, const Replacement& replacement);

// The table with its selectors and cells replaced; nothing if none refers to the object.
std::optional<Table> Rewrite(const Table& table, const Replacement& replacement);

// Whether an expression can have the value in place of a reference. Infinities, NaN and numbers at
// the ends of the range cannot be written.
bool CanBeWritten(double value);

// Whether the rewritten expression would keep its references: the engine's positions have 16 bits.
bool Fits(const CFmlaExprBase& expression, const Replacement& replacement);

} // namespace tovo::job

#endif
