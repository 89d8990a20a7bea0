#ifndef TOVOJOB_CSVBATCH_H
#define TOVOJOB_CSVBATCH_H

#include <iosfwd>
#include <string>
#include <vector>

#include <TovoJob/Batch.h>
#include <TovoJob/Export.h>
#include <TovoJob/ObjectName.h>
#include <TovoJob/Result.h>

namespace tovo {

class Job;

// How to calculate the rows of a CSV text.
struct CsvBatchOptions {
    // What is written for each row; all formulas of the job if empty.
    std::vector<ObjectName> outputs = {};
    // Columns that are no inputs and are written again, in front of the outputs.
    std::vector<std::string> copied = {};
    unsigned int threads = 1; // as BatchOptions::threads
    // Called with the bytes that are read and all bytes; with 0 for the latter if the stream cannot
    // tell.
    Progress progress = nullptr;
    std::string name = "CSV"; // of the rows, for messages
};

// Calculates a job for each record of a CSV text, and writes a record of results for each.
//
// The first record names the inputs: variables, as they are called or as V(Name), and DURATION,
// JOBSIZE and QUANTITY. A name that is neither an input nor among the copied columns refuses the
// file, so a misspelt column is not left out in silence; so do a record with another number of
// fields and broken quotes. What was written until then is of the rows in front of it.
//
// A number is written with a decimal point and no blanks; yes/no inputs take yes, no, true, false,
// 1 and 0. Any other cell, an empty one too, is a fault of its row. Results are written with as
// many digits as it takes to read the same number again, yes/no values as yes and no; what has no
// value is left empty, and the last column, "fault", says why.
//
// The faults of the report count rows from 0, without the first record.
TOVO_JOB_API Result<BatchReport> RunCsvBatch(const Job& job, std::istream& rows,
                                             std::ostream& results,
                                             const CsvBatchOptions& options = {});

} // namespace tovo

#endif
