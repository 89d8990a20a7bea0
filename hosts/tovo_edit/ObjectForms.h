#ifndef TOVO_EDIT_OBJECTFORMS_H
#define TOVO_EDIT_OBJECTFORMS_H

#include <string>
#include <vector>

#include <TovoJob/TovoJob.h>

// Objects as forms of a few fields that an author fills in.

struct ObjectField {
    std::string label;
    std::string text;
};

// The form of a new object: its name, what it cannot be without, unit and note.
std::vector<ObjectField> NewForm(tovo::Kind kind);
// Of an object that is there: a variable's or a job value's value, and all others' unit and note.
std::vector<ObjectField> FormOf(const tovo::Job& job, const tovo::ObjectName& object,
                                const std::string& decimal);

// The edits that a form asks for, from its texts in the order of the fields. Refused are texts that
// cannot be read; whether the job takes the edit is for the job to say.
tovo::Result<tovo::Edit> ReadNewForm(const tovo::Job& job, tovo::Kind kind,
                                     const std::vector<std::string>& texts,
                                     const std::string& decimal);
tovo::Result<tovo::Edit> ReadForm(const tovo::Job& job, const tovo::ObjectName& object,
                                  const std::vector<std::string>& texts,
                                  const std::string& decimal);

#endif
