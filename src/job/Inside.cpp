#include "Inside.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <unordered_map>
#include <utility>

namespace tovo::job {

namespace {

bool IsSame(const std::optional<double>& a, const std::optional<double>& b)
{
    return a.has_value() == b.has_value() &&
           (!a || std::bit_cast<std::uint64_t>(*a) == std::bit_cast<std::uint64_t>(*b));
}

// The first changes and then the others, seen as one step.
Changes Joined(Changes first, Changes then)
{
    then.calculated += first.calculated;
    if (first.values.empty())
        return then;
    std::unordered_map<ObjectName, std::size_t> places;
    for (std::size_t at = 0; at < first.values.size(); ++at)
        places.emplace(first.values[at].object, at);
    for (ValueChange& change : then.values) {
        const auto place = places.find(change.object);
        if (place == places.end())
            first.values.push_back(std::move(change));
        else
            first.values[place->second].after = change.after;
    }
    then.values = std::move(first.values);
    return then;
}

} // namespace

void Inside::Take(const RecordChange& change)
{
    content.Apply(change);
    const auto before = NameOfRecord(change.before);
    const auto after = NameOfRecord(change.after);
    if (before && before != after) {
        Record none = change.before;
        std::visit([](auto& object) { object.reset(); }, none);
        calculation.SetRecord(*before, none);
    }
    if (after || !before)
        calculation.SetRecord(after.value_or(ObjectName()), change.after);
}

Changes Inside::Update(const Progress& progress)
{
    untold = Joined(std::move(untold), calculation.Update(progress));
    return TakeUntold();
}

void Inside::UpdateQuietly()
{
    untold = Joined(std::move(untold), calculation.Update(nullptr));
}

// What has changed and changed back meanwhile is no news.
Changes Inside::TakeUntold()
{
    Changes changes = std::exchange(untold, {});
    std::erase_if(changes.values,
                  [](const ValueChange& change) { return IsSame(change.before, change.after); });
    return changes;
}

void Inside::PutBackUntold(Changes taken)
{
    untold = Joined(std::move(taken), std::move(untold));
}

std::vector<ObjectName> Inside::UsersOf(const ObjectName& object) const
{
    const Network& network = calculation.Uses();
    std::vector<ObjectName> users;
    if (const auto node = network.Find(object))
        network.ForEachUser(*node, [&](NodeId user) { users.push_back(network.NameOf(user)); });
    std::sort(users.begin(), users.end(), [&](const ObjectName& a, const ObjectName& b) {
        return std::pair(a.kind, content.PositionOf(a)) < std::pair(b.kind, content.PositionOf(b));
    });
    return users;
}

} // namespace tovo::job
