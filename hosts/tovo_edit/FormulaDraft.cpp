#include "FormulaDraft.h"

#include <algorithm>
#include <utility>

#include "TextAlignment.h"
#include "WordCharacter.h"

namespace {

constexpr std::size_t kMostCompletions = 50;

CString Wide(std::string_view text)
{
    return CString(text);
}

CString WithoutBlanks(CString text)
{
    text.Replace(u" ", u"");
    return text;
}

// Whether two texts hold the same, whatever blanks stand in them.
bool AreAlike(const CFmlaExprBase& a, const CFmlaExprBase& b)
{
    return a.NumVars() == b.NumVars() &&
           WithoutBlanks(a.GetTextStr()) == WithoutBlanks(b.GetTextStr());
}

const std::string& ExpressionOf(const Document& document, const std::string& formula)
{
    return document.Job().FindFormula(formula)->expression;
}

} // namespace

FormulaDraft::FormulaDraft(Document& document, std::string formula)
    : m_Document(document),
      m_Object(tovo::FormulaNamed(std::move(formula))),
      m_First(ExpressionOf(document, m_Object.name)),
      m_Session(m_First)
{
    Check();
}

void FormulaDraft::Check()
{
    Resolve();
    if (!IsWordUnfinished())
        Finish();
    Store(m_Session.IsFirst() ? m_First : m_Resolved.expression);
    m_Document.Update();
}

void FormulaDraft::Finish()
{
    CFmlaExprBase resolved;
    resolved.SetFromEncodedString(m_Resolved.expression);
    if (m_Session.IsFirst() || AreAlike(resolved, m_Session.Expression()))
        return;
    // Letters such as "V(" in front of a reference read otherwise each time.
    const auto again = tovo::ResolveTyped(AsTyped(resolved).text.ToUtf8(), m_Document.Job());
    CFmlaExprBase next;
    next.SetFromEncodedString(again ? again.Value().expression : std::string());
    if (!AreAlike(resolved, next))
        return;
    m_Session.Adopt(m_Resolved.expression);
    Resolve();
}

std::optional<double> FormulaDraft::Value() const
{
    return m_Document.Job().ValueOf(m_Object);
}

std::optional<FormulaDraft::Problem> FormulaDraft::WhatIsWrong() const
{
    for (const tovo::UnresolvedWord& word : m_Resolved.unresolved) {
        if (word.isAmbiguous)
            return Problem{word.message, ShownStretch(word.span)};
    }
    const auto failure = m_Document.Job().FailureOf(m_Object);
    if (!failure)
        return std::nullopt;
    Problem problem{failure->text + " (" + std::to_string(failure->message) + ")", {}};
    if (!failure->path.empty() && failure->path.front() != m_Object)
        problem.text += " in " + std::string(WordFor(failure->path.front().kind)) + " " +
                        failure->path.front().name;
    if (const auto& span = failure->place.span) {
        // The job's text has references where this one may have names that are being typed.
        const TextAlignment shown(Wide(m_Document.Job().TextOf(m_Object)), m_Session.Text());
        problem.place.begin = shown.Begin(static_cast<int>(span->begin.utf16));
        problem.place.end = shown.End(static_cast<int>(span->end.utf16));
    }
    return problem;
}

std::vector<tovo::Dependency> FormulaDraft::Uses() const
{
    return tovo::Uses(m_Document.Job(), m_Object);
}

std::vector<tovo::Completion> FormulaDraft::Completions(bool all) const
{
    const CString text = m_Session.Text();
    const int cursor = m_Session.Cursor();
    const bool isInWord = cursor > 0 && IsWordCharacter(text[cursor - 1]) &&
                          !m_Session.Expression().OnVarRightEdge(cursor, nullptr);
    if (!all && !isInWord)
        return {};
    auto found = tovo::Complete(text.ToUtf8(), CursorByte(), m_Document.Job(),
                                {m_Object.name, kMostCompletions});
    // A list of just what stands there would only be in the way.
    const auto isThere = [&](const tovo::Completion& completion) {
        const auto begin = static_cast<int>(completion.span.begin.utf16);
        const auto end = static_cast<int>(completion.span.end.utf16);
        return text.Mid(begin, end - begin) == Wide(completion.insert);
    };
    if (found.size() == 1 && isThere(found.front()))
        found.clear();
    return found;
}

KeyRefusal FormulaDraft::Take(const tovo::Completion& completion)
{
    const Stretch instead{static_cast<int>(completion.span.begin.utf16),
                          static_cast<int>(completion.span.end.utf16)};
    if (completion.kind <= tovo::CompletionKind::Table)
        return m_Session.InsertReference(
            {static_cast<tovo::Kind>(completion.kind), completion.label}, instead);
    return m_Session.InsertWord(Wide(completion.label), completion.insert.ends_with('('), instead);
}

std::optional<tovo::Signature> FormulaDraft::SignatureHere() const
{
    return tovo::SignatureAt(m_Session.Text().ToUtf8(), CursorByte(), m_Document.Job());
}

std::vector<FormulaDraft::Correction> FormulaDraft::Corrections() const
{
    std::vector<Correction> corrections;
    for (const tovo::UnresolvedWord& word : m_Resolved.unresolved) {
        if (word.isAmbiguous)
            AddMeanings(word, corrections);
    }
    if (!corrections.empty())
        return corrections;
    for (const tovo::Fault& fault : m_Document.Job().Faults()) {
        if (fault.object != m_Object)
            continue;
        for (const tovo::Fix& fix : tovo::FixesFor(fault, m_Document.Job())) {
            const auto& changed = std::get<tovo::ChangeObject>(fix.change).object;
            corrections.push_back({fix.description, std::get<tovo::Formula>(changed).expression});
        }
        if (!corrections.empty())
            break;
    }
    return corrections;
}

void FormulaDraft::AddMeanings(const tovo::UnresolvedWord& word,
                               std::vector<Correction>& corrections) const
{
    for (const std::string& choice : word.choices) {
        std::string text = m_Typed.text.ToUtf8();
        text.replace(word.span.begin.utf8, word.span.end.utf8 - word.span.begin.utf8, choice);
        if (const auto typed = tovo::ResolveTyped(text, m_Document.Job()))
            corrections.push_back(
                {"Read " + word.word + " as " + choice, typed.Value().expression});
    }
}

const FormulaDraft::TypedText::Piece& FormulaDraft::TypedText::PieceAt(int position) const
{
    const auto next = std::upper_bound(pieces.begin() + 1, pieces.end(), position,
                                       [](int at, const Piece& piece) { return at < piece.typed; });
    return *(next - 1);
}

// A reference is set off by a blank where it would join a word.
FormulaDraft::TypedText FormulaDraft::AsTyped(const CFmlaExprBase& expression)
{
    const CString shown = expression.GetTextStr();
    TypedText typed;
    int copied = 0;
    const auto add = [&](const CString& text, int shownAt, bool isReference) {
        const int length = typed.text.GetLength();
        if (length > 0 && !text.IsEmpty() && IsWordCharacter(typed.text[length - 1]) &&
            IsWordCharacter(text[0]) && isReference)
            typed.text += u" ";
        typed.pieces.push_back({typed.text.GetLength(), shownAt, isReference});
        typed.text += text;
    };
    for (int index = 0; index < expression.NumVars(); ++index) {
        const int begin = expression.VarPos(index);
        add(shown.Mid(copied, begin - copied), copied, false);
        const tovo::ObjectName object{static_cast<tovo::Kind>(expression.VarType(index)),
                                      expression.VarName(index).ToUtf8()};
        add(Wide(WriteReference(object)), begin, true);
        copied = expression.VarEndPos(index);
    }
    add(shown.Mid(copied), copied, false);
    return typed;
}

void FormulaDraft::Resolve()
{
    m_Typed = AsTyped(m_Session.Expression());
    auto resolved = tovo::ResolveTyped(m_Typed.text.ToUtf8(), m_Document.Job());
    m_Resolved = resolved ? std::move(resolved).Value() : tovo::TypedExpression();
    if (m_Resolved.expression.empty())
        m_Resolved.expression = m_Session.Stored();
}

// Whether what is typed next may be a part of the word, or of the name, that the cursor is at.
bool FormulaDraft::IsWordUnfinished() const
{
    const CFmlaExprBase& expression = m_Session.Expression();
    const CString text = m_Session.Text();
    int pos = m_Session.Cursor();
    const bool isBeforeWord = pos < text.GetLength() && IsWordCharacter(text[pos]);
    while (pos > 0 && text[pos - 1] == u' ' && !expression.OnVarRightEdge(pos, nullptr))
        --pos;
    const bool isAfterWord =
        pos > 0 && !expression.OnVarRightEdge(pos, nullptr) && IsWordCharacter(text[pos - 1]);
    return isBeforeWord || isAfterWord;
}

void FormulaDraft::Store(const std::string& expression)
{
    if (expression == ExpressionOf(m_Document, m_Object.name))
        return;
    if (expression == m_First) {
        m_IsApplied = m_IsApplied && !m_Document.Undo();
        return;
    }
    tovo::Formula formula = *m_Document.Job().FindFormula(m_Object.name);
    formula.expression = expression;
    const tovo::Edit edit = tovo::ChangeObject{std::move(formula)};
    const auto isDone = m_IsApplied ? m_Document.ApplyInstead(edit) : m_Document.Apply(edit);
    m_IsApplied = static_cast<bool>(isDone);
}

Stretch FormulaDraft::ShownStretch(const tovo::Span& span) const
{
    const auto shown = [&](std::size_t position) {
        const auto at = static_cast<int>(position);
        const TypedText::Piece& piece = m_Typed.PieceAt(at);
        return piece.shown + (piece.isReference ? 0 : at - piece.typed);
    };
    return {shown(span.begin.utf16), shown(span.end.utf16)};
}

std::size_t FormulaDraft::CursorByte() const
{
    return m_Session.Text().Left(m_Session.Cursor()).ToUtf8().size();
}
