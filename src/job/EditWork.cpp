#include "EditWork.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "Differences.h"

namespace tovo::job {

namespace {

Record RecordOf(const AnyObject& object)
{
    return std::visit(
        [](const auto& known) -> Record {
            return std::make_shared<const std::decay_t<decltype(known)>>(known);
        },
        object);
}

// None, of the type that a record has.
Record NoneLike(Record record)
{
    std::visit([](auto& object) { object.reset(); }, record);
    return record;
}

Result<void> CheckContent(const AnyObject& object)
{
    return std::visit([](const auto& known) { return CheckObject(known); }, object);
}

// A file may hold a table whose limits do not rise, so that its author can mend it; an edit makes
// none.
Result<void> CheckWhole(const AnyObject& object)
{
    if (const Result<void> content = CheckContent(object); !content)
        return content;
    const auto* const table = std::get_if<Table>(&object);
    return table && !table->linked ? CheckLimitsRise(*table) : Result<void>();
}

// The record with another name.
Record Renamed(const Record& record, const std::string& name)
{
    return std::visit(
        [&](const auto& object) -> Record {
            auto copy = *object;
            if constexpr (!std::is_same_v<decltype(copy), JobValues>)
                copy.name = name;
            return std::make_shared<const decltype(copy)>(std::move(copy));
        },
        record);
}

bool IsLinked(const Record& record)
{
    const auto* const formula = std::get_if<Shared<Formula>>(&record);
    const auto* const table = std::get_if<Shared<Table>>(&record);
    return (formula && (*formula)->linked) || (table && (*table)->linked);
}

} // namespace

Result<void> EditWork::Apply(std::span<const Edit> edits)
{
    if (Result<void> done = Do(edits); !done)
        return done;
    if (!m_Changes.empty()) {
        m_Inside.done.push_back(std::move(m_Changes));
        m_Inside.undone.clear();
    }
    return {};
}

Result<Preview> EditWork::PreviewOf(std::span<const Edit> edits)
{
    m_Inside.UpdateQuietly();
    const std::vector<Fault> before = m_Inside.calculation.Faults(m_Inside.content);
    Changes untold = m_Inside.TakeUntold();
    Result<Preview> preview = LookAhead(edits, before);
    m_Inside.UpdateQuietly();
    m_Inside.PutBackUntold(std::move(untold));
    return preview;
}

// An edit may calculate for itself, so what changes is told by all updates together.
Result<Preview> EditWork::LookAhead(std::span<const Edit> edits, const std::vector<Fault>& before)
{
    if (const Result<void> done = Do(edits); !done)
        return done.Why();
    Preview preview;
    for (const RecordChange& change : m_Changes) {
        for (PlaceChange& place : DifferencesOf(change))
            preview.places.push_back(std::move(place));
    }
    m_Inside.UpdateQuietly();
    Changes changes = m_Inside.TakeUntold();
    preview.values = changes.values;
    m_Inside.PutBackUntold(std::move(changes));
    const std::vector<Fault> after = m_Inside.calculation.Faults(m_Inside.content);
    preview.newFaults = FaultsNotIn(after, before);
    preview.clearedFaults = FaultsNotIn(before, after);
    TakeBack();
    return preview;
}

bool EditWork::Undo()
{
    return Step(m_Inside.done, m_Inside.undone);
}

bool EditWork::Redo()
{
    return Step(m_Inside.undone, m_Inside.done);
}

Result<void> EditWork::Do(std::span<const Edit> edits)
{
    for (const Edit& edit : edits) {
        Result<void> done = std::visit([&](const auto& known) { return Do(known); }, edit);
        if (!done) {
            TakeBack();
            return done;
        }
    }
    return {};
}

Result<void> EditWork::Do(const AddObject& edit)
{
    const ObjectName name = tovo::NameOf(edit.object);
    if (m_Inside.content.Count() >= m_Inside.options.limits.objects)
        return Refusal{RefusalKind::LimitExceeded,
                       "the limit of this job is " +
                           std::to_string(m_Inside.options.limits.objects) + " objects",
                       name.name};
    if (Result<void> isNew = CheckNewName(m_Inside.content, name); !isNew)
        return isNew;
    if (Result<void> isSound = CheckWhole(edit.object); !isSound)
        return isSound;
    const Record record = RecordOf(edit.object);
    const std::size_t end = m_Inside.content.CountOf(name.kind);
    Take({NoneLike(record), record, std::min(edit.position.value_or(end), end)});
    return {};
}

Result<void> EditWork::Do(const ChangeObject& edit)
{
    const ObjectName name = tovo::NameOf(edit.object);
    if (!m_Inside.content.Has(name))
        return UnknownName(name);
    if (Result<void> isSound = CheckWhole(edit.object); !isSound)
        return isSound;
    Take({m_Inside.content.Find(name), RecordOf(edit.object), m_Inside.content.PositionOf(name)});
    return {};
}

// The references come first, since they are found by the old name.
Result<void> EditWork::Do(const RenameObject& edit)
{
    const ObjectName newName{edit.object.kind, edit.newName};
    if (edit.object.kind == Kind::JobValue || !m_Inside.content.Has(edit.object))
        return UnknownName(edit.object);
    if (newName == edit.object)
        return {};
    if (Result<void> isNew = CheckNewName(m_Inside.content, newName); !isNew)
        return isNew;
    if (IsYesNoName(newName.name) != IsYesNoName(edit.object.name))
        return Refusal{RefusalKind::BadName,
                       "a \"?\" at the end of a name decides the kind of the value, which a new "
                       "name must not change",
                       edit.object.name};
    const Record record = m_Inside.content.Find(edit.object);
    if (IsLinked(record))
        return Refusal{RefusalKind::BadName, "the name of a linked object is its host's",
                       edit.object.name};
    if (Result<void> isDone = ReplaceReferences({edit.object, newName}); !isDone)
        return isDone;
    // An object that refers to itself has been rewritten meanwhile.
    const Record present = m_Inside.content.Find(edit.object);
    Take({present, Renamed(present, edit.newName), m_Inside.content.PositionOf(edit.object)});
    return {};
}

Result<void> EditWork::Do(const RemoveObject& edit)
{
    if (edit.object.kind == Kind::JobValue || !m_Inside.content.Has(edit.object))
        return UnknownName(edit.object);
    if (Result<void> isAllowed = CheckRemoval(edit); !isAllowed)
        return isAllowed;
    Result<void> isDone;
    if (edit.references == References::ReplaceByObject)
        isDone = ReplaceReferences({edit.object, edit.replacement});
    else if (edit.references == References::ReplaceByValue)
        isDone = ReplaceReferences({edit.object, *m_Inside.calculation.ValueOf(edit.object)});
    if (!isDone)
        return isDone;
    const Record record = m_Inside.content.Find(edit.object);
    Take({record, NoneLike(record), m_Inside.content.PositionOf(edit.object)});
    return {};
}

Result<void> EditWork::Do(const ChangeJobValues& edit)
{
    if (Result<void> isSound = CheckValues(edit.values); !isSound)
        return isSound;
    Take({m_Inside.content.Values(), std::make_shared<const JobValues>(edit.values), 0});
    return {};
}

Result<void> EditWork::CheckRemoval(const RemoveObject& edit)
{
    switch (edit.references) {
    case References::MustBeNone: {
        std::vector<ObjectName> users = m_Inside.UsersOf(edit.object);
        std::erase(users, edit.object);
        if (users.empty())
            return {};
        std::string text = "it is used by " + std::string(WordFor(users.front().kind)) + " \"" +
                           users.front().name + "\"";
        if (users.size() > 1)
            text += " and " + std::to_string(users.size() - 1) + " more";
        return Refusal{RefusalKind::InUse, std::move(text), edit.object.name};
    }
    case References::ReplaceByObject:
        if (edit.replacement == edit.object || edit.replacement.kind == Kind::JobValue ||
            !m_Inside.content.Has(edit.replacement))
            return UnknownName(edit.replacement);
        if (IsYesNoName(edit.replacement.name) != IsYesNoName(edit.object.name))
            return Refusal{RefusalKind::BadValue, "it gives the other kind of value",
                           edit.replacement.name};
        return {};
    case References::ReplaceByValue: {
        m_Inside.UpdateQuietly();
        const auto value = m_Inside.calculation.ValueOf(edit.object);
        if (!value || !CanBeWritten(*value))
            return Refusal{RefusalKind::BadValue, "it has no value that could stand for it",
                           edit.object.name};
        return {};
    }
    case References::Leave:
        break;
    }
    return {};
}

Result<void> EditWork::ReplaceReferences(const Replacement& replacement)
{
    for (const ObjectName& user : m_Inside.UsersOf(replacement.object)) {
        const Record before = m_Inside.content.Find(user);
        Record after;
        if (const CFmlaExpression* const expression = m_Inside.calculation.ExpressionOf(user)) {
            if (!Fits(*expression, replacement))
                return Refusal{RefusalKind::LimitExceeded,
                               "the expression would become too long for its references",
                               user.name};
            Formula formula = *std::get<Shared<Formula>>(before);
            formula.expression = Rewrite(*expression, replacement).value_or(formula.expression);
            after = std::make_shared<const Formula>(std::move(formula));
        } else {
            const Table& table = *std::get<Shared<Table>>(before);
            after = std::make_shared<const Table>(Rewrite(table, replacement).value_or(table));
        }
        Take({before, after, m_Inside.content.PositionOf(user)});
    }
    return {};
}

void EditWork::Take(RecordChange change)
{
    m_Inside.Take(change);
    m_Changes.push_back(std::move(change));
}

void EditWork::TakeBack()
{
    for (; !m_Changes.empty(); m_Changes.pop_back())
        m_Inside.Take(Reversed(m_Changes.back()));
}

bool EditWork::Step(std::vector<Transaction>& from, std::vector<Transaction>& to)
{
    if (from.empty())
        return false;
    m_Changes = std::move(from.back());
    from.pop_back();
    Transaction reversed;
    for (auto change = m_Changes.rbegin(); change != m_Changes.rend(); ++change) {
        reversed.push_back(Reversed(*change));
        m_Inside.Take(reversed.back());
    }
    to.push_back(std::move(reversed));
    return true;
}

} // namespace tovo::job
