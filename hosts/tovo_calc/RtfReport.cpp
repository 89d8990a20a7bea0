#include "RtfReport.h"

#include <TovoFormula/RtfDocument.h>

namespace {

constexpr const char16_t* kFont = u"Arial";
constexpr int kHalfPoints = 22;

void AddExpression(RtfDocument& document, const std::string& expression)
{
    CFmlaExprBase text;
    text.SetFromEncodedString(CString(std::string_view(expression)));
    document.AddExpression(text);
    document.EndParagraph();
}

} // namespace

std::string RtfReport(const tovo::Job& job)
{
    RtfDocument document(kFont, kHalfPoints);
    for (const tovo::Formula& formula : job.Formulas()) {
        document.AddText(CString(std::string_view(formula.name)) + u" = ");
        AddExpression(document, formula.expression);
    }
    return document.GetRTFString().ToUtf8();
}

std::string RtfReport(const std::string& expression)
{
    RtfDocument document(kFont, kHalfPoints);
    AddExpression(document, expression);
    return document.GetRTFString().ToUtf8();
}
