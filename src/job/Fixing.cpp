#include <TovoJob/Fixes.h>

#include <algorithm>
#include <span>
#include <string>
#include <unordered_set>
#include <utility>
#include <variant>

#include <TovoFormula/FmlaExprBase.h>
#include <TovoFormula/MessageIds.h>

#include "Access.h"
#include "ExpressionText.h"
#include "FixCandidates.h"
#include "Messages.h"
#include "Rewriting.h"
#include "TextOffsets.h"

namespace tovo {

using namespace job;

namespace {

constexpr std::size_t kMostTried = 40;
constexpr std::size_t kMostOffered = 8;

// A job in which corrections of one object are tried: the object, with all that it depends on.
class Trial {
public:
    Trial(const Job& job, const ObjectName& object)
        : m_Source(Access::InsideOf(job)), m_Object(object), m_Copy(job.Options())
    {
        m_Copy.SetJobValues(job.Values()).Value();
        Bring(object);
        m_Before = FaultsOfObject();
    }

    bool Has(const Fault& fault) const
    {
        return std::any_of(m_Before.begin(), m_Before.end(),
                           [&](const Fault& other) { return IsSame(fault, other); });
    }

    // Whether the fault is gone after the change, whose last edit ends there in the new text.
    bool Clears(const Fault& fault, const Edit& change, std::span<const ObjectName> referred,
                std::size_t end, bool& isSound)
    {
        for (const ObjectName& object : referred)
            Bring(object);
        if (!m_Copy.Apply(change))
            return false;
        const std::vector<Fault> after = FaultsOfObject();
        const auto failure = m_Copy.FailureOf(m_Object);
        const bool isOnRing = failure && failure->message == MSG_JOB_RING;
        m_Copy.Undo();
        isSound = after.empty();
        return !isOnRing && std::all_of(after.begin(), after.end(), [&](const Fault& other) {
            return IsAllowed(other, fault, end);
        });
    }

private:
    static bool IsSame(const Fault& a, const Fault& b)
    {
        return a.message == b.message && a.offender == b.offender && a.place.span == b.place.span &&
               a.place.part == b.place.part;
    }

    // A fault that may remain: one that is found later, or that was there and is not the one.
    bool IsAllowed(const Fault& other, const Fault& fault, std::size_t end) const
    {
        const bool isAlike = other.message == fault.message && other.offender == fault.offender;
        if (IsDomainMessage(other.message) || other.message == MSG_WRONG_RESULT_TYPE)
            return other.message != fault.message;
        if (MissingObject(other) || !other.place.span || !fault.place.span)
            return !isAlike && Has(other.message, other.offender);
        const std::size_t begin = other.place.span->begin.utf16;
        if (isAlike)
            return begin >= end && begin > fault.place.span->begin.utf16;
        return begin >= end || Has(other.message, other.offender);
    }
    bool Has(unsigned int message, const std::string& offender) const
    {
        return std::any_of(m_Before.begin(), m_Before.end(), [&](const Fault& fault) {
            return fault.message == message && fault.offender == offender;
        });
    }

    std::vector<Fault> FaultsOfObject()
    {
        m_Copy.Update();
        return Access::InsideOf(m_Copy).calculation.OwnFaults(m_Object);
    }

    // Copies an object with all that it depends on, as far as that is not there yet.
    void Bring(const ObjectName& object)
    {
        const Network& network = m_Source.calculation.Uses();
        std::vector<ObjectName> open = {object};
        while (!open.empty()) {
            const ObjectName next = std::move(open.back());
            open.pop_back();
            if (m_Copy.Has(next) || !Copy(m_Source.content.Find(next)))
                continue;
            if (const auto node = network.Find(next))
                network.ForEachUse(
                    *node, [&](const Use& use) { open.push_back(network.NameOf(use.node)); });
        }
    }

    // False for an object that is not there.
    bool Copy(const Record& record)
    {
        if (const auto* const variable = std::get_if<Shared<Variable>>(&record);
            variable && *variable) {
            Variable copy = **variable;
            if (copy.source)
                copy.source = [value = ValueOf(copy.name)] { return value; };
            return static_cast<bool>(m_Copy.Apply(AddObject{std::move(copy), {}}));
        }
        if (const auto* const formula = std::get_if<Shared<Formula>>(&record); formula && *formula)
            return static_cast<bool>(m_Copy.Apply(AddObject{**formula, {}}));
        if (const auto* const table = std::get_if<Shared<Table>>(&record); table && *table)
            return static_cast<bool>(m_Copy.Apply(AddObject{**table, {}}));
        return false;
    }
    double ValueOf(const std::string& variable) const
    {
        return m_Source.calculation.ValueOf(VariableNamed(variable)).value_or(0.0);
    }

    const Inside& m_Source;
    const ObjectName m_Object;
    Job m_Copy;
    std::vector<Fault> m_Before;
};

// The edits, and where the last one ends in the text after all of them.
struct Edited {
    std::vector<TextEdit> edits;
    std::size_t end = 0;
};

Edited EditsOf(WideView text, std::span<const TextChange> changes)
{
    const TextOffsets offsets(text, CString(text).ToUtf8());
    Edited edited;
    std::ptrdiff_t growth = 0;
    for (const TextChange& change : changes) {
        const CString replacement =
            change.reference ? u" " + Wide(change.reference->name) + u" " : change.text;
        edited.edits.push_back({offsets.Between(static_cast<std::size_t>(change.begin),
                                                static_cast<std::size_t>(change.end)),
                                replacement.ToUtf8()});
        growth += replacement.GetLength() - (change.end - change.begin);
        edited.end = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, change.end + growth));
    }
    return edited;
}

std::vector<ObjectName> ReferredBy(std::span<const TextChange> changes)
{
    std::vector<ObjectName> objects;
    for (const TextChange& change : changes) {
        if (change.reference)
            objects.push_back(*change.reference);
    }
    return objects;
}

std::u16string WithoutBlanks(const CString& text)
{
    std::u16string rest(text.View());
    std::erase(rest, u' ');
    return rest;
}

// Whether the job shows the text once it is stored; blanks beside references may differ. It does
// not where the text takes on a meaning: "V()" becomes a reference.
bool IsShownAs(const std::string& expression, const CString& text)
{
    CFmlaExprBase stored;
    stored.SetFromEncodedString(Wide(expression));
    return WithoutBlanks(stored.GetTextStr()) == WithoutBlanks(text);
}

class FixFinder {
public:
    FixFinder(const Fault& fault, const Job& job)
        : m_Fault(fault), m_Job(job), m_Names(job), m_Trial(job, fault.object)
    {}

    std::vector<Fix> Find()
    {
        // Numbers that have no result are nobody's slip of the pen.
        if (IsDomainMessage(m_Fault.message) || !m_Trial.Has(m_Fault))
            return {};
        if (m_Fault.object.kind == Kind::Formula)
            FixFormula();
        else if (m_Fault.object.kind == Kind::Table)
            FixTable();
        std::stable_partition(m_Fixes.begin(), m_Fixes.end(),
                              [](const Fix& fix) { return fix.isSound; });
        m_Fixes.resize(std::min(m_Fixes.size(), kMostOffered));
        return std::move(m_Fixes);
    }

private:
    void FixFormula()
    {
        const Inside& inside = Access::InsideOf(m_Job);
        const CFmlaExpression* const expression = inside.calculation.ExpressionOf(m_Fault.object);
        if (!expression)
            return;
        std::unordered_set<std::string> tried;
        for (Candidate& candidate : CandidatesFor(m_Fault, *expression, m_Names)) {
            const ChangedText changed(*expression, candidate.changes);
            Formula formula = *m_Job.FindFormula(m_Fault.object.name);
            formula.expression = changed.Encoded();
            if (!changed.Fits() || !tried.insert(formula.expression).second)
                continue;
            if (tried.size() > kMostTried)
                return;
            if (!IsShownAs(formula.expression, changed.Text()))
                continue;
            const CString text = expression->GetTextStr();
            Edited edited = EditsOf(text.View(), candidate.changes);
            Fix fix{std::move(candidate.description), std::move(edited.edits),
                    changed.Text().ToUtf8(), ChangeObject{std::move(formula)}};
            if (m_Trial.Clears(m_Fault, fix.change, ReferredBy(candidate.changes), edited.end,
                               fix.isSound))
                m_Fixes.push_back(std::move(fix));
        }
    }

    void FixTable()
    {
        const Table* const table = m_Job.FindTable(m_Fault.object.name);
        const auto missing = MissingObject(m_Fault);
        if (!table || !missing)
            return;
        for (const ObjectName& other : InsteadOf(*missing, m_Names)) {
            auto changed = Rewrite(*table, {*missing, other});
            if (!changed)
                continue;
            Fix fix{"Use " + std::string(WordFor(other.kind)) + " \"" + other.name + "\"",
                    {},
                    {},
                    ChangeObject{std::move(*changed)}};
            if (m_Trial.Clears(m_Fault, fix.change, {&other, 1}, 0, fix.isSound))
                m_Fixes.push_back(std::move(fix));
        }
    }

    const Fault& m_Fault;
    const Job& m_Job;
    const KnownNames m_Names;
    Trial m_Trial;
    std::vector<Fix> m_Fixes;
};

} // namespace

std::vector<Fix> FixesFor(const Fault& fault, const Job& job)
{
    return FixFinder(fault, job).Find();
}

} // namespace tovo
