#ifndef TOVOJOB_SRC_KNOWNNAMES_H
#define TOVOJOB_SRC_KNOWNNAMES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include <TovoPlatform/WideString.h>

#include <TovoJob/Job.h>

namespace tovo::job {

// A name that can be typed for an object.
struct KnownName {
    ObjectName object;
    WideText name;
    WideText folded; // see Folded
};

// A text in which names are looked for.
class SearchedText {
public:
    explicit SearchedText(WideView text);

    WideView Text() const { return m_Text; }
    WideView FoldedText() const { return m_Folded; }
    // Equal stretches have equal numbers. Requires: a stretch of the text.
    std::uint64_t NumberOf(std::size_t begin, std::size_t length) const;

private:
    WideText m_Text;
    WideText m_Folded;
    std::vector<std::uint64_t> m_Numbers; // of the first n characters
    std::vector<std::uint64_t> m_Powers;
};

// All names of a job, to be found in texts. Made in time linear in the names. A search at one place
// looks once at each length that a name with this first character has, whatever the number of
// names.
class KnownNames {
public:
    using Names = std::vector<const KnownName*>;

    struct Match {
        std::size_t end = 0;
        // Those that are spelled as in the text; if there are none, those that differ from it in
        // letter case alone.
        Names names;
        bool isExact = false;
    };

    explicit KnownNames(const Job& job);

    // Variables, formulas and tables, each kind in its order.
    const std::vector<KnownName>& All() const { return m_Names; }
    // The longest that stands there and does not reach beyond the limit nor end inside a word.
    std::optional<Match> LongestAt(const SearchedText& text, std::size_t begin,
                                   std::size_t limit) const;
    // Those that are spelled so, as in a match.
    Names Named(WideView name) const;

private:
    Names Spelled(WideView name, WideView folded, std::uint64_t number, bool& isExact) const;

    std::vector<KnownName> m_Names;
    std::unordered_multimap<std::uint64_t, std::size_t> m_ByNumber;
    // The lengths of the names that begin with a character, each once, falling.
    std::unordered_map<char16_t, std::vector<std::size_t>> m_Lengths;
};

} // namespace tovo::job

#endif
