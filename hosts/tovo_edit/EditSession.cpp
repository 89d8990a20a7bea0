#include "EditSession.h"

#include <algorithm>
#include <utility>

#include <TovoPlatform/NumberText.h>

#include "Surrogates.h"

namespace {

constexpr char16_t kBlank = u' ';

bool IsLanguageLetter(char16_t character)
{
    return character >= u'A' && character <= u'Z';
}

bool IsWordCharacter(char16_t character)
{
    return tovo::IsAlphabetic(character) || (character >= u'0' && character <= u'9') ||
           IsHighSurrogate(character) || IsLowSurrogate(character);
}

// The format sets a blank between a letter and a reference behind it, which is no change of the
// expression.
CString WithoutBlanks(CString text)
{
    text.Replace(u" ", u"");
    return text;
}

} // namespace

EditSession::EditSession(CFmlaExpression& expression, CString stored)
    : m_Expression(expression), m_FirstStored(std::move(stored)), m_First(Snapshot())
{
    AdjustLimit();
    PlaceAt(Text().GetLength());
    m_First.cursor = m_Cursor;
}

void EditSession::TravelTo(int pos)
{
    m_Cursor = m_Expression.FixPos(std::clamp(pos, 0, Text().GetLength()), m_Cursor);
}

void EditSession::PlaceAt(int pos)
{
    m_Cursor = m_Expression.FixPos(std::clamp(pos, 0, Text().GetLength()), FD_NEAREST);
}

// A word jump stops at both edges of a reference, of which the name may hold anything.
void EditSession::MoveWordLeft()
{
    int pos = m_Cursor;
    while (CharacterAt(pos - 1) == kBlank && !m_Expression.OnVarRightEdge(pos, nullptr))
        --pos;
    if (m_Expression.OnVarRightEdge(pos, nullptr)) {
        TravelTo(pos == m_Cursor ? pos - 1 : pos);
        return;
    }
    if (!IsWordCharacter(CharacterAt(pos - 1)))
        --pos;
    else
        while (IsWordCharacter(CharacterAt(pos - 1)))
            --pos;
    TravelTo(pos);
}

void EditSession::MoveWordRight()
{
    int pos = m_Cursor;
    if (m_Expression.OnVarLeftEdge(pos, nullptr)) {
        TravelTo(pos + 1);
        return;
    }
    if (IsWordCharacter(CharacterAt(pos)))
        while (IsWordCharacter(CharacterAt(pos)))
            ++pos;
    else if (CharacterAt(pos) != kBlank)
        ++pos;
    while (CharacterAt(pos) == kBlank && !m_Expression.OnVarLeftEdge(pos, nullptr))
        ++pos;
    TravelTo(pos);
}

Refusal EditSession::Type(const CString& text)
{
    return Insert(text.GetLength(), [&] { return m_Expression.InsertString(text, m_Cursor); });
}

Refusal EditSession::Backspace()
{
    int index = 0;
    if (m_Expression.OnVarRightEdge(m_Cursor, &index)) {
        // As the Delete key on its left edge, which takes a reference whole wherever it ends.
        const int start = m_Expression.VarPos(index);
        return Erase(start, start);
    }
    return Erase(PreviousPos(), m_Cursor);
}

Refusal EditSession::Delete()
{
    // An empty range is the Delete key to the library, which takes a reference whole.
    const bool isReference = m_Expression.OnVarLeftEdge(m_Cursor, nullptr) != 0;
    return Erase(m_Cursor, isReference ? m_Cursor : NextPos());
}

// Asked for first: beyond the limit the library would refuse without telling which one it is.
Refusal EditSession::InsertReference(const CString& name, int kind)
{
    if (m_Expression.NumVars() >= kMaxReferences)
        return Refusal::ReferenceLimit;
    return Insert(name.GetLength() + 2,
                  [&] { return m_Expression.InsertVariable(name, m_Cursor, kind); });
}

Refusal EditSession::InsertWord(const CString& word, bool isFunction)
{
    // Two words that touch would read as one. The end of a reference is a blank.
    const bool touches = IsLanguageLetter(CharacterAt(m_Cursor - 1));
    const Refusal refusal = Type((touches ? u" " : u"") + word + (isFunction ? u"()" : u""));
    if (refusal == Refusal::None && isFunction)
        MoveLeft();
    return refusal;
}

bool EditSession::Undo()
{
    return Step(m_Undo, m_Redo);
}

bool EditSession::Redo()
{
    return Step(m_Redo, m_Undo);
}

CString EditSession::Stored()
{
    const State now = Snapshot();
    const bool isFirst = now.text == m_First.text && now.pointers == m_First.pointers;
    return isFirst ? m_FirstStored : m_Expression.GetEncodedString();
}

// A reader of its own, since reading would replace what is being edited.
CString EditSession::TextReadBack()
{
    CFmlaExprBase reader;
    reader.SetFromEncodedString(Stored());
    const CString text = reader.GetTextStr();
    return WithoutBlanks(text) == WithoutBlanks(Text()) ? Text() : text;
}

// Carries out what the library may refuse, as one step to undo.
template <typename Operation>
Refusal EditSession::Change(Operation operation)
{
    const State before = Snapshot();
    if (!operation())
        return ReasonToRefuse();
    // At the limit blanks at the end make room for what is inserted. The last of them may be the
    // end of a reference, and that must stay.
    const int last = m_Expression.NumVars() - 1;
    if (m_Expression.VarEndPos(last) > Text().GetLength()) {
        Restore(before);
        return Refusal::TextLimit;
    }
    AdjustLimit();
    m_Undo.push_back(before);
    m_Redo.clear();
    return Refusal::None;
}

template <typename Operation>
Refusal EditSession::Insert(int length, Operation operation)
{
    const Refusal refusal = Change(operation);
    if (refusal == Refusal::None)
        m_Cursor += length;
    return refusal;
}

// Start and end as DeleteChars takes them.
Refusal EditSession::Erase(int start, int end)
{
    // At either end of the text there is nothing to take, and so no step to undo.
    if (start == end && !m_Expression.OnVarLeftEdge(start, nullptr))
        return Refusal::None;
    const Refusal refusal = Change([&] {
        int wholeVar = 0;
        return m_Expression.DeleteChars(start, end, &wholeVar);
    });
    if (refusal == Refusal::None)
        m_Cursor = start;
    return refusal;
}

// The library says no more than that it refuses.
Refusal EditSession::ReasonToRefuse() const
{
    return m_Expression.InVar(m_Cursor, nullptr) ? Refusal::InsideReference : Refusal::TextLimit;
}

// The pointer string is good for exactly its text, which is why both are kept.
EditSession::State EditSession::Snapshot() const
{
    return {Text(), m_Expression.GetPtrStr(), m_Cursor};
}

void EditSession::Restore(const State& state)
{
    m_Expression.SetExpr(state.text, state.pointers);
    AdjustLimit();
    m_Cursor = state.cursor;
}

bool EditSession::Step(std::vector<State>& from, std::vector<State>& to)
{
    if (from.empty())
        return false;
    to.push_back(Snapshot());
    Restore(from.back());
    from.pop_back();
    return true;
}

// A file may bring a text beyond the limit. Such a text can be made shorter and the cursor reaches
// all of it, but it cannot grow.
void EditSession::AdjustLimit()
{
    m_Expression.SetExprTextLimit(std::max(kDefaultTextLimit, Text().GetLength()));
}

// One character to the left and to the right, where a pair of surrogates is one.
int EditSession::PreviousPos() const
{
    const int pos = std::max(m_Cursor - 1, 0);
    return IsLowSurrogate(CharacterAt(pos)) && IsHighSurrogate(CharacterAt(pos - 1)) ? pos - 1
                                                                                     : pos;
}

int EditSession::NextPos() const
{
    const int pos = std::min(m_Cursor + 1, Text().GetLength());
    return IsLowSurrogate(CharacterAt(pos)) && IsHighSurrogate(CharacterAt(pos - 1)) ? pos + 1
                                                                                     : pos;
}

// Zero outside the text.
char16_t EditSession::CharacterAt(int pos) const
{
    const CString text = Text();
    return pos >= 0 && pos < text.GetLength() ? text[pos] : char16_t(0);
}
