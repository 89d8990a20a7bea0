#ifndef TOVOFORMULA_FMLAEXPRBASE_H
#define TOVOFORMULA_FMLAEXPRBASE_H

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <TovoFormula/Export.h>
#include <TovoFormula/ExpressionNames.h>
#include <TovoFormula/TokenCodes.h>
#include <TovoPlatform/Collections.h>

// The spelling of a text. Any other value acts as TL_ENGLISH.
enum TEXT_LANGUAGE : int {
    TL_ENGLISH = 0, // the fixed English names, "." and ","
    TL_LOCAL = 1,   // the user's names and separators
};

// Where a position inside a reference goes. Any value beyond these acts as FD_RIGHT.
enum FMLA_DIRECTION : int {
    FD_NEAREST = 0,
    FD_LEFT = 1,
    FD_RIGHT = 2,
};

// Both govern editing only: a text or a table that is loaded may be longer.
inline constexpr int kDefaultTextLimit = 1470; // in characters
inline constexpr int kMaxReferences = 15;      // in one text

namespace tovo::detail {
class BoundWork;
class Spelling;
class TokenScanner;
struct Reference;
struct Renaming;
struct TextExchange;
struct Translation;
} // namespace tovo::detail

// An expression as text, with a table of the stretches that are references.
//
// A name may hold anything, so the text alone cannot tell a reference: the table does. A stretch
// reads blank, name, blank. The text is in the user's language; the encoded string is the form to
// store, since it can be read back under any language.
//
// A position counts 16-bit characters of the text from 0, as the gap before the character at it; -1
// is none. An index counts references in table order from 0. A message id is 0 for none. The class
// belongs to one thread at a time; the token names are shared by all threads. Operations that
// answer int as a yes or no give 1 or 0.
class TOVO_FORMULA_API CFmlaExprBase : public CObject {
public:
    CFmlaExprBase();
    CFmlaExprBase(const CFmlaExprBase& other);
    ~CFmlaExprBase() override;

    // A copy on the heap, which the caller owns.
    virtual CFmlaExprBase* Clone();
    // Empties text and table. The message and the scan position stay.
    virtual void ClearExpr();
    // Copies text, table, invalid position, message, scan position and text limit.
    virtual CFmlaExprBase& operator=(CFmlaExprBase& other);
    // Where the scanner reports a fault: stores the message id.
    virtual void TrackError(unsigned int message);

    // All fields as in a new object, but for the table, which stays.
    void Init();
    int GetMessageNum() const { return m_MessageNum; }
    // The place that a failed check marks for an editor.
    int GetInvalidPos() const { return m_InvalidPos; }
    void SetInvalidPos(int pos)
    {
        NoteTouched();
        m_InvalidPos = pos;
    }
    void ClearInvalidPos() { SetInvalidPos(-1); }
    int GetExprTextLimit() const { return m_ExprTextLimit; }
    void SetExprTextLimit(int limit) { m_ExprTextLimit = limit; }
    CString GetTextStr() const { return m_ExprText; }

    // Replaces text and table, of any length and unchecked, and takes the invalid position back.
    // The text is taken as it is, in the user's language. A pointer string is what GetPtrStr
    // writes.
    void SetExpr(const CString& text);
    void SetExpr(const CString& text, const CWordArray& pointers);
    void SetExpr(const CString& text, const CString& pointers);

    int NumVars() const;
    // For an index outside the table these give 0 or an empty text.
    int VarPos(int index) const;
    int VarLength(int index) const;
    int VarEndPos(int index) const;
    // The kind: 0 variable, 1 formula, 2 formula table; any other kind word counts as 0.
    int VarType(int index) const;
    // The stretch with both its blanks, and the name without them.
    CString VarText(int index) const;
    CString VarName(int index) const;
    // Whether the whole text is one reference, and of which kind.
    int IsSingleVarElement() const;
    int IsSingleVariable() const;
    int IsSingleFormula() const;
    int IsSingleFormulaTable() const;

    // The names are loaded with the first expression or the first GetTokenString. ReInitExprNames
    // loads them again, for a host whose language or separators have changed; the next scan of
    // every expression uses them. It must not run beside a scan on another thread.
    static void InitExprNames();
    static void ReInitExprNames();
    // The user's name of a token. Answers 0, with the text unchanged, for a code outside 0 to 54.
    static int GetTokenString(int code, CString& text);

    // Scans the next token. Answers 1 with its text, its code and its position. Answers 0 at the
    // end of the text, with only the position set, and for a fault in a number, with the message id
    // in GetMessageNum and reported to TrackError. What is no token comes as TOK_ILLEGAL. A scan
    // that begins before the text throws CInvalidArgException.
    [[nodiscard]] int FindFirstToken(CString& token, int& tokenCode, int& tokenPos, int startPos,
                                     TEXT_LANGUAGE language);
    [[nodiscard]] int FindNextToken(CString& token, int& tokenCode, int& tokenPos,
                                    TEXT_LANGUAGE language);

    // Puts the text, in place, from the other language into the target; names of references stay.
    // Ends at a fault in a number, with what stands before it translated. Not to be called with the
    // language that the text is in already: its separators would be mistaken.
    void TranslateText(TEXT_LANGUAGE target);

    // The whole expression as one English string, each reference written out as V(name), F(name) or
    // T(name). The object is unchanged.
    CString GetEncodedString();
    // Reads what GetEncodedString writes, under the present language. Never fails: what is no
    // reference stays literal text.
    void SetFromEncodedString(CString encoded);
    template <std::same_as<std::string> Text>
    void SetFromEncodedString(const Text& encoded)
    {
        SetFromEncodedString(CString(encoded));
    }
    // One reference as it is encoded. A kind other than 0, 1 and 2 gives no letter.
    static CString EncodeVariable(const CString& name, int kind);
    static CString EncodeFormula(const CString& name);
    static CString EncodeFormulaTable(const CString& name);
    // The table as numbers, each followed by a comma. Good only for exactly this text.
    CString GetPtrStr() const;

    // Editing keeps text and table in step; a stretch goes in and out as a whole. A refusal is
    // answered with 0 and changes nothing; a change takes the invalid position back.
    //
    // Puts the text in unchanged, before the character at pos; behind the end, at the end. Refused
    // are a pos that is negative, inside a reference, or at or behind the text limit; a text for
    // which the limit leaves no room, where trailing blanks take none; and one that would push a
    // reference beyond what its 16-bit word holds.
    // The blank that a last reference ends in is a trailing one as well. Where the limit cuts it
    // off, the reference keeps its length and reaches beyond the text by one, and the next text
    // that is inserted at its end brings the blank back.
    [[nodiscard]] int InsertString(const CString& text, int pos);
    // Deletes the characters between the gaps start and end; start == end, or start behind end,
    // acts as the Delete key at end. Refused if a gap is negative or inside a reference, or start
    // is at the text limit. *pWholeVar tells whether the key took a whole reference; null throws
    // CInvalidArgException. An editor may pass the result over: a key that has nothing to delete is
    // no fault.
    int DeleteChars(int start, int end, int* pWholeVar);
    // Insert a reference to the name, within the text or at its end. Refused like its text, and
    // beyond 15 references.
    [[nodiscard]] int InsertVariable(const CString& name, int pos, int kind);
    [[nodiscard]] int InsertFormula(const CString& name, int pos);
    [[nodiscard]] int InsertFormulaTable(const CString& name, int pos);
    // The entry alone, without the text. Refused beyond 15 references, for a pos that a reference
    // starts at or holds, and for what 16-bit words cannot hold.
    [[nodiscard]] int InsVarPtrs(int pos, int length, int kind);
    // Takes the entry out, without the text. A bad index throws CInvalidArgException.
    void DelVarPtrs(int index);

    // Whether pos lies strictly inside a reference, at its first gap, or at its last. The index is
    // stored if the answer is 1 and the pointer is not null. A pos that is negative or above the
    // text limit gives 0.
    int InVar(int pos, int* pIndex) const;
    int OnVarLeftEdge(int pos, int* pIndex) const;
    int OnVarRightEdge(int pos, int* pIndex) const;
    // A place for the cursor: pos itself, cut to 0 and the text limit, or where it lies inside a
    // reference one of its edges: in the direction of travel from prevPos, or in the one given.
    int FixPos(int pos, int prevPos) const;
    int FixPos(int pos, FMLA_DIRECTION direction) const;

    // The expression as one RTF document: literal text bold and black, references underlined and
    // blue (variables), green (formulas) or purple (tables). The font size is in half-points; an
    // empty font name leaves the font to the reader.
    CString GetRTFString(const CString& fontName, int fontSize) const;

protected:
    // Ignored for an index outside the table and a pos that a 16-bit word cannot hold.
    void SetVarPos(int index, int pos);

    // 1 for A to Z, the letters of a word of the language.
    int IsValidFunctionCharacter(char16_t character) const;
    // 1 for the user's list separator, if that is one character, and for the four signs of
    // arithmetic; the second also for a blank.
    int IsDelm(char16_t character) const;
    int IsDelmOrSpace(char16_t character) const;
    // 1 if the token's name differs between the languages.
    int TokenNeedsTranslation(int code) const;

    // Loaded once for the process, by whichever thread comes first.
    static CExpressionNames m_ExprNames;
    static int m_ExpressionNamesInitialized;

    // The same for a loop over all tokens, with a scanner that keeps its place between two of them.
    int DeliverToken(tovo::detail::TokenScanner& scanner, CString& token, int& tokenCode,
                     int& tokenPos);
    static tovo::detail::Spelling SpellingOf(TEXT_LANGUAGE language);
    // The user's names as they are now. They stay alive for whoever holds them.
    static const std::shared_ptr<const CExpressionNames>& PresentNames();
    // The encoded string with references renamed; null renames none.
    CString EncodeRenamed(const tovo::detail::Renaming* renaming);

private:
    static void LoadNames();
    int IsSingleOfKind(int kind) const;
    tovo::detail::Reference EntryAt(int index) const;
    tovo::detail::Reference NextVar();
    void ReportFault(unsigned int message);
    void NoteTextChange();
    void SetText(CString text, CWordArray references) noexcept;
    void CutReferences(int start, int end);
    void MoveReferences(int fromPos, int distance);
    template <typename Judge>
    int FindReference(int pos, int* pIndex, Judge judge) const;
    int EdgeOf(int index, int pos, FMLA_DIRECTION direction) const;
    static tovo::detail::Translation TranslationOf(const CString& text,
                                                   std::vector<tovo::detail::Reference> references,
                                                   TEXT_LANGUAGE target);
    static bool IsTranslatedAlready(const CString& text,
                                    const std::vector<tovo::detail::Reference>& references);
    void TranslateAndTake(const CString& text,
                          const std::vector<tovo::detail::Reference>& references,
                          TEXT_LANGUAGE target);
    void TakeTranslation(const tovo::detail::Translation& translation);

protected:
    CString m_ExprText;
    CWordArray m_VarPtrs; // three words for each reference: position, length, kind
    int m_InvalidPos = -1;
    int m_MessageNum = 0;
    int m_ScanPos = 0;
    int m_ExprTextLimit = kDefaultTextLimit;

private:
    friend class tovo::detail::BoundWork;
    friend struct tovo::detail::TextExchange;

    void NoteTouched()
    {
        if (m_Untouched)
            *m_Untouched = false;
    }

    std::uint64_t m_TextVersion = 1; // grows with every change of text or table
    // Becomes false when a field changes otherwise than by a check; null for nobody who looks at
    // it.
    bool* m_Untouched = nullptr;
    // How many references the scan has passed when it stood at a position, so that a scan token by
    // token does not look through the whole table each time.
    int m_PassedVars = 0;
    int m_PassedAt = 0;
};

#endif
