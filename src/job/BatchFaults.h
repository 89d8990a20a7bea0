#ifndef TOVOJOB_SRC_BATCHFAULTS_H
#define TOVOJOB_SRC_BATCHFAULTS_H

#include <cstddef>
#include <string>
#include <unordered_map>

#include <TovoJob/Batch.h>

namespace tovo::job {

// The faults of rows as they come up, each cause kept once.
class BatchFaults {
public:
    // Requires: rows in order.
    void Add(std::size_t row, BatchCause cause);
    // Those of later rows, whose numbers are moved up.
    void Append(BatchReport&& later, std::size_t rowsBefore = 0);

    // With faults, causes and faulty rows.
    BatchReport Take() && { return std::move(m_Report); }

private:
    std::size_t Enter(BatchCause&& cause);
    void AddFault(BatchFault fault);

    BatchReport m_Report;
    std::unordered_map<std::string, std::size_t> m_Places; // of the causes, by what they say
};

} // namespace tovo::job

#endif
