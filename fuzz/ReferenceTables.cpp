#include <memory>
#include <string>

#include <expression_text/Texts.h>

#include "Job.h"
#include "Oracles.h"
#include "Reader.h"

// Reference tables as a hostile host hands them in: any words beside any text. They may be out of
// order, overlap, reach behind the text or be empty; nothing may lead outside the text.

namespace tovo::fuzz {
namespace {

constexpr int kMostWords = 100;
constexpr int kMostActions = 30;
constexpr int kLongestWhole = 5000;
constexpr int kMostNested = 8; // of formulas and tables, which are worked on at each place

class Host {
public:
    explicit Host(Reader reader) : m_Reader(reader), m_Expression(m_Job.Set())
    {
        SpeakLanguage(m_Reader.Pick(kLanguages));
        for (int formula = 0; formula < Job::kFormulas; ++formula)
            m_Job.Formula(formula).SetFromEncodedString(formula == 2 ? u"V(b?)" : u"V(x)*2");
        Load();
    }

    void Run()
    {
        for (int action = 0; action < kMostActions && !m_Reader.AtEnd(); ++action) {
            Act();
            if (IsThorough())
                Look();
        }
        Look();
    }

private:
    void Load()
    {
        const CString text = m_Reader.Text().Left(kLongestWhole);
        CWordArray words;
        for (int count = m_Reader.Pick(36); count > 0 && words.GetSize() < kMostWords; --count)
            words.Add(static_cast<WORD>(m_Reader.Int()));
        m_Expression.SetExpr(text, words);
        if (CountNested(m_Expression) > kMostNested)
            m_Expression.SetExpr(text);
    }

    void Act()
    {
        unsigned int message = MSG_NONE;
        int wholeVar = 0;
        CScannedVariables list;
        switch (m_Reader.Pick(18)) {
        case 0:
            return Load();
        case 1:
            m_Expression.IsValid(message, m_Reader.Name(), m_Reader.Pick(2));
            break;
        case 2:
            m_Expression.Calculate(m_Reader.Pick(2) == 0 ? nullptr : &list);
            break;
        case 3:
            m_Expression.GetVariables(list, m_Reader.Pick(2), 1);
            break;
        case 4: {
            const int pos = m_Reader.Int();
            m_Expression.InsertString(m_Reader.Text(), pos);
            break;
        }
        case 5: {
            const int start = m_Reader.Int();
            m_Expression.DeleteChars(start, m_Reader.Int(), &wholeVar);
            break;
        }
        case 6: {
            const int kind = m_Reader.Pick(5) - 1;
            const int pos = m_Reader.Int();
            m_Expression.InsertVariable(m_Reader.Name(), pos, kind);
            break;
        }
        case 7: {
            const int pos = m_Reader.Int();
            const int length = m_Reader.Int();
            m_Expression.InsVarPtrs(pos, length, m_Reader.Int());
            break;
        }
        case 8:
            try {
                m_Expression.DelVarPtrs(m_Reader.Int());
            } catch (const CInvalidArgException&) {
                // What is no index is refused so.
            }
            break;
        case 9:
            // What a check has marked is left to whoever translates.
            m_Expression.ClearInvalidPos();
            m_Expression.TranslateText(m_Reader.Pick(2) == 0 ? TL_ENGLISH : TL_LOCAL);
            break;
        case 10: {
            const CString oldName = m_Reader.Name();
            m_Expression.ChangeFormulaInExpression(oldName, m_Reader.Name());
            break;
        }
        case 11:
            m_Expression.RemoveFormulaFromExpression(m_Reader.Name());
            break;
        case 12:
            m_Expression.SetExprTextLimit(m_Reader.Int());
            break;
        case 13:
            m_Expression.SetExpr(m_Reader.Text().Left(kLongestWhole), m_Expression.GetPtrStr());
            break;
        case 14:
            m_Expression.NestedFormulasOK();
            break;
        case 15:
            try {
                Scan(m_Reader.Int());
            } catch (const CInvalidArgException&) {
                // So is a start before the text, and going on from there.
            }
            break;
        case 16:
            AskFor(m_Reader.Int());
            break;
        default:
            Copy();
        }
    }

    // Each token lies in the text, behind the one before.
    void Scan(int start)
    {
        const TEXT_LANGUAGE language = m_Reader.Pick(2) == 0 ? TL_LOCAL : TL_ENGLISH;
        const int length = m_Expression.GetTextStr().GetLength();
        CString token;
        int code = -1;
        int pos = -1;
        int end = 0;
        const bool goesOn = m_Reader.Pick(3) == 0;
        int isFound = goesOn ? m_Expression.FindNextToken(token, code, pos, language)
                             : m_Expression.FindFirstToken(token, code, pos, start, language);
        while (isFound) {
            const bool isInText = pos >= end && pos + token.GetLength() <= length;
            if (!isInText || token.IsEmpty() || code < 0 || code >= kTokenCount)
                Fail("a token in the text",
                     test::Whole(m_Expression) + token.ToUtf8() + '@' + std::to_string(pos));
            end = pos + token.GetLength();
            isFound = m_Expression.FindNextToken(token, code, pos, language);
        }
    }
    void AskFor(int pos)
    {
        int index = -1;
        const bool isFound = m_Expression.InVar(pos, &index) ||
                             m_Expression.OnVarLeftEdge(pos, &index) ||
                             m_Expression.OnVarRightEdge(pos, &index);
        Require(!isFound || (index >= 0 && index < m_Expression.NumVars()),
                "an index of the table");
        m_Expression.FixPos(pos, m_Reader.Int());
        m_Expression.FixPos(pos, FD_NEAREST);
    }
    void Copy()
    {
        const std::unique_ptr<CFmlaExprBase> clone(m_Expression.Clone());
        CFmlaExpression copy(m_Expression);
        copy = m_Expression;
        Require(test::Whole(*clone) == test::Whole(m_Expression) &&
                    test::Whole(copy) == test::Whole(m_Expression),
                "a copy as the original");
        CFmlaExpression other(m_Job.Set());
        other.SetExpr(m_Expression);
    }

    void Look()
    {
        Record record;
        Show(record, m_Expression);
        const int length = m_Expression.GetTextStr().GetLength();
        for (int index = -1; index <= m_Expression.NumVars(); ++index)
            Require(m_Expression.VarName(index).GetLength() <= length &&
                        m_Expression.VarText(index).GetLength() <= length,
                    "a name within the text");
        if (!IsThorough())
            return;
        m_Expression.GetRTFString(u"Arial", 20);
        RequireWholeDocument(m_Expression);
        // What is stored of it is sound.
        RequireSettledForm(m_Expression.GetEncodedString());
    }

    Reader m_Reader;
    Job m_Job{true, false};
    CFmlaExpression m_Expression;
};

} // namespace
} // namespace tovo::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    tovo::fuzz::BeginInput(bytes, count);
    tovo::fuzz::Host(tovo::fuzz::Reader(bytes, count)).Run();
    return 0;
}
