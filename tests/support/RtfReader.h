#ifndef TOVOFORMULA_TESTS_RTFREADER_H
#define TOVOFORMULA_TESTS_RTFREADER_H

#include <optional>
#include <string>
#include <string_view>

#include <TovoPlatform/WideString.h>

namespace tovo::test {

// What a reader of RTF shows of a document: its characters, with "\n" for the ends of lines and of
// paragraphs, and how each of them looks: 't' plain black, 'l' bold black, 'V', 'F' and 'T' bold,
// underlined and in the first, second and third colour, '?' anything else.
struct RtfContent {
    WideText text;
    std::string looks;

    bool operator==(const RtfContent&) const = default;
};

// Nothing for a document that does not parse, or that has a control word which no document of the
// library needs.
std::optional<RtfContent> ReadRtf(std::string_view document);

} // namespace tovo::test

#endif
