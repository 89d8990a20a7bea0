#ifndef TOVOJOB_DEPENDENCIES_H
#define TOVOJOB_DEPENDENCIES_H

#include <string>
#include <vector>

#include <TovoJob/Export.h>
#include <TovoJob/Fault.h>
#include <TovoJob/Job.h>
#include <TovoJob/ObjectName.h>

// Who refers to whom in a job. All of this follows from the texts alone, so it is current without a
// calculation, both branches of an IF and all cells of a table included. What linked objects read
// is not known.

namespace tovo {

// How far a question goes.
enum class Reach {
    Direct,     // what a text names
    Transitive, // and what that depends on in turn, or who depends on it
};

// One object that another depends on, or that depends on it.
struct Dependency {
    ObjectName object;
    bool isDefined = true;
    // Whether some reference, or some way of references, leads through no condition, and whether
    // some leads through one: the first argument of an IF, or a selector of a table.
    bool asValue = false;
    bool inCondition = false;
    std::vector<Place> places; // of the direct references; empty for one that is only indirect
};

// What an object depends on, in the order in which its text names it; what is further away comes
// later. Empty for a name that nobody refers to or defines.
TOVO_JOB_API std::vector<Dependency> Uses(const Job& job, const ObjectName& object,
                                          Reach reach = Reach::Direct);
// Who depends on an object: formulas, then tables, each in their order. The places are in them.
TOVO_JOB_API std::vector<Dependency> UsedBy(const Job& job, const ObjectName& object,
                                            Reach reach = Reach::Direct);

// All formulas and tables, each after everything that it depends on. Those on rings, and those that
// depend on one, are left out.
TOVO_JOB_API std::vector<ObjectName> Order(const Job& job);
// Rings of references, each as in Fault::ring.
TOVO_JOB_API std::vector<std::vector<Place>> Rings(const Job& job);
// The objects that no other one refers to: inputs without effect, and the job's results.
TOVO_JOB_API std::vector<ObjectName> Unused(const Job& job);

// The job as a graph in the DOT language, from what is used to who uses it; dashed lines are uses
// in conditions.
TOVO_JOB_API std::string WriteGraph(const Job& job);
// The same for one object and everything that it depends on.
TOVO_JOB_API std::string WriteGraph(const Job& job, const ObjectName& object);

} // namespace tovo

#endif
