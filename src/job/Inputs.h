#ifndef TOVOJOB_SRC_INPUTS_H
#define TOVOJOB_SRC_INPUTS_H

#include <TovoJob/Objects.h>
#include <TovoJob/Result.h>

namespace tovo::job {

// The member that a job value stands for; null for whatever is none.
double* JobValueNamed(JobValues& values, const ObjectName& object);

// The refusal of what takes no values: anything but a variable or a job value of the job.
Refusal NoInput(const ObjectName& object);

} // namespace tovo::job

#endif
