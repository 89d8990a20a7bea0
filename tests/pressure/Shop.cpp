#include "Shop.h"

#include <support/Dump.h>

namespace tovo::test {
namespace {

template <typename Map>
std::string NamesOf(const Map& map)
{
    std::string names;
    for (const auto& [name, object] : map)
        names += name.ToUtf8() + '/' + object->GetName().ToUtf8() + ' ';
    return names;
}

std::string Numbers(std::initializer_list<double> numbers)
{
    std::string text;
    for (const double number : numbers)
        text += std::to_string(number) + ' ';
    return text;
}

std::string GivenTo(const CFmlaExprBase& text)
{
    return text.GetTextStr().ToUtf8() + '|' + text.GetPtrStr().ToUtf8() + '|' +
           std::to_string(text.GetExprTextLimit());
}

std::string Marks(const CFmlaExprBase& text)
{
    return Numbers({double(text.GetMessageNum()), double(text.GetInvalidPos())});
}

std::string ResultsOf(const CFmlaExpression& expression)
{
    return Marks(expression) +
           Numbers({double(expression.IsLoaded()), double(expression.IsCalculated()),
                    double(expression.IsBoolean()), expression.GetValue()});
}

std::string Content(CalcOpBase& operand)
{
    return operand.GetTextDisplay().ToUtf8() + '|' + operand.GetPrefixedString().ToUtf8() + '|' +
           operand.GetRTFDisplay().ToUtf8() + '|' +
           Numbers({double(operand.IsConstant()), double(operand.IsExpression()),
                    double(operand.IsLoaded()), double(operand.IsTypeKnown()),
                    double(operand.IsBoolean())});
}

std::string CellsOf(const FormulaTableImpl& table)
{
    std::string cells;
    for (int row = 0; row < table.GetRowCount(); ++row)
        for (int column = 0; column < table.GetColumnCount(); ++column)
            cells += table.GetCell(row, column)->GetCombinedString().ToUtf8() + ' ' +
                     Numbers({table.GetRowLimit(row), table.GetColumnLimit(column)});
    return cells;
}

} // namespace

std::string ShopSet::Entries() const
{
    return NamesOf(*m_Variables) + '|' + NamesOf(*m_Formulas) + '|' + NamesOf(*m_FormulaTables) +
           '|' + Numbers({m_Duration, m_JobSize, m_Quantity, double(m_HasDatabase)});
}

std::string ShopSet::Missing() const
{
    return NamesOf(*m_MissingVariables);
}

Shop::Shop(bool isStock) : set(isStock)
{
    CString name = u"Width";
    width.SetName(name);
    width.SetValue(2.5);
    set.AddVariable(&width);
    name = u"Height";
    height.SetName(name);
    height.SetValue(4);
    set.AddVariable(&height);
    set.SetHasDatabase(1);
    area = &Formula("Area", "V(Width)*V(Height)");
    Formula("Chain", "F(Area)+IF(F(Area)>1,F(Area),V(Nobody))*T(Rate)");
    Formula("Large?", "F(Chain)>100 AND NOT(1>2)");
    Formula("Root", "SQRT(0-V(Height))+POWER(0-8,0.5)");
    Formula("Fault", "2*(F(Area)+");
    Formula("Below", "1+F(Fault)");
    Formula("Circle", "F(Circle)+1");
    Formula("Gone", "T(Nowhere)*2");
    Formula("Wide", "SUM(V(a),V(b),V(c),V(d),V(e),V(f),V(g),V(h),V(i),V(j),V(k),V(l))+QUANTITY");
    FormulaImpl& foreign = *formulas.emplace_back(std::make_unique<FormulaImpl>(&other));
    name = u"Foreign";
    foreign.SetName(name);
    foreign.SetFromEncodedString("SQRT(0-1)+V(There)");
    set.AddFormula(&foreign);
    Formula("Abroad", "F(Foreign)+F(Root)");
    name = u"Rate";
    rate.SetName(name);
    rate.GetRowSelector().SetVariable(u"Width");
    rate.GetColumnSelector().SetFormula(u"Area");
    const char* const cells[] = {"1000", "VWidth", "FArea", "2500", "VNoOne", "3"};
    for (int cell = 0; cell < 6; ++cell)
        rate.SetCell(cell / 2, cell % 2, new CFormtblElem(cells[cell], set));
    for (int row = 0; row < 3; ++row)
        rate.SetRowLimit(row, row + 1.0);
    rate.SetColumnLimit(0, 5);
    set.AddFormulaTable(&rate);
    typed.SetFromEncodedString("F(Area)+V(Width)*ROUND(1.25,1)");
    text.SetFromEncodedString("V(Width)*2+F(Area)-T(Rate)");
    static_cast<void>(operand.LoadEncodedExpression("F(Area)*2"));
    static_cast<void>(plain.LoadEncodedExpression("V(Width)"));
    element.SetFormula(u"Area");
    names.AddTail(u"before");
    strings.Add(u"one");
    string = u"some text that no string has room for";
    tracker.SetError(7, nullptr, u"first");
}

FormulaImpl& Shop::Formula(const char* name, const char* encoded)
{
    FormulaImpl& formula = *formulas.emplace_back(std::make_unique<FormulaImpl>(&set));
    CString wide(name);
    formula.SetName(wide);
    formula.SetFromEncodedString(encoded);
    set.AddFormula(&formula);
    return formula;
}

std::string Shop::Calculate(FormulaImpl& formula, CScannedVariables* list)
{
    unsigned int message = 77;
    const bool isDone = formula.Calculate(message, list) != 0;
    return isDone ? std::to_string(formula.GetValue()) : "message " + std::to_string(message);
}

std::string Shop::Check(CFmlaExpression& expression, const char* name, int nested)
{
    unsigned int message = 77;
    const int isValid = expression.IsValid(message, name, nested);
    return std::to_string(isValid) + ' ' + std::to_string(message);
}

std::string Shop::CalculateAll()
{
    std::string all;
    set.StartNewPass();
    for (const auto& formula : formulas)
        all += formula->GetName().ToUtf8() + ' ' + Calculate(*formula) + ' ' +
               Dump(set.ErrorTracker()) + '\n';
    all += Check(typed, "", 1) + ' ' + std::to_string(typed.GetValue()) + '\n';
    CScannedVariables met;
    typed.GetVariables(met, 1, 1);
    CScannedVariables reached;
    set.StartNewPass();
    typed.GetVariables(reached, 0, 1);
    for (const CScannedVariables* const list : {&met, &reached})
        for (const CString& name : list->VariableList())
            all += name.ToUtf8() + ' ';
    return all + std::to_string(operand.IsValid(true)) + std::to_string(operand.Calculate()) +
           std::to_string(operand.GetValue());
}

Sights Shop::Look()
{
    Sights sights;
    for (const auto& formula : formulas)
        sights.push_back({formula->GetName().ToUtf8(),
                          GivenTo(formula->GetExpression()) + formula->GetUnit().ToUtf8(),
                          ResultsOf(formula->GetExpression())});
    sights.push_back({"set", set.Entries() + other.Entries(),
                      set.GetStrError().ToUtf8() + other.GetStrError().ToUtf8()});
    sights.push_back({"missing", "", set.Missing()});
    sights.push_back({"flags", "", Numbers({double(width.InCond()), double(height.InCond())})});
    sights.push_back({"chain", "", Dump(set.ErrorTracker())});
    sights.push_back({"Rate", CellsOf(rate) + rate.GetRowSelector().GetCombinedString().ToUtf8(),
                      Numbers({rate.GetValue(), double(rate.GetCalculated()),
                               double(rate.GetScanned()), double(rate.GetScannedInCondition())})});
    sights.push_back({"typed", GivenTo(typed), ResultsOf(typed)});
    sights.push_back({"text", GivenTo(text) + Marks(text), ""});
    sights.push_back({"operand", Content(operand), std::to_string(operand.GetMsgId())});
    sights.push_back({"plain", Content(plain), ""});
    sights.push_back({"element", element.GetCombinedString().ToUtf8() + element.XGetName().ToUtf8(),
                      std::to_string(element.isValid())});
    std::string lists = string.ToUtf8() + ' ' + width.GetName().ToUtf8() + ' ';
    for (const CString& name : names)
        lists += name.ToUtf8() + ' ' + std::to_string(names.Find(name) != nullptr) + ' ';
    for (const CString& each : strings)
        lists += each.ToUtf8() + '|';
    lists += GetLocaleSetting(LOCALE_SLIST, u"none").ToUtf8() + Dump(tracker);
    CString token;
    CFmlaExprBase::GetTokenString(TOK_IF, token);
    lists += token.ToUtf8() + (token.LoadString(6600) ? token.ToUtf8() : "") +
             Numbers({double(scanned.QuantityScanned())});
    sights.push_back({"lists", lists, ""});
    return sights;
}

} // namespace tovo::test
