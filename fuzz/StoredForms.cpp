#include <array>
#include <string>

#include <TovoFormula/CalcOpBase.h>
#include <TovoFormula/CalcSetImpl.h>
#include <TovoFormula/FormtblElem.h>
#include <expression_text/Texts.h>

#include "Oracles.h"
#include "Reader.h"

// What hosts store: encoded strings of expressions, combined strings of table elements, prefixed
// and encoded strings of operands. What was stored once stays the same however often it is read and
// written, in every language.

namespace tovo::fuzz {
namespace {

constexpr int kMostPieces = 40;
// Beyond, a reference may not fit its 16-bit words and stays literal.
constexpr int kLongestName = 60000;

// Any bytes as a stored form, or as a text that was typed.
void ReadAnything(Reader& reader)
{
    const CString text = reader.Text();
    RequireSettledForm(text);
    CFmlaExprBase expression;
    expression.SetExpr(text);
    expression.TranslateText(TL_ENGLISH);
    expression.TranslateText(TL_LOCAL);
    if (!IsThorough())
        return;
    expression.SetExpr(text);
    expression.GetRTFString(u"Arial", 20);
    RequireWholeDocument(expression);
    RequireSettledForm(expression.GetEncodedString());
}

// Texts with references, whose literals never look like a stored reference, so that all of them
// come back. Names may be anything.
void StoreReferences(Reader& reader)
{
    static constexpr std::array kLiterals = {
        u"1,5 ", u";", u"+", u"SQRT(", u")", u"2", u" ", u"WENN(", u"ODER ", u"?", u">", u"\u00e4"};
    CString text;
    CWordArray words;
    std::string names;
    for (int piece = 0; piece < kMostPieces && !reader.AtEnd(); ++piece) {
        if (reader.Pick(2) == 0) {
            text += kLiterals[static_cast<std::size_t>(reader.Pick(kLiterals.size()))];
            continue;
        }
        const int kind = reader.Pick(3);
        const CString name = reader.Name();
        if (text.GetLength() + name.GetLength() > kLongestName)
            continue;
        words.Add(static_cast<WORD>(text.GetLength()));
        words.Add(static_cast<WORD>(name.GetLength() + 2));
        words.Add(static_cast<WORD>(kind));
        text += u' ' + name + u' ';
        names += std::to_string(kind) + name.ToUtf8() + '\n';
    }
    CFmlaExprBase expression;
    expression.SetExpr(text, words);
    RequireSoundTable(expression);
    const CString stored = expression.GetEncodedString();
    expression.SetFromEncodedString(stored);
    std::string found;
    for (int index = 0; index < expression.NumVars(); ++index)
        found +=
            std::to_string(expression.VarType(index)) + expression.VarName(index).ToUtf8() + '\n';
    Require(found == names, "the references that were stored",
            [&] { return names + '\n' + found; });
    Require(expression.GetEncodedString() == stored, "the form that was stored",
            [&] { return stored.ToUtf8(); });
}

void StoreElement(Reader& reader)
{
    CalcSetImpl set;
    CFormtblElem element(reader.Text(), set);
    // A constant that is written as 0 is the empty string from then on.
    const CFormtblElem once(element.GetCombinedString(), set);
    const CString stored = once.GetCombinedString();
    const CFormtblElem twice(stored, set);
    Require(twice.GetCombinedString() == stored && once.GetType() == element.GetType() &&
                (once.value() == twice.value()),
            "the same element",
            [&] { return stored.ToUtf8() + '\n' + twice.GetCombinedString().ToUtf8(); });
    // What is shown may be typed again; it is rounded once.
    element.XSetName(element.XGetName());
    const CString shown = element.XGetName();
    element.XSetName(shown);
    Require(element.XGetName() == shown, "the same element typed again",
            [&] { return shown.ToUtf8() + '\n' + element.XGetName().ToUtf8(); });
}

void StoreOperand(Reader& reader)
{
    CalcOpBase operand;
    const CString text = reader.Text();
    const bool isPrefixed = operand.LoadPrefixedString(text) && !operand.IsConstant();
    CalcOpBase copy;
    if (isPrefixed) {
        copy.LoadPrefixedString(operand.GetPrefixedString());
        Require(copy.GetPrefixedString() == text, "the same prefixed string",
                [&] { return text.ToUtf8(); });
        // The encoded string of a reference comes back as that reference.
        copy.LoadEncodedExpression(operand.GetEncodedString());
        Require(text.GetLength() > kLongestName ||
                    copy.GetPrefixedString() == operand.GetPrefixedString(),
                "the same reference", [&] { return text.ToUtf8(); });
    }
    operand.LoadEncodedExpression(text);
    operand.GetRTFDisplay();
    RequireSettledForm(operand.GetEncodedString());
}

} // namespace
} // namespace tovo::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    using namespace tovo::fuzz;
    BeginInput(bytes, count);
    Reader reader(bytes, count);
    const int road = reader.Pick(4);
    const int language = reader.Pick(kLanguages);
    SpeakLanguage(road == 1 ? language % kSoundLanguages : language);
    if (road == 0)
        ReadAnything(reader);
    else if (road == 1)
        StoreReferences(reader);
    else if (road == 2)
        StoreElement(reader);
    else
        StoreOperand(reader);
    return 0;
}
