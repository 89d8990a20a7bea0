#include <TovoFormula/FmlaExprBase.h>

#include <algorithm>

#include <TovoPlatform/NumberText.h>

#include "../expression_core/Names.h"
#include "TokenScanner.h"
#include "Translation.h"

// The encoded string, all in English:
//
//     encoded   = { literal character | [blank] reference }
//     reference = ("V" | "F" | "T") "(" { character | "\" character } ")"
//
// The blank stands behind a letter, so that the reference's own letter ends no word; in a name
// every
// "\" and every ")" has a "\" before it. Nothing is escaped in literal text. The pointer string:
//
//     pointers  = { position "," length "," kind "," }
//
// Hosts store both: never change what they mean.

using namespace tovo::detail;

namespace {

constexpr char16_t kEscape = u'\\';
constexpr char16_t kOpen = u'(';
constexpr char16_t kClose = u')';

void AppendForm(WideText& encoded, WideView name, int kind)
{
    if (kind >= 0 && kind < kReferenceKindCount)
        encoded += kReferenceKinds[kind].letter;
    encoded += kOpen;
    for (const char16_t character : name) {
        if (character == kEscape || character == kClose)
            encoded += kEscape;
        encoded += character;
    }
    encoded += kClose;
}

// The name that a reference is written with. Only references of one kind and name are renamed.
WideView WrittenName(WideView name, int kind, const Renaming* renaming)
{
    const bool isRenamed = renaming && kind == renaming->kind && name == renaming->oldName;
    return isRenamed ? renaming->newName : name;
}

CString Encode(WideView text, std::span<const Reference> references, const Renaming* renaming)
{
    WideText encoded;
    std::size_t copied = 0;
    const auto length = static_cast<int>(text.size());
    for (std::size_t next = NextEffective(references, 0, 0, length); next < references.size();
         next = NextEffective(references, next, static_cast<int>(copied), length)) {
        const auto start = static_cast<std::size_t>(references[next].position);
        const WideView stretch =
            text.substr(start, static_cast<std::size_t>(references[next].length));
        encoded.append(text.substr(copied, start - copied));
        if (!encoded.empty() && tovo::IsAlphabetic(encoded.back()))
            encoded += u' ';
        const int kind = references[next].EffectiveKind();
        AppendForm(encoded, WrittenName(BareName(stretch), kind, renaming), kind);
        copied = start + stretch.size();
    }
    encoded.append(text.substr(copied));
    return CString(std::move(encoded));
}

// Reads an encoded string from the left into a text and its references, in one pass.
class Decoder {
public:
    explicit Decoder(WideView encoded) : m_Rest(encoded) {}

    void Run()
    {
        while (m_Next < m_Rest.size()) {
            const char16_t character = m_Rest[m_Next];
            if (character == kOpen && KindBefore() != kNoKind && TakeForm(KindBefore()))
                continue;
            m_Text += m_Rest[m_Next++];
        }
    }

    WideText TakeText() { return std::move(m_Text); }
    std::vector<Reference> TakeReferences() { return std::move(m_References); }

private:
    // The kind that the letter before a bracket stands for; none where it ends a word, as
    // in SQRT(4).
    int KindBefore() const
    {
        const std::size_t size = m_Text.size();
        if (size == 0 || (size > 1 && IsWordLetter(m_Text[size - 2])))
            return kNoKind;
        return KindOfLetter(m_Text[size - 1]);
    }

    // Takes the form whose bracket is next. If it has no end, its escapes go all the same and
    // false tells that the bracket is literal.
    bool TakeForm(int kind)
    {
        if (m_HasNoMoreClose)
            return false;
        WideText name;
        std::size_t at = m_Next + 1;
        for (; at < m_Rest.size() && m_Rest[at] != kClose; ++at) {
            if (m_Rest[at] == kEscape && ++at == m_Rest.size())
                break;
            name += m_Rest[at];
        }
        if (at >= m_Rest.size()) {
            TakeEscapesOut(std::move(name));
            return false;
        }
        m_Text.back() = u' ';
        const auto position = static_cast<int>(m_Text.size()) - 1;
        m_References.push_back({position, static_cast<int>(name.size()) + 2, kind});
        m_Text.append(name).append(1, u' ');
        m_Next = at + 1;
        return true;
    }

    // What an unterminated form has read becomes the rest of the string. If that changed nothing,
    // no later form can find an end either, and none need look for one.
    void TakeEscapesOut(WideText rest)
    {
        m_HasNoMoreClose = rest.size() == m_Rest.size() - m_Next - 1;
        m_Unescaped = m_Rest[m_Next] + std::move(rest);
        m_Rest = m_Unescaped;
        m_Next = 0;
    }

    WideView m_Rest;
    std::size_t m_Next = 0;
    WideText m_Unescaped; // what m_Rest views, once escapes were taken out
    bool m_HasNoMoreClose = false;
    WideText m_Text;
    std::vector<Reference> m_References;
};

// Cuts a pointer string into its numbers. The first ends at a comma, each later one at a comma or a
// blank; runs of these count as one.
std::vector<CString> PiecesOf(WideView pointers)
{
    std::vector<CString> pieces;
    WideView ends = u",";
    for (;;) {
        const std::size_t start = pointers.find_first_not_of(ends);
        if (start == WideView::npos)
            return pieces;
        pointers.remove_prefix(start);
        const WideView piece = pointers.substr(0, pointers.find_first_of(ends));
        pieces.emplace_back(piece);
        pointers.remove_prefix(piece.size());
        ends = u", ";
    }
}

} // namespace

CString CFmlaExprBase::GetEncodedString()
{
    return EncodeRenamed(nullptr);
}

CString CFmlaExprBase::EncodeRenamed(const Renaming* renaming)
{
    const std::unique_ptr<CFmlaExprBase> copy(Clone());
    const Translation english =
        TranslationOf(copy->m_ExprText, ReferencesOf(copy->m_VarPtrs), TL_ENGLISH);
    // A fault in a number is reported by the copy, as if its text had been translated in place.
    if (english.fault)
        copy->TakeTranslation(english);
    return Encode(english.text, english.references, renaming);
}

void CFmlaExprBase::SetFromEncodedString(CString encoded)
{
    Decoder decoder(encoded.View());
    decoder.Run();
    TranslateAndTake(CString(decoder.TakeText()), decoder.TakeReferences(), TL_LOCAL);
    // Whoever was told of a fault in a number may have marked it.
    m_InvalidPos = -1;
}

CString CFmlaExprBase::EncodeVariable(const CString& name, int kind)
{
    WideText form;
    AppendForm(form, name.View(), kind);
    return CString(std::move(form));
}

CString CFmlaExprBase::EncodeFormula(const CString& name)
{
    return EncodeVariable(name, TOK_FORMULA);
}

CString CFmlaExprBase::EncodeFormulaTable(const CString& name)
{
    return EncodeVariable(name, TOK_FORMTBL);
}

CString CFmlaExprBase::GetPtrStr() const
{
    std::string numbers;
    for (int index = 0; index < NumVars(); ++index)
        for (const int number : {VarPos(index), VarLength(index), VarType(index)})
            numbers.append(std::to_string(number)).append(1, ',');
    return CString(numbers);
}

void CFmlaExprBase::SetExpr(const CString& text, const CString& pointers)
{
    CWordArray words;
    for (const CString& piece : PiecesOf(pointers.View()))
        words.Add(static_cast<WORD>(tovo::ParseInt(piece)));
    SetExpr(text, words);
}
