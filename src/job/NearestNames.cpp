#include "NearestNames.h"

#include <algorithm>
#include <array>
#include <tuple>

#include <TovoFormula/ExprToken.h>

#include "ExpressionText.h"
#include "TextChanges.h"
#include "WordCharacters.h"

namespace tovo::job {

namespace {

// Nobody mistypes more than this, and what is longer was not typed as one word.
constexpr std::size_t kLongestWord = 64;
constexpr std::size_t kMostMistakes = 3;

std::size_t MistakesIn(std::size_t length)
{
    return length < 2 ? 0 : std::min(kMostMistakes, (length + 3) / 4);
}

// From here on a word may stand for a longer name that begins with it.
constexpr std::size_t kShortestBeginning = 3;

// How many characters must be put in, taken out, replaced or exchanged with their neighbour to turn
// one text into the other; most + 1 if it takes more than that. Of the table of distances between
// beginnings of the texts, only the diagonal band is looked at that can lead to an allowed result,
// and only three rows are kept.
//
// Requires: a is no longer than the longest word, and most is no more than the most mistakes.
std::size_t TypingDistance(WideView a, WideView b, std::size_t most)
{
    if (std::max(a.size(), b.size()) - std::min(a.size(), b.size()) > most)
        return most + 1;
    using Row = std::array<std::size_t, kLongestWord + kMostMistakes + 2>;
    std::array<Row, 3> rows;
    for (Row& row : rows)
        row.fill(most + 1);
    for (std::size_t column = 0; column <= std::min(b.size(), most); ++column)
        rows[0][column] = column;
    for (std::size_t row = 1; row <= a.size(); ++row) {
        const Row& beforeLast = rows[(row + 1) % 3];
        const Row& last = rows[(row + 2) % 3];
        Row& present = rows[row % 3];
        const std::size_t first = row > most ? row - most : 1;
        const std::size_t end = std::min(b.size(), row + most);
        present[first - 1] = row <= most ? row : most + 1;
        for (std::size_t column = first; column <= end; ++column) {
            const bool isSame = a[row - 1] == b[column - 1];
            present[column] = std::min({last[column] + 1, present[column - 1] + 1,
                                        last[column - 1] + (isSame ? 0U : 1U), most + 1});
            const bool isExchange =
                row > 1 && column > 1 && a[row - 1] == b[column - 2] && a[row - 2] == b[column - 1];
            if (isExchange)
                present[column] = std::min(present[column], beforeLast[column - 2] + 1);
        }
        present[end + 1] = most + 1;
    }
    return rows[a.size() % 3][b.size()];
}

} // namespace

std::vector<Suggestion> NearestTo(WideView word, const KnownNames& names, bool isCalled,
                                  std::size_t most)
{
    if (word.empty() || word.size() > kLongestWord)
        return {};
    struct Candidate {
        std::size_t distance;
        bool isSecondChoice;
        Suggestion suggestion;
    };
    const WideText folded = Folded(word);
    const std::size_t mistakes = MistakesIn(word.size());
    std::vector<Candidate> candidates;
    const auto consider = [&](WideView other, bool isSecondChoice, Suggestion suggestion) {
        std::size_t distance = TypingDistance(folded, other, mistakes);
        if (distance > mistakes &&
            (folded.size() < kShortestBeginning || !other.starts_with(folded)))
            return;
        candidates.push_back({distance, isSecondChoice, suggestion});
    };
    for (const KnownName& name : names.All())
        consider(name.folded, isCalled, {&name, 0});
    for (int code = kFirstWordCode; code <= kLastWordCode; ++code) {
        const CString name = TokenName(code);
        const bool isFunction = CExprToken::GetTokCodeType(code) == TT_FUNCTION;
        if (!name.IsEmpty())
            consider(Folded(name.View()), isCalled != isFunction, {nullptr, code});
    }
    std::stable_sort(candidates.begin(), candidates.end(), [](const auto& a, const auto& b) {
        return std::tie(a.distance, a.isSecondChoice) < std::tie(b.distance, b.isSecondChoice);
    });
    std::vector<Suggestion> suggestions;
    for (std::size_t at = 0; at < std::min(most, candidates.size()); ++at)
        suggestions.push_back(candidates[at].suggestion);
    return suggestions;
}

} // namespace tovo::job
