#include "Calculation.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "TableParts.h"

namespace tovo::job {

namespace {

constexpr std::array<std::string_view, 3> kJobValues = {"DURATION", "JOBSIZE", "QUANTITY"};

// What is referred to in a text, with whether that is in a condition.
std::vector<std::pair<ObjectName, bool>> ReferencesIn(ScannedText scanned)
{
    std::vector<std::pair<ObjectName, bool>> references;
    for (Token& token : scanned.tokens) {
        if (!token.object.name.empty())
            references.emplace_back(std::move(token.object), token.inCondition);
    }
    return references;
}

// A selector decides which cell is read, as a condition decides which branch.
std::vector<std::pair<ObjectName, bool>> ReferencesIn(const Table& table)
{
    std::vector<std::pair<ObjectName, bool>> references;
    ForEachElement(table, [&](const TablePart& part, const Element& element) {
        if (const auto* const object = std::get_if<ObjectName>(&element))
            references.emplace_back(*object, part.what != TablePart::What::Cell);
    });
    return references;
}

bool IsNull(const Record& record)
{
    return std::visit([](const auto& object) { return object == nullptr; }, record);
}

} // namespace

Calculation::Calculation(const JobOptions& options)
{
    for (const std::string_view word : kJobValues)
        Enter({Kind::JobValue, std::string(word)});
    SetOptions(options);
}

void Calculation::SetRecord(const ObjectName& object, const Record& record)
{
    if (const auto* const values = std::get_if<Shared<JobValues>>(&record))
        return Put(0, *values);
    const NodeId id = Enter(object);
    if (IsNull(record))
        TakeOut(id);
    else
        std::visit([&](const auto& known) { Put(id, known); }, record);
    m_Nodes[id].record = record;
}

void Calculation::SetOptions(const JobOptions& options)
{
    m_Options = options;
    m_Set.SetReportFcnDomainErrors(options.domainErrorsAreFaults ? 1 : 0);
    for (NodeId id = 0; id < m_Nodes.size(); ++id)
        MarkDirty(id);
}

std::optional<double> Calculation::ValueOf(const ObjectName& object) const
{
    const auto id = m_Network.Find(object);
    return id ? ValueAt(*id) : std::nullopt;
}

CFmlaExpression* Calculation::ExpressionOf(const ObjectName& object) const
{
    const auto id = m_Network.Find(object);
    const auto* const formula =
        id ? std::get_if<std::unique_ptr<EngineFormula>>(&m_Nodes[*id].object) : nullptr;
    return formula ? &(*formula)->GetExpression() : nullptr;
}

EngineTable* Calculation::TableOf(const ObjectName& object) const
{
    const auto id = m_Network.Find(object);
    const auto* const table =
        id ? std::get_if<std::unique_ptr<EngineTable>>(&m_Nodes[*id].object) : nullptr;
    return table ? table->get() : nullptr;
}

NodeId Calculation::Enter(const ObjectName& object)
{
    const NodeId id = m_Network.Enter(object);
    if (id == m_Nodes.size()) {
        m_Nodes.emplace_back();
        m_Turns.emplace_back();
        MarkDirty(id);
    }
    return id;
}

void Calculation::Put(NodeId id, const Shared<Variable>& record)
{
    EngineObject& object = m_Nodes[id].object;
    if (auto* const variable = std::get_if<std::unique_ptr<VariableImpl>>(&object)) {
        (*variable)->SetValue(record->value);
    } else {
        auto made = MakeEngineVariable(m_Set, *record);
        m_Set.AddVariable(made.get());
        object = std::move(made);
    }
    SetSourced(id, record->source != nullptr);
    MarkDirty(id);
}

void Calculation::Put(NodeId id, const Shared<Formula>& record)
{
    Node& node = m_Nodes[id];
    const auto* const before = std::get_if<Shared<Formula>>(&node.record);
    // Another unit or note changes no value.
    if (before && *before && (*before)->expression == record->expression &&
        (*before)->linked == record->linked)
        return;
    auto made = std::make_unique<EngineFormula>(m_Set, *record);
    ScannedText scanned = Scan(made->GetExpression());
    node.steps = scanned.tokens.size();
    node.nesting = scanned.nesting;
    node.length = static_cast<std::size_t>(made->GetExpression().GetTextStr().GetLength());
    m_Set.AddFormula(made.get());
    node.object = std::move(made);
    SetSourced(id, record->linked != nullptr);
    SetUses(id, ReferencesIn(std::move(scanned)));
    MarkDirty(id);
}

void Calculation::Put(NodeId id, const Shared<Table>& record)
{
    Node& node = m_Nodes[id];
    auto made = std::make_unique<EngineTable>(m_Set, record);
    node.steps = record->cells.size() * (record->cells.empty() ? 0 : record->cells[0].size());
    m_Set.AddFormulaTable(made.get());
    node.object = std::move(made);
    SetSourced(id, record->linked != nullptr);
    SetUses(id, ReferencesIn(*record));
    MarkDirty(id);
}

void Calculation::Put(NodeId, const Shared<JobValues>& record)
{
    m_Set.SetDuration(record->duration);
    m_Set.SetJobSize(record->jobSize);
    m_Set.SetQuantity(record->quantity);
    for (NodeId id = 0; id < kJobValues.size(); ++id)
        MarkDirty(id);
}

void Calculation::TakeOut(NodeId id)
{
    Node& node = m_Nodes[id];
    const CString name = Wide(m_Network.NameOf(id).name);
    switch (m_Network.NameOf(id).kind) {
    case Kind::Variable:
        m_Set.RemoveVariable(name);
        break;
    case Kind::Formula:
        m_Set.RemoveFormula(name);
        break;
    case Kind::Table:
        m_Set.RemoveFormulaTable(name);
        break;
    case Kind::JobValue:
        break;
    }
    node.object = {};
    SetSourced(id, false);
    m_Network.SetUses(id, {});
    MarkDirty(id);
}

// Each object once, and in the order in which it is met first.
void Calculation::SetUses(NodeId id, const std::vector<std::pair<ObjectName, bool>>& references)
{
    std::vector<Use> uses;
    uses.reserve(references.size());
    for (const auto& [object, inCondition] : references)
        uses.push_back({Enter(object), !inCondition, inCondition});
    m_PlaceInUses.resize(m_Nodes.size(), kNoPlace);
    std::size_t count = 0;
    for (const Use& use : uses) {
        std::size_t& place = m_PlaceInUses[use.node];
        if (place == kNoPlace)
            uses[place = count++] = use;
        uses[place].asValue |= use.asValue;
        uses[place].inCondition |= use.inCondition;
    }
    uses.resize(count);
    for (const Use& use : uses)
        m_PlaceInUses[use.node] = kNoPlace;
    m_Network.SetUses(id, uses);
}

// Most jobs have none, so that taking one out may look at all of them.
void Calculation::SetSourced(NodeId id, bool isSourced)
{
    const bool wasSourced = std::exchange(m_Nodes[id].isSourced, isSourced);
    if (isSourced && !wasSourced)
        m_Sourced.push_back(id);
    else if (wasSourced && !isSourced)
        std::erase(m_Sourced, id);
}

void Calculation::MarkDirty(NodeId id)
{
    Turn& turn = m_Turns[id];
    turn.verdict = Verdict::Pending;
    if (!turn.isDirty)
        m_Dirty.push_back(id);
    turn.isDirty = true;
}

std::optional<double> Calculation::ValueAt(NodeId id) const
{
    if (!IsDefined(id) || !HasValue(id))
        return std::nullopt;
    return m_Nodes[id].value;
}

bool Calculation::IsDefined(NodeId id) const
{
    return m_Network.NameOf(id).kind == Kind::JobValue || !IsNull(m_Nodes[id].record);
}

} // namespace tovo::job
