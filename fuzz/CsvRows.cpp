#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <TovoFormula/Module.h>
#include <TovoJob/TovoJob.h>

#include "JobSights.h"
#include "Oracles.h"
#include "Reader.h"

// Comma-separated values of any bytes: read, written again, and calculated row by row. The first
// line chooses the options, the next ones are the formulas of the job, the rest is the text, or
// what one is composed of.

namespace tovo::fuzz {
namespace {

constexpr int kFormulas = 3;
constexpr std::size_t kMostRows = 30;
constexpr std::size_t kMostCompared = 4; // rows of an input that is not examined thoroughly

// More than one thread takes at a time.
constexpr std::size_t kManyRows = 4200;
// Threads race for the counters that guide an exploration, which must come out the same each time.
#if __has_feature(address_sanitizer)
constexpr bool kHasThreads = true;
#else
constexpr bool kHasThreads = false;
#endif

using Row = std::vector<std::string>;

// What a text is as records: all of them, or those in front of the first fault.
struct Rows {
    std::vector<Row> all;
    bool isSound = true;
};

// Reads a text in another way than the library: a state for each byte.
Rows RecordsOf(std::string_view text)
{
    enum class State { FieldBegins, Plain, Quoted, QuoteEnds };
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    Rows records;
    Row record(1);
    State state = State::FieldBegins;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool isQuote = text[at] == '"';
        if (state == State::Quoted) {
            if (isQuote)
                state = State::QuoteEnds;
            else
                record.back() += text[at];
        } else if (isQuote && state != State::Plain) {
            if (state == State::QuoteEnds)
                record.back() += '"';
            state = State::Quoted;
        } else if (text[at] == ',') {
            record.emplace_back();
            state = State::FieldBegins;
        } else if (text[at] == '\n' || text.substr(at).starts_with("\r\n")) {
            at += text[at] == '\r' ? 1 : 0;
            records.all.push_back(std::exchange(record, Row(1)));
            state = State::FieldBegins;
        } else if (isQuote || state == State::QuoteEnds) {
            records.isSound = false;
            return records;
        } else {
            record.back() += text[at];
            state = State::Plain;
        }
    }
    records.isSound = state != State::Quoted;
    // A line end at the end of the text begins no record.
    if (records.isSound && (state != State::FieldBegins || record.size() > 1))
        records.all.push_back(std::move(record));
    return records;
}

Rows ReadAll(std::istream& stream)
{
    CsvReader reader(stream);
    Rows records;
    for (std::size_t line = 0;;) {
        Row record;
        const Result<bool> next = reader.Next(record);
        records.isSound = bool(next);
        if (!next)
            Require(next.Why().kind == RefusalKind::BadFile && !next.Why().text.empty() &&
                        next.Why().place.starts_with("CSV:"),
                    "a refusal in words", [&] { return next.Why().text; });
        if (!next || !next.Value())
            return records;
        Require(reader.Line() > line, "records on lines of their own");
        line = reader.Line();
        records.all.push_back(std::move(record));
    }
}

std::string Written(const std::vector<Row>& records)
{
    std::string text;
    for (const Row& record : records)
        AppendCsvRecord(text, record);
    return text;
}

// Both readers find the same, and so does one who reads what is written of it.
Rows RequireReading(const std::string& text)
{
    const Rows expected = RecordsOf(text);
    std::istringstream stream(text);
    Rows records = ReadAll(stream);
    Require(records.isSound == expected.isSound && records.all == expected.all,
            "the records of the text", [&] { return text + "\n--\n" + Written(records.all); });
    const std::string written = Written(records.all);
    // A mark in front of everything is passed over, so a first field that begins with one is lost.
    if (written.starts_with("\xEF\xBB\xBF"))
        return records;
    std::istringstream again(written);
    Require(ReadAll(again).all == records.all, "the same records from what is written",
            [&] { return text + "\n--\n" + written; });
    return records;
}

// Hands its bytes over a few at a time, and cannot seek.
class Trickle : public std::streambuf {
public:
    Trickle(std::string text, std::size_t step) : m_Text(std::move(text)), m_Step(step) {}

protected:
    int_type underflow() override
    {
        if (m_Taken == m_Text.size())
            return traits_type::eof();
        char* const begin = m_Text.data() + m_Taken;
        m_Taken = std::min(m_Taken + m_Step, m_Text.size());
        setg(begin, begin, m_Text.data() + m_Taken);
        return traits_type::to_int_type(*begin);
    }

private:
    std::string m_Text;
    const std::size_t m_Step;
    std::size_t m_Taken = 0;
};

// Rows whose columns have names of the job, and whose cells are most often values.
std::string Composed(Reader reader)
{
    constexpr const char* kColumns[] = {"x",       "y",        "b?",   "V(x)",    "V(b?)",
                                        "JOBSIZE", "QUANTITY", "note", "DURATION"};
    constexpr const char* kCells[] = {"1",   "0",   "-2.5", "yes",  "No",     "",
                                      "1e9", "0.5", "nan",  "1e-9", "TRUE\n", " 1"};
    std::vector<Row> records(1);
    for (int column = 1 + reader.Pick(4); column > 0; --column)
        records[0].push_back(kColumns[reader.Pick(static_cast<int>(std::size(kColumns)))]);
    while (!reader.AtEnd() && records.size() <= kMostRows) {
        Row& record = records.emplace_back();
        for (std::size_t column = 0; column < records[0].size(); ++column) {
            const int cell = reader.Pick(static_cast<int>(std::size(kCells)) + 4);
            record.push_back(cell < static_cast<int>(std::size(kCells)) ? kCells[cell]
                                                                        : reader.NameBytes());
        }
    }
    return Written(records);
}

// One job, and the rows that are calculated with it.
class Session {
public:
    Session(Reader& reader, int choice)
        : m_Job(OptionsOf(choice % kOptions)), m_CopiesNote(choice >= kOptions)
    {
        constexpr const char* kNames[] = {"A", "B", "C?"};
        m_Job.AddVariable("x", 1.5).Value();
        m_Job.AddVariable("y", 2).Value();
        m_Job.AddVariable("b?", 1).Value();
        for (int formula = 0; formula < kFormulas; ++formula)
            m_Job.AddFormula(kNames[formula], reader.Text().ToUtf8()).Value();
        Table table;
        table.name = "T";
        table.rowSelector = VariableNamed("x");
        table.rowLimits = {1, 2};
        table.cells = {{FormulaNamed("B")}, {std::monostate()}};
        m_Job.AddTable(table).Value();
    }

    void Run(const std::string& text)
    {
        const Rows records = RequireReading(text);
        if (records.all.size() > kMostRows + 1)
            return;
        std::istringstream stream(text);
        const Answer answer = Calculated(stream, 1);
        if (answer.report)
            RequireRows(records, answer);
        if (!IsThorough())
            return;
        Trickle trickle(text, 1 + text.size() % 7);
        std::istream slow(&trickle);
        const Answer other = Calculated(slow, 1);
        Require(other.text == answer.text && bool(other.report) == bool(answer.report),
                "the same from a slow stream", [&] { return answer.text + "--\n" + other.text; });
        if (kHasThreads && answer.report && answer.report.Value().faultyRows == 0)
            RequireSameOnThreads(records);
    }

private:
    struct Answer {
        std::string text;
        Result<BatchReport> report;
    };

    Answer Calculated(std::istream& rows, unsigned int threads) const
    {
        CsvBatchOptions options;
        options.threads = threads;
        options.outputs = {FormulaNamed("A"), FormulaNamed("C?"), TableNamed("T")};
        if (m_CopiesNote)
            options.copied = {"note"};
        std::ostringstream results;
        Result<BatchReport> report = RunCsvBatch(m_Job, rows, results, options);
        return {results.str(), std::move(report)};
    }

    void RequireSameOnThreads(const Rows& records) const
    {
        if (records.all.size() < 2)
            return;
        std::vector<Row> many = records.all;
        while (many.size() < kManyRows)
            many.insert(many.end(), records.all.begin() + 1, records.all.end());
        const std::string text = Written(many);
        std::istringstream stream(text);
        std::istringstream again(text);
        Require(Calculated(stream, 1).text == Calculated(again, 3).text, "the same on threads",
                [&] { return Written(records.all); });
    }

    // The input of a column; none for the copied one.
    std::optional<ObjectName> InputOf(const std::string& column) const
    {
        if (m_CopiesNote && column == "note")
            return std::nullopt;
        if (const auto reference = ReadReference(column))
            return reference;
        const bool isVariable = m_Job.FindVariable(column) != nullptr;
        return ObjectName{isVariable ? Kind::Variable : Kind::JobValue, column};
    }

    // Each row has what a scenario with its inputs comes to.
    void RequireRows(const Rows& records, const Answer& answer) const
    {
        std::istringstream stream(answer.text);
        const Rows results = ReadAll(stream);
        Require(records.isSound && results.isSound && results.all.size() == records.all.size() &&
                    answer.report.Value().rows + 1 == records.all.size(),
                "a result for each row", [&] { return answer.text; });
        const Snapshot snapshot(m_Job);
        const std::size_t most = IsThorough() ? kMostRows : kMostCompared;
        std::size_t faultyRows = 0;
        for (std::size_t row = 1; row < records.all.size(); ++row) {
            faultyRows += results.all[row].back().empty() ? 0 : 1;
            if (row <= most)
                RequireRow(snapshot, records.all[0], records.all[row], results.all[row]);
        }
        Require(answer.report.Value().faultyRows == faultyRows, "the number of faulty rows",
                [&] { return answer.text; });
    }
    void RequireRow(const Snapshot& snapshot, const Row& header, const Row& row,
                    const Row& result) const
    {
        const auto found = [&] { return Written({header, row, result}); };
        Scenario scenario;
        bool isSound = true;
        for (std::size_t column = 0; column < header.size(); ++column) {
            const auto input = InputOf(header[column]);
            if (!input)
                continue;
            const std::optional<double> value = ValueIn(row[column], *input);
            isSound = isSound && value;
            scenario.values.push_back({*input, value.value_or(0.0)});
        }
        if (!isSound)
            return Require(!result.back().empty(), "a fault in words", found);
        const Report report = snapshot.Calculate(scenario).Value().report;
        RequireAnew(scenario, report);
        const std::size_t copied = m_CopiesNote ? 1 : 0;
        const std::size_t variables = m_Job.Variables().size();
        bool hasAll = true;
        std::size_t output = copied;
        for (const std::size_t at : {variables, variables + 2, variables + kFormulas}) {
            const Outcome& outcome = report.outcomes[at];
            hasAll = hasAll && outcome.value;
            Require(result[output++] == Text(outcome), "the value of a scenario", found);
        }
        Require(result.back().empty() == hasAll, "a fault for what has no value", found);
    }
    // The scenario is a job with those values.
    void RequireAnew(const Scenario& scenario, const Report& report) const
    {
        if (!IsThorough())
            return;
        Job job(m_Job);
        for (const auto& [object, value] : scenario.values) {
            JobValues values = job.Values();
            (object.name == "DURATION"  ? values.duration
             : object.name == "JOBSIZE" ? values.jobSize
                                        : values.quantity) = value;
            if (object.kind == Kind::JobValue)
                job.SetJobValues(values).Value();
            else
                job.SetValue(object.name, value).Value();
        }
        RequireSame("a job with the values of the scenario", report, job.Calculate());
    }

    static std::optional<double> ValueIn(const std::string& cell, const ObjectName& input)
    {
        if (input.kind == Kind::Variable && IsYesNoName(input.name)) {
            std::string word;
            for (const char letter : cell)
                word += static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter + 32 : letter);
            if (word == "yes" || word == "true" || word == "1")
                return 1.0;
            return word == "no" || word == "false" || word == "0" ? std::optional(0.0)
                                                                  : std::nullopt;
        }
        double value = 0.0;
        const auto [end, fault] = std::from_chars(cell.data(), cell.data() + cell.size(), value);
        const bool isNumber =
            fault == std::errc() && end == cell.data() + cell.size() && std::isfinite(value);
        return isNumber ? std::optional(value) : std::nullopt;
    }
    static std::string Text(const Outcome& outcome)
    {
        if (!outcome.value)
            return {};
        if (outcome.isYesNo)
            return *outcome.value != 0.0 ? "yes" : "no";
        char digits[32];
        return {digits, std::to_chars(digits, digits + sizeof digits, *outcome.value).ptr};
    }

    Job m_Job;
    const bool m_CopiesNote;
};

void Run(std::string_view input)
{
    Reader reader(input);
    const int choice = reader.Pick(2 * kOptions);
    const bool isComposed = reader.Pick(2) != 0;
    SpeakLanguage(reader.Pick(kSoundLanguages));
    Session session(reader, choice);
    session.Run(isComposed ? Composed(reader) : std::string(reader.Rest()));
}

} // namespace
} // namespace tovo::fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    InitTovoFormulaDLL();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    tovo::fuzz::BeginInput(bytes, count);
    tovo::fuzz::Run({reinterpret_cast<const char*>(bytes), count});
    return 0;
}
