#include "KnownNames.h"

#include <algorithm>
#include <functional>

#include "ExpressionText.h"
#include "WordCharacters.h"

namespace tovo::job {

namespace {

constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;

// Names that differ in letter case alone can be many; no more than these are listed.
constexpr std::size_t kMostAlike = 8;

std::uint64_t NumberWith(std::uint64_t number, char16_t character)
{
    return number * kFactor + character + 1;
}

std::uint64_t NumberOfText(WideView text)
{
    std::uint64_t number = 0;
    for (const char16_t character : text)
        number = NumberWith(number, character);
    return number;
}

bool EndsInsideWord(WideView text, std::size_t end)
{
    return end < text.size() && IsWordCharacter(text[end - 1]) && IsWordCharacter(text[end]);
}

} // namespace

SearchedText::SearchedText(WideView text)
    : m_Text(text), m_Folded(Folded(text)), m_Numbers(1, 0), m_Powers(1, 1)
{
    for (const char16_t character : m_Folded) {
        m_Numbers.push_back(NumberWith(m_Numbers.back(), character));
        m_Powers.push_back(m_Powers.back() * kFactor);
    }
}

std::uint64_t SearchedText::NumberOf(std::size_t begin, std::size_t length) const
{
    return m_Numbers[begin + length] - m_Numbers[begin] * m_Powers[length];
}

KnownNames::KnownNames(const Job& job)
{
    const auto add = [&](Kind kind, const auto& objects) {
        for (const auto& object : objects) {
            const CString name = Wide(object.name);
            if (!name.IsEmpty())
                m_Names.push_back(
                    {{kind, object.name}, WideText(name.View()), Folded(name.View())});
        }
    };
    m_Names.reserve(job.Variables().size() + job.Formulas().size() + job.Tables().size());
    add(Kind::Variable, job.Variables());
    add(Kind::Formula, job.Formulas());
    add(Kind::Table, job.Tables());

    m_ByNumber.reserve(m_Names.size());
    for (std::size_t at = 0; at < m_Names.size(); ++at) {
        m_ByNumber.emplace(NumberOfText(m_Names[at].folded), at);
        m_Lengths[m_Names[at].folded.front()].push_back(m_Names[at].name.size());
    }
    for (auto& [first, lengths] : m_Lengths) {
        std::sort(lengths.begin(), lengths.end(), std::greater<>());
        lengths.erase(std::unique(lengths.begin(), lengths.end()), lengths.end());
    }
}

std::optional<KnownNames::Match> KnownNames::LongestAt(const SearchedText& text, std::size_t begin,
                                                       std::size_t limit) const
{
    const auto lengths = m_Lengths.find(text.FoldedText()[begin]);
    if (lengths == m_Lengths.end())
        return std::nullopt;
    for (const std::size_t length : lengths->second) {
        if (length > limit - begin || EndsInsideWord(text.Text(), begin + length))
            continue;
        const std::uint64_t number = text.NumberOf(begin, length);
        if (!m_ByNumber.contains(number))
            continue;
        Match match{begin + length, {}, false};
        match.names = Spelled(text.Text().substr(begin, length),
                              text.FoldedText().substr(begin, length), number, match.isExact);
        if (!match.names.empty())
            return match;
    }
    return std::nullopt;
}

KnownNames::Names KnownNames::Named(WideView name) const
{
    const WideText folded = Folded(name);
    bool isExact = false;
    return Spelled(name, folded, NumberOfText(folded), isExact);
}

KnownNames::Names KnownNames::Spelled(WideView name, WideView folded, std::uint64_t number,
                                      bool& isExact) const
{
    Names exact;
    Names alike;
    const auto [first, last] = m_ByNumber.equal_range(number);
    for (auto at = first; at != last; ++at) {
        const KnownName& known = m_Names[at->second];
        if (known.name == name)
            exact.push_back(&known);
        else if (known.folded == folded && alike.size() < kMostAlike)
            alike.push_back(&known);
    }
    isExact = !exact.empty();
    Names& found = isExact ? exact : alike;
    // They stand in one array, in the order of their kinds.
    std::sort(found.begin(), found.end(), std::less<>());
    return std::move(found);
}

} // namespace tovo::job
