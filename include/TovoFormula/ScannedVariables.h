#ifndef TOVOFORMULA_SCANNEDVARIABLES_H
#define TOVOFORMULA_SCANNEDVARIABLES_H

#include <cstdint>
#include <memory>

#include <TovoFormula/Export.h>
#include <TovoPlatform/Collections.h>

namespace tovo::detail {
class BoundWork;
}

// The record of one scan: the names of the variables met, in the order met and each once, and
// whether each job value was met. Made anew for each scan.
//
// Owns: its list, unless the caller brought one. Names are kept without trailing blanks and compare
// exactly. The in-condition flags of a scan are with the variables and the set.
class TOVO_FORMULA_API CScannedVariables {
public:
    // Uses the caller's list, which must outlive this object; names in it count as met.
    explicit CScannedVariables(CStringList& list);
    CScannedVariables();
    ~CScannedVariables();

    CScannedVariables(const CScannedVariables&) = delete;
    CScannedVariables& operator=(const CScannedVariables&) = delete;

    CStringList& VariableList() const { return *m_VariableList; }
    // 1 if the list holds the name, trailing blanks aside.
    int Find(const CString& name) const;
    // Appends the name without its trailing blanks, also if the list holds it already.
    void AddTail(const CString& name);

    int QuantityScanned() const { return m_QuantityScanned; }
    int DURATIONScanned() const { return m_DURATIONScanned; }
    int JOBSIZEScanned() const { return m_JOBSIZEScanned; }
    void SetQuantityScanned(int met) { m_QuantityScanned = met; }
    void SetDURATIONScanned(int met) { m_DURATIONScanned = met; }
    void SetJOBSIZEScanned(int met) { m_JOBSIZEScanned = met; }

protected:
    void init();

    CStringList* m_VariableList; // owned if m_OwnsList says so
    int m_QuantityScanned = 0;
    int m_DURATIONScanned = 0;
    int m_JOBSIZEScanned = 0;
    int m_OwnsList;

private:
    friend class tovo::detail::BoundWork;
    std::uint64_t m_Id; // that no other record of the thread has
};

#endif
