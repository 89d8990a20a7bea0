#include "Translation.h"

#include <algorithm>

#include "TokenScanner.h"

namespace tovo::detail {
namespace {

// How far everything at or behind a position of the old text has moved in the new one.
struct Shift {
    int position;
    int total;
};

// Collects the new text while the old one is scanned.
class Writer {
public:
    explicit Writer(WideView text) : m_Text(text) {}

    void Replace(int position, WideView token, WideView replacement)
    {
        CopyUpTo(position);
        m_Result.append(replacement);
        m_Copied = static_cast<std::size_t>(position) + token.size();
        const int delta = static_cast<int>(replacement.size()) - static_cast<int>(token.size());
        if (delta != 0)
            m_Shifts.push_back({position, Moved() + delta});
    }

    WideText TakeAll()
    {
        CopyUpTo(static_cast<int>(m_Text.size()));
        return std::move(m_Result);
    }

    // How far the whole rest has moved, and what stands at a position.
    int Moved() const { return m_Shifts.empty() ? 0 : m_Shifts.back().total; }
    int MovedAt(int position) const
    {
        const auto behind =
            std::upper_bound(m_Shifts.begin(), m_Shifts.end(), position,
                             [](int value, const Shift& shift) { return value < shift.position; });
        return behind == m_Shifts.begin() ? 0 : std::prev(behind)->total;
    }

private:
    void CopyUpTo(int position)
    {
        const auto end = static_cast<std::size_t>(position);
        m_Result.append(m_Text.substr(m_Copied, end - m_Copied));
        m_Copied = end;
    }

    WideView m_Text;
    std::size_t m_Copied = 0;
    WideText m_Result;
    std::vector<Shift> m_Shifts; // ascending by position
};

WideText WithSeparator(WideView number, char16_t from, char16_t to)
{
    WideText result(number);
    std::replace(result.begin(), result.end(), from, to);
    return result;
}

void TranslateToken(const TokenScanner& scanner, const Spelling& from, const Spelling& to,
                    Writer& writer)
{
    const WideView token = scanner.TokenText();
    const char16_t separator = from.DecimalSeparator();
    if (scanner.TokenCode() == TOK_NUMBER && separator != to.DecimalSeparator())
        writer.Replace(scanner.TokenPos(), token,
                       WithSeparator(token, separator, to.DecimalSeparator()));
    else if (NeedsTranslation(scanner.TokenCode(), from, to))
        writer.Replace(scanner.TokenPos(), token, to.NameOf(scanner.TokenCode()));
}

} // namespace

bool NeedsTranslation(int code, const Spelling& from, const Spelling& to)
{
    return code != TOK_NUMBER && CatalogueOf(code).nameId > 0 &&
           from.NameOf(code) != to.NameOf(code);
}

Translation Translate(const CString& text, std::vector<Reference> references, const Spelling& from,
                      const Spelling& to)
{
    TokenScanner scanner(text, references, from, 0);
    Writer writer(text.View());
    TokenScanner::Outcome outcome;
    while ((outcome = scanner.Next()) == TokenScanner::Outcome::Token)
        TranslateToken(scanner, from, to, writer);

    Translation translation;
    if (outcome == TokenScanner::Outcome::Fault)
        translation.fault = scanner.FaultMessage();
    translation.scanPos = scanner.ScanPos() + writer.Moved();
    translation.text = writer.TakeAll();
    for (Reference& reference : references)
        reference.position = std::max(0, reference.position + writer.MovedAt(reference.position));
    translation.references = std::move(references);
    return translation;
}

} // namespace tovo::detail
