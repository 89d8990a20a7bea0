#ifndef TOVOJOB_JOB_H
#define TOVOJOB_JOB_H

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <TovoJob/Edit.h>
#include <TovoJob/Export.h>
#include <TovoJob/Fault.h>
#include <TovoJob/ObjectList.h>
#include <TovoJob/ObjectName.h>
#include <TovoJob/Objects.h>
#include <TovoJob/Options.h>
#include <TovoJob/Report.h>
#include <TovoJob/Result.h>

struct IFormulaObj;
struct IFormulaTableObj;
struct IVarObj;

namespace tovo {

namespace job {
struct Access;
struct Inside;
} // namespace job

// A whole job: named variables, formulas and tables, and the three job values.
//
//     tovo::Job job;
//     job.AddVariable("Width", 2.5, "m").Value();
//     job.AddFormula("Area", "V(Width)*V(Width)", "m²").Value();
//     const tovo::Report report = job.Calculate();
//
// Owns: all its objects, which callers hand over and see as plain values. Does not own: linked
// objects. All texts are UTF-8. Every change goes through Apply, and can be undone. What is refused
// changes nothing. Belongs to one thread at a time; different jobs, copies among them, may be used
// on different threads.
class TOVO_JOB_API Job {
public:
    explicit Job(const JobOptions& options = {});
    // A copy has the same objects and options, and no history of edits.
    Job(const Job& other);
    Job(Job&& other) noexcept;
    Job& operator=(const Job& other);
    Job& operator=(Job&& other) noexcept;
    ~Job();

    const JobOptions& Options() const;
    // Everything is calculated anew at the next calculation.
    void SetOptions(const JobOptions& options);

    // Add an object last of its kind. Refused are a name that is empty, taken or ends in white
    // space, a value that is not finite, or with a yes/no name neither 1 nor 0, a table whose cells
    // are no rectangle, and more objects than the limit. An expression is taken as it is: what is
    // wrong with it is a fault.
    Result<void> AddVariable(std::string name, double value, std::string unit = {});
    // The value is asked for once at each calculation, and never saved.
    Result<void> AddVariable(std::string name, std::function<double()> source,
                             std::string unit = {});
    Result<void> AddFormula(std::string name, std::string expression, std::string unit = {});
    Result<void> AddTable(Table table);
    // The same for objects that a host has already, under the names that they have now. Not owned:
    // each must outlive the job and its copies. None of them is saved.
    Result<void> Link(IVarObj& variable);
    Result<void> Link(IFormulaObj& formula);
    Result<void> Link(IFormulaTableObj& table);

    // Change what is there.
    Result<void> SetValue(std::string_view variable, double value);
    Result<void> SetExpression(std::string_view formula, std::string expression);
    Result<void> SetJobValues(const JobValues& values);
    Result<void> Rename(const ObjectName& object, std::string newName);
    Result<void> Remove(const ObjectName& object, References references = References::MustBeNone);

    // One transaction: all edits, one after the other, or none if one is refused. Undone as a
    // whole.
    Result<void> Apply(Edit edit);
    Result<void> Apply(std::span<const Edit> edits);
    // What the edits would do; the job stays as it is. Costs as much as applying them, calculating,
    // and going back.
    Result<Preview> PreviewOf(std::span<const Edit> edits);
    // False if there is nothing to undo or redo. A new edit ends what could be redone.
    bool Undo();
    bool Redo();
    bool CanUndo() const;
    bool CanRedo() const;

    // The objects in their order, and by name: null if there is none. Valid until the next change.
    ObjectList<Variable> Variables() const;
    ObjectList<Formula> Formulas() const;
    ObjectList<Table> Tables() const;
    const JobValues& Values() const;
    const Variable* FindVariable(std::string_view name) const;
    const Formula* FindFormula(std::string_view name) const;
    const Table* FindTable(std::string_view name) const;
    bool Has(const ObjectName& object) const;

    // A formula's expression as its author sees it: in the user's language, each reference as its
    // name between two blanks. Spans of faults count in it. Empty for any other object.
    std::string TextOf(const ObjectName& object) const;

    // Calculates what has changed since the last time and all that depends on it, each object once,
    // in an order in which each follows what it reads; no depth of references is too deep.
    Report Calculate(const Progress& progress = nullptr);
    // The same without the report, for a caller who wants to pay only for what has changed.
    Changes Update(const Progress& progress = nullptr);

    // These speak of the last calculation. The value is absent of an object that fails, or that was
    // not calculated since it was changed; of a job value and a variable it is there always.
    std::optional<double> ValueOf(const ObjectName& object) const;
    // Everything that is wrong, each fault with what fails because of it.
    std::vector<Fault> Faults() const;
    // Why an object has no value; absent if it has one.
    std::optional<Failure> FailureOf(const ObjectName& object) const;

private:
    friend struct job::Access;

    std::unique_ptr<job::Inside> m_Inside;
};

} // namespace tovo

#endif
