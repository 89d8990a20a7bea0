#include "RtfReport.h"

#include <TovoFormula/RtfDocument.h>

namespace {

constexpr const WCHAR* kFont = u"Arial";
constexpr int kHalfPoints = 22;

} // namespace

std::string RtfReport(const Job& job)
{
    RtfDocument document(kFont, kHalfPoints);
    for (const auto& formula : job.Formulas()) {
        const CString name = formula->GetName();
        if (!name.IsEmpty())
            document.AddText(name + u" = ");
        document.AddExpression(formula->GetExpression());
        document.EndParagraph();
    }
    return document.GetRTFString().ToUtf8();
}
