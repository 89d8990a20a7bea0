#include "Rewrite.h"

#include <stdexcept>

#include <fmt/format.h>

#include "Columns.h"
#include "JobDocument.h"

namespace {

std::optional<std::size_t> FindFormula(JobDocument& job, const CString& name)
{
    for (std::size_t index = 0; index < job.FormulaCount(); ++index)
        if (job.Formula(index).GetName() == name)
            return index;
    return std::nullopt;
}

std::size_t FormulaNamed(JobDocument& job, const std::string& name)
{
    const auto index = FindFormula(job, CString(std::string_view(name)));
    if (!index)
        throw std::invalid_argument(
            fmt::format("{}: there is no formula \"{}\"", job.Path(), name));
    return *index;
}

// A name may hold an equals sign, so the one that parts the two is the first behind a name that the
// job has.
std::size_t EqualsBehindName(JobDocument& job, const std::string& renaming)
{
    for (std::size_t at = renaming.find('='); at != std::string::npos;
         at = renaming.find('=', at + 1))
        if (FindFormula(job, CString(std::string_view(renaming).substr(0, at))))
            return at;
    return renaming.find('=');
}

std::string Describe(const std::string& done, const std::vector<Change>& changes)
{
    std::string summary = fmt::format("{}; {} other place{} changed.\n", done, changes.size(),
                                      changes.size() == 1 ? "" : "s");
    for (const Change& change : changes)
        summary += fmt::format("  {}\n    from  {}\n    to    {}\n", Printable(change.place),
                               Printable(change.before), Printable(change.after));
    return summary;
}

std::string Rename(JobDocument& job, const std::string& renaming)
{
    const std::size_t equals = EqualsBehindName(job, renaming);
    if (equals == std::string::npos)
        throw std::invalid_argument(renaming + " is not OLD=NEW");
    const std::string oldName = renaming.substr(0, equals);
    const CString newName(std::string_view(renaming).substr(equals + 1));
    const std::size_t formula = FormulaNamed(job, oldName);
    const std::vector<Change> changes = job.Effects(formula, newName);
    job.Rename(formula, newName);
    return Describe(fmt::format("Renamed {} to {}", Printable(oldName), Printable(newName)),
                    changes);
}

std::string Remove(JobDocument& job, const std::string& name)
{
    const std::size_t formula = FormulaNamed(job, name);
    const std::vector<Change> changes = job.Effects(formula, std::nullopt);
    job.Remove(formula);
    return Describe("Removed " + Printable(name), changes);
}

} // namespace

Rewritten RewriteJob(const Options& options)
{
    JobDocument job(options.jobFile, options.isStrict);
    const std::string summary =
        options.renaming ? Rename(job, *options.renaming) : Remove(job, *options.removal);
    return {job.Bytes(), summary};
}
