#include <algorithm>

#include "Commands.h"
#include "JsonReport.h"
#include "TextReport.h"

// rename, remove, convert and new.

namespace {

struct EditOptions : InputOptions {
    std::string object;
    std::string newName;
    std::string replacement; // another object; empty for none
    bool byValue = false;
    bool isLeft = false;
    bool isPreview = false;
    bool isInPlace = false;
    tovo::SaveOptions saving;
};

struct NewOptions : InputOptions {
    std::vector<std::string> formulas; // NAME=EXPRESSION
};

tovo::JobFile Open(const EditOptions& options)
{
    if (options.isInPlace && options.job == "-")
        throw CLI::ValidationError("--in-place", "the standard input has no file");
    return OpenInput(options);
}

// Takes the job to where it is wanted.
void Deliver(tovo::JobFile& file, const EditOptions& options)
{
    if (options.isInPlace)
        file.Save(options.saving).Value();
    else
        Print(WriteJob(file.Content()));
}

// The one edit of a run. What it changes is told on the standard output, unless the job goes there.
int Do(const EditOptions& options, const TextManner& manner, tovo::JobFile& file,
       const tovo::Edit& edit, const std::vector<tovo::ObjectName>& edited)
{
    tovo::Job& job = file.Content();
    tovo::Preview preview = job.PreviewOf({&edit, 1}).Value();
    // That the object itself goes, or has its value under another name, is what was asked for.
    std::erase_if(preview.values, [&](const tovo::ValueChange& change) {
        return std::find(edited.begin(), edited.end(), change.object) != edited.end();
    });
    job.Apply(edit).Value();
    const std::string summary =
        options.isJson ? JsonText(PreviewJson(preview)) : PreviewText(job, preview, manner);
    if (!options.isPreview)
        Deliver(file, options);
    Print(summary, options.isPreview || options.isInPlace ? stdout : stderr);
    return preview.newFaults.empty() ? kAllCalculated : kFaulty;
}

void DescribeSaving(CLI::App& command, EditOptions& options)
{
    DescribeJob(command, options)->required();
    auto* const inPlace = command.add_flag("-i,--in-place", options.isInPlace,
                                           "Save the job in its file instead of printing it");
    command
        .add_flag("--even-if-read-only", options.saving.evenIfReadOnly,
                  "Save also a file that its mode protects")
        ->needs(inPlace);
}

void DescribeEdit(CLI::App& command, EditOptions& options)
{
    DescribeSaving(command, options);
    command.add_flag("--preview", options.isPreview, "Only tell what would change")
        ->excludes("--in-place");
    command.add_option("NAME", options.object, "The object: a name, or V(name), F(name), T(name)")
        ->option_text(" ")
        ->required();
}

void DescribeRename(CLI::App& command, EditOptions& options)
{
    DescribeEdit(command, options);
    command.add_option("NEW", options.newName, "Its new name")->option_text(" ")->required();
}

int Rename(const EditOptions& options, const TextManner& manner)
{
    tovo::JobFile file = Open(options);
    const tovo::ObjectName object = FindObject(file.Content(), options.object);
    return Do(options, manner, file, tovo::RenameObject{object, options.newName},
              {object, {object.kind, options.newName}});
}

void DescribeRemove(CLI::App& command, EditOptions& options)
{
    DescribeEdit(command, options);
    auto* const by = command
                         .add_option("--replace-by", options.replacement,
                                     "Let the references to it refer to this object")
                         ->type_name("NAME");
    auto* const byValue = command.add_flag("--replace-by-value", options.byValue,
                                           "Put its present value in place of the references");
    command
        .add_flag("--leave", options.isLeft,
                  "Leave the references; they are faults until the name is there again")
        ->excludes(by)
        ->excludes(byValue);
    by->excludes(byValue);
}

int Remove(const EditOptions& options, const TextManner& manner)
{
    tovo::JobFile file = Open(options);
    tovo::RemoveObject removal{FindObject(file.Content(), options.object)};
    if (options.byValue)
        removal.references = tovo::References::ReplaceByValue;
    if (options.isLeft)
        removal.references = tovo::References::Leave;
    if (!options.replacement.empty()) {
        removal.references = tovo::References::ReplaceByObject;
        removal.replacement = FindObject(file.Content(), options.replacement);
    }
    return Do(options, manner, file, removal, {removal.object});
}

int Convert(const EditOptions& options, const TextManner&)
{
    tovo::JobFile file = Open(options);
    Deliver(file, options);
    return kAllCalculated;
}

void DescribeNew(CLI::App& command, NewOptions& options)
{
    DescribeJob(command, options)->required();
    DescribeSettings(command, options);
    command
        .add_option("--formula", options.formulas, "Add a formula; references as V(name), F(name)")
        ->type_name("NAME=EXPRESSION")
        ->allow_extra_args(false);
}

int New(const NewOptions& options, const TextManner&)
{
    tovo::JobFile file(options.job, options.judging);
    ApplySettings(file.Content(), options.settings, true);
    for (const std::string& formula : options.formulas) {
        const std::size_t equals = formula.find('=');
        if (equals == std::string::npos)
            throw CLI::ValidationError("--formula", formula + " is not NAME=EXPRESSION");
        file.Content().AddFormula(formula.substr(0, equals), formula.substr(equals + 1)).Value();
    }
    if (options.job == "-")
        Print(WriteJob(file.Content()));
    else
        file.Save().Value();
    return kAllCalculated;
}

} // namespace

void AddEditing(CLI::App& app, int& exitCode)
{
    AddCommand(app, exitCode, "rename", "Rename an object wherever it is named", DescribeRename,
               Rename);
    AddCommand(app, exitCode, "remove", "Remove an object that nothing refers to, or replace it",
               DescribeRemove, Remove);
    AddCommand(app, exitCode, "convert", "Write a job in the newest file format", DescribeSaving,
               Convert);
    AddCommand(app, exitCode, "new", "Make a job file", DescribeNew, New);
}
