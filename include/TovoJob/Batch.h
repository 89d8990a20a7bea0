#ifndef TOVOJOB_BATCH_H
#define TOVOJOB_BATCH_H

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include <TovoJob/Export.h>
#include <TovoJob/Fault.h>
#include <TovoJob/ObjectName.h>
#include <TovoJob/Report.h>
#include <TovoJob/Result.h>

namespace tovo {

class Job;

// Why something has no value in a row: an output, with its failure, or an input that the row gives
// no proper value, whose place is the input.
struct BatchCause {
    ObjectName object;
    Failure failure;
};

// One thing that is wrong in one row.
struct BatchFault {
    std::size_t row = 0;   // from 0
    std::size_t cause = 0; // its place among the causes
};

// How rows went.
struct BatchReport {
    std::size_t rows = 0;           // how many were calculated
    std::size_t faultyRows = 0;     // how many of them have a fault
    std::vector<BatchFault> faults; // row by row
    std::vector<BatchCause> causes; // each once, in the order in which they came up
    bool isComplete = true;         // false if the progress callback ended the work
};

// How to calculate rows.
struct BatchOptions {
    // How many threads calculate, the caller's among them; 0 for as many as the machine has.
    unsigned int threads = 1;
    // Called on the caller's thread with the rows that are done and all rows.
    Progress progress = nullptr;
};

// One job for many rows of inputs.
//
//     const std::vector<tovo::ObjectName> inputs = {tovo::VariableNamed("Width")};
//     const auto batch = tovo::Batch::Make(job, inputs, {tovo::FormulaNamed("Area")}).Value();
//     std::vector<double> areas(widths.size());
//     const tovo::BatchReport report = batch.Run(widths, areas).Value();
//
// Keeps the job as it was when the batch was made; what a host computes, or has linked, is asked
// once, then. A row costs what the formulas cost that its outputs need and that an input leads to.
// A row in which one of them fails costs a good deal more, and is done on the caller's thread, in
// the language that is in force there. Values and failures are those that the job would have. Never
// changes: several threads may run it at once.
class TOVO_JOB_API Batch {
public:
    // Refused for an input that is no variable or job value of the job or is named twice, for an
    // output that the job does not have, and for no outputs.
    static Result<Batch> Make(const Job& job, std::span<const ObjectName> inputs,
                              std::span<const ObjectName> outputs);

    const std::vector<ObjectName>& Inputs() const;
    const std::vector<ObjectName>& Outputs() const;

    // Takes rows one after the other, each with a value for each input in order, and writes a value
    // for each output of each row; NaN where it fails. Refused, with nothing written, unless rows
    // and results have the same number of whole rows. If the callback ends the work, some rows, not
    // only the last ones, are left as they were.
    Result<BatchReport> Run(std::span<const double> rows, std::span<double> results,
                            const BatchOptions& options = {}) const;

private:
    struct State;

    explicit Batch(std::shared_ptr<State> state);

    std::shared_ptr<State> m_State;
};

} // namespace tovo

#endif
