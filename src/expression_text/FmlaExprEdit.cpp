#include <TovoFormula/FmlaExprBase.h>

#include <algorithm>
#include <utility>

#include <TovoPlatform/ArgumentValidator.h>

#include "ReferenceTable.h"

using namespace tovo::detail;

namespace {

constexpr char16_t kBlank = u' ';

// What a reference says of a position: it is the one looked for, or it ends the search, or the next
// one may be it.
enum class Verdict { Found, Stop, GoOn };

Verdict JudgeInside(const Reference& reference, int pos)
{
    if (pos <= reference.position)
        return Verdict::Stop;
    return pos < reference.End() ? Verdict::Found : Verdict::GoOn;
}

Verdict JudgeEdge(int edge, int pos)
{
    if (pos == edge)
        return Verdict::Found;
    return pos < edge ? Verdict::Stop : Verdict::GoOn;
}

Verdict JudgeLeftEdge(const Reference& reference, int pos)
{
    return JudgeEdge(reference.position, pos);
}

Verdict JudgeRightEdge(const Reference& reference, int pos)
{
    return JudgeEdge(reference.End(), pos);
}

bool FitsWord(int value)
{
    return value >= 0 && value <= kMaxWord;
}

// How many blanks a text is short of for the references that begin in it and end at the position or
// before: the limit may have cut them off. Without them a text inserted at the end of such a
// reference would become part of its name.
int BlanksMissingBefore(const CFmlaExprBase& expression, int pos)
{
    const int length = expression.GetTextStr().GetLength();
    int end = length;
    for (int index = 0; index < expression.NumVars(); ++index)
        if (expression.VarPos(index) < length && expression.VarEndPos(index) <= pos)
            end = std::max(end, expression.VarEndPos(index));
    return end - length;
}

} // namespace

int CFmlaExprBase::InsertString(const CString& text, int pos)
{
    if (pos < 0 || pos >= m_ExprTextLimit || InVar(pos, nullptr))
        return 0;
    const int inserted = text.GetLength();
    const auto taken = static_cast<int>(WithoutTrailingBlanks(m_ExprText.View()).size());
    const int room = m_ExprTextLimit - std::max(pos, taken);
    if (inserted > room)
        return 0;
    const int last = NumVars() - 1;
    if (last >= 0 && VarPos(last) >= pos && !FitsWord(VarPos(last) + inserted))
        return 0;

    CString changed = m_ExprText;
    if (inserted > 0)
        changed += CString(kBlank, BlanksMissingBefore(*this, pos));
    changed.Insert(pos, text);
    changed = changed.Left(m_ExprTextLimit);
    NoteTextChange();
    m_ExprText = std::move(changed);
    m_InvalidPos = -1;
    MoveReferences(pos, inserted);
    return 1;
}

int CFmlaExprBase::DeleteChars(int start, int end, int* pWholeVar)
{
    CArgumentValidator::ValidateNonNullPointer("FmlaExprEdit", __LINE__, pWholeVar, "pWholeVar",
                                               "CFmlaExprBase::DeleteChars");
    end = std::min(end, m_ExprTextLimit);
    start = std::min({start, m_ExprTextLimit, end});
    if (start < 0 || end < 0 || start >= m_ExprTextLimit || InVar(start, nullptr) ||
        InVar(end, nullptr)) {
        *pWholeVar = 0;
        return 0;
    }

    int isWholeVar = 0;
    if (start == end) {
        int index = 0;
        isWholeVar = OnVarLeftEdge(start, &index);
        end = isWholeVar ? VarEndPos(index) : start + 1;
    }
    CString changed = m_ExprText;
    changed.Delete(start, end - start);
    NoteTextChange();
    *pWholeVar = isWholeVar;
    m_ExprText = std::move(changed);
    m_InvalidPos = -1;
    CutReferences(start, end);
    return 1;
}

int CFmlaExprBase::InsertVariable(const CString& name, int pos, int kind)
{
    if (NumVars() >= kMaxReferences)
        return 0;
    const CString stretch = kBlank + name + kBlank;
    CFmlaExprBase changed(*this);
    if (!changed.InsertString(stretch, pos) || !changed.InsVarPtrs(pos, stretch.GetLength(), kind))
        return 0;
    SetText(std::move(changed.m_ExprText), std::move(changed.m_VarPtrs));
    m_InvalidPos = -1;
    return 1;
}

int CFmlaExprBase::InsertFormula(const CString& name, int pos)
{
    return InsertVariable(name, pos, TOK_FORMULA);
}

int CFmlaExprBase::InsertFormulaTable(const CString& name, int pos)
{
    return InsertVariable(name, pos, TOK_FORMTBL);
}

int CFmlaExprBase::InsVarPtrs(int pos, int length, int kind)
{
    if (NumVars() >= kMaxReferences || !FitsWord(pos) || !FitsWord(length) || !FitsWord(kind))
        return 0;
    int index = 0;
    for (; index < NumVars() && pos >= VarPos(index); ++index)
        if (pos < VarEndPos(index))
            return 0;
    CWordArray entry;
    AppendReference(entry, {pos, length, kind});
    m_VarPtrs.InsertAt(index * kWordsPerReference, entry);
    NoteTextChange();
    return 1;
}

void CFmlaExprBase::DelVarPtrs(int index)
{
    if (index < 0 || index >= NumVars())
        AfxThrowInvalidArgException();
    NoteTextChange();
    m_VarPtrs.RemoveAt(index * kWordsPerReference, kWordsPerReference);
}

int CFmlaExprBase::InVar(int pos, int* pIndex) const
{
    return FindReference(pos, pIndex, JudgeInside);
}

int CFmlaExprBase::OnVarLeftEdge(int pos, int* pIndex) const
{
    return FindReference(pos, pIndex, JudgeLeftEdge);
}

int CFmlaExprBase::OnVarRightEdge(int pos, int* pIndex) const
{
    return FindReference(pos, pIndex, JudgeRightEdge);
}

int CFmlaExprBase::FixPos(int pos, int prevPos) const
{
    if (pos == prevPos)
        return FixPos(pos, FD_NEAREST);
    return FixPos(pos, pos < prevPos ? FD_LEFT : FD_RIGHT);
}

int CFmlaExprBase::FixPos(int pos, FMLA_DIRECTION direction) const
{
    if (pos < 0)
        return 0;
    if (pos > m_ExprTextLimit)
        return m_ExprTextLimit;
    int index = 0;
    return InVar(pos, &index) ? EdgeOf(index, pos, direction) : pos;
}

void CFmlaExprBase::SetVarPos(int index, int pos)
{
    if (index >= 0 && index < NumVars() && FitsWord(pos)) {
        NoteTextChange();
        m_VarPtrs.SetAt(index * kWordsPerReference, static_cast<WORD>(pos));
    }
}

// Takes out the references that a deleted part of the text held, and moves those after it.
void CFmlaExprBase::CutReferences(int start, int end)
{
    int first = NumVars();
    while (first > 0 && VarEndPos(first - 1) > start)
        --first;
    // In place, as the text has changed already.
    int kept = first;
    for (int index = first; index < NumVars(); ++index) {
        Reference reference = EntryAt(index);
        if (reference.position < end)
            continue;
        reference.position -= end - start;
        int word = kept++ * kWordsPerReference;
        for (const int value : {reference.position, reference.length, reference.kind})
            m_VarPtrs.SetAt(word++, static_cast<WORD>(value));
    }
    m_VarPtrs.RemoveAt(kept * kWordsPerReference, (NumVars() - kept) * kWordsPerReference);
}

// Moves the references at or behind a position. They are the last ones, as the table is ordered.
void CFmlaExprBase::MoveReferences(int fromPos, int distance)
{
    for (int index = NumVars() - 1; index >= 0 && VarPos(index) >= fromPos; --index)
        SetVarPos(index, VarPos(index) + distance);
}

template <typename Judge>
int CFmlaExprBase::FindReference(int pos, int* pIndex, Judge judge) const
{
    if (pos < 0 || pos > m_ExprTextLimit)
        return 0;
    for (int index = 0; index < NumVars(); ++index) {
        const Reference reference = EntryAt(index);
        if (reference.length == 0) // holds no text, so an editor meets nothing there
            continue;
        const Verdict verdict = judge(reference, pos);
        if (verdict == Verdict::Stop)
            return 0;
        if (verdict == Verdict::GoOn)
            continue;
        if (pIndex)
            *pIndex = index;
        return 1;
    }
    return 0;
}

// Exactly halfway the nearest edge is the left one.
int CFmlaExprBase::EdgeOf(int index, int pos, FMLA_DIRECTION direction) const
{
    const bool isNearerLeft = pos - VarPos(index) <= VarLength(index) / 2;
    if (direction == FD_LEFT || (direction == FD_NEAREST && isNearerLeft))
        return VarPos(index);
    return VarEndPos(index);
}
