#ifndef TOVO_EDIT_OBJECTLISTVIEW_H
#define TOVO_EDIT_OBJECTLISTVIEW_H

#include <cstddef>
#include <optional>

#include "Commands.h"
#include "Dialogs.h"
#include "Document.h"
#include "ObjectRows.h"
#include "Terminal.h"

// The screen that the program begins and ends with: the objects of the job, each with its value.
//
// Does not own: terminal, document and commands, which must outlive it.
class ObjectListView {
public:
    ObjectListView(Terminal& terminal, Document& document, Commands& commands);

    // Returns when the user leaves the program, with Quit, or the terminal is gone, with HangUp.
    Key Run();

private:
    void Refresh();
    int Height() const;
    std::optional<tovo::ObjectName> Selected() const;
    void Select(const tovo::ObjectName& object);

    std::optional<Key> Handle(const KeyPress& press);
    bool HandleSearch(const KeyPress& press);
    void EndSearch();
    std::optional<Key> HandleObject(Key key, const tovo::ObjectName& object);
    std::optional<Key> Open(const tovo::ObjectName& object);
    void EditFields(const tovo::ObjectName& object);
    void Add();
    std::optional<Key> Leave();
    std::optional<tovo::Kind> AskForKind();
    void Duplicate(const tovo::ObjectName& object);
    void Rename(const tovo::ObjectName& object);
    void Remove(const tovo::ObjectName& object);
    bool Do(const tovo::Edit& edit, const CString& notice);
    std::optional<tovo::RemoveObject> AskHowToRemove(const tovo::ObjectName& object);
    void Draw();
    void DrawObject(int row, const tovo::ObjectName& object, bool isSelected);

    Terminal& m_Terminal;
    Document& m_Document;
    Commands& m_Commands;
    ObjectRows m_Rows;
    std::size_t m_Version; // of the job that the rows show
    ListCursor m_Cursor;
    Notice m_Notice;
};

#endif
