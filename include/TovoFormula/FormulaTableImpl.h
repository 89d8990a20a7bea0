#ifndef TOVOFORMULA_FORMULATABLEIMPL_H
#define TOVOFORMULA_FORMULATABLEIMPL_H

#include <memory>
#include <vector>

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/Export.h>
#include <TovoFormula/FormtblElem.h>
#include <TovoPlatform/Collections.h>

// The stock formula table: the numbers of two selectors, placed among the limits of rows and
// columns, pick the cell that gives the table's value.
//
// A limit is the highest value of its row or column, inclusive within TvCompareDoubles; the last
// row and the last column take everything above. With one column only the row selector counts. Rows
// and columns count from 0. The host makes, names, fills and owns the table and adds it to a set.
//
// The flags go one way: a table that was validated or calculated once answers from that until the
// host clears the flag (SetValidated, SetCalculated, CalcSetImpl::StartNewPass), whatever is
// changed in between. A table that is reached again while it is validated or calculated fails with
// 6608.
//
// Owns: its cells. An index outside the table throws a CInvalidArgException that names it.
class TOVO_FORMULA_API FormulaTableImpl : public CObject, public IFormulaTableObj {
public:
    // Requires: a set, at least 2 rows and 1 column, and fewer than 2^31 cells, else
    // CInvalidArgException. A lookup reaches no further than row or column 32767 and throws there.
    FormulaTableImpl(ICalculationSet* calcSet, int numRows, int numColumns);
    ~FormulaTableImpl() override;

    FormulaTableImpl(const FormulaTableImpl&) = delete;
    FormulaTableImpl& operator=(const FormulaTableImpl&) = delete;

    CString& GetName() override { return m_Name; }
    double GetValue() override { return m_Value; }
    // On failure the value and the flags stay as they were.
    [[nodiscard]] int Calculate(unsigned int& message, CScannedVariables* list) override;
    int GetScanned() override { return m_Scanned; }
    // With all nonzero: the selectors that count and every cell. With all zero: what a calculation
    // reaches.
    void GetVariables(CScannedVariables& list, int all, int clear) override;
    // The row limits must rise strictly, and the column limits but for the last one; the selectors
    // that count and every cell must be sound. The chain leads from the fault to the table.
    [[nodiscard]] int IsValid(unsigned int& message, int nested) override;
    // With nested checks. The message is in the set's tracker.
    [[nodiscard]] int IsValid();
    bool IsBoolean() override { return m_ValueType == VALUE_BOOLEAN; }
    int GetCalculated() override { return m_Calculated; }

    virtual void SetName(CString& name);
    // The same for any other text, such as a literal.
    void SetName(const CExString& name)
    {
        CString copy = name;
        SetName(copy);
    }
    virtual bool IsNumeric() { return m_ValueType == VALUE_NUMERIC; }
    // Nonzero: a scan has passed through the table inside a condition.
    virtual int GetScannedInCondition() { return m_ScannedInCondition; }

    int GetRowCount() const { return m_NumRows; }
    int GetColumnCount() const { return m_NumColumns; }
    double GetRowLimit(int row) const;
    void SetRowLimit(int row, double limit);
    double GetColumnLimit(int column) const;
    void SetColumnLimit(int column, double limit);
    // Null for a cell that was not set.
    CFormtblElem* GetCell(int row, int column) const;
    // The table owns the cell from then on. What stood there is not deleted: a caller that replaces
    // a cell frees the former one itself.
    void SetCell(int row, int column, CFormtblElem* cell);
    // The table's own selectors, which may be changed in place.
    CFormtblElem& GetRowSelector() { return m_RowSelector; }
    CFormtblElem& GetColumnSelector() { return m_ColumnSelector; }
    // Copy the content; the selector keeps its set.
    void SetRowSelector(const CFormtblElem& selector);
    void SetColumnSelector(const CFormtblElem& selector);

    void SetScanned(int scanned);
    void SetScannedInCondition(int inCondition);
    void SetCalculated(int calculated);
    void SetValidated(int validated);

    // Where the present values of the selectors fall.
    short GetRowIndex() const;
    short GetColIndex() const;
    // Whether what the element names exists and is sound; else 0.
    [[nodiscard]] int ValidateElement(CFormtblElem& element, unsigned int& message, int nested);

private:
    int ValidateAll(unsigned int& message, int nested);
    int CalculateAfresh(unsigned int& message, CScannedVariables* list);
    int ValidateLimits(unsigned int& message);
    int ValidateSelector(CFormtblElem& selector, const char16_t* text, unsigned int& message,
                         int nested);
    int ValidateCells(unsigned int& message, int nested);
    int CalculateSelectors(unsigned int& message, CScannedVariables* list);
    bool AnswersFromValue(const CScannedVariables* list) const;
    int FailOnTable(unsigned int error, unsigned int& message);
    int FailOnMissingCell(int cell, unsigned int& message);
    CString PlaceOfCell(int cell) const;
    bool AreLimitsOwn() const;
    int CellIndex(int row, int column, int line, const char* function) const;

protected:
    CString m_Name;
    double m_Value = 0.0;
    int m_Scanned = 0;
    int m_ScannedInCondition = 0;
    VALUETYPE m_ValueType = VALUE_NONE;
    int m_Calculated = 0;
    int m_Validated = 0;
    ICalculationSet* m_CalcSet; // not owned
    int m_NumRows;
    int m_NumColumns;
    CFormtblElem m_RowSelector;
    CFormtblElem m_ColumnSelector;
    CArray<double, double> m_RowLimits;
    CArray<double, double> m_ColumnLimits;
    CArray<CFormtblElem*, CFormtblElem*> m_Cells; // row by row; owned by this table

private:
    int m_UnderWay = 0; // how often it is being checked or calculated at present
    // Copies of the limits that lookups consult, made when they were seen to rise; else empty.
    mutable std::vector<double> m_RisingRowLimits;
    mutable std::vector<double> m_RisingColumnLimits;
};

#endif
