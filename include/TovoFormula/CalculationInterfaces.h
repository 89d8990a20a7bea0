#ifndef TOVOFORMULA_CALCULATIONINTERFACES_H
#define TOVOFORMULA_CALCULATIONINTERFACES_H

#include <TovoFormula/Export.h>
#include <TovoPlatform/WideString.h>

class CCalcErrorTracker;
class CScannedVariables;

// The four interfaces through which expressions reach everything that has a name. The library has
// a stock object behind each (CalcSetImpl, VariableImpl, FormulaImpl, FormulaTableImpl); a host may
// derive from those or implement the interfaces itself, and mix both in one set.
//
// A pass is one outermost call of a host into the library, or the time for which it holds a
// CalculationPass. Objects are taken to return the same within a pass: a set the same object for a
// name, the same job values and choices, an object the same value and verdict. How often an object
// is asked in a pass, and in what order, is not promised, only that what a result needs was asked
// in that pass. A host whose object changes during a pass calls CalculationPass::NoteHostChange; a
// change made through an operation of the library is noticed without it. Between two passes
// anything may change.
//
// Names compare exactly, case and blanks included, and come without the two blanks that an
// expression's text keeps around a reference. The caller of a set owns nothing that it is given. A
// message argument holds a message id; it is written on failure only. All calls come on the thread
// that calculates: one set belongs to one thread at a time.
//
// An exception that an object throws passes through to the host's call. An expression that was
// being checked or calculated has its former tree, value, message and invalid position again.
//
// The order of the operations is what hosts compile against: add at the end, never between.

// The kind of value of a named object, which follows from its name.
enum VALUETYPE {
    VALUE_NONE = 0,    // the object has no name yet
    VALUE_NUMERIC = 1, // a number
    VALUE_BOOLEAN = 2, // a yes/no value, 1.0 or 0.0: the name ends in "?"
};

// A named value.
struct TOVO_FORMULA_API IVarObj {
    virtual ~IVarObj();

    // The object's own member, which lives as long as the object.
    virtual CString& GetName() = 0;
    // Stores the name and derives the VALUETYPE from it.
    virtual void SetName(CString& name) = 0;
    virtual double GetValue() = 0;
    // For the host: the library only reads values.
    virtual void SetValue(double value) = 0;
    // Called in a scan: nonzero if the variable is read inside a condition.
    virtual void SetInCond(int inCondition) = 0;
    virtual bool IsNumeric() = 0;
    virtual bool IsBoolean() = 0;
    // For the host, as is the meaning of the argument: the library never calls it.
    virtual CString& GetUnit(long) = 0;
    // What SetInCond last recorded, 1 or 0.
    virtual int InCond() = 0;
    virtual VALUETYPE GetType() = 0;
};

// A named expression.
struct TOVO_FORMULA_API IFormulaObj {
    virtual ~IFormulaObj();

    virtual CString& GetName() = 0;
    // The value of the last calculation, 0.0 without one.
    virtual double GetValue() = 0;
    // Nonzero on success, and GetValue then gives the result; 0 with the message written. The list
    // is what a scan fills, null in an ordinary calculation.
    [[nodiscard]] virtual int Calculate(unsigned int& message, CScannedVariables* list) = 0;
    // Adds to the list what this formula refers to: with all nonzero every reference in the text,
    // with all zero those that a calculation reaches. Clear nonzero: a new scan begins here, and
    // the set's ClearScannedFlags(1) is called first. Failures go to the tracker.
    virtual void GetVariables(CScannedVariables& list, int all, int clear) = 0;
    // Nonzero if the formula is sound; 0 with the message written. Nested nonzero: what it refers
    // to must exist and be sound too, and must not lead back to it.
    [[nodiscard]] virtual int IsValid(unsigned int& message, int nested) = 0;
    // Nonzero: already walked in the present scan; a static scan passes over the formula.
    virtual int GetScanned() = 0;
    virtual bool IsNumeric() = 0;
    virtual bool IsBoolean() = 0;
    // Nonzero: the value is current for this pass.
    virtual int GetCalculated() = 0;
    // For the host: the library never calls these two.
    virtual CString& GetUnit() = 0;
    virtual int GetValidated() = 0;
};

// A named table that picks one of its cells. Operations of a name that IFormulaObj has too mean the
// same here.
struct TOVO_FORMULA_API IFormulaTableObj {
    virtual ~IFormulaTableObj();

    virtual CString& GetName() = 0;
    // The value of the last successful Calculate.
    virtual double GetValue() = 0;
    // A table that is already calculated and scanned may answer at once.
    [[nodiscard]] virtual int Calculate(unsigned int& message, CScannedVariables* list) = 0;
    virtual int GetScanned() = 0;
    virtual void GetVariables(CScannedVariables& list, int all, int clear) = 0;
    [[nodiscard]] virtual int IsValid(unsigned int& message, int nested) = 0;
    virtual bool IsBoolean() = 0;
    virtual int GetCalculated() = 0;
};

// The name space of a job, its three job values, and its choices.
struct TOVO_FORMULA_API ICalculationSet {
    virtual ~ICalculationSet();

    // The variable of that name. Null makes a token fail, without a message. The library passes 1
    // and 0 for the last two, which are for a host's own use.
    virtual IVarObj* GetVarObj(CExString name, int, long) = 0;
    // The formula and the table of that name, or null.
    virtual IFormulaObj* GetFormulaObj(CExString name) = 0;
    virtual IFormulaTableObj* GetFormulaTableObj(CExString name) = 0;

    // The job values. The flags beside them record what a scan met, and are written in a scan only.
    virtual double GetDuration() = 0;
    virtual void SetDURATIONInCondition(int inCondition) = 0;
    virtual double GetJobSize() = 0;
    virtual void SetJOBSIZEInCondition(int inCondition) = 0;
    virtual double GetQuantity() = 0;
    virtual void SetQuantityInCalculations(int met) = 0;

    // Nonzero: a function or an operator that fails on its domain, a division by zero included,
    // fails the calculation. Zero: its value is 0.0 and the calculation goes on.
    virtual int GetReportFcnDomainErrors() = 0;
    // The one tracker of this set, the same at every call: every failure is reported to it.
    virtual CCalcErrorTracker& ErrorTracker() = 0;
    // Stores the run-time library's text of a mathematical error. After a calculation it is that of
    // the token that was calculated last, empty unless that failed.
    virtual void SetStrError(CString text) = 0;
    virtual void SetQuantityInCondition(int inCondition) = 0;
    // Called with 1 at the start of a new scan: a set that keeps Scanned flags clears them.
    virtual void ClearScannedFlags(int) = 0;
    // Nonzero: operands may load formulas and tables from this set.
    virtual int HasDatabase() = 0;

    // For the host, between two passes: the library never calls these.
    virtual void ClearFormtblObjList() = 0;
    virtual void ClearFmlaObjList() = 0;
    virtual void ClearFormtblObjScannedFlags() = 0;
    virtual void ClearFormtblObjCalculatedFlags() = 0;
    virtual void ClearItemTableList() = 0;
};

#endif
