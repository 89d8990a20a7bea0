#include <TovoJob/Job.h>

#include <utility>

#include <TovoFormula/CalculationInterfaces.h>

#include "EditWork.h"
#include "Inside.h"

namespace tovo {

using job::Inside;

Job::Job(const JobOptions& options) : m_Inside(std::make_unique<Inside>(options))
{}

Job::Job(const Job& other) : Job(other.Options())
{
    m_Inside->Take({other.m_Inside->content.Values(), other.m_Inside->content.Values(), 0});
    const auto take = [&](const auto& objects) {
        std::size_t position = 0;
        for (const auto& object : objects.All())
            m_Inside->Take({std::decay_t<decltype(object)>(), object, position++});
    };
    take(other.m_Inside->content.Variables());
    take(other.m_Inside->content.Formulas());
    take(other.m_Inside->content.Tables());
}

Job::Job(Job&& other) noexcept = default;

Job& Job::operator=(const Job& other)
{
    if (this != &other)
        *this = Job(other);
    return *this;
}

Job& Job::operator=(Job&& other) noexcept = default;

Job::~Job() = default;

const JobOptions& Job::Options() const
{
    return m_Inside->options;
}

void Job::SetOptions(const JobOptions& options)
{
    m_Inside->options = options;
    m_Inside->calculation.SetOptions(options);
}

Result<void> Job::AddVariable(std::string name, double value, std::string unit)
{
    return Apply(AddObject{Variable{std::move(name), value, std::move(unit), {}, {}}});
}

Result<void> Job::AddVariable(std::string name, std::function<double()> source, std::string unit)
{
    return Apply(AddObject{Variable{std::move(name), 0.0, std::move(unit), {}, std::move(source)}});
}

Result<void> Job::AddFormula(std::string name, std::string expression, std::string unit)
{
    return Apply(
        AddObject{Formula{std::move(name), std::move(expression), std::move(unit), {}, nullptr}});
}

Result<void> Job::AddTable(Table table)
{
    return Apply(AddObject{std::move(table)});
}

Result<void> Job::Link(IVarObj& variable)
{
    return AddVariable(
        variable.GetName().ToUtf8(), [&variable] { return variable.GetValue(); },
        variable.GetUnit(0).ToUtf8());
}

Result<void> Job::Link(IFormulaObj& formula)
{
    return Apply(AddObject{
        Formula{formula.GetName().ToUtf8(), {}, formula.GetUnit().ToUtf8(), {}, &formula}});
}

Result<void> Job::Link(IFormulaTableObj& table)
{
    Table linked;
    linked.name = table.GetName().ToUtf8();
    linked.linked = &table;
    return Apply(AddObject{std::move(linked)});
}

Result<void> Job::SetValue(std::string_view variable, double value)
{
    const Variable* const found = FindVariable(variable);
    if (!found)
        return job::UnknownName(VariableNamed(std::string(variable)));
    Variable changed = *found;
    changed.value = value;
    changed.source = nullptr;
    return Apply(ChangeObject{std::move(changed)});
}

Result<void> Job::SetExpression(std::string_view formula, std::string expression)
{
    const Formula* const found = FindFormula(formula);
    if (!found)
        return job::UnknownName(FormulaNamed(std::string(formula)));
    Formula changed = *found;
    changed.expression = std::move(expression);
    changed.linked = nullptr;
    return Apply(ChangeObject{std::move(changed)});
}

Result<void> Job::SetJobValues(const JobValues& values)
{
    return Apply(ChangeJobValues{values});
}

Result<void> Job::Rename(const ObjectName& object, std::string newName)
{
    return Apply(RenameObject{object, std::move(newName)});
}

Result<void> Job::Remove(const ObjectName& object, References references)
{
    return Apply(RemoveObject{object, references, {}});
}

Result<void> Job::Apply(Edit edit)
{
    return Apply(std::span<const Edit>(&edit, 1));
}

Result<void> Job::Apply(std::span<const Edit> edits)
{
    return job::EditWork(*m_Inside).Apply(edits);
}

Result<Preview> Job::PreviewOf(std::span<const Edit> edits)
{
    return job::EditWork(*m_Inside).PreviewOf(edits);
}

bool Job::Undo()
{
    return job::EditWork(*m_Inside).Undo();
}

bool Job::Redo()
{
    return job::EditWork(*m_Inside).Redo();
}

bool Job::CanUndo() const
{
    return !m_Inside->done.empty();
}

bool Job::CanRedo() const
{
    return !m_Inside->undone.empty();
}

ObjectList<Variable> Job::Variables() const
{
    return ObjectList<Variable>(m_Inside->content.Variables().All());
}

ObjectList<Formula> Job::Formulas() const
{
    return ObjectList<Formula>(m_Inside->content.Formulas().All());
}

ObjectList<Table> Job::Tables() const
{
    return ObjectList<Table>(m_Inside->content.Tables().All());
}

const JobValues& Job::Values() const
{
    return *m_Inside->content.Values();
}

const Variable* Job::FindVariable(std::string_view name) const
{
    return m_Inside->content.Variables().Find(name).get();
}

const Formula* Job::FindFormula(std::string_view name) const
{
    return m_Inside->content.Formulas().Find(name).get();
}

const Table* Job::FindTable(std::string_view name) const
{
    return m_Inside->content.Tables().Find(name).get();
}

bool Job::Has(const ObjectName& object) const
{
    return m_Inside->content.Has(object);
}

std::string Job::TextOf(const ObjectName& object) const
{
    const CFmlaExpression* const expression = m_Inside->calculation.ExpressionOf(object);
    return expression ? expression->GetTextStr().ToUtf8() : std::string();
}

Report Job::Calculate(const Progress& progress)
{
    Report report;
    report.changes = Update(progress);
    const auto list = [&](const auto& objects) {
        for (const auto& object : objects) {
            const ObjectName name = job::NameOf(object);
            report.outcomes.push_back({name, object.unit, IsYesNoName(name.name), ValueOf(name)});
        }
    };
    report.outcomes.reserve(m_Inside->content.Count());
    list(Variables());
    list(Formulas());
    list(Tables());
    report.faults = Faults();
    return report;
}

Changes Job::Update(const Progress& progress)
{
    return m_Inside->Update(progress);
}

std::optional<double> Job::ValueOf(const ObjectName& object) const
{
    return m_Inside->calculation.ValueOf(object);
}

std::vector<Fault> Job::Faults() const
{
    return m_Inside->calculation.Faults(m_Inside->content);
}

std::optional<Failure> Job::FailureOf(const ObjectName& object) const
{
    return m_Inside->calculation.FailureOf(object);
}

} // namespace tovo
