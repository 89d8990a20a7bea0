#ifndef TOVOFORMULA_FORMTBLELEM_H
#define TOVOFORMULA_FORMTBLELEM_H

#include <cstdint>

#include <TovoFormula/Export.h>
#include <TovoPlatform/Object.h>
#include <TovoPlatform/WideString.h>

class CScannedVariables;
struct ICalculationSet;
struct IVarObj;

// One position of a formula table, a cell or a selector: a variable, a formula or a table by name,
// a constant, or empty.
//
// A constant is kept as a text in thousandths: "12500" stands for 12.5. Its form to store is the
// combined string: the kind's letter and the name ("VHeight"), or the thousandths as a number.
// Names are looked up at each use. Does not own: the set. Operations that answer int give 1 or 0.
class TOVO_FORMULA_API CFormtblElem : public CObject {
public:
    explicit CFormtblElem(ICalculationSet& calcSet);
    CFormtblElem(const CString& combined, ICalculationSet& calcSet);
    CFormtblElem(const CFormtblElem& other);
    ~CFormtblElem() override;

    // Copies the content. The set stays that of this object.
    CFormtblElem& operator=(const CFormtblElem& other);

    // Reads a combined string: "V", "F" or "T" and a name; any other text is a constant in
    // thousandths, an empty one makes the element empty. The first two are the same operation.
    void init(const CString& combined);
    void SetFromCombinedString(const CString& combined);
    // A constant of 0 has the empty string, as the empty element has.
    CString GetCombinedString() const;
    void SetVariable(const CString& name);
    void SetFormula(const CString& name);
    void SetFormtbl(const CString& name);

    // The name, or a constant's thousandths, as it is kept. Setting leaves the kind alone.
    void SetName(const CString& name);
    CString GetName() const { return m_Name; }
    // The same in the user's spelling: a constant is the plain number, shown with 3 decimals and
    // taken with 6.
    void XSetName(const CString& text);
    CString XGetName() const;
    // The kind: u'V', u'F', u'T', or 0 for a constant or an empty element. Not checked.
    void SetType(char16_t type);
    char16_t GetType() const { return m_Type; }
    void ClearAll();

    int isFormula() const;
    int isVariable() const;
    int isFormtbl() const;
    // Also of an empty element.
    int isConstant() const { return m_Type == 0; }
    int isValid() const { return m_Valid; }
    // Whether the name ends in "?".
    int isYesNo() const;

    // The present value of what the element names, 0.0 if there is none; calculates nothing.
    double value() const;
    // Calculates the formula or table named; with a list, records what it reaches. Answers 0, with
    // the message as it was, for a name that the set does not know.
    [[nodiscard]] int Calculate(unsigned int& message, CScannedVariables* list);
    // Whether the formula or table named exists and is sound with everything below it. Failures are
    // put into the set's tracker.
    [[nodiscard]] int CheckNestedFormulas(unsigned int& message);
    // Adds what the element refers to; all and clear as IFormulaObj::GetVariables takes them.
    void GetVariables(CScannedVariables& list, int all, int clear);

protected:
    ICalculationSet& CalcSet() const { return *m_CalcSet; }

private:
    double Thousandths() const;
    IVarObj* Variable() const;

protected:
    int m_Valid = 0; // 1 once the element was given content
    char16_t m_Type = 0;
    CString m_Name;
    ICalculationSet* m_CalcSet; // never null, not owned

private:
    // What the name was read or found as, and how long that holds: as long as no map changes, for a
    // variable. Kept for elements of this very class alone, since a derived one may write the name.
    mutable std::uint64_t m_KnownIn = 0;
    union {
        mutable double m_ReadThousandths = 0.0;
        mutable IVarObj* m_FoundVariable;
    };
};

#endif
