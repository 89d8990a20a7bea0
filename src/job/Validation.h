#ifndef TOVOJOB_SRC_VALIDATION_H
#define TOVOJOB_SRC_VALIDATION_H

#include <string_view>

#include <TovoJob/Objects.h>
#include <TovoJob/Result.h>

#include "Content.h"

namespace tovo::job {

Refusal UnknownName(const ObjectName& object);

// Whether a job may have an object of that name beside what it has.
Result<void> CheckNewName(const Content& content, const ObjectName& object);

// What a job demands of an object, whatever else it has.
Result<void> CheckObject(const Variable& variable);
Result<void> CheckObject(const Formula& formula);
Result<void> CheckObject(const Table& table);
Result<void> CheckValues(const JobValues& values);

// Whether the table's limits are such that a lookup makes sense.
Result<void> CheckLimitsRise(const Table& table);

} // namespace tovo::job

#endif
