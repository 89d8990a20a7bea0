#include <TovoJob/ObjectName.h>

#include <array>

namespace tovo {

namespace {

struct KindWords {
    char letter; // of references; 0 for none
    std::string_view word;
};

// Indexed by Kind.
constexpr std::array<KindWords, 4> kKinds = {
    {{'V', "variable"}, {'F', "formula"}, {'T', "table"}, {0, "job value"}}};

const KindWords& WordsOf(Kind kind)
{
    return kKinds[static_cast<std::size_t>(kind)];
}

} // namespace

bool IsYesNoName(std::string_view name)
{
    return name.ends_with('?');
}

std::string_view WordFor(Kind kind)
{
    return WordsOf(kind).word;
}

std::string WriteReference(const ObjectName& object)
{
    if (object.kind == Kind::JobValue)
        return object.name;
    std::string text = {WordsOf(object.kind).letter, '('};
    for (const char character : object.name) {
        if (character == '\\' || character == ')')
            text += '\\';
        text += character;
    }
    return text += ')';
}

std::optional<ObjectName> ReadReference(std::string_view text)
{
    for (const Kind kind : {Kind::Variable, Kind::Formula, Kind::Table}) {
        if (text.size() < 4 || text[0] != WordsOf(kind).letter || text[1] != '(' ||
            text.back() != ')')
            continue;
        ObjectName object{kind, {}};
        for (std::size_t at = 2; at + 1 < text.size(); ++at) {
            // The last parenthesis is the only one without a backslash.
            if (text[at] == ')')
                return std::nullopt;
            if (text[at] == '\\' && ++at + 1 == text.size())
                return std::nullopt;
            object.name += text[at];
        }
        return object;
    }
    return std::nullopt;
}

} // namespace tovo
