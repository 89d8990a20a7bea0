#include <algorithm>

#include "Columns.h"
#include "Commands.h"
#include "JsonReport.h"
#include "TextReport.h"

// explain, uses and graph.

namespace {

struct AskOptions : InputOptions {
    std::string object; // empty for the whole job
    bool isTransitive = false;
};

// Each line made fit to print.
std::string PrintableLines(std::string_view text)
{
    std::string lines;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size());
        lines += Printable(text.substr(0, length)) + "\n";
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return lines;
}

CLI::Option* DescribeAsking(CLI::App& command, AskOptions& options)
{
    DescribeJob(command, options)->required();
    return command
        .add_option("NAME", options.object, "The object: a name, or V(name), F(name), T(name)")
        ->option_text(" ");
}

void DescribeExplain(CLI::App& command, AskOptions& options)
{
    DescribeAsking(command, options)->required();
    DescribeSettings(command, options);
}

int ExplainValue(const AskOptions& options, const TextManner&)
{
    tovo::Job job = ReadInput(options);
    const tovo::ObjectName object = FindObject(job, options.object);
    const tovo::Explanation explanation = Explain(job, object).Value();
    Print(options.isJson ? WriteJson(explanation) : PrintableLines(WriteText(explanation)));
    return job.ValueOf(object) ? kAllCalculated : kFaulty;
}

std::vector<tovo::ObjectName> CalculatedObjects(const tovo::Job& job)
{
    std::vector<tovo::ObjectName> objects;
    for (const tovo::Formula& formula : job.Formulas())
        objects.push_back(tovo::FormulaNamed(formula.name));
    for (const tovo::Table& table : job.Tables())
        objects.push_back(tovo::TableNamed(table.name));
    return objects;
}

std::vector<std::string> DependencyTexts(const std::vector<tovo::Dependency>& dependencies)
{
    std::vector<std::string> texts;
    for (const tovo::Dependency& dependency : dependencies)
        texts.push_back(ObjectText(dependency.object) + (dependency.inCondition ? "*" : "") +
                        (dependency.isDefined ? "" : " (missing)"));
    return texts;
}

Json DependenciesJson(const std::vector<tovo::Dependency>& dependencies)
{
    Json list = Json::array();
    for (const tovo::Dependency& dependency : dependencies) {
        Json places = Json::array();
        for (const tovo::Place& place : dependency.places)
            places.push_back(PlaceJson(place));
        list.push_back({{"object", WriteReference(dependency.object)},
                        {"defined", dependency.isDefined},
                        {"asValue", dependency.asValue},
                        {"inCondition", dependency.inCondition},
                        {"places", places}});
    }
    return list;
}

void DescribeUses(CLI::App& command, AskOptions& options)
{
    DescribeAsking(command, options);
    command.add_flag("--all", options.isTransitive,
                     "Also what is used, and who uses it, through others");
}

// Of one object both directions.
void TellUses(const tovo::Job& job, const AskOptions& options, tovo::Reach reach)
{
    const tovo::ObjectName object = FindObject(job, options.object);
    const std::vector<tovo::Dependency> uses = Uses(job, object, reach);
    const std::vector<tovo::Dependency> users = UsedBy(job, object, reach);
    if (options.isJson)
        Print(JsonText({{"object", WriteReference(object)},
                        {"uses", DependenciesJson(uses)},
                        {"usedBy", DependenciesJson(users)}}));
    else
        Print(ObjectText(object) + "\n" + ListText("  uses     ", DependencyTexts(uses)) +
              ListText("  used by  ", DependencyTexts(users)));
}

// Of all objects what each uses.
void TellAllUses(const tovo::Job& job, const AskOptions& options, tovo::Reach reach)
{
    const std::vector<tovo::ObjectName> objects = CalculatedObjects(job);
    Json list = Json::array();
    std::size_t width = 0;
    for (const tovo::ObjectName& object : objects)
        width = std::max(width, WidthOf(ObjectText(object)));
    std::string text;
    for (const tovo::ObjectName& object : objects) {
        const std::vector<tovo::Dependency> uses = Uses(job, object, reach);
        if (options.isJson) {
            list.push_back({{"object", WriteReference(object)}, {"uses", DependenciesJson(uses)}});
            continue;
        }
        const std::string name = ObjectText(object);
        text += ListText(name + std::string(width + 2 - WidthOf(name), ' '), DependencyTexts(uses));
    }
    Print(options.isJson ? JsonText({{"objects", std::move(list)}}) : text);
}

int TellUses(const AskOptions& options, const TextManner&)
{
    const tovo::Job job = ReadInput(options);
    const tovo::Reach reach = options.isTransitive ? tovo::Reach::Transitive : tovo::Reach::Direct;
    options.object.empty() ? TellAllUses(job, options, reach) : TellUses(job, options, reach);
    return kAllCalculated;
}

Json GraphJson(const tovo::Job& job, std::vector<tovo::ObjectName> objects)
{
    Json nodes = Json::array();
    Json edges = Json::array();
    for (const tovo::ObjectName& object : objects) {
        nodes.push_back(WriteReference(object));
        for (const tovo::Dependency& use : Uses(job, object))
            edges.push_back({{"from", WriteReference(use.object)},
                             {"to", WriteReference(object)},
                             {"inCondition", use.inCondition}});
    }
    return {{"nodes", std::move(nodes)}, {"edges", std::move(edges)}};
}

// The objects of a graph: all of a job, or one and what it depends on.
std::vector<tovo::ObjectName> GraphObjects(const tovo::Job& job,
                                           const std::optional<tovo::ObjectName>& root)
{
    std::vector<tovo::ObjectName> objects;
    if (root) {
        objects.push_back(*root);
        for (const tovo::Dependency& use : Uses(job, *root, tovo::Reach::Transitive))
            if (use.object != *root)
                objects.push_back(use.object);
        return objects;
    }
    for (const tovo::Variable& variable : job.Variables())
        objects.push_back(tovo::VariableNamed(variable.name));
    for (tovo::ObjectName& object : CalculatedObjects(job))
        objects.push_back(std::move(object));
    return objects;
}

void DescribeGraph(CLI::App& command, AskOptions& options)
{
    DescribeAsking(command, options);
}

int DrawGraph(const AskOptions& options, const TextManner&)
{
    const tovo::Job job = ReadInput(options);
    std::optional<tovo::ObjectName> root;
    if (!options.object.empty())
        root = FindObject(job, options.object);
    if (options.isJson)
        Print(JsonText(GraphJson(job, GraphObjects(job, root))));
    else
        Print(root ? WriteGraph(job, *root) : WriteGraph(job));
    return kAllCalculated;
}

} // namespace

void AddAsking(CLI::App& app, int& exitCode)
{
    AddCommand(app, exitCode, "explain", "Show step by step why an object has its value",
               DescribeExplain, ExplainValue);
    AddCommand(app, exitCode, "uses", "List what an object uses, and who uses it", DescribeUses,
               TellUses);
    AddCommand(app, exitCode, "graph", "Print who uses whom as a graph in the DOT language",
               DescribeGraph, DrawGraph);
}
