#include <TovoJob/CsvBatch.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <istream>
#include <limits>
#include <optional>
#include <ostream>
#include <utility>

#include <TovoJob/Csv.h>
#include <TovoJob/Job.h>

#include "BatchFaults.h"
#include "Inputs.h"

namespace tovo {

namespace {

// Enough for several threads, and little beside the memory of a machine.
constexpr std::size_t kValuesInBlock = std::size_t{1} << 20;

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
// What no yes/no value is, where the cell has some other text.
constexpr double kNeitherYesNorNo = 2.0;

// The input that a column is named for: as a reference, as a variable, as a job value.
std::optional<ObjectName> InputNamed(const Job& job, const std::string& column)
{
    if (job.FindVariable(column))
        return VariableNamed(column);
    const std::optional<ObjectName> reference = ReadReference(column);
    if (reference && reference->kind == Kind::Variable && job.Has(*reference))
        return reference;
    JobValues values;
    const ObjectName jobValue{Kind::JobValue, column};
    return job::JobValueNamed(values, jobValue) ? std::optional(jobValue) : std::nullopt;
}

double ReadNumber(const std::string& cell)
{
    double value = 0.0;
    const char* const end = cell.data() + cell.size();
    const auto read = std::from_chars(cell.data(), end, value);
    return read.ec == std::errc() && read.ptr == end && !cell.empty() ? value : kNoNumber;
}

double ReadYesNo(const std::string& cell)
{
    std::string word = cell;
    std::transform(word.begin(), word.end(), word.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    if (word == "yes" || word == "true" || word == "1")
        return 1.0;
    return word == "no" || word == "false" || word == "0" ? 0.0 : kNeitherYesNorNo;
}

std::string Written(double value, bool isYesNo)
{
    if (std::isnan(value))
        return {};
    if (isYesNo)
        return value != 0.0 ? "yes" : "no";
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

// What the columns are for.
struct Columns {
    std::vector<ObjectName> inputs;
    std::vector<std::size_t> inputPlaces;
    std::vector<std::size_t> copiedPlaces;
};

Result<Columns> ColumnsOf(const Job& job, const std::vector<std::string>& header,
                          const std::vector<std::string>& copied, const std::string& place)
{
    Columns columns;
    for (const std::string& name : copied) {
        const auto found = std::find(header.begin(), header.end(), name);
        if (found == header.end())
            return Refusal{RefusalKind::BadFile, "there is no column \"" + name + "\"", place};
        columns.copiedPlaces.push_back(static_cast<std::size_t>(found - header.begin()));
    }
    for (std::size_t at = 0; at < header.size(); ++at) {
        if (std::find(copied.begin(), copied.end(), header[at]) != copied.end())
            continue;
        const auto input = InputNamed(job, header[at]);
        if (!input)
            return Refusal{RefusalKind::BadFile,
                           "the column \"" + header[at] + "\" is no variable or job value", place};
        columns.inputs.push_back(*input);
        columns.inputPlaces.push_back(at);
    }
    return columns;
}

std::size_t BytesOf(std::istream& in)
{
    if (!in)
        return 0;
    const auto begin = in.tellg();
    if (begin == std::istream::pos_type(-1) || !in.seekg(0, std::ios::end)) {
        in.clear();
        return 0;
    }
    const auto end = in.tellg();
    in.seekg(begin);
    return static_cast<std::size_t>(end - begin);
}

// Reads rows in blocks, and calculates and writes each block before the next.
class CsvRun {
public:
    CsvRun(const Batch& batch, Columns columns, std::size_t width, CsvReader& reader,
           std::ostream& out, const CsvBatchOptions& options, std::size_t bytes)
        : m_Batch(batch),
          m_Columns(std::move(columns)),
          m_Width(width),
          m_Reader(reader),
          m_Out(out),
          m_Options(options),
          m_Bytes(bytes),
          m_RowsInBlock(std::max<std::size_t>(
              1, kValuesInBlock / (batch.Inputs().size() + batch.Outputs().size())))
    {}

    Result<BatchReport> Go(const std::vector<std::string>& header)
    {
        WriteHeader(header);
        for (bool isMore = true; isMore && !m_IsEnded;) {
            // What is sound in front of a record that is not is still calculated and written.
            const Result<bool> read = ReadBlock();
            if (m_RowCount > 0)
                CalculateBlock();
            if (!read)
                return read.Why();
            if (!m_Out)
                return Refusal{RefusalKind::CannotWrite, "the results cannot be written", {}};
            isMore = read.Value();
        }
        BatchReport report = std::move(m_Faults).Take();
        report.rows = m_RowsDone;
        report.isComplete = !m_IsEnded;
        return report;
    }

private:
    // False if that was the last.
    Result<bool> ReadBlock()
    {
        m_Rows.clear();
        m_Copied.clear();
        m_RowCount = 0;
        std::vector<std::string> fields;
        while (m_RowCount < m_RowsInBlock) {
            const Result<bool> next = m_Reader.Next(fields);
            if (!next)
                return next.Why();
            if (!next.Value())
                return false;
            if (fields.size() != m_Width)
                return Refusal{RefusalKind::BadFile,
                               "the record has " + std::to_string(fields.size()) +
                                   " fields, and the first one has " + std::to_string(m_Width),
                               m_Reader.Place()};
            TakeRow(fields);
        }
        return true;
    }
    void TakeRow(std::vector<std::string>& fields)
    {
        for (std::size_t input = 0; input < m_Columns.inputs.size(); ++input) {
            const std::string& cell = fields[m_Columns.inputPlaces[input]];
            const ObjectName& name = m_Columns.inputs[input];
            const bool isYesNo = name.kind == Kind::Variable && IsYesNoName(name.name);
            m_Rows.push_back(isYesNo ? ReadYesNo(cell) : ReadNumber(cell));
        }
        for (const std::size_t place : m_Columns.copiedPlaces)
            m_Copied.push_back(std::move(fields[place]));
        ++m_RowCount;
    }

    void CalculateBlock()
    {
        m_Results.resize(m_RowCount * m_Batch.Outputs().size());
        BatchOptions options;
        options.threads = m_Options.threads;
        if (m_Options.progress)
            options.progress = [this](std::size_t done, std::size_t total) {
                return m_Options.progress(BytesAt(done, total), m_Bytes);
            };
        BatchReport report = m_Batch.Run(m_Rows, m_Results, options).Value();
        m_BytesBefore = m_Reader.BytesRead();
        m_IsEnded = !report.isComplete;
        if (m_IsEnded)
            return;
        WriteBlock(report);
        m_Faults.Append(std::move(report), m_RowsDone);
        m_RowsDone += m_RowCount;
    }
    std::size_t BytesAt(std::size_t done, std::size_t total) const
    {
        const auto part = static_cast<double>(done) / static_cast<double>(total);
        return m_BytesBefore +
               static_cast<std::size_t>(part *
                                        static_cast<double>(m_Reader.BytesRead() - m_BytesBefore));
    }

    void WriteHeader(const std::vector<std::string>& header)
    {
        std::vector<std::string> fields;
        for (const std::size_t place : m_Columns.copiedPlaces)
            fields.push_back(header[place]);
        for (const ObjectName& output : m_Batch.Outputs())
            fields.push_back(output.name);
        fields.emplace_back("fault");
        std::string text;
        AppendCsvRecord(text, fields);
        m_Out << text;
    }
    void WriteBlock(const BatchReport& report)
    {
        const std::size_t outputs = m_Batch.Outputs().size();
        std::string text;
        std::vector<std::string> fields;
        auto fault = report.faults.begin();
        for (std::size_t row = 0; row < m_RowCount; ++row) {
            fields.clear();
            for (std::size_t at = 0; at < m_Columns.copiedPlaces.size(); ++at)
                fields.push_back(std::move(m_Copied[row * m_Columns.copiedPlaces.size() + at]));
            for (std::size_t output = 0; output < outputs; ++output)
                fields.push_back(Written(m_Results[row * outputs + output],
                                         IsYesNoName(m_Batch.Outputs()[output].name)));
            std::string& words = fields.emplace_back();
            for (; fault != report.faults.end() && fault->row == row; ++fault) {
                const BatchCause& cause = report.causes[fault->cause];
                words +=
                    (words.empty() ? "" : "; ") + cause.object.name + ": " + cause.failure.text;
            }
            AppendCsvRecord(text, fields);
        }
        m_Out << text;
    }

    const Batch& m_Batch;
    const Columns m_Columns;
    const std::size_t m_Width; // of a record
    CsvReader& m_Reader;
    std::ostream& m_Out;
    const CsvBatchOptions& m_Options;
    const std::size_t m_Bytes;
    const std::size_t m_RowsInBlock;
    std::vector<double> m_Rows; // of the block
    std::vector<double> m_Results;
    std::vector<std::string> m_Copied;
    std::size_t m_RowCount = 0;
    std::size_t m_RowsDone = 0;
    std::size_t m_BytesBefore = 0; // read in front of the block
    bool m_IsEnded = false;
    job::BatchFaults m_Faults;
};

std::vector<ObjectName> AllFormulas(const Job& job)
{
    std::vector<ObjectName> formulas;
    for (const Formula& formula : job.Formulas())
        formulas.push_back(FormulaNamed(formula.name));
    return formulas;
}

} // namespace

Result<BatchReport> RunCsvBatch(const Job& job, std::istream& rows, std::ostream& results,
                                const CsvBatchOptions& options)
{
    const std::size_t bytes = options.progress ? BytesOf(rows) : 0;
    CsvReader reader(rows, options.name);
    std::vector<std::string> header;
    const Result<bool> hasHeader = reader.Next(header);
    if (!hasHeader)
        return hasHeader.Why();
    if (!hasHeader.Value())
        return Refusal{RefusalKind::BadFile, "there is no first record that names the inputs",
                       options.name};
    Result<Columns> columns = ColumnsOf(job, header, options.copied, reader.Place());
    if (!columns)
        return columns.Why();
    const Result<Batch> batch = Batch::Make(
        job, columns.Value().inputs, options.outputs.empty() ? AllFormulas(job) : options.outputs);
    if (!batch)
        return batch.Why();
    return CsvRun(batch.Value(), std::move(columns).Value(), header.size(), reader, results,
                  options, bytes)
        .Go(header);
}

} // namespace tovo
