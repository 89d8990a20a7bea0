#include "EditSession.h"

#include <algorithm>

#include "TextAlignment.h"
#include "WordCharacter.h"

namespace {

constexpr char16_t kBlank = u' ';

bool IsLanguageLetter(char16_t character)
{
    return character >= u'A' && character <= u'Z';
}

} // namespace

EditSession::EditSession(const std::string& stored) : m_FirstStored(stored)
{
    m_Expression.SetFromEncodedString(stored);
    AdjustLimit();
    PlaceAt(Text().GetLength());
    m_First = Snapshot();
}

void EditSession::TravelTo(int pos)
{
    m_Cursor = m_Expression.FixPos(std::clamp(pos, 0, Text().GetLength()), m_Cursor);
    m_Latest = {};
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

KeyRefusal EditSession::Type(const CString& text)
{
    EditStep step{EditStep::Kind::Typing, !text.IsEmpty() && IsWordCharacter(text[0]), m_Cursor};
    return Change(
        [&] {
            const bool isDone = m_Expression.InsertString(text, m_Cursor) != 0;
            m_Cursor += isDone ? text.GetLength() : 0;
            return isDone;
        },
        step);
}

KeyRefusal EditSession::Backspace()
{
    int index = 0;
    if (m_Expression.OnVarRightEdge(m_Cursor, &index)) {
        // As the Delete key on its left edge, which takes a reference whole wherever it ends.
        const int start = m_Expression.VarPos(index);
        return Erase(start, start, EditStep::Kind::None);
    }
    return Erase(PreviousPos(), m_Cursor, EditStep::Kind::Deleting);
}

KeyRefusal EditSession::Delete()
{
    // An empty range is the Delete key to the library, which takes a reference whole.
    if (m_Expression.OnVarLeftEdge(m_Cursor, nullptr))
        return Erase(m_Cursor, m_Cursor, EditStep::Kind::None);
    return Erase(m_Cursor, NextPos(), EditStep::Kind::Deleting);
}

// Asked for first: beyond the limit the library would refuse without telling which one it is.
KeyRefusal EditSession::InsertReference(const tovo::ObjectName& object,
                                        std::optional<Stretch> instead)
{
    if (m_Expression.NumVars() >= kMaxReferences)
        return KeyRefusal::ReferenceLimit;
    return Change([&] {
        const CString name(std::string_view(object.name));
        // The engine's kinds are in the order of the library's.
        if (!MakeRoom(instead) ||
            !m_Expression.InsertVariable(name, m_Cursor, static_cast<int>(object.kind)))
            return false;
        m_Cursor += name.GetLength() + 2;
        return true;
    });
}

KeyRefusal EditSession::InsertWord(const CString& word, bool isFunction,
                                   std::optional<Stretch> instead)
{
    return Change([&] {
        if (!MakeRoom(instead))
            return false;
        // Two words that touch would read as one. The end of a reference is a blank.
        const bool touches = IsLanguageLetter(CharacterAt(m_Cursor - 1));
        const CString text = (touches ? u" " : u"") + word + (isFunction ? u"()" : u"");
        if (!m_Expression.InsertString(text, m_Cursor))
            return false;
        m_Cursor += text.GetLength() - (isFunction ? 1 : 0);
        return true;
    });
}

void EditSession::ReplaceAll(const std::string& stored)
{
    m_Undo.push_back(Snapshot());
    m_Redo.clear();
    m_Latest = {};
    Adopt(stored);
}

void EditSession::Adopt(const std::string& stored)
{
    const CString before = Text();
    m_Expression.SetFromEncodedString(stored);
    AdjustLimit();
    const CString after = Text();
    int pos = TextAlignment(before, after).End(m_Cursor);
    // The blanks that were typed in front of the cursor.
    for (int at = m_Cursor; at > 0 && before[at - 1] == kBlank && CharacterAt(pos) == kBlank; --at)
        ++pos;
    m_Latest.cursor = m_Cursor == m_Latest.cursor ? pos : -1;
    PlaceAt(pos);
}

bool EditSession::Undo()
{
    return Step(m_Undo, m_Redo);
}

bool EditSession::Redo()
{
    return Step(m_Redo, m_Undo);
}

std::string EditSession::Stored() const
{
    if (IsFirst())
        return m_FirstStored;
    CFmlaExprBase copy(m_Expression);
    return copy.GetEncodedString().ToUtf8();
}

bool EditSession::IsFirst() const
{
    const State now = Snapshot();
    return now.text == m_First.text && now.pointers == m_First.pointers;
}

// Carries out what the library may refuse, as one step to undo.
template <typename Operation>
KeyRefusal EditSession::Change(Operation operation, EditStep step)
{
    const State before = Snapshot();
    if (!operation()) {
        const KeyRefusal reason = ReasonToRefuse();
        Restore(before);
        return reason;
    }
    // At the limit blanks at the end make room for what is inserted. The last of them may be the
    // end of a reference, and that must stay.
    const int last = m_Expression.NumVars() - 1;
    if (m_Expression.VarEndPos(last) > Text().GetLength()) {
        Restore(before);
        return KeyRefusal::TextLimit;
    }
    AdjustLimit();
    if (!BelongsToLatest(step)) {
        m_Undo.push_back(before);
        m_Redo.clear();
    }
    step.cursor = m_Cursor;
    m_Latest = step;
    return KeyRefusal::None;
}

// Start and end as DeleteChars takes them.
KeyRefusal EditSession::Erase(int start, int end, EditStep::Kind kind)
{
    // At either end of the text there is nothing to take, and so no step to undo.
    if (start == end && !m_Expression.OnVarLeftEdge(start, nullptr))
        return KeyRefusal::None;
    return Change(
        [&] {
            int wholeVar = 0;
            const bool isDone = m_Expression.DeleteChars(start, end, &wholeVar) != 0;
            m_Cursor = isDone ? start : m_Cursor;
            return isDone;
        },
        {kind, IsWordCharacter(CharacterAt(start)), m_Cursor});
}

bool EditSession::MakeRoom(std::optional<Stretch> instead)
{
    if (!instead)
        return true;
    const int begin = m_Expression.FixPos(instead->begin, FD_LEFT);
    const int end = m_Expression.FixPos(instead->end, FD_RIGHT);
    int wholeVar = 0;
    m_Cursor = begin;
    return begin >= end || m_Expression.DeleteChars(begin, end, &wholeVar);
}

// A word is taken back as a whole, and so is a word that was deleted key by key.
bool EditSession::BelongsToLatest(const EditStep& step) const
{
    return step.kind != EditStep::Kind::None && step.kind == m_Latest.kind && step.isInWord &&
           m_Latest.isInWord && step.cursor == m_Latest.cursor && !m_Undo.empty();
}

// The library says no more than that it refuses.
KeyRefusal EditSession::ReasonToRefuse() const
{
    return m_Expression.InVar(m_Cursor, nullptr) ? KeyRefusal::InsideReference
                                                 : KeyRefusal::TextLimit;
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
    m_Latest = {};
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
