// A service with authors of two languages: each thread serves one of them, and the formulas are
// stored in a form that both read.

#include <iostream>
#include <sstream>
#include <string>
#include <thread>

#include <TovoFormula/TovoFormula.h>
#include <TovoPlatform/NumberText.h>

#include "German.h"

namespace {

std::string Message(unsigned int id)
{
    CString words;
    return words.LoadString(id) ? words.ToUtf8() : "The formula cannot be calculated.";
}

// What the author sees of a stored formula, and of a text that was typed, in the author's language.
std::string Serve(const FormulaLanguage& language, const CString& stored, const CString& typed)
{
    const LanguageScope scope(language);
    CalcSetImpl job;
    VariableImpl length(&job, "Length", 7.25);
    job.AddVariable(&length);
    job.SetQuantity(3);

    std::ostringstream seen;
    FormulaImpl formula(&job, "Price", stored);
    seen << "Price: " << formula.GetExpression().GetTextStr() << '\n';

    CFmlaExpression& expression = formula.GetExpression();
    expression.SetExpr(typed);
    unsigned int message = MSG_NONE;
    if (formula.Calculate(message, nullptr)) {
        CString value;
        FloatToNumString(formula.GetValue(), value, 0, 2, 0);
        seen << typed << " = " << value << '\n';
        seen << "Stored as " << expression.GetEncodedString() << '\n';
    } else {
        seen << typed << "\n" << Message(message) << '\n';
    }
    return seen.str();
}

} // namespace

int main()
{
    InitTovoFormulaDLL();

    const CString stored = u"ROUND(IF(QUANTITY>=5,1.5,2)*V(Length),1)";
    std::string german;
    std::string broken;
    std::string english;
    std::thread first([&] {
        german = Serve(German(), stored, u"RUNDEN(WENN(ANZAHL>2;1,25;2);1)");
        broken = Serve(German(), stored, u"RUNDEN(1,5;0");
    });
    std::thread second(
        [&] { english = Serve(FormulaLanguage(), stored, u"ROUND(IF(QUANTITY>2,1.25,2),1)"); });
    first.join();
    second.join();
    std::cout << german << '\n' << broken << '\n' << english;

    // A job changes hands: the texts of its formulas are converted, what is stored stays the same.
    CalcSetImpl job;
    FormulaImpl price(&job, "Price", stored);
    job.AddFormula(&price);
    ConvertExpressions(job, German());
    const LanguageScope scope(German());
    std::cout << '\n' << price.GetExpression().GetTextStr() << '\n';
    return price.GetExpression().GetEncodedString() == stored ? 0 : 1;
}
