#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>
#include <sys/mman.h>
#include <unistd.h>

#include <TovoFormula/Module.h>
#include <TovoFormula/RtfDocument.h>
#include <support/RtfReader.h>

#include "Calculation.h"
#include "JobDocument.h"
#include "JsonFile.h"
#include "Oracles.h"
#include "Reader.h"
#include "TextReport.h"

// Job files of any bytes: read, calculated, reported, edited and read again. The first line says
// what is done with the job, the rest is the file.

namespace tovo::fuzz {
namespace {

constexpr int kMostEdits = 8;
// Texts in a report grow with what each formula reads.
constexpr std::size_t kMostObjects = 200;

// A file in memory that has a path.
class MemoryFile {
public:
    explicit MemoryFile(std::string_view content) : m_Descriptor(memfd_create("job", 0))
    {
        const auto size = static_cast<ssize_t>(content.size());
        Require(write(m_Descriptor, content.data(), content.size()) == size, "a file in memory");
    }
    ~MemoryFile() { close(m_Descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string Path() const { return "/proc/self/fd/" + std::to_string(m_Descriptor); }

private:
    int m_Descriptor;
};

std::string RichText(::Job& job)
{
    RtfDocument document(u"Arial", 22);
    for (const auto& formula : job.Formulas()) {
        document.AddText(formula->GetName() + u" = ");
        document.AddExpression(formula->GetExpression());
        document.EndParagraph();
    }
    return document.GetRTFString().ToUtf8();
}

// All that is told of a job.
std::string Told(::Job& job, bool isStaticScan)
{
    const Facts facts = CalculateJob(job, isStaticScan);
    for (const FormulaFacts& formula : facts.formulas)
        Require(!formula.fault ||
                    (formula.faultPos >= -1 && formula.faultPos <= formula.text.GetLength()),
                "an invalid position inside the text", [&] { return formula.text.ToUtf8(); });
    const std::string richText = RichText(job);
    Require(test::ReadRtf(richText).has_value(), "a document that parses",
            [&] { return richText; });
    return TextReport(facts, {}) + richText;
}

nlohmann::json Text(const CString& text)
{
    return text.ToUtf8();
}

// A file with everything where it belongs, since few changes to one leave it that.
std::string Composed(Reader reader)
{
    nlohmann::json job = {{"duration", 5}, {"jobsize", 700}, {"quantity", 2}};
    for (const char* list : {"variables", "formulas", "tables"})
        job[list] = nlohmann::json::array();
    for (std::size_t object = 0; object < kMostObjects && !reader.AtEnd(); ++object) {
        const int kind = reader.Pick(3);
        const CString name = reader.Name();
        const double number = reader.Number();
        if (kind == 0)
            job["variables"].push_back({{"name", Text(name)},
                                        {"value", IsYesNoName(name) ? nlohmann::json(number > 0)
                                                                    : nlohmann::json(number)}});
        else if (kind == 1)
            job["formulas"].push_back({{"name", Text(name)}, {"expression", Text(reader.Text())}});
        else
            job["tables"].push_back({{"name", Text(name)},
                                     {"rowSelector", Text(reader.Name())},
                                     {"columnSelector", Text(reader.Name())},
                                     {"rowLimits", {number, reader.Number()}},
                                     {"columnLimits", {number, reader.Number()}},
                                     {"cells",
                                      {{Text(reader.Name()), Text(reader.Name())},
                                       {Text(reader.Name()), Text(reader.Name())}}}});
    }
    return job.dump(1);
}

std::unique_ptr<JobDocument> Opened(const std::string& path, bool isStrict)
{
    try {
        return std::make_unique<JobDocument>(path, isStrict);
    } catch (const FileFault&) {
        return nullptr; // what is no job is refused so
    }
}

class Session {
public:
    Session(JobDocument& document, Reader actions, bool isStrict)
        : m_Document(document), m_Actions(actions), m_IsStrict(isStrict)
    {}

    void Run()
    {
        if (IsThorough())
            RequireSameAnew();
        else
            Told(m_Document.Objects(), false);
        for (int edit = 0; edit < kMostEdits && !m_Actions.AtEnd(); ++edit) {
            const std::string before = m_Document.Bytes();
            Act();
            if (IsThorough())
                RequireSameAnew();
            if (m_Document.Bytes() != before)
                RequireUndone(before);
        }
    }

private:
    void Act()
    {
        const int action = m_Actions.Pick(4);
        const auto count = static_cast<int>(m_Document.FormulaCount());
        if (count == 0)
            return;
        const auto formula = static_cast<std::size_t>(m_Actions.Pick(count));
        if (action == 0)
            return Rename(formula);
        if (action == 1)
            return static_cast<void>(m_Document.Remove(formula));
        if (action == 2)
            return StoreAgain(formula);
        m_Document.StoreExpression(formula, m_Actions.Name());
        m_Document.Refresh();
    }
    void Rename(std::size_t formula)
    {
        const CString name = m_Actions.Name();
        const std::string before = m_Document.Bytes();
        const std::size_t changes = m_Document.Effects(formula, name).size();
        try {
            Require(m_Document.Rename(formula, name) == changes, "the changes that were announced");
            Require(m_Document.Formula(formula).GetName() == name, "the new name");
        } catch (const FileFault&) {
            Require(m_Document.Bytes() == before, "a refusal that changes nothing",
                    [&] { return before; });
        }
    }
    // What an expression is stored as is read as the same expression.
    void StoreAgain(std::size_t formula)
    {
        CFmlaExpression& expression = m_Document.Formula(formula).GetExpression();
        const CString stored = expression.GetEncodedString();
        RequireSettledForm(stored);
        m_Document.StoreExpression(formula, stored);
        m_Document.Refresh();
    }

    // The bytes are the job: read from them by somebody else, all is told the same. A scan for the
    // texts alone may fail no more than one that calculates.
    void RequireSameAnew()
    {
        ::Job anew(ParseJob("anew", m_Document.Bytes()), m_IsStrict);
        const std::string told = Told(m_Document.Objects(), false);
        const std::string toldAnew = Told(anew, false);
        Require(told == toldAnew, "the same job", [&] { return told + '\n' + toldAnew; });
        Require(Told(anew, false) == told, "the same job calculated again", [&] { return told; });
        Told(anew, true);
    }
    void RequireUndone(const std::string& before)
    {
        const std::string after = m_Document.Bytes();
        Require(m_Document.Undo() && m_Document.Bytes() == before, "the file before",
                [&] { return before; });
        Require(m_Document.Redo() && m_Document.Bytes() == after, "the file after",
                [&] { return after; });
    }

    JobDocument& m_Document;
    Reader m_Actions;
    const bool m_IsStrict;
};

Reader ReaderOf(std::string_view input)
{
    return Reader(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

void Run(std::string_view input)
{
    const std::size_t lineEnd = std::min(input.find('\n'), input.size());
    Reader actions = ReaderOf(input.substr(0, lineEnd));
    const bool isStrict = actions.Pick(2) != 0;
    SpeakLanguage(actions.Pick(kSoundLanguages));
    const std::string_view rest = input.substr(std::min(lineEnd + 1, input.size()));
    const bool isComposed = actions.Pick(2) != 0;
    const MemoryFile file(isComposed ? Composed(ReaderOf(rest)) : std::string(rest));
    const std::unique_ptr<JobDocument> document = Opened(file.Path(), isStrict);
    if (!document)
        return;
    ::Job& job = document->Objects();
    if (job.Variables().size() + job.Formulas().size() + job.Tables().size() < kMostObjects)
        Session(*document, actions, isStrict).Run();
}

} // namespace
} // namespace tovo::fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    InitTovoFormulaDLL(0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    tovo::fuzz::BeginInput(bytes, count);
    tovo::fuzz::Run({reinterpret_cast<const char*>(bytes), count});
    return 0;
}
