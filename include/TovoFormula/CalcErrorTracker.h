#ifndef TOVOFORMULA_CALCERRORTRACKER_H
#define TOVOFORMULA_CALCERRORTRACKER_H

#include <TovoFormula/Export.h>
#include <TovoPlatform/Collections.h>

namespace tovo::detail {
class ChainMark;
}

// Where a validation or a calculation went wrong: a message id and the chain of objects that led
// there, innermost first, each with a line of text.
//
// A passive record for the host: it is meaningful right after an operation has failed, and a later
// success does not clear it. Does not own: the objects, which may be gone while they are recorded.
// So GetObj serves only to tell apart objects that the caller knows to live; GetStr is always safe.
class TOVO_FORMULA_API CCalcErrorTracker {
public:
    CCalcErrorTracker();
    virtual ~CCalcErrorTracker();

    // Starts a new chain with one entry, as AddObj makes it.
    void SetError(unsigned int error, CObject* object, CString text);
    void SetError(unsigned int error, CObject* object);
    // Appends an entry; null is a legal object. Without a text the entry is worded by what the
    // object is: "token: ", "Expression: ", "Formula: ", "Formula table: " or "Formula table
    // element: " with its text or name, or "Unknown Object".
    void AddObj(CObject* object, CString text);
    void AddObj(CObject* object);

    // The message id that began the chain, 0 before the first.
    unsigned int GetError() const { return m_Error; }
    int NumObjs() const { return m_Entries.GetSize(); }
    // Null and an empty text for an index outside 0 to NumObjs() - 1.
    CObject* GetObj(int index) const;
    CString GetStr(int index) const;

private:
    friend class tovo::detail::ChainMark;

    struct Entry {
        CObject* object = nullptr; // not owned
        CString text;
    };

    static Entry Worded(CObject* object, CString text);

    unsigned int m_Error = 0;
    CArray<Entry> m_Entries;
};

#endif
