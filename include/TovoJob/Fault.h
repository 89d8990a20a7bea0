#ifndef TOVOJOB_FAULT_H
#define TOVOJOB_FAULT_H

#include <optional>
#include <string>
#include <vector>

#include <TovoJob/ObjectName.h>
#include <TovoJob/Span.h>

namespace tovo {

// Message ids of this library, beside those of TovoFormula/MessageIds.h. Hosts may store them:
// never renumber.
enum JobMessageId : unsigned int {
    MSG_JOB_VARIABLE_NOT_FOUND = 20001,
    MSG_JOB_TEXT_TOO_LONG = 20002,
    MSG_JOB_NESTED_TOO_DEEP = 20003,
    MSG_JOB_TOO_MANY_STEPS = 20004,
    MSG_JOB_RING = 20005,
    MSG_JOB_LINKED_FAILED = 20006, // a linked object failed without saying why
    MSG_JOB_EMPTY_CELL = 20007,    // a lookup in a table has ended at a cell that is empty
    // About one word, which stands for "%s" in the text.
    MSG_JOB_NO_FUNCTION = 20021,
    MSG_JOB_NO_WORD = 20022,
    MSG_JOB_AMBIGUOUS_WORD = 20023,
    // Of the inputs of a batch.
    MSG_JOB_INPUT_NOT_A_NUMBER = 20031,
    MSG_JOB_INPUT_NOT_YES_NO = 20032,
};

// A place in an object: a stretch of a formula's text, or a part of a table.
struct Place {
    ObjectName object;
    // In the text that TextOf(object) returns; absent for tables, and if the whole object is meant.
    std::optional<Span> span;
    std::string part; // of a table, in words: "row selector", "row 2, column 1"; else empty
};

// One thing that is wrong with one formula or table, with all that fails because of it.
struct Fault {
    ObjectName object;
    unsigned int message = 0; // an id of the engine or of JobMessageId
    std::string text;         // in the user's language where the message has a translation
    Place place;
    std::string offender; // the name or the word that the message is about; may be empty
    // From the fault outwards, each a line of text, as the engine words it.
    std::vector<std::string> chain;
    // For MSG_JOB_RING: each reference of the circle in order, the last one leading to the object
    // of the first.
    std::vector<Place> ring;
    // The objects that have no fault of their own and fail because this one does, directly or
    // through others. An object that fails because of several faults is with the first.
    std::vector<ObjectName> affected;
};

// Why one object has no value.
struct Failure {
    unsigned int message = 0;
    std::string text;
    Place place; // in the object itself: of an affected one, the reference that fails
    // The way from the root fault's object to this one; this one alone if the fault is its own.
    std::vector<ObjectName> path;
};

} // namespace tovo

#endif
