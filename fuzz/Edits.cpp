#include <algorithm>
#include <string>
#include <vector>

#include <TovoFormula/CalcSetImpl.h>
#include <TovoFormula/FmlaExpression.h>
#include <expression_text/Texts.h>

#include "Oracles.h"
#include "Reader.h"

// A script of edits. A model of the text in which each character knows the reference that it
// belongs to tells what text and table must be after each of them.

namespace tovo::fuzz {
namespace {

constexpr int kMostEdits = 60;
constexpr int kMostWork = 200000; // in characters, over all edits

// Text and table at one moment.
struct Snapshot {
    explicit Snapshot(const CFmlaExprBase& expression) : text(expression.GetTextStr())
    {
        for (int index = 0; index < expression.NumVars(); ++index)
            for (const int word :
                 {expression.VarPos(index), expression.VarLength(index), expression.VarType(index)})
                words.Add(static_cast<WORD>(word));
    }

    std::string Shown() const
    {
        CFmlaExprBase expression;
        expression.SetExpr(text, words);
        return test::Whole(expression);
    }

    bool operator==(const Snapshot&) const = default;

    CString text;
    CWordArray words;
};

class Editor {
public:
    explicit Editor(Reader reader) : m_Reader(reader), m_Expression(m_Set), m_Before(m_Expression)
    {
        SpeakLanguage(m_Reader.Pick(kLanguages));
        m_Expression.SetFromEncodedString(m_Reader.Text());
        TakeAsModel();
        if (m_Reader.Pick(4) == 0)
            m_Expression.SetExprTextLimit(m_Reader.Int());
    }

    void Run()
    {
        int work = 0;
        for (int edit = 0; edit < kMostEdits && work < kMostWork && !m_Reader.AtEnd(); ++edit) {
            work += m_Expression.GetTextStr().GetLength();
            m_Expression.SetInvalidPos(kMark);
            m_Before = Snapshot(m_Expression);
            Act();
            RequireSoundTable(m_Expression);
            RequireAsModel();
        }
    }

private:
    static constexpr int kMark = 1; // an invalid position that a refusal leaves

    struct Character {
        char16_t character;
        int reference; // -1 for literal text
    };
    using Characters = std::vector<Character>;

    auto Before() const
    {
        return [this] { return m_Before.Shown(); };
    }
    auto Before(int pos) const
    {
        return [this, pos] { return m_Before.Shown() + std::to_string(pos); };
    }
    auto BeforeAndNow() const
    {
        return [this] { return m_Before.Shown() + '\n' + test::Whole(m_Expression); };
    }

    void Act()
    {
        switch (m_Reader.Pick(8)) {
        case 0:
        case 1:
            return InsertText();
        case 2:
        case 3:
            return InsertReference();
        case 4:
            return Delete();
        case 5:
            return FixPosition();
        case 6:
            return Rewrite();
        default:
            RequireSettledForm(m_Expression.GetEncodedString());
        }
    }

    void InsertText()
    {
        const int pos = m_Reader.Int();
        const CString text = m_Reader.Text();
        if (IsDone(m_Expression.InsertString(text, pos), IsInside(pos)))
            Insert(text, pos, -1);
    }
    void InsertReference()
    {
        const int kind = m_Reader.Pick(3);
        // Behind the end of the text there is no place for a reference.
        const int pos = std::min(m_Reader.Int(), m_Expression.GetTextStr().GetLength());
        const CString name = m_Reader.Name();
        const bool isOneTooMany = m_Expression.NumVars() >= kMaxReferences;
        if (!IsDone(m_Expression.InsertVariable(name, pos, kind), IsInside(pos) || isOneTooMany))
            return;
        m_Kinds.push_back(kind);
        Insert(u' ' + name + u' ', pos, static_cast<int>(m_Kinds.size()) - 1);
    }
    void Insert(const CString& text, int pos, int reference)
    {
        Characters inserted;
        for (const char16_t character : text.View())
            inserted.push_back({character, reference});
        const Characters before = m_Model;
        const auto size = static_cast<int>(m_Model.size());
        m_Model.insert(m_Model.begin() + std::min(pos, size), inserted.begin(), inserted.end());
        const auto limit = static_cast<std::size_t>(m_Expression.GetExprTextLimit());
        bool isReferenceCut = false;
        for (; m_Model.size() > limit; m_Model.pop_back()) {
            Require(m_Model.back().character == u' ', "only blanks that the limit cuts", Before());
            isReferenceCut = isReferenceCut || m_Model.back().reference >= 0;
        }
        if (isReferenceCut)
            TakeBack(before);
    }
    // The model has no references that reach behind the text; the fuzzer of reference tables does.
    void TakeBack(const Characters& before)
    {
        Require(m_Expression.GetTextStr() == TextOf(m_Model), "a text cut to the limit", Before());
        m_Model = before;
        m_Expression.SetExpr(TextOf(m_Model), m_Before.words);
    }
    static CString TextOf(const Characters& characters)
    {
        WideText text;
        for (const Character& character : characters)
            text += character.character;
        return CString(text);
    }
    void Delete()
    {
        int start = m_Reader.Int();
        int end = m_Reader.Pick(3) == 0 ? m_Reader.Int() : start;
        int wholeVar = -1;
        const int answer = m_Expression.DeleteChars(start, end, &wholeVar);
        end = std::min(end, m_Expression.GetExprTextLimit());
        start = std::min(start, end);
        if (!IsDone(answer, IsInside(start) || IsInside(end)))
            return Require(wholeVar == 0, "no reference taken by a refusal", Before());
        const auto size = static_cast<int>(m_Model.size());
        const bool isWhole = start == end && start < size && BeginsReference(start);
        Require(wholeVar == (isWhole ? 1 : 0), "a reference taken as a whole", Before());
        if (start == end)
            end = start + 1;
        while (isWhole && IsInside(end))
            ++end;
        if (start < size)
            m_Model.erase(m_Model.begin() + start, m_Model.begin() + std::min(end, size));
    }
    void FixPosition()
    {
        const int pos = m_Reader.Int();
        const int fixed =
            m_Reader.Pick(2) == 0
                ? m_Expression.FixPos(pos, m_Reader.Int())
                : m_Expression.FixPos(pos, static_cast<FMLA_DIRECTION>(m_Reader.Pick(3)));
        const int limit = m_Expression.GetExprTextLimit();
        Require(pos <= 0 || pos > limit || !IsInside(fixed), "a place for the cursor",
                Before(fixed));
        Require(fixed == pos || pos < 0 || pos > limit || IsInside(pos), "a place that may stay",
                Before(pos));
        Require(m_Expression.InVar(pos, nullptr) == (pos <= limit && IsInside(pos) ? 1 : 0),
                "a place inside a reference", Before(pos));
    }
    // Both go through the stored form, so a literal that looks like a reference becomes one.
    void Rewrite()
    {
        const bool isRemoval = m_Reader.Pick(2) == 0;
        const CString name = m_Reader.Name();
        const bool wasThere = Has(name);
        const CString newName = isRemoval ? CString() : m_Reader.Name();
        const int answer = isRemoval ? m_Expression.RemoveFormulaFromExpression(name)
                                     : m_Expression.ChangeFormulaInExpression(name, newName);
        Require((answer != 0) == wasThere, "an answer that tells of the formula", Before());
        if (answer == 0)
            return;
        Require(isRemoval || newName == name || !Has(name) || m_Before.text.Find(u"F(") >= 0,
                "no reference to the former name", BeforeAndNow());
        TakeAsModel();
    }

    // A refusal must have changed nothing, and there must be one where the place is not free.
    bool IsDone(int answer, bool mustRefuse)
    {
        Require(answer == 0 || !mustRefuse, "a refusal", Before());
        Require(answer != 0 ||
                    (Snapshot(m_Expression) == m_Before && m_Expression.GetInvalidPos() == kMark),
                "a refusal that changes nothing", BeforeAndNow());
        Require(answer == 0 || m_Expression.GetInvalidPos() == -1, "no invalid position", Before());
        return answer != 0;
    }

    int ReferenceAt(int pos) const
    {
        const bool isInText = pos >= 0 && pos < static_cast<int>(m_Model.size());
        return isInText ? m_Model[static_cast<std::size_t>(pos)].reference : -1;
    }
    bool IsInside(int pos) const
    {
        return ReferenceAt(pos) >= 0 && pos > 0 && ReferenceAt(pos - 1) == ReferenceAt(pos);
    }
    bool BeginsReference(int pos) const { return ReferenceAt(pos) >= 0 && !IsInside(pos); }
    bool Has(const CString& name) const
    {
        for (int index = 0; index < m_Expression.NumVars(); ++index)
            if (m_Expression.VarType(index) == TOK_FORMULA && m_Expression.VarName(index) == name)
                return true;
        return false;
    }

    void TakeAsModel()
    {
        m_Model.clear();
        m_Kinds.clear();
        const CString text = m_Expression.GetTextStr();
        for (const char16_t character : text.View())
            m_Model.push_back({character, -1});
        RequireSoundTable(m_Expression);
        for (int index = 0; index < m_Expression.NumVars(); ++index) {
            m_Kinds.push_back(m_Expression.VarType(index));
            for (int pos = m_Expression.VarPos(index); pos < m_Expression.VarEndPos(index); ++pos)
                m_Model[static_cast<std::size_t>(pos)].reference = index;
        }
    }
    void RequireAsModel() const
    {
        const CString text = m_Expression.GetTextStr();
        bool isSame = text.View().size() == m_Model.size();
        int references = 0;
        for (int pos = 0; isSame && pos < text.GetLength(); ++pos) {
            isSame = m_Model[static_cast<std::size_t>(pos)].character == text[pos];
            if (isSame && BeginsReference(pos))
                isSame = IsEntryOfModel(references++, pos);
        }
        Require(isSame && references == m_Expression.NumVars(),
                "text and table as the model has them", BeforeAndNow());
    }
    bool IsEntryOfModel(int index, int pos) const
    {
        int end = pos + 1;
        while (IsInside(end))
            ++end;
        return m_Expression.VarPos(index) == pos && m_Expression.VarEndPos(index) == end &&
               m_Expression.VarType(index) == m_Kinds[static_cast<std::size_t>(ReferenceAt(pos))];
    }

    Reader m_Reader;
    CalcSetImpl m_Set;
    CFmlaExpression m_Expression;
    Characters m_Model;
    std::vector<int> m_Kinds; // by the number of the reference
    Snapshot m_Before;
};

} // namespace
} // namespace tovo::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    tovo::fuzz::BeginInput(bytes, count);
    tovo::fuzz::Editor(tovo::fuzz::Reader(bytes, count)).Run();
    return 0;
}
