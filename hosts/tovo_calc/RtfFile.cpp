#include "RtfFile.h"

#include <fmt/format.h>

namespace {

constexpr const WCHAR* kFont = u"Arial";
constexpr int kHalfPoints = 22;

// What ends each of the library's documents; the document's own brace is its last character.
constexpr WideView kTail = u" \\par}";
constexpr WideView kNameStyle = u"\\plain\\f0\\fs22\\cf0 ";

constexpr WCHAR kLastAscii = 0x7E;

// RTF's way to write a character beyond ASCII: its number as a signed 16-bit one, and a question
// mark for readers that do not know it.
std::string Escaped(WCHAR character)
{
    if (character == u'{' || character == u'}')
        return {'\\', static_cast<char>(character)};
    if (character > kLastAscii)
        return fmt::format("\\u{}?", static_cast<std::int16_t>(character));
    return {character < u' ' ? ' ' : static_cast<char>(character)};
}

// The library leaves braces and characters beyond ASCII as they are.
std::string Escaped(WideView text)
{
    std::string escaped;
    for (const WCHAR character : text)
        escaped += Escaped(character);
    return escaped;
}

// Everything of a document before its text.
WideView HeadOf(const CString& emptyDocument)
{
    WideView head = emptyDocument.View();
    head.remove_suffix(kTail.size());
    return head;
}

// The paragraph that a document holds.
std::string Paragraph(const CFmlaExprBase& expression, std::size_t headLength)
{
    const CString document = expression.GetRTFString(kFont, kHalfPoints);
    WideView runs = document.View().substr(headLength);
    runs.remove_suffix(1);
    return Escaped(runs) + "\n";
}

std::string NameRun(CString name)
{
    if (name.IsEmpty())
        return {};
    name.Replace(u"\\", u"\\\\");
    return Escaped(CString(kNameStyle).View()) + Escaped((name + u" = ").View());
}

} // namespace

std::string RtfDocument(const Job& job)
{
    const CString empty = CFmlaExprBase().GetRTFString(kFont, kHalfPoints);
    const WideView head = HeadOf(empty);
    std::string document = CString(head).ToUtf8() + "\n";
    for (const auto& formula : job.Formulas())
        document += NameRun(formula->GetName()) + Paragraph(formula->GetExpression(), head.size());
    return document + "}\n";
}
