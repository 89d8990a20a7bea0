#include "BatchFaults.h"

#include <utility>

namespace tovo::job {

namespace {

std::string KeyOf(const BatchCause& cause)
{
    std::string key = std::to_string(cause.failure.message);
    const auto add = [&](const ObjectName& object) {
        key += '\0';
        key += static_cast<char>('0' + static_cast<int>(object.kind));
        key += object.name;
    };
    add(cause.object);
    for (const ObjectName& object : cause.failure.path)
        add(object);
    if (const auto& span = cause.failure.place.span)
        key += '\0' + std::to_string(span->begin.utf16);
    return key;
}

} // namespace

void BatchFaults::Add(std::size_t row, BatchCause cause)
{
    AddFault({row, Enter(std::move(cause))});
}

void BatchFaults::Append(BatchReport&& later, std::size_t rowsBefore)
{
    std::vector<std::size_t> places;
    for (BatchCause& cause : later.causes)
        places.push_back(Enter(std::move(cause)));
    for (const BatchFault& fault : later.faults)
        AddFault({fault.row + rowsBefore, places[fault.cause]});
}

std::size_t BatchFaults::Enter(BatchCause&& cause)
{
    const auto [entry, isNew] = m_Places.try_emplace(KeyOf(cause), m_Report.causes.size());
    if (isNew)
        m_Report.causes.push_back(std::move(cause));
    return entry->second;
}

void BatchFaults::AddFault(BatchFault fault)
{
    if (m_Report.faults.empty() || m_Report.faults.back().row != fault.row)
        ++m_Report.faultyRows;
    m_Report.faults.push_back(fault);
}

} // namespace tovo::job
