#include "JsonPatch.h"

#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

} // namespace

// Walks over a sound JSON text and notes where each value stands. The parser of the values cannot
// tell that.
class JsonPatch::Locator {
public:
    Locator(std::string_view text, std::map<std::string, Stretch>& values)
        : m_Text(text), m_Values(values)
    {
        if (m_Text.starts_with(kByteOrderMark))
            m_At = kByteOrderMark.size();
    }

    void Value(const std::string& pointer)
    {
        SkipBlanks();
        const std::size_t begin = m_At;
        switch (m_Text[m_At]) {
        case '{':
            Members(pointer);
            break;
        case '[':
            Elements(pointer);
            break;
        case '"':
            SkipString();
            break;
        default:
            m_At = std::min(m_Text.find_first_of(",]} \t\r\n", m_At), m_Text.size());
        }
        m_Values[pointer] = {begin, m_At};
    }

private:
    void SkipBlanks() { m_At = std::min(m_Text.find_first_not_of(kBlanks, m_At), m_Text.size()); }

    // Passes over a mark that may follow blanks, if it is there.
    bool Take(char mark)
    {
        SkipBlanks();
        if (m_Text[m_At] != mark)
            return false;
        ++m_At;
        return true;
    }

    // A quotation mark behind a backslash does not end the string.
    void SkipString()
    {
        for (++m_At; m_Text[m_At] != '"'; ++m_At) {
            if (m_Text[m_At] == '\\')
                ++m_At;
        }
        ++m_At;
    }

    // Decoded, since a file may write any letter of a key as an escape.
    std::string Key()
    {
        SkipBlanks();
        const std::size_t begin = m_At;
        SkipString();
        return nlohmann::json::parse(m_Text.substr(begin, m_At - begin)).get<std::string>();
    }

    void Members(const std::string& pointer)
    {
        ++m_At;
        while (!Take('}')) {
            Take(',');
            const std::string key = Key();
            Take(':');
            Value(pointer + "/" + key);
        }
    }

    void Elements(const std::string& pointer)
    {
        ++m_At;
        for (std::size_t index = 0; !Take(']'); ++index) {
            Take(',');
            Value(pointer + "/" + std::to_string(index));
        }
    }

    std::string_view m_Text;
    std::map<std::string, Stretch>& m_Values;
    std::size_t m_At = 0;
};

JsonPatch::JsonPatch(std::string text) : m_Text(std::move(text))
{
    Locator(m_Text, m_Values).Value("");
}

// Whatever else is on the line, only the quotation marks and what is between them goes.
void JsonPatch::ReplaceString(const std::string& pointer, const std::string& value)
{
    const Stretch place = m_Values.at(pointer);
    m_Replacements[place.begin] = {place.end, nlohmann::json(value).dump()};
}

void JsonPatch::RemoveElement(const std::string& array, std::size_t index)
{
    const auto element = [&](std::size_t at) { return array + "/" + std::to_string(at); };
    Stretch place = m_Values.at(element(index));
    if (const auto next = m_Values.find(element(index + 1)); next != m_Values.end())
        place.end = next->second.begin;
    // The last element has its comma in front.
    else if (index > 0)
        place.begin = m_Values.at(element(index - 1)).end;
    m_Replacements[place.begin] = {place.end, ""};
}

std::string JsonPatch::Apply() const
{
    std::string result;
    std::size_t done = 0;
    for (const auto& [begin, replacement] : m_Replacements) {
        // Within an element that has gone.
        if (begin < done)
            continue;
        result.append(m_Text, done, begin - done);
        result += replacement.bytes;
        done = replacement.end;
    }
    return result.append(m_Text, done);
}
