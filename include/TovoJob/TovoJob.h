#ifndef TOVOJOB_TOVOJOB_H
#define TOVOJOB_TOVOJOB_H

// Everything that hosts need of the job library.

#include <TovoJob/Batch.h>
#include <TovoJob/Csv.h>
#include <TovoJob/CsvBatch.h>
#include <TovoJob/Dependencies.h>
#include <TovoJob/Edit.h>
#include <TovoJob/Explanation.h>
#include <TovoJob/Fault.h>
#include <TovoJob/Fixes.h>
#include <TovoJob/Functions.h>
#include <TovoJob/Job.h>
#include <TovoJob/JobFile.h>
#include <TovoJob/ObjectList.h>
#include <TovoJob/ObjectName.h>
#include <TovoJob/Objects.h>
#include <TovoJob/Options.h>
#include <TovoJob/ReplaceFile.h>
#include <TovoJob/Report.h>
#include <TovoJob/Result.h>
#include <TovoJob/Scenario.h>
#include <TovoJob/Solve.h>
#include <TovoJob/Span.h>
#include <TovoJob/Typing.h>

#endif
