#ifndef TOVOFORMULA_TESTS_SHOP_H
#define TOVOFORMULA_TESTS_SHOP_H

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include <TovoFormula/TovoFormula.h>

namespace tovo::test {

// What can be seen of one object.
struct Sight {
    std::string label;
    std::string given;   // what the host has put in
    std::string results; // what checks, calculations and scans have left
};

using Sights = std::vector<Sight>;

// A stock set that shows what its maps hold.
class ShopSet : public CalcSetImpl {
public:
    explicit ShopSet(bool isStock)
    {
        if (isStock)
            UseStockLookup();
    }
    std::string Entries() const;
    std::string Missing() const;
};

// A small job with something of everything, in which an operation can be tried.
class Shop {
public:
    // A set that is not stock is asked for each name in each run.
    explicit Shop(bool isStock);

    FormulaImpl& Formula(const char* name, const char* encoded);
    // Checks and calculates; the message, or the value.
    std::string Calculate(FormulaImpl& formula, CScannedVariables* list = nullptr);
    std::string Check(CFmlaExpression& expression, const char* name, int nested);
    // Calculates all there is, so that what an operation has left behind shows.
    std::string CalculateAll();
    Sights Look();

    ShopSet set;
    ShopSet other{true};
    VariableImpl width{&set};
    VariableImpl height{&set};
    std::vector<std::unique_ptr<FormulaImpl>> formulas;
    FormulaTableImpl rate{&set, 3, 2};
    CFmlaExpression typed{set};
    CFmlaExprBase text;
    CalculationOperand operand{set};
    CalcOpBase plain;
    CFormtblElem element{set};
    CExprTree tree{set};
    CStringList names;
    CScannedVariables scanned{names};
    CStringArray strings;
    CString string;
    CCalcErrorTracker tracker;
    FormulaImpl* area = nullptr;
};

} // namespace tovo::test

#endif
