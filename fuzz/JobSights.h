#ifndef TOVOFORMULA_FUZZ_JOBSIGHTS_H
#define TOVOFORMULA_FUZZ_JOBSIGHTS_H

#include <string>
#include <unordered_map>

#include <TovoJob/TovoJob.h>

#include "Record.h"

namespace tovo::fuzz {

// What a host can see of a calculated job, without what has changed.
void Show(Record& record, const Report& report);

// Ends the process unless both say the same of every value and of every fault.
void RequireSame(const char* expected, const Report& report, const Report& other);

// Ends the process unless the span is inside of a text of that length.
void RequireInside(const Span& span, const Position& length);
void RequireInside(const Span& span, const std::string& text);

// The same for places in the objects of a job, whose texts it measures once.
class PlaceCheck {
public:
    explicit PlaceCheck(const Job& job) : m_Job(job) {}

    void RequireSound(const Place& place);

private:
    const Job& m_Job;
    std::unordered_map<ObjectName, Position> m_Lengths;
};

// Every place that the faults name is one, and each object either has a value or is in a fault.
void RequireSoundFaults(const Job& job, const Report& report);

// The options that a choice of kOptions stands for; the first are the default.
inline constexpr int kOptions = 4;
JobOptions OptionsOf(int choice);

} // namespace tovo::fuzz

#endif
