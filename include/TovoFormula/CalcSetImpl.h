#ifndef TOVOFORMULA_CALCSETIMPL_H
#define TOVOFORMULA_CALCSETIMPL_H

#include <memory>

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/Export.h>
#include <TovoPlatform/Collections.h>

class FormulaImpl;
class FormulaTableImpl;
class VariableImpl;

namespace tovo::detail {
struct StockObjects;
}

// The stock calculation set, complete in itself and made to be derived from.
//
// A variable that no one added is made up on its first use, with the value 0.0, so that GetVarObj
// never gives null. The entry of an object bears the name that it had when it was added, and adding
// another object under that name replaces it.
//
// Owns: its maps, its tracker and the variables it made up. Does not own: what the host added,
// which must live while the set is used. A copy shares the maps and the tracker with its source;
// what they hold lives as long as the last of them. Belongs to one thread at a time.
class TOVO_FORMULA_API CalcSetImpl : public ICalculationSet {
public:
    CalcSetImpl();
    CalcSetImpl(const CalcSetImpl& other);
    CalcSetImpl& operator=(const CalcSetImpl& other);
    ~CalcSetImpl() override;

    IVarObj* GetVarObj(CExString name, int, long) override;
    IFormulaObj* GetFormulaObj(CExString name) override;
    IFormulaTableObj* GetFormulaTableObj(CExString name) override;
    double GetDuration() override { return m_Duration; }
    void SetDURATIONInCondition(int inCondition) override { m_DURATIONInCondition = inCondition; }
    double GetJobSize() override { return m_JobSize; }
    void SetJOBSIZEInCondition(int inCondition) override { m_JOBSIZEInCondition = inCondition; }
    double GetQuantity() override { return m_Quantity; }
    void SetQuantityInCalculations(int met) override { m_QuantityInCalculations = met; }
    // 0 until SetReportFcnDomainErrors; HasDatabase likewise.
    int GetReportFcnDomainErrors() override { return m_ReportFcnDomainErrors; }
    CCalcErrorTracker& ErrorTracker() override;
    void SetStrError(CString text) override;
    void SetQuantityInCondition(int inCondition) override { m_QuantityInCondition = inCondition; }
    // These do nothing here: a derived set fills them with its meaning.
    void ClearScannedFlags(int) override;
    int HasDatabase() override { return m_HasDatabase; }
    void ClearFormtblObjList() override;
    void ClearFmlaObjList() override;
    void ClearFormtblObjScannedFlags() override;
    void ClearFormtblObjCalculatedFlags() override;
    void ClearItemTableList() override;

    // The object must have its name already. A null pointer throws CInvalidArgException.
    void AddVariable(VariableImpl* variable);
    void AddFormula(FormulaImpl* formula);
    void AddFormulaTable(FormulaTableImpl* table);
    // Take an entry out by its name, or every entry of an object, which is compared only and may be
    // gone already; they return how many entries that were. What still refers to the name fails
    // from then on, or gets a variable of 0.0 made up. A null pointer throws CInvalidArgException.
    int RemoveVariable(const CExString& name);
    int RemoveVariable(const VariableImpl* variable);
    int RemoveFormula(const CExString& name);
    int RemoveFormula(const FormulaImpl* formula);
    int RemoveFormulaTable(const CExString& name);
    int RemoveFormulaTable(const FormulaTableImpl* table);
    // Deletes the variables that the set made up; pointers to them die with this call.
    void ClearMissingVariables();
    using VariableMap = CMap<CString, const CString&, VariableImpl*, VariableImpl*>;
    using FormulaMap = CMap<CString, const CString&, FormulaImpl*, FormulaImpl*>;
    using FormulaTableMap = CMap<CString, const CString&, FormulaTableImpl*, FormulaTableImpl*>;

    // What the host added, as pairs of name and object in the order in which the names came; and
    // the variables that the set made up, whose names nobody added. Valid as long as the set or a
    // copy of it; a loop over one must not change it.
    const VariableMap& Variables() const { return *m_Variables; }
    const FormulaMap& Formulas() const { return *m_Formulas; }
    const FormulaTableMap& FormulaTables() const { return *m_FormulaTables; }
    const VariableMap& MissingVariables() const { return *m_MissingVariables; }

    // Clears the Calculated, Scanned and ScannedInCondition flags of the tables in this set, so
    // that each is calculated again from the present values. Call it between two passes.
    void StartNewPass();

    // Nonzero: a function or an operator that fails on its domain fails the calculation; zero, as
    // at first: its value is 0.0. Nonzero: operands may load formulas and tables from this set.
    void SetReportFcnDomainErrors(int report);
    void SetHasDatabase(int has);
    void SetDuration(double duration);
    void SetJobSize(double jobSize);
    void SetQuantity(double quantity);
    // What scans have recorded. Only the host resets these, through the setters above.
    int GetDURATIONInCondition() const { return m_DURATIONInCondition; }
    int GetJOBSIZEInCondition() const { return m_JOBSIZEInCondition; }
    int GetQuantityInCondition() const { return m_QuantityInCondition; }
    int GetQuantityInCalculations() const { return m_QuantityInCalculations; }
    // The run-time library's text of the last mathematical error, empty since a token calculated.
    CString GetStrError() const { return m_StrError; }

protected:
    // For a derived set that leaves GetVarObj, GetFormulaObj and GetFormulaTableObj as they are:
    // names are then looked up once, and again only after an entry has changed. Any other derived
    // set is asked for each name in each call.
    void UseStockLookup() { m_UsesStockLookup = true; }

    double m_Duration = 0.0;
    int m_DURATIONInCondition = 0;
    double m_JobSize = 0.0;
    int m_JOBSIZEInCondition = 0;
    double m_Quantity = 0.0;
    int m_QuantityInCalculations = 0;
    int m_QuantityInCondition = 0;
    int m_ReportFcnDomainErrors = 0;
    CString m_StrError;
    int m_HasDatabase = 0;
    std::shared_ptr<CCalcErrorTracker> m_ErrorTracker; // one for a set and its copies
    std::shared_ptr<VariableMap> m_Variables;
    std::shared_ptr<VariableMap> m_MissingVariables; // owns its variables
    std::shared_ptr<FormulaMap> m_Formulas;
    std::shared_ptr<FormulaTableMap> m_FormulaTables;

private:
    friend struct tovo::detail::StockObjects;

    bool m_UsesStockLookup = false;
};

#endif
