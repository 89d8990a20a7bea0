#ifndef TOVO_EDIT_EDITSESSION_H
#define TOVO_EDIT_EDITSESSION_H

#include <vector>

#include <TovoFormula/FmlaExpression.h>

// Why a key changed nothing.
enum class Refusal {
    None,
    TextLimit,
    ReferenceLimit,
    InsideReference,
};

// The editing of one expression: its text, the cursor, undo and redo.
//
// The cursor never stands inside a reference, and a reference comes and goes as a whole. Positions
// are those of the expression. Does not own: the expression, which must outlive the session and is
// changed in place.
class EditSession {
public:
    // Stored: the encoded string that the expression was read from.
    EditSession(CFmlaExpression& expression, CString stored);

    const CFmlaExpression& Expression() const { return m_Expression; }
    CString Text() const { return m_Expression.GetTextStr(); }
    int Cursor() const { return m_Cursor; }

    // To a position in the direction of travel, and to the place nearest to it.
    void TravelTo(int pos);
    void PlaceAt(int pos);
    void MoveLeft() { TravelTo(PreviousPos()); }
    void MoveRight() { TravelTo(NextPos()); }
    void MoveWordLeft();
    void MoveWordRight();

    // What the keyboard brings, at the cursor.
    Refusal Type(const CString& text);
    Refusal Backspace();
    Refusal Delete();
    Refusal InsertReference(const CString& name, int kind);
    // The name of a function, with the cursor between its parentheses, or of another word.
    Refusal InsertWord(const CString& word, bool isFunction);

    // Answer false if there is nothing to take back or to do again.
    bool Undo();
    bool Redo();

    // The string to store: that of the beginning if the text is that of the beginning, whatever way
    // of writing it has; else the text, encoded.
    CString Stored();
    // The text that a reader of the stored string will have. It is another one if the text holds a
    // fault in a number, or typed letters that spell a reference.
    CString TextReadBack();

private:
    struct State {
        CString text;
        CString pointers;
        int cursor;
    };

    template <typename Operation>
    Refusal Change(Operation operation);
    template <typename Operation>
    Refusal Insert(int length, Operation operation);
    Refusal Erase(int start, int end);
    Refusal ReasonToRefuse() const;

    State Snapshot() const;
    void Restore(const State& state);
    bool Step(std::vector<State>& from, std::vector<State>& to);
    void AdjustLimit();
    int PreviousPos() const;
    int NextPos() const;
    char16_t CharacterAt(int pos) const;

    CFmlaExpression& m_Expression;
    const CString m_FirstStored;
    int m_Cursor = 0;
    State m_First;
    std::vector<State> m_Undo; // the latest last
    std::vector<State> m_Redo;
};

#endif
