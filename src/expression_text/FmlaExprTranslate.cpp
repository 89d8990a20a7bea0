#include <TovoFormula/FmlaExprBase.h>

#include "../expression_core/Names.h"
#include "Translation.h"

using namespace tovo::detail;

void CFmlaExprBase::TranslateText(TEXT_LANGUAGE target)
{
    TakeTranslation(TranslationOf(ReferencesOf(m_VarPtrs), target));
}

int CFmlaExprBase::TokenNeedsTranslation(int code) const
{
    return NeedsTranslation(code, SpellingOf(TL_ENGLISH), SpellingOf(TL_LOCAL)) ? 1 : 0;
}

Translation CFmlaExprBase::TranslationOf(std::vector<Reference> references,
                                         TEXT_LANGUAGE target) const
{
    const TEXT_LANGUAGE source = target == TL_LOCAL ? TL_ENGLISH : TL_LOCAL;
    return Translate(m_ExprText, std::move(references), SpellingOf(source), SpellingOf(target));
}

// A reference that the words of the table cannot hold is not entered: its stretch becomes the form
// that it has in encoded strings, so that nothing of it is lost.
void CFmlaExprBase::TakeTranslation(const Translation& translation)
{
    const WideView text = translation.text;
    WideText literal;
    std::size_t copied = 0;
    CWordArray words;
    for (const Reference& reference : translation.references) {
        const auto start = static_cast<std::size_t>(reference.position);
        if (reference.FitsWords()) {
            AppendReference(words, reference);
        } else if (start >= copied && start < text.size()) {
            const auto length = static_cast<std::size_t>(reference.length);
            literal.append(text.substr(copied, start - copied));
            literal.append(
                EncodeVariable(CString(BareName(text.substr(start, length))), reference.kind)
                    .View());
            copied = std::min(start + length, text.size());
        }
    }
    literal.append(text.substr(copied));

    m_ExprText = CString(std::move(literal));
    m_VarPtrs = std::move(words);
    m_ScanPos = translation.scanPos;
    if (translation.fault)
        ReportFault(translation.fault);
}
