#ifndef TOVO_EDIT_TABLEVIEW_H
#define TOVO_EDIT_TABLEVIEW_H

#include <cstddef>
#include <string>
#include <vector>

#include "Commands.h"
#include "Dialogs.h"
#include "Document.h"
#include "TableGrid.h"
#include "Terminal.h"

// The screen on which the selectors, limits and cells of one table are edited.
//
// Does not own: terminal, document and commands, which must outlive it.
class TableView {
public:
    TableView(Terminal& terminal, Document& document, Commands& commands, std::string table);

    // Returns when the user leaves, and with which key: Escape, Quit or HangUp.
    Key Run();

private:
    TableGrid Grid() const;
    void Handle(const KeyPress& press);
    bool HandleMove(Key key);
    void HandleChange(Key key);
    void EditField(CString text);
    void Apply(const tovo::Result<tovo::Table>& table);
    void Fit();
    void Draw();
    void DrawGrid(const TableGrid& grid, int height);
    CString ResultText() const;

    Terminal& m_Terminal;
    Document& m_Document;
    Commands& m_Commands;
    const tovo::ObjectName m_Object;
    std::size_t m_Line = TableGrid::kFirstRowLine;
    std::size_t m_Column = 1;
    std::size_t m_TopLine = TableGrid::kFirstRowLine; // of the rows in sight
    std::size_t m_LeftColumn = 1;
    Notice m_Notice;
};

#endif
