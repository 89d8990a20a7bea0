#include <nlohmann/json.hpp>

#include <TovoJob/Explanation.h>

#include "NumberText.h"

namespace tovo {

namespace {

using Json = nlohmann::ordered_json;

std::string ValueText(const std::optional<double>& value, bool isYesNo)
{
    if (!value)
        return "no value";
    if (isYesNo)
        return *value != 0.0 ? "yes" : "no";
    return job::NumberText(*value);
}

std::string Line(std::size_t depth, const std::string& text)
{
    return std::string(2 * depth, ' ') + text + "\n";
}

// The blanks around a reference belong to the engine's text and mean nothing to a reader.
std::string Shown(const std::string& text)
{
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == text.npos ? text : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

std::string SelectionText(const char* what, const Selection& selection)
{
    std::string text = std::string(what) + " " + std::to_string(selection.index + 1) + ": " +
                       job::NumberText(selection.value);
    if (selection.above)
        text += " is above " + job::NumberText(*selection.above);
    if (selection.upTo)
        text += (selection.above ? ", up to " : " is up to ") + job::NumberText(*selection.upTo);
    return text;
}

std::string ElementText(const Element& element)
{
    if (const auto* const object = std::get_if<ObjectName>(&element))
        return WriteReference(*object);
    if (const auto* const number = std::get_if<double>(&element))
        return job::NumberText(*number);
    const auto* const yes = std::get_if<bool>(&element);
    return yes ? (*yes ? "yes" : "no") : "empty";
}

std::string TextOfObject(const ExplainedObject& explained)
{
    const ObjectName& object = explained.object;
    std::string head = std::string(WordFor(object.kind)) + " " + object.name + " = " +
                       ValueText(explained.value, IsYesNoName(object.name));
    if (explained.value && !explained.unit.empty())
        head += " " + explained.unit;
    std::string text = Line(0, head);
    if (explained.failure)
        text += Line(1, explained.failure->text);
    for (const Step& step : explained.steps)
        text +=
            Line(step.depth + 1, Shown(step.text) + " = " + ValueText(step.value, step.isYesNo) +
                                     (step.isTaken ? "" : " (not taken)"));
    if (explained.lookup) {
        text += Line(1, SelectionText("row", explained.lookup->row));
        if (explained.lookup->column)
            text += Line(1, SelectionText("column", *explained.lookup->column));
        text += Line(1, "cell: " + ElementText(explained.lookup->cell));
    }
    return text;
}

Json Number(const std::optional<double>& value)
{
    return value ? Json(*value) : Json(nullptr);
}

Json JsonOf(const Span& span)
{
    return {{"utf16", {span.begin.utf16, span.end.utf16}},
            {"utf8", {span.begin.utf8, span.end.utf8}}};
}

Json JsonOf(const ObjectName& object)
{
    return WriteReference(object);
}

Json JsonOf(const Step& step)
{
    Json json = {{"depth", step.depth},   {"span", JsonOf(step.span)},
                 {"text", step.text},     {"value", Number(step.value)},
                 {"yesNo", step.isYesNo}, {"taken", step.isTaken}};
    if (step.refersTo)
        json["refersTo"] = JsonOf(*step.refersTo);
    return json;
}

Json JsonOf(const Selection& selection)
{
    return {{"value", selection.value},
            {"index", selection.index},
            {"above", Number(selection.above)},
            {"upTo", Number(selection.upTo)}};
}

Json JsonOf(const Element& element)
{
    if (const auto* const object = std::get_if<ObjectName>(&element))
        return JsonOf(*object);
    if (const auto* const number = std::get_if<double>(&element))
        return *number;
    const auto* const yes = std::get_if<bool>(&element);
    return yes ? Json(*yes) : Json(nullptr);
}

Json JsonOf(const ExplainedObject& explained)
{
    Json json = {{"object", JsonOf(explained.object)},
                 {"value", Number(explained.value)},
                 {"unit", explained.unit}};
    if (!explained.text.empty())
        json["text"] = explained.text;
    for (const Step& step : explained.steps)
        json["steps"].push_back(JsonOf(step));
    if (explained.lookup) {
        json["lookup"] = {{"row", JsonOf(explained.lookup->row)},
                          {"cell", JsonOf(explained.lookup->cell)}};
        if (explained.lookup->column)
            json["lookup"]["column"] = JsonOf(*explained.lookup->column);
    }
    if (explained.failure)
        json["failure"] = {{"message", explained.failure->message},
                           {"text", explained.failure->text}};
    return json;
}

} // namespace

std::string WriteText(const Explanation& explanation)
{
    std::string text;
    for (const ExplainedObject& explained : explanation.objects)
        text += TextOfObject(explained);
    return text;
}

std::string WriteJson(const Explanation& explanation)
{
    Json objects = Json::array();
    for (const ExplainedObject& explained : explanation.objects)
        objects.push_back(JsonOf(explained));
    return Json{{"objects", std::move(objects)}}.dump(2) + "\n";
}

} // namespace tovo
