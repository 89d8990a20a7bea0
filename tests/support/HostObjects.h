#ifndef TOVOFORMULA_TESTS_HOSTOBJECTS_H
#define TOVOFORMULA_TESTS_HOSTOBJECTS_H

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>

// A host of its own: a set and named objects that share nothing with the stock classes but the
// interfaces. Fields are public, so that a test arranges and inspects them directly.

namespace tovo::test {

// The kind that follows from a name: yes/no if it ends in "?", none if it is empty.
VALUETYPE KindOfName(const CString& name);

class HostVariable : public CObject, public IVarObj {
public:
    HostVariable(const CString& name, double value) : m_Name(name), m_Value(value) {}

    CString& GetName() override { return m_Name; }
    void SetName(CString& name) override { m_Name = name; }
    double GetValue() override
    {
        if (m_OnRead)
            m_OnRead();
        return m_Value;
    }
    void SetValue(double value) override { m_Value = value; }
    void SetInCond(int inCondition) override
    {
        ++m_SetInCondCalls;
        m_InCond = inCondition;
    }
    bool IsNumeric() override { return GetType() == VALUE_NUMERIC; }
    bool IsBoolean() override { return GetType() == VALUE_BOOLEAN; }
    CString& GetUnit(long) override { return m_Name; } // the library asks for no unit
    int InCond() override { return m_InCond; }
    VALUETYPE GetType() override { return KindOfName(m_Name); }

    CString m_Name;
    double m_Value;
    int m_InCond = 0;
    int m_SetInCondCalls = 0;
    std::function<void()> m_OnRead; // runs at the start of GetValue
};

// What a formula and a table of this host have in common. A failure that writes no message is a
// m_Succeeds of false with a m_Message of 0.
template <typename Interface>
class HostCalculated : public CObject, public Interface {
public:
    HostCalculated(const CString& name, double value) : m_Name(name), m_Value(value) {}

    CString& GetName() override { return m_Name; }
    double GetValue() override { return m_Value; }
    int Calculate(unsigned int& message, CScannedVariables* list) override
    {
        ++m_Calculations;
        m_LastList = list;
        if (m_OnCalculate)
            m_OnCalculate(list);
        return m_Calculates ? Verdict(message) : Fail(message);
    }
    void GetVariables(CScannedVariables& list, int all, int clear) override
    {
        ++m_Scans;
        if (m_OnGetVariables)
            m_OnGetVariables(list, all, clear);
    }
    int IsValid(unsigned int& message, int nested) override
    {
        m_LastNested = nested;
        return Verdict(message);
    }
    int GetScanned() override { return m_Scanned; }
    bool IsBoolean() override { return KindOfName(m_Name) == VALUE_BOOLEAN; }
    int GetCalculated() override { return m_Calculations > 0 ? 1 : 0; }

    CString m_Name;
    double m_Value;
    bool m_Succeeds = true;
    bool m_Calculates = true;   // false: passes its check and fails then
    unsigned int m_Message = 0; // written by a failure unless it is 0
    int m_Scanned = 0;
    std::function<void(CScannedVariables*)> m_OnCalculate;
    std::function<void(CScannedVariables&, int all, int clear)> m_OnGetVariables;

    int m_Calculations = 0;
    int m_Scans = 0;
    int m_LastNested = 0;
    CScannedVariables* m_LastList = nullptr;

private:
    int Verdict(unsigned int& message) const { return m_Succeeds ? 1 : Fail(message); }
    int Fail(unsigned int& message) const
    {
        if (m_Message != 0)
            message = m_Message;
        return 0;
    }
};

class HostFormula : public HostCalculated<IFormulaObj> {
public:
    using HostCalculated::HostCalculated;

    bool IsNumeric() override { return KindOfName(m_Name) == VALUE_NUMERIC; }
    CString& GetUnit() override { return m_Name; } // the library asks for no unit
    int GetValidated() override { return 0; }
};

using HostTable = HostCalculated<IFormulaTableObj>;

// Objects of any class can stand in the maps; what AddVariable and its sisters make is owned here.
class HostSet : public ICalculationSet {
public:
    HostVariable& AddVariable(const CString& name, double value = 0.0);
    HostFormula& AddFormula(const CString& name, double value = 0.0);
    HostTable& AddTable(const CString& name, double value = 0.0);

    IVarObj* GetVarObj(CExString name, int, long) override;
    IFormulaObj* GetFormulaObj(CExString name) override { return Find(m_Formulas, "F:", name); }
    IFormulaTableObj* GetFormulaTableObj(CExString name) override
    {
        return Find(m_Tables, "T:", name);
    }

    double GetDuration() override { return m_Duration; }
    void SetDURATIONInCondition(int flag) override { Note("DURATION", flag); }
    double GetJobSize() override { return m_JobSize; }
    void SetJOBSIZEInCondition(int flag) override { Note("JOBSIZE", flag); }
    double GetQuantity() override { return m_Quantity; }
    void SetQuantityInCalculations(int flag) override { Note("COUNTS", flag); }
    int GetReportFcnDomainErrors() override { return m_ReportDomainErrors ? 1 : 0; }
    CCalcErrorTracker& ErrorTracker() override { return m_Tracker; }
    void SetStrError(CString text) override { m_StrError = text; }
    void SetQuantityInCondition(int flag) override { Note("QUANTITY", flag); }
    void ClearScannedFlags(int argument) override { m_ClearScannedFlagsCalls += argument == 1; }
    int HasDatabase() override { return m_HasDatabase ? 1 : 0; }
    void ClearFormtblObjList() override {}
    void ClearFmlaObjList() override {}
    void ClearFormtblObjScannedFlags() override {}
    void ClearFormtblObjCalculatedFlags() override {}
    void ClearItemTableList() override {}

    std::map<CString, IVarObj*> m_Variables;
    std::map<CString, IFormulaObj*> m_Formulas;
    std::map<CString, IFormulaTableObj*> m_Tables;
    double m_Duration = 0.0;
    double m_JobSize = 0.0;
    double m_Quantity = 0.0;
    bool m_ReportDomainErrors = true;
    bool m_HasDatabase = true;
    // Whether an unknown variable is null; if not, a variable of that name is made up with 0.0.
    bool m_NullForUnknownVariables = false;

    CCalcErrorTracker m_Tracker;
    CString m_StrError;                 // the text given last
    std::string m_Flags;                // " DURATION1" for one in a condition, in calling order
    std::vector<std::string> m_Lookups; // such as "V:x", in calling order
    int m_ClearScannedFlagsCalls = 0;   // those with the argument 1

private:
    template <typename Object, typename Interface>
    Object& Add(std::map<CString, Interface*>& objects, const CString& name, double value);

    template <typename Interface>
    Interface* Find(const std::map<CString, Interface*>& objects, const char* kind, CExString name)
    {
        m_Lookups.push_back(kind + name.ToUtf8());
        const auto found = objects.find(name);
        return found == objects.end() ? nullptr : found->second;
    }
    void Note(const char* what, int flag) { m_Flags += ' ' + (what + std::to_string(flag)); }

    std::vector<std::unique_ptr<CObject>> m_Owned;
};

} // namespace tovo::test

#endif
