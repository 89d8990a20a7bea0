#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include <TovoFormula/Module.h>
#include <TovoJob/TovoJob.h>
#include <TovoPlatform/NumberText.h>

#include "JobSights.h"
#include "Oracles.h"
#include "Reader.h"

// Job files of any bytes: read, calculated, written and read again. The first line says how the
// file is read, the rest is the file, or what one is composed of.

namespace tovo::fuzz {
namespace {

// Faults tell what each formula reads, so they grow with the square of the objects.
constexpr std::size_t kMostObjects = 200;
constexpr int kMostCells = 12;

nlohmann::json Text(const CString& text)
{
    return text.ToUtf8();
}

double FiniteNumber(Reader& reader)
{
    const double number = reader.Number();
    return std::isfinite(number) ? number : 0.0;
}

// A file of a format version with everything where it belongs, since few changes to one leave it
// that.
class Composer {
public:
    Composer(Reader reader, int version) : m_Reader(reader), m_Version(version) {}

    std::string Compose()
    {
        nlohmann::json job = {{"duration", 5}, {"jobsize", 700}, {"quantity", 2}};
        if (m_Version == 2)
            job["version"] = 2;
        const char* const lists[] = {"variables", "formulas", "tables"};
        for (const char* list : lists)
            job[list] = nlohmann::json::array();
        for (std::size_t object = 0; object < kMostObjects && !m_Reader.AtEnd(); ++object) {
            const int kind = m_Reader.Pick(3);
            job[lists[kind]].push_back(kind == 0 ? Variable() : kind == 1 ? Formula() : Table());
        }
        return job.dump(1);
    }

private:
    nlohmann::json Variable()
    {
        const std::string name = m_Reader.Name().ToUtf8();
        const double number = FiniteNumber(m_Reader);
        return {{"name", name},
                {"value", IsYesNoName(name) ? nlohmann::json(number > 0) : nlohmann::json(number)}};
    }
    nlohmann::json Formula()
    {
        nlohmann::json formula = {{"name", Text(m_Reader.Name())}};
        formula["unit"] = Text(m_Reader.Name());
        formula["expression"] = Text(m_Reader.Text());
        return formula;
    }
    nlohmann::json Table()
    {
        nlohmann::json table = {{"name", Text(m_Reader.Name())}};
        const int columns = 1 + m_Reader.Pick(3);
        const int rows = 2 + m_Reader.Pick(kMostCells / columns - 1);
        table["rowSelector"] = Element();
        table["rowLimits"] = Limits(rows);
        if (columns > 1) {
            table["columnSelector"] = Element();
            table["columnLimits"] = Limits(columns);
        }
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column)
                table["cells"][static_cast<std::size_t>(row)].push_back(Element());
        return table;
    }
    // Most often they rise.
    nlohmann::json Limits(int count)
    {
        nlohmann::json limits = nlohmann::json::array();
        double limit = FiniteNumber(m_Reader);
        for (; count > 0; --count, limit += 1.0)
            limits.push_back(limit);
        return limits;
    }
    nlohmann::json Element()
    {
        const int kind = m_Reader.Pick(6);
        const CString text = m_Reader.Name();
        if (kind < 3) {
            const std::string name = text.ToUtf8();
            return m_Version == 1 ? std::string(1, "VFT"[kind]) + name
                                  : WriteReference({static_cast<Kind>(kind), name});
        }
        if (m_Version == 1)
            return Text(text);
        if (kind == 3)
            return nullptr;
        const double number = ParseDouble(text);
        return kind == 4 ? nlohmann::json(number > 0) : nlohmann::json(number);
    }

    Reader m_Reader;
    const int m_Version;
};

// Calculates everything.
Report Told(Job& job)
{
    Report report = job.Calculate();
    RequireSoundFaults(job, report);
    return report;
}

Job ReadAgain(const std::string& written, const JobOptions& options)
{
    Result<Job> job = ReadJob(written, "written", options);
    Require(bool(job), "a job that can be read again",
            [&] { return job.Why().text + '\n' + written; });
    return std::move(job).Value();
}

void Run(std::string_view input)
{
    const std::size_t lineEnd = std::min(input.find('\n'), input.size());
    Reader reader(input.substr(0, lineEnd));
    const int choice = reader.Pick(kOptions);
    SpeakLanguage(reader.Pick(kSoundLanguages));
    const int version = reader.Pick(3); // 0 for bytes that are no composed file
    const std::string_view rest = input.substr(std::min(lineEnd + 1, input.size()));
    Result<Job> read =
        ReadJob(version == 0 ? std::string(rest) : Composer(Reader(rest), version).Compose(), "job",
                OptionsOf(choice));
    if (!read) {
        Require(read.Why().kind == RefusalKind::BadFile && !read.Why().text.empty(),
                "a refusal in words");
        return;
    }
    Job job = std::move(read).Value();
    if (job.Variables().size() + job.Formulas().size() + job.Tables().size() > kMostObjects)
        return;
    const Report told = Told(job);
    const std::string written = WriteJob(job);
    Job again = ReadAgain(written, OptionsOf(choice));
    Require(WriteJob(again) == written, "the same bytes", [&] { return written; });
    if (!IsThorough())
        return;
    RequireSame("the same job", told, Told(again));
    for (int other = 0; other < kOptions; ++other) {
        again.SetOptions(OptionsOf(other));
        Job anew = ReadAgain(written, OptionsOf(other));
        RequireSame("the same job with other options", Told(again), Told(anew));
    }
    RequireSame("the same job calculated again", told, Told(job));
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
