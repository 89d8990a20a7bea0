// A host with a parcel to send: it keeps the numbers, and its user says in a formula what the
// parcel costs.

#include <iostream>
#include <string>

#include <TovoFormula/TovoFormula.h>

namespace {

// What the carrier takes, by weight (up to 2, 5 and 31.5 kg) and by distance (up to 100 km and
// farther). Cells are in thousandths.
void FillRates(FormulaTableImpl& rates, CalcSetImpl& shop)
{
    const double weights[] = {2, 5, 31.5};
    const char* const cells[][2] = {{"4500", "5200"}, {"6900", "8400"}, {"12000", "15500"}};

    rates.SetName("Rate");
    rates.GetRowSelector().SetVariable(u"Weight");
    rates.GetColumnSelector().SetVariable(u"Distance");
    rates.SetColumnLimit(0, 100);
    for (int row = 0; row < 3; ++row) {
        rates.SetRowLimit(row, weights[row]);
        for (int column = 0; column < 2; ++column)
            rates.SetCell(row, column, new CFormtblElem(cells[row][column], shop));
    }
}

// The mark stands under the character that the library blames.
void ShowFault(const CFmlaExprBase& expression, unsigned int message)
{
    CString words;
    if (!words.LoadString(message))
        words = u"The formula cannot be calculated.";
    std::cout << expression.GetTextStr() << '\n';
    if (expression.GetInvalidPos() >= 0)
        std::cout << std::string(static_cast<std::size_t>(expression.GetInvalidPos()), ' ')
                  << "^\n";
    std::cout << words << " (" << message << ")\n\n";
}

void ShowDependencies(FormulaImpl& formula, CalcSetImpl& shop)
{
    CScannedVariables met;
    shop.StartNewPass(); // or a table would answer from the value that it has
    formula.GetVariables(met, 0, 1);

    std::cout << "It depends on\n";
    for (const CString& name : met.VariableList()) {
        const bool inCondition = shop.GetVarObj(name, 0, 0)->InCond() != 0;
        std::cout << "  " << name << (inCondition ? ", to choose by\n" : "\n");
    }
    if (met.QuantityScanned())
        std::cout << "  QUANTITY\n";
}

} // namespace

int main()
{
    InitTovoFormulaDLL();

    CalcSetImpl shop;
    shop.SetReportFcnDomainErrors(1); // who divides by zero has made a mistake
    VariableImpl weight(&shop, "Weight", 3.2);
    VariableImpl distance(&shop, "Distance", 240);
    VariableImpl express(&shop, "Express?", 1);
    FormulaTableImpl rates(&shop, 3, 2);
    FormulaImpl postage(&shop);
    postage.SetName("Postage");
    FillRates(rates, shop);
    shop.AddVariable(&weight);
    shop.AddVariable(&distance);
    shop.AddVariable(&express);
    shop.AddFormulaTable(&rates);
    shop.AddFormula(&postage);
    shop.SetQuantity(4);

    // The user types a text, picks what it refers to, and has forgotten a parenthesis. A place is
    // the gap before a character.
    CFmlaExpression& typed = postage.GetExpression();
    typed.SetExpr(u"ROUND(*QUANTITY*IF(,1.5,1),2");
    if (!typed.InsertVariable(u"Express?", 19, TOK_VARIABLE) ||
        !typed.InsertFormulaTable(u"Rate", 6))
        return 1;
    unsigned int message = MSG_NONE;
    if (!postage.Calculate(message, nullptr))
        ShowFault(typed, message);

    if (!typed.InsertString(u")", typed.GetTextStr().GetLength()) ||
        !postage.Calculate(message, nullptr)) {
        ShowFault(typed, message);
        return 1;
    }
    std::cout << typed.GetTextStr() << "\nPostage: " << postage.GetValue() << '\n';
    ShowDependencies(postage, shop);

    // What is stored is English, and reads back under any language of the user.
    const CString stored = typed.GetEncodedString();
    std::cout << "Stored as " << stored << '\n';
    weight.SetValue(12);
    shop.StartNewPass();
    postage.SetFromEncodedString(stored);
    if (postage.Calculate(message, nullptr))
        std::cout << "Postage at 12 kg: " << postage.GetValue() << '\n';
}
