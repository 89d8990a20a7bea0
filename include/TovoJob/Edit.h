#ifndef TOVOJOB_EDIT_H
#define TOVOJOB_EDIT_H

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <TovoJob/Export.h>
#include <TovoJob/Fault.h>
#include <TovoJob/ObjectName.h>
#include <TovoJob/Objects.h>
#include <TovoJob/Report.h>

// The ways to change a job. Each is a plain value, so that it can be shown before it is done:
// Job::PreviewOf says what it would do, Job::Apply does it, Job::Undo takes it back.

namespace tovo {

// An object of the three kinds that a job owns.
using AnyObject = std::variant<Variable, Formula, Table>;

// Its kind and name.
TOVO_JOB_API ObjectName NameOf(const AnyObject& object);

// Puts in a new object, in front of the one that is at the position now, or last of its kind.
struct AddObject {
    AnyObject object;
    std::optional<std::size_t> position = std::nullopt;
};

// Replaces the object of that kind and name by another one of that kind and name.
struct ChangeObject {
    AnyObject object;
};

// Gives an object another name, in its own place and in all expressions, selectors and cells.
// Refused if the kind of its value would change by it, as from "Heated?" to "Heated", and for a
// linked object, whose name is its host's.
struct RenameObject {
    ObjectName object;
    std::string newName;
};

// What becomes of the references to an object that is removed.
enum class References {
    MustBeNone,      // the removal is refused while there are any
    ReplaceByObject, // they refer to another object from then on, which gives the same kind of
                     // value
    ReplaceByValue,  // the object's present value stands in their place
    Leave,           // they stay, and are faults until an object of the name is added
};

// Takes an object out of the job.
struct RemoveObject {
    ObjectName object;
    References references = References::MustBeNone;
    ObjectName replacement = {}; // for References::ReplaceByObject
};

// Sets all three job values.
struct ChangeJobValues {
    JobValues values;
};

// One change of a job.
using Edit = std::variant<AddObject, ChangeObject, RenameObject, RemoveObject, ChangeJobValues>;

// One place that an edit writes to. Either text is absent where the object itself is not there.
struct PlaceChange {
    ObjectName object; // as it was called before, if it was there
    std::string part;  // "name", "value", "unit", "note", "expression", "row selector", ...
    std::optional<std::string> before;
    std::optional<std::string> after;
};

// What edits would do.
struct Preview {
    std::vector<PlaceChange> places;
    std::vector<ValueChange> values; // what a calculation would return otherwise than now
    std::vector<Fault> newFaults;
    std::vector<Fault> clearedFaults;
};

} // namespace tovo

#endif
