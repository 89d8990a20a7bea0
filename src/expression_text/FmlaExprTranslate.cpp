#include <TovoFormula/FmlaExprBase.h>

#include <algorithm>
#include <utility>

#include "../expression_core/Names.h"
#include "../expression_core/RestoreOnThrow.h"
#include "../expression_core/UserLanguage.h"
#include "Translation.h"

using namespace tovo::detail;

namespace {

bool FitWords(const std::vector<Reference>& references)
{
    return std::all_of(references.begin(), references.end(),
                       [](const Reference& reference) { return reference.FitsWords(); });
}

// Whether a stretch of digits and separators is long enough or has separators enough to be refused,
// in a name as well as in a number.
bool MayHaveFault(WideView text)
{
    constexpr int kFewDigits = 15;
    int digits = 0;
    int separators = 0;
    for (const char16_t character : text) {
        const bool isDigit = character >= '0' && character <= '9';
        const bool isSeparator = character == '.';
        digits = isDigit || isSeparator ? digits + (isDigit ? 1 : 0) : 0;
        separators = isDigit || isSeparator ? separators + (isSeparator ? 1 : 0) : 0;
        if (digits > kFewDigits || separators > 1)
            return true;
    }
    return false;
}

// A text in which some references are written out as encoded strings have them, and the others.
struct Spelled {
    WideText text;
    std::vector<Reference> references;
};

// Writes out those whose translation the words of the table could not hold. They stand behind all
// the others, whose positions stay.
Spelled SpellOut(WideView text, const std::vector<Reference>& references,
                 const std::vector<Reference>& translated)
{
    Spelled spelled;
    std::size_t copied = 0;
    for (std::size_t index = 0; index < references.size(); ++index) {
        const Reference& reference = references[index];
        const auto start = static_cast<std::size_t>(reference.position);
        if (translated[index].FitsWords()) {
            spelled.references.push_back(reference);
        } else if (start >= copied && start < text.size()) {
            const WideView stretch = text.substr(start, static_cast<std::size_t>(reference.length));
            const CString name(BareName(stretch));
            spelled.text.append(text.substr(copied, start - copied));
            spelled.text.append(CFmlaExprBase::EncodeVariable(name, reference.kind).View());
            copied = start + stretch.size();
        }
    }
    spelled.text.append(text.substr(copied));
    return spelled;
}

} // namespace

void CFmlaExprBase::TranslateText(TEXT_LANGUAGE target)
{
    TranslateAndTake(m_ExprText, ReferencesOf(m_VarPtrs), target);
}

int CFmlaExprBase::TokenNeedsTranslation(int code) const
{
    return NeedsTranslation(code, SpellingOf(TL_ENGLISH), SpellingOf(TL_LOCAL)) ? 1 : 0;
}

Translation CFmlaExprBase::TranslationOf(const CString& text, std::vector<Reference> references,
                                         TEXT_LANGUAGE target)
{
    const TEXT_LANGUAGE source = target == TL_LOCAL ? TL_ENGLISH : TL_LOCAL;
    return Translate(text, std::move(references), SpellingOf(source), SpellingOf(target));
}

// Where the languages agree, only a fault in a number would show.
bool CFmlaExprBase::IsTranslatedAlready(const CString& text,
                                        const std::vector<Reference>& references)
{
    return languageInForce->areNamesEnglish && FitWords(references) && !MayHaveFault(text.View());
}

// A reference that the table cannot hold is not entered: it becomes literal text, in the form that
// a reader of encoded strings knows, so that nothing of it is lost.
void CFmlaExprBase::TranslateAndTake(const CString& text, const std::vector<Reference>& references,
                                     TEXT_LANGUAGE target)
{
    if (IsTranslatedAlready(text, references)) {
        CWordArray words;
        for (const Reference& reference : references)
            AppendReference(words, reference);
        SetText(text, std::move(words));
        m_ScanPos = m_ExprText.GetLength();
        return;
    }
    Translation translation = TranslationOf(text, references, target);
    if (!FitWords(translation.references)) {
        Spelled spelled = SpellOut(text.View(), references, translation.references);
        translation =
            TranslationOf(CString(std::move(spelled.text)), std::move(spelled.references), target);
    }
    TakeTranslation(translation);
}

void CFmlaExprBase::TakeTranslation(const Translation& translation)
{
    CWordArray words;
    for (const Reference& reference : translation.references)
        if (reference.FitsWords())
            AppendReference(words, reference);
    CString text(translation.text);
    if (!translation.fault) {
        SetText(std::move(text), std::move(words));
        m_ScanPos = translation.scanPos;
        return;
    }
    // Who is told of a fault may look at the text. If that throws, there was no translation.
    RestoreOnThrow former(m_ExprText, m_VarPtrs, m_ScanPos, m_MessageNum, m_InvalidPos);
    SetText(std::move(text), std::move(words));
    m_ScanPos = translation.scanPos;
    ReportFault(translation.fault);
    former.End();
}
