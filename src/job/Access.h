#ifndef TOVOJOB_SRC_ACCESS_H
#define TOVOJOB_SRC_ACCESS_H

#include <TovoJob/Job.h>

#include "Inside.h"

namespace tovo::job {

// The way of the library's own parts into a job.
struct Access {
    static Inside& InsideOf(Job& job) { return *job.m_Inside; }
    static const Inside& InsideOf(const Job& job) { return *job.m_Inside; }
};

} // namespace tovo::job

#endif
