#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include <TovoFormula/Module.h>
#include <TovoJob/TovoJob.h>

#include "JobSights.h"
#include "Oracles.h"
#include "Reader.h"

// Edits of jobs: what is calculated step by step is what a new job comes to, previews tell what
// happens, and undone to the start a job is what it was. In between, questions of all kinds.

namespace tovo::fuzz {
namespace {

constexpr int kMostActions = 40;
constexpr int kMostQuickActions = 12; // of an input that is not examined thoroughly
constexpr int kMostEdits = 4;         // of a transaction
constexpr std::size_t kMostObjects = 40;

// Names that the dictionary knows as references, and hostile ones.
constexpr const char* kNames[] = {"x", "y", "b?", "A", "B",  "C?",      "D",
                                  "T", "S", "x ", "",  "PI", "a)\\b(?", "\xF0\x9F\x98\x80"};
constexpr int kNameCount = static_cast<int>(std::size(kNames));

// Edits as a script has them.
class Script {
public:
    explicit Script(std::string_view text) : m_Reader(text) {}

    Reader& Read() { return m_Reader; }

    std::string Name()
    {
        const int name = m_Reader.Pick(kNameCount + 1);
        return name < kNameCount ? kNames[name] : m_Reader.NameBytes();
    }
    // Nine times out of ten one that is there.
    ObjectName Object(const Job& job)
    {
        const auto kind = static_cast<Kind>(m_Reader.Pick(3));
        const auto place = static_cast<std::size_t>(m_Reader.Pick(10));
        const auto at = [&](const auto& objects) {
            return place == 9 || objects.empty() ? Name() : objects[place % objects.size()].name;
        };
        return {kind, kind == Kind::Variable  ? at(job.Variables())
                      : kind == Kind::Formula ? at(job.Formulas())
                                              : at(job.Tables())};
    }
    Edit Any(const Job& job)
    {
        switch (m_Reader.Pick(9)) {
        case 0:
            return AddObject{NewVariable()};
        case 1:
            return AddObject{NewFormula()};
        case 2:
            return AddObject{NewTable(job), static_cast<std::size_t>(m_Reader.Pick(4))};
        case 3:
            return AddObject{NewFormula(), static_cast<std::size_t>(m_Reader.Pick(4))};
        case 4:
            return RenameObject{Object(job), Name()};
        case 5:
            return RemoveObject{Object(job), static_cast<References>(m_Reader.Pick(4)),
                                Object(job)};
        case 6:
            return ChangeJobValues{{m_Reader.Number(), m_Reader.Number(), m_Reader.Number()}};
        default:
            return Change(job);
        }
    }

private:
    Variable NewVariable()
    {
        Variable variable{Name(), m_Reader.Number(), {}, {}, {}};
        if (m_Reader.Pick(8) == 7)
            variable.source = [value = variable.value] { return value; };
        return variable;
    }
    Formula NewFormula() { return {Name(), m_Reader.TextBytes(), {}, {}, nullptr}; }
    Element AnyElement(const Job& job)
    {
        const int kind = m_Reader.Pick(8);
        if (kind == 0)
            return {};
        if (kind == 1)
            return m_Reader.Pick(2) == 1;
        return kind < 4 ? Element(m_Reader.Number()) : Element(Object(job));
    }
    Table NewTable(const Job& job)
    {
        Table table;
        table.name = Name();
        table.rowSelector = AnyElement(job);
        const int rows = 2 + m_Reader.Pick(2);
        const int columns = 1 + m_Reader.Pick(3);
        for (int row = 0; row < rows; ++row) {
            table.rowLimits.push_back(row);
            auto& cells = table.cells.emplace_back(static_cast<std::size_t>(columns));
            for (Element& cell : cells)
                cell = AnyElement(job);
        }
        if (columns > 1) {
            table.columnSelector = AnyElement(job);
            for (int column = 0; column < columns; ++column)
                table.columnLimits.push_back(column);
        }
        return table;
    }

    // Another value, text, unit, note, cell, selector or limit of an object that is there.
    Edit Change(const Job& job)
    {
        const ObjectName object = Object(job);
        const int part = m_Reader.Pick(6);
        if (const Variable* const found =
                Found(job.FindVariable(object.name), object, Kind::Variable))
            return Changed(*found, part,
                           [&](Variable& variable) { variable.value = m_Reader.Number(); });
        if (const Formula* const found = Found(job.FindFormula(object.name), object, Kind::Formula))
            return Changed(*found, part,
                           [&](Formula& formula) { formula.expression = m_Reader.TextBytes(); });
        if (const Table* const found = Found(job.FindTable(object.name), object, Kind::Table))
            return Changed(*found, part, [&](Table& table) { ChangePart(table, job); });
        return ChangeObject{Variable{object.name, m_Reader.Number(), {}, {}, {}}};
    }
    template <typename Any>
    static const Any* Found(const Any* any, const ObjectName& object, Kind kind)
    {
        return object.kind == kind ? any : nullptr;
    }
    template <typename Any, typename ChangeIt>
    Edit Changed(Any object, int part, ChangeIt change)
    {
        if (part == 0)
            object.unit = m_Reader.TextBytes();
        else if (part == 1)
            object.note = m_Reader.TextBytes();
        else
            change(object);
        return ChangeObject{std::move(object)};
    }
    void ChangePart(Table& table, const Job& job)
    {
        const int part = m_Reader.Pick(6);
        const auto place = static_cast<std::size_t>(m_Reader.Pick(10));
        auto& row = table.cells[place % table.cells.size()];
        if (part == 0)
            table.rowSelector = AnyElement(job);
        else if (part == 1)
            table.columnSelector = AnyElement(job);
        else if (part == 2)
            table.rowLimits[place % table.rowLimits.size()] = m_Reader.Number();
        else if (part == 3)
            row.push_back(AnyElement(job));
        else
            row[place / table.cells.size() % row.size()] = AnyElement(job);
    }

    Reader m_Reader;
};

std::uint64_t Bits(const std::optional<double>& value)
{
    // That of no value is that of a NaN, which no value is.
    return value ? std::bit_cast<std::uint64_t>(*value) : ~std::uint64_t{0};
}

std::string Shown(const std::optional<double>& value)
{
    return value ? fuzz::Shown(*value) : "none";
}

using Values = std::map<ObjectName, std::uint64_t>;

Job StartOf(int choice)
{
    Job job(OptionsOf(choice % kOptions));
    if (choice < kOptions)
        return job;
    job.AddVariable("x", 1.5);
    job.AddVariable("y", 2);
    job.AddVariable("b?", 1);
    job.AddFormula("A", "V(x)*V(y)");
    job.AddFormula("B", "IF(V(b?),F(A),T(T))+1");
    job.AddFormula("C?", "F(B)>V(x)");
    Table table;
    table.name = "T";
    table.rowSelector = VariableNamed("x");
    table.rowLimits = {1, 2};
    table.cells = {{2.5}, {FormulaNamed("A")}};
    job.AddTable(table);
    return Job(job); // without a history
}

// One job, and everything that happens to it.
class Session {
public:
    Session(Script script, int start) : m_Script(script), m_Job(StartOf(start)) {}

    void Run()
    {
        const std::string start = WriteJob(m_Job);
        const int most = IsThorough() ? kMostActions : kMostQuickActions;
        for (int action = 0; action < most && !m_Script.Read().AtEnd(); ++action) {
            Act();
            if (Count() > kMostObjects)
                break;
            if (IsThorough())
                Calculate();
        }
        RequireSameAnew(Calculate());
        const std::string end = WriteJob(m_Job);
        while (m_Job.Redo())
            ;
        const std::string last = WriteJob(m_Job);
        while (m_Job.Undo())
            ;
        Require(WriteJob(m_Job) == start, "the start", [&] { return start; });
        if (IsThorough())
            Calculate();
        while (m_Job.Redo())
            ;
        Require(WriteJob(m_Job) == last, "the end", [&] { return last; });
        if (last == end && IsThorough())
            Calculate();
    }

private:
    std::size_t Count() const
    {
        return m_Job.Variables().size() + m_Job.Formulas().size() + m_Job.Tables().size();
    }

    void Act()
    {
        switch (m_Script.Read().Pick(18)) {
        case 0:
            return static_cast<void>(m_Job.Undo());
        case 1:
            return static_cast<void>(m_Job.Redo());
        case 2:
            return m_Job.SetOptions(OptionsOf(m_Script.Read().Pick(kOptions)));
        case 3:
            return Transact();
        case 4:
            return LookAhead();
        case 5:
            return Mend();
        case 6:
            return Resolve();
        case 7:
            return AskAboutTyping();
        case 8:
            return AskAbout(m_Script.Object(m_Job));
        case 9:
            return static_cast<void>(Calculate());
        default:
            return static_cast<void>(m_Job.Apply(m_Script.Any(m_Job)));
        }
    }

    Report Calculate()
    {
        Report report = m_Job.Calculate();
        RequireSoundFaults(m_Job, report);
        RequireNews(report);
        if (IsThorough())
            RequireSameAnew(report);
        return report;
    }
    // What was calculated step by step is what a new job comes to.
    void RequireSameAnew(const Report& report) const
    {
        Job fresh(m_Job);
        RequireSame("the same as a new job", report, fresh.Calculate());
    }
    // The changes lead from the last values to the present ones.
    void RequireNews(const Report& report)
    {
        for (const ValueChange& change : report.changes.values) {
            const auto known = m_Told.find(change.object);
            Require(Bits(change.before) == (known == m_Told.end() ? Bits({}) : known->second),
                    "the value that was told before", [&] { return change.object.name; });
            Require(Bits(change.before) != Bits(change.after), "another value",
                    [&] { return change.object.name; });
            m_Told[change.object] = Bits(change.after);
        }
        for (const Outcome& outcome : report.outcomes) {
            const auto known = m_Told.find(outcome.object);
            Require(Bits(outcome.value) == (known == m_Told.end() ? Bits({}) : known->second),
                    "a change that is told", [&] { return outcome.object.name; });
        }
    }

    std::vector<Edit> Edits()
    {
        std::vector<Edit> edits;
        for (int count = 1 + m_Script.Read().Pick(kMostEdits); count > 0; --count)
            edits.push_back(m_Script.Any(m_Job));
        return edits;
    }
    void Transact()
    {
        const std::vector<Edit> edits = Edits();
        const std::string before = WriteJob(m_Job);
        if (!m_Job.Apply(edits))
            Require(WriteJob(m_Job) == before, "a refusal that changes nothing",
                    [&] { return before; });
    }
    void LookAhead()
    {
        const std::vector<Edit> edits = Edits();
        const Report before = Calculate();
        const std::string bytes = WriteJob(m_Job);
        const bool couldUndo = m_Job.CanUndo();
        const bool couldRedo = m_Job.CanRedo();
        const Result<Preview> preview = m_Job.PreviewOf(edits);
        Require(WriteJob(m_Job) == bytes && m_Job.CanUndo() == couldUndo &&
                    m_Job.CanRedo() == couldRedo,
                "a preview that changes nothing", [&] { return bytes; });
        const Report still = Calculate();
        RequireSame("what it was before the preview", before, still);
        Require(still.changes.values.empty(), "no news from a preview");
        const Result<void> done = m_Job.Apply(edits);
        Require(bool(done) == bool(preview), "a preview of what happens",
                [&] { return (done ? preview.Why() : done.Why()).text; });
        if (!done)
            return Require(done.Why().text == preview.Why().text, "the same refusal",
                           [&] { return done.Why().text + '\n' + preview.Why().text; });
        const Report after = Calculate();
        const std::set<std::string> announced = ShownAll(preview.Value().values);
        const std::set<std::string> told = ShownAll(after.changes.values);
        Require(announced == told, "the values of the preview", [&] {
            return Joined(announced) + "--\n" + Joined(told) + bytes + WriteJob(m_Job);
        });
        RequireAmong(preview.Value().newFaults, after.faults);
        RequireAmong(preview.Value().clearedFaults, before.faults);
        Require(WriteJob(m_Job) == bytes || !preview.Value().places.empty(),
                "the places that are written", [&] { return bytes + WriteJob(m_Job); });
    }
    static std::set<std::string> ShownAll(const std::vector<ValueChange>& changes)
    {
        std::set<std::string> all;
        for (const ValueChange& change : changes)
            all.insert(WriteReference(change.object) + ": " + Shown(change.before) + " -> " +
                       Shown(change.after) + '\n');
        return all;
    }
    static std::string Joined(const std::set<std::string>& lines)
    {
        std::string text;
        for (const std::string& line : lines)
            text += line;
        return text;
    }
    static void RequireAmong(const std::vector<Fault>& faults, const std::vector<Fault>& all)
    {
        for (const Fault& fault : faults)
            Require(std::any_of(all.begin(), all.end(),
                                [&](const Fault& other) {
                                    return other.object == fault.object &&
                                           other.message == fault.message &&
                                           other.text == fault.text;
                                }),
                    "a fault that is there", [&] { return fault.object.name + fault.text; });
    }

    // Applies a fix of a fault.
    void Mend()
    {
        const std::vector<Fault> faults = Calculate().faults;
        const auto choice = static_cast<std::size_t>(m_Script.Read().Pick(10));
        if (faults.empty())
            return;
        const Fault& fault = faults[choice % faults.size()];
        const std::vector<Fix> fixes = FixesFor(fault, m_Job);
        const std::string text = m_Job.TextOf(fault.object);
        for (const Fix& fix : fixes)
            Require(fix.edits.empty() || Edited(text, fix.edits) == fix.text,
                    "the text after the edits of a fix", [&] { return text + '\n' + fix.text; });
        if (fixes.empty())
            return;
        const Fix& fix = fixes[choice % fixes.size()];
        const Result<void> done = m_Job.Apply(fix.change);
        Require(bool(done), "a fix that can be applied", [&] { return done.Why().text; });
        Require(fix.edits.empty() || IsSame(m_Job.TextOf(fault.object), fix.text),
                "the text that a fix announced",
                [&] { return text + '\n' + fix.text + '\n' + m_Job.TextOf(fault.object); });
        const std::vector<Fault> left = Calculate().faults;
        for (const Fault& other : left)
            Require(other.object != fault.object ||
                        (!fix.isSound &&
                         (other.message != fault.message || other.offender != fault.offender ||
                          other.place.span != fault.place.span)),
                    "a fix that helps", [&] { return text + '\n' + fix.text + other.text; });
    }
    // But for blanks, since a word stands apart from a reference in the stored form.
    static bool IsSame(std::string text, std::string other)
    {
        std::erase(text, ' ');
        std::erase(other, ' ');
        return text == other;
    }
    static std::string Edited(std::string text, const std::vector<TextEdit>& edits)
    {
        for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
            RequireInside(edit->span, text);
            text.replace(edit->span.begin.utf8, edit->span.end.utf8 - edit->span.begin.utf8,
                         edit->replacement);
        }
        return text;
    }

    void Resolve()
    {
        const std::string text = m_Script.Read().TextBytes();
        const Result<TypedExpression> typed = ResolveTyped(text, m_Job);
        if (!typed)
            return;
        for (const TypedReference& reference : typed.Value().references)
            RequireInside(reference.span, typed.Value().text);
        for (const UnresolvedWord& word : typed.Value().unresolved)
            RequireInside(word.span, text);
        const ObjectName formula = FormulaNamed("typed");
        if (!m_Job.Has(formula))
            m_Job.AddFormula(formula.name, "1").Value();
        m_Job.SetExpression(formula.name, typed.Value().expression).Value();
        Require(m_Job.TextOf(formula) == typed.Value().text, "the text as it is shown",
                [&] { return typed.Value().text + '\n' + m_Job.TextOf(formula); });
    }
    void AskAboutTyping()
    {
        const auto cursor = static_cast<std::size_t>(m_Script.Read().Pick(36));
        const std::string formula = m_Script.Name();
        const std::string text = m_Script.Read().TextBytes();
        const std::vector<Completion> completions =
            Complete(text, cursor, m_Job, {formula, std::size_t{7}});
        Require(completions.size() <= 7, "no more than was asked for");
        for (const Completion& completion : completions)
            RequireInside(completion.span, text);
        const std::optional<Signature> signature = SignatureAt(text, cursor, m_Job);
        if (!signature)
            return;
        RequireInside(signature->call, text);
        for (const Span& parameter : signature->parameters)
            RequireInside(parameter, signature->text);
        Require(signature->function &&
                    signature->parameter.value_or(0) < signature->parameters.size(),
                "a parameter that is there", [&] { return signature->text; });
    }

    void AskAbout(const ObjectName& object)
    {
        const Result<Explanation> explanation = Explain(m_Job, object);
        Require(bool(explanation) == m_Job.Has(object), "an explanation of what is there",
                [&] { return object.name; });
        if (explanation)
            RequireTrue(explanation.Value());
        PlaceCheck places(m_Job);
        for (const Dependency& dependency : Uses(m_Job, object)) {
            for (const Place& place : dependency.places)
                places.RequireSound(place);
            const std::vector<Dependency> users = UsedBy(m_Job, dependency.object);
            Require(std::any_of(users.begin(), users.end(),
                                [&](const Dependency& user) { return user.object == object; }),
                    "a user of what it uses", [&] { return dependency.object.name; });
        }
        for (const Dependency& user : UsedBy(m_Job, object, Reach::Transitive))
            for (const Place& place : user.places)
                places.RequireSound(place);
        if (IsThorough())
            RequireOrder();
    }
    void RequireTrue(const Explanation& explanation)
    {
        for (const ExplainedObject& explained : explanation.objects) {
            Require(Bits(explained.value) == Bits(m_Job.ValueOf(explained.object)),
                    "the value that is explained", [&] { return explained.object.name; });
            for (const Step& step : explained.steps)
                RequireInside(step.span, explained.text);
            // The first step is the whole.
            Require(explained.steps.empty() ||
                        Bits(explained.steps.front().value) == Bits(explained.value),
                    "the value of the steps", [&] { return explained.text; });
        }
        Require(!WriteText(explanation).empty() && nlohmann::json::accept(WriteJson(explanation)),
                "an explanation in words");
    }
    // Each object stands after what it uses.
    void RequireOrder()
    {
        std::set<ObjectName> done;
        for (const ObjectName& object : Order(m_Job)) {
            for (const Dependency& used : Uses(m_Job, object))
                Require(used.object.kind == Kind::Variable || used.object.kind == Kind::JobValue ||
                            !used.isDefined || done.contains(used.object),
                        "an order", [&] { return object.name + ' ' + used.object.name; });
            done.insert(object);
        }
        for (const std::vector<Place>& ring : Rings(m_Job))
            for (const Place& place : ring)
                Require(!done.contains(place.object), "an order without rings",
                        [&] { return place.object.name; });
        Unused(m_Job);
        WriteGraph(m_Job);
    }

    Script m_Script;
    Job m_Job;
    Values m_Told; // of each object that a report has told of
};

void Run(std::string_view input)
{
    Script script(input);
    const int start = script.Read().Pick(2 * kOptions);
    SpeakLanguage(script.Read().Pick(kSoundLanguages));
    Session(script, start).Run();
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
