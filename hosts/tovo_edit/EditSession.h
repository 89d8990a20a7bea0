#ifndef TOVO_EDIT_EDITSESSION_H
#define TOVO_EDIT_EDITSESSION_H

#include <optional>
#include <string>
#include <vector>

#include <TovoFormula/FmlaExprBase.h>

#include <TovoJob/ObjectName.h>

// Why a key changed nothing.
enum class KeyRefusal {
    None,
    TextLimit,
    ReferenceLimit,
    InsideReference,
};

// Some characters of a text.
struct Stretch {
    int begin = 0;
    int end = 0;
};

// A step to undo, to which the next key may belong.
struct EditStep {
    enum class Kind {
        None,
        Typing,
        Deleting,
    };
    Kind kind = Kind::None;
    bool isInWord = false;
    int cursor = 0; // after it
};

// The editing of one expression: its text, the cursor, undo and redo.
//
// The cursor never stands inside a reference, and a reference comes and goes as a whole. Positions
// are those of the expression. What is typed in a row is one step to undo for each word.
class EditSession {
public:
    // Stored: an expression in its stored form.
    explicit EditSession(const std::string& stored);

    const CFmlaExprBase& Expression() const { return m_Expression; }
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
    KeyRefusal Type(const CString& text);
    KeyRefusal Backspace();
    KeyRefusal Delete();
    // These put what they insert in place of a stretch, or at the cursor.
    KeyRefusal InsertReference(const tovo::ObjectName& object, std::optional<Stretch> instead = {});
    // The name of a function, with the cursor between its parentheses, or of another word.
    KeyRefusal InsertWord(const CString& word, bool isFunction,
                          std::optional<Stretch> instead = {});

    // Puts another expression in place of the whole one, as one step.
    void ReplaceAll(const std::string& stored);
    // The same expression as it reads with its names as references: no step of its own, with the
    // cursor in the same place of the text.
    void Adopt(const std::string& stored);

    // Return false if there is nothing to take back or to do again.
    bool Undo();
    bool Redo();

    // The string to store: that of the beginning if the text is that of the beginning, whatever way
    // of writing it has; else the text, encoded.
    std::string Stored() const;
    bool IsFirst() const;

private:
    struct State {
        CString text;
        CString pointers;
        int cursor;
    };
    template <typename Operation>
    KeyRefusal Change(Operation operation, EditStep step = {});
    KeyRefusal Erase(int start, int end, EditStep::Kind kind);
    bool MakeRoom(std::optional<Stretch> instead);
    bool BelongsToLatest(const EditStep& step) const;
    KeyRefusal ReasonToRefuse() const;

    State Snapshot() const;
    void Restore(const State& state);
    bool Step(std::vector<State>& from, std::vector<State>& to);
    void AdjustLimit();
    int PreviousPos() const;
    int NextPos() const;
    char16_t CharacterAt(int pos) const;

    CFmlaExprBase m_Expression;
    const std::string m_FirstStored;
    int m_Cursor = 0;
    State m_First;
    EditStep m_Latest;
    std::vector<State> m_Undo; // the latest last
    std::vector<State> m_Redo;
};

#endif
