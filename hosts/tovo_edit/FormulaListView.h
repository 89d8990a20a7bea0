#ifndef TOVO_EDIT_FORMULALISTVIEW_H
#define TOVO_EDIT_FORMULALISTVIEW_H

#include <cstddef>

#include "Dialogs.h"
#include "JobDocument.h"
#include "Terminal.h"
#include "TextReport.h"

// The screen that the program begins and ends with: the formulas of the job, each with its value.
//
// Does not own: terminal and document, which must outlive it.
class FormulaListView {
public:
    FormulaListView(Terminal& terminal, JobDocument& document, const TextManner& manner)
        : m_Terminal(terminal), m_Document(document), m_Manner(manner)
    {}

    // Returns when the user leaves the program or the terminal is gone.
    void Run();

private:
    std::size_t Selected() const { return static_cast<std::size_t>(m_Cursor.Selected()); }
    int Height() const;
    bool Handle(const KeyPress& press);
    bool Edit();
    void Rename();
    void Remove();
    bool Save();
    bool MayQuit();
    void Tell(const CString& notice, bool isRefusal);
    void Draw();
    void DrawFormula(int row, std::size_t formula);

    Terminal& m_Terminal;
    JobDocument& m_Document;
    const TextManner& m_Manner;
    ListCursor m_Cursor;
    CString m_Notice; // in the footer until the next key
    bool m_IsRefusal = false;
};

#endif
