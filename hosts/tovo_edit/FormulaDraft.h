#ifndef TOVO_EDIT_FORMULADRAFT_H
#define TOVO_EDIT_FORMULADRAFT_H

#include <optional>
#include <string>
#include <vector>

#include <TovoJob/TovoJob.h>

#include "Document.h"
#include "EditSession.h"

// A formula of the job while its text is edited: what is typed is the job's formula at once, with
// typed names as references, and all changes of one draft are one edit of the job.
//
// Does not own: the document, which must outlive it. Nothing else changes the job while it lives.
class FormulaDraft {
public:
    // What is wrong with the formula.
    struct Problem {
        std::string text;
        Stretch place;
    };
    // One way to mend it.
    struct Correction {
        std::string description;
        std::string expression; // in the stored form
    };

    FormulaDraft(Document& document, std::string formula);

    EditSession& Session() { return m_Session; }
    const EditSession& Session() const { return m_Session; }
    const tovo::ObjectName& Object() const { return m_Object; }

    // To be called after every key: brings the job up to date with the text. A name that was typed
    // becomes a reference as soon as something follows it.
    void Check();
    // The same at the end, when nothing will follow.
    void Finish();

    // Absent if something is wrong.
    std::optional<double> Value() const;
    std::optional<Problem> WhatIsWrong() const;
    // The direct ones, in the order of the text.
    std::vector<tovo::Dependency> Uses() const;

    // What can be typed at the cursor; empty unless a word has been begun there or all are asked
    // for.
    std::vector<tovo::Completion> Completions(bool all) const;
    KeyRefusal Take(const tovo::Completion& completion);
    std::optional<tovo::Signature> SignatureHere() const;
    // Costs some dozen calculations of the formula.
    std::vector<Correction> Corrections() const;

private:
    // The text with each reference written so that it says its kind.
    struct TypedText {
        struct Piece {
            int typed; // where it begins, in 16-bit characters
            int shown;
            bool isReference;
        };

        const Piece& PieceAt(int position) const;

        CString text;
        std::vector<Piece> pieces;
    };

    static TypedText AsTyped(const CFmlaExprBase& expression);
    void Resolve();
    bool IsWordUnfinished() const;
    void Store(const std::string& expression);
    void AddMeanings(const tovo::UnresolvedWord& word, std::vector<Correction>& corrections) const;
    Stretch ShownStretch(const tovo::Span& span) const;
    std::size_t CursorByte() const;

    Document& m_Document;
    const tovo::ObjectName m_Object;
    const std::string m_First; // the expression that the job had
    EditSession m_Session;
    bool m_IsApplied = false; // as the latest edit of the job
    TypedText m_Typed;
    tovo::TypedExpression m_Resolved;
};

#endif
