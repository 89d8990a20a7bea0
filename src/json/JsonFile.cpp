#include "JsonFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>
#include <vector>

namespace {

using Json = nlohmann::json;

// One step of a JSON pointer, with the two characters escaped that have a meaning in pointers.
std::string PointerStep(const std::string& key)
{
    std::string step = "/";
    for (const char character : key) {
        if (character == '~')
            step += "~0";
        else if (character == '/')
            step += "~1";
        else
            step += character;
    }
    return step;
}

// Line and column, both from 1, of the byte at an offset; a column counts code points.
std::string LineAndColumn(std::string_view text, std::size_t offset)
{
    const std::string_view before = text.substr(0, std::min(offset, text.size()));
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    // Without a line break the search gives npos, and one behind that is 0, where the line starts.
    const std::size_t lineStart = before.rfind('\n') + 1;
    const auto column =
        std::count_if(before.begin() + static_cast<std::ptrdiff_t>(lineStart), before.end(),
                      [](char byte) { return (byte & 0xC0) != 0x80; });
    return std::to_string(line) + ":" + std::to_string(column + 1);
}

// The parser's own words, without the class of the exception and the place, which is told better.
std::string ParserComplaint(const std::exception& exception)
{
    const std::string_view text = exception.what();
    const std::size_t tagEnd = text.find("] ");
    const std::string_view words = tagEnd == text.npos ? text : text.substr(tagEnd + 2);
    const std::size_t placeEnd = words.find(": ");
    const bool hasPlace = words.starts_with("parse error") && placeEnd != words.npos;
    return std::string(hasPlace ? words.substr(placeEnd + 2) : words);
}

// Builds the document from the parser's events, since only they show a key that comes twice.
class DocumentBuilder : public nlohmann::json_sax<Json> {
public:
    DocumentBuilder(const std::string& file, std::string_view text) : m_File(file), m_Text(text) {}

    Json Take() { return std::move(m_Document); }

    bool null() override { return Add(nullptr); }
    bool boolean(bool value) override { return Add(value); }
    bool number_integer(number_integer_t value) override { return Add(value); }
    bool number_unsigned(number_unsigned_t value) override { return Add(value); }
    bool number_float(number_float_t value, const string_t&) override { return Add(value); }
    bool string(string_t& value) override { return Add(std::move(value)); }
    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override { return Open(Json::object()); }
    bool start_array(std::size_t) override { return Open(Json::array()); }
    bool end_object() override { return Close(); }
    bool end_array() override { return Close(); }

    // Values come without a position, so this fault has a pointer for its place, as those have that
    // the reader of the values finds later.
    bool key(string_t& key) override
    {
        m_Keys.back() = key;
        if (m_Open.back()->contains(key))
            throw FileFault(m_File, Pointer() + ": the key is there twice");
        return true;
    }

    // The position is that behind the byte which the parser read last.
    bool parse_error(std::size_t position, const std::string&,
                     const nlohmann::detail::exception& exception) override
    {
        const std::string place = LineAndColumn(m_Text, position > 0 ? position - 1 : 0);
        throw FileFault(m_File + ":" + place, ParserComplaint(exception));
    }

private:
    // The place stays where it is while its container is open: only what is innermost grows.
    Json& Insert(Json value)
    {
        if (m_Open.empty())
            return m_Document = std::move(value);
        if (m_Open.back()->is_array())
            return m_Open.back()->emplace_back(std::move(value));
        return (*m_Open.back())[m_Keys.back()] = std::move(value);
    }
    bool Add(Json value)
    {
        Insert(std::move(value));
        return true;
    }
    bool Open(Json container)
    {
        m_Open.push_back(&Insert(std::move(container)));
        m_Keys.emplace_back();
        return true;
    }
    bool Close()
    {
        m_Open.pop_back();
        m_Keys.pop_back();
        return true;
    }
    std::string Pointer() const
    {
        std::string pointer;
        for (std::size_t level = 0; level < m_Open.size(); ++level) {
            const Json& open = *m_Open[level];
            pointer += open.is_array() ? "/" + std::to_string(open.size() - 1)
                                       : PointerStep(m_Keys[level]);
        }
        return pointer;
    }

    const std::string& m_File;
    std::string_view m_Text;
    Json m_Document;
    std::vector<Json*> m_Open;       // the containers not yet closed, outermost first
    std::vector<std::string> m_Keys; // the last key of each of them
};

} // namespace

std::string ReadWhole(const std::string& path)
{
    errno = 0;
    std::ifstream stream(path, std::ios::binary);
    std::string text;
    std::array<char, 65536> block;
    // A folder can be opened like a file; only reading it fails, so the state is looked at
    // afterwards.
    while (stream.read(block.data(), block.size()) || stream.gcount() > 0)
        text.append(block.data(), static_cast<std::size_t>(stream.gcount()));
    if (!stream.is_open() || stream.bad())
        throw FileFault(path, "cannot be read: " + std::generic_category().message(errno));
    return text;
}

nlohmann::json ParseJson(const std::string& file, const std::string& text)
{
    DocumentBuilder builder(file, text);
    nlohmann::json::sax_parse(text, &builder);
    return builder.Take();
}

nlohmann::json ReadJsonFile(const std::string& path)
{
    return ParseJson(path, ReadWhole(path));
}

JsonPlace::JsonPlace(const JsonPlace& parent, const std::string& step, const nlohmann::json& value)
    : m_File(parent.m_File), m_Value(&value), m_Pointer(parent.m_Pointer + step)
{}

void JsonPlace::ExpectKeys(std::span<const std::string_view> keys) const
{
    for (const auto& [key, value] : Object()) {
        if (std::find(keys.begin(), keys.end(), key) == keys.end())
            JsonPlace(*this, PointerStep(key), value).Refuse("there is no such key here");
    }
}

JsonPlace JsonPlace::Member(const std::string& key) const
{
    const std::optional<JsonPlace> member = FindMember(key);
    // The pointer to what is not there tells the most: the object and the key that it lacks.
    if (!member)
        JsonPlace(*this, PointerStep(key), *m_Value).Refuse("the key is missing");
    return *member;
}

std::optional<JsonPlace> JsonPlace::FindMember(const std::string& key) const
{
    const auto found = Object().find(key);
    if (found == Object().end())
        return std::nullopt;
    return JsonPlace(*this, PointerStep(key), found->second);
}

std::size_t JsonPlace::Size() const
{
    if (!m_Value->is_array())
        Refuse("must be an array");
    return m_Value->size();
}

JsonPlace JsonPlace::Element(std::size_t index) const
{
    return JsonPlace(*this, "/" + std::to_string(index), (*m_Value)[index]);
}

const nlohmann::json::object_t& JsonPlace::Object() const
{
    if (!m_Value->is_object())
        Refuse("must be an object");
    return m_Value->get_ref<const nlohmann::json::object_t&>();
}

double JsonPlace::Number() const
{
    if (!m_Value->is_number())
        Refuse("must be a number");
    return m_Value->get<double>();
}

bool JsonPlace::YesNo() const
{
    if (!m_Value->is_boolean())
        Refuse("must be true or false");
    return m_Value->get<bool>();
}

const std::string& JsonPlace::Text() const
{
    if (!m_Value->is_string())
        Refuse("must be a string");
    return m_Value->get_ref<const std::string&>();
}

void JsonPlace::Refuse(const std::string& fault) const
{
    const std::string place = m_Pointer.empty() ? "the whole document" : m_Pointer;
    throw FileFault(*m_File, place + ": " + fault);
}
