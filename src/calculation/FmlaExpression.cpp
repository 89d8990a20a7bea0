#include <TovoFormula/FmlaExpression.h>

#include <exception>
#include <memory>
#include <optional>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>

#include "../expression_core/LocalNumbers.h"
#include "../expression_core/Names.h"
#include "../expression_core/Pass.h"
#include "../expression_core/Sequence.h"
#include "../expression_text/TokenScanner.h"
#include "UnderWay.h"

using namespace tovo::detail;

thread_local CStringList CFmlaExpression::m_NestedFmlaNames;

CFmlaExpression::CFmlaExpression(ICalculationSet& calcSet) : m_Tree(calcSet), m_CalcSet(&calcSet)
{}

CFmlaExpression::CFmlaExpression(const CFmlaExpression& other)
    : CFmlaExprBase(), m_Tree(*other.m_CalcSet), m_CalcSet(other.m_CalcSet)
{
    SetExpr(other);
    m_InvalidPos = other.m_InvalidPos;
    m_ScanPos = other.m_ScanPos;
}

CFmlaExpression::~CFmlaExpression() = default;

CFmlaExprBase* CFmlaExpression::Clone()
{
    auto copy = std::make_unique<CFmlaExpression>(CalcSet());
    *copy = *this;
    return copy.release();
}

void CFmlaExpression::ClearExpr()
{
    CFmlaExprBase::ClearExpr();
    ++m_TreeState;
    m_Tree.Clear();
}

void CFmlaExpression::TrackError(unsigned int message)
{
    Fail(message);
}

CFmlaExpression& CFmlaExpression::operator=(CFmlaExpression& other)
{
    if (this == &other)
        return *this;
    CFmlaExprBase::operator=(other);
    ++m_TreeState;
    m_Tree.Clear();
    return *this;
}

void CFmlaExpression::SetExpr(const CFmlaExpression& source)
{
    SetExpr(source.m_ExprText, source.m_VarPtrs);
    const int length = m_ExprText.GetLength();
    const bool lacksBlank = NumVars() > 0 && length == VarEndPos(NumVars() - 1) - 1;
    if (lacksBlank && length < m_ExprTextLimit)
        m_ExprText += u' ';
}

int CFmlaExpression::LoadExpressionTree(int nested)
{
    const Pass pass;
    // A tree that is being built or walked further up must not be torn down.
    const UnderWay underWay(m_UnderWay);
    if (!underWay.IsFirst())
        return Fail(MSG_FORMULA_INSIDE_ITSELF);
    if (underWay.IsTooDeep())
        return Fail(MSG_GENERAL_FAILURE);

    ++m_TreeState;
    m_MessageNum = MSG_NONE;
    m_InvalidPos = 0;
    if (!nested || !Pass::IsRemembering()) {
        m_Tree.Clear();
        return BuildTree(nested);
    }
    // Many a tree is built once and never again, so only the second building is recorded.
    const bool isSame = IsBuiltFromPresent();
    if (isSame && m_Tree.IsRecorded())
        return CalculateAgain(nested);
    m_Tree.Clear();
    if (isSame)
        m_Tree.Record();
    const int isBuilt = BuildTree(nested);
    if (!isSame)
        m_Source = {m_ExprText, m_VarPtrs, TokenNamesState()};
    return isBuilt;
}

int CFmlaExpression::IsValid(unsigned int& message, CString name, int nested)
{
    return Validate(message, name, nested);
}

int CFmlaExpression::Validate(unsigned int& message, const CString& name, int nested)
{
    std::optional<NestedNameGuard> entry;
    if (nested && !name.IsEmpty()) {
        entry.emplace(m_NestedFmlaNames, name);
        if (!entry->HasEntered()) {
            message = MSG_FORMULA_INSIDE_ITSELF;
            return Fail(message);
        }
    }
    if (LoadNamed(name, nested))
        return 1;
    message = static_cast<unsigned int>(m_MessageNum);
    return 0;
}

int CFmlaExpression::IsValid()
{
    unsigned int message = MSG_NONE;
    return IsValid(message, CString(), 0);
}

int CFmlaExpression::Calculate(CScannedVariables* list)
{
    const Pass pass;
    const UnderWay underWay(m_UnderWay);
    if (!underWay.IsFirst())
        return Fail(MSG_FORMULA_INSIDE_ITSELF);
    ++m_TreeState;
    if (m_Tree.Calculate(list))
        return 1;
    m_MessageNum = static_cast<int>(m_Tree.GetMsg());
    return 0;
}

void CFmlaExpression::GetVariables(CScannedVariables& list, int all, int clear)
{
    const Pass pass;
    if (clear)
        CalcSet().ClearScannedFlags(1);
    if (all)
        ScanStatically(list, all);
    else
        Calculate(&list);
}

int CFmlaExpression::Fail(unsigned int message)
{
    m_MessageNum = static_cast<int>(message);
    CalcSet().ErrorTracker().SetError(message, this);
    return 0;
}

bool CFmlaExpression::IsBuiltFromPresent() const
{
    return m_Source.names == TokenNamesState() && m_Source.text == m_ExprText &&
           m_Source.references == m_VarPtrs;
}

// Requires: an empty tree.
int CFmlaExpression::BuildTree(int nested)
{
    m_ScanPos = 0;
    const std::vector<Reference> references = ReferencesOf(m_VarPtrs);
    TokenScanner scanner(m_ExprText, references, SpellingOf(TL_LOCAL), m_ScanPos);
    CString token;
    int code = TOK_ILLEGAL;
    int pos = 0;
    if (!DeliverToken(scanner, token, code, pos))
        return m_MessageNum ? 0 : Fail(MSG_FORMULA_TEXT_REQUIRED);

    int lastPos = pos;
    do {
        lastPos = pos;
        if (!InsertScanned(code, token, pos, nested))
            return 0;
    } while (DeliverToken(scanner, token, code, pos));
    return CloseTree(lastPos, pos);
}

// Comes to what building the recorded tree from the same text would come to, now.
int CFmlaExpression::CalculateAgain(int nested)
{
    Sequence& sequence = m_Tree.StartAgain(nested);
    SequenceCut cut;
    try {
        if (RunAgain(sequence, cut)) {
            m_Tree.ConcludeAgain();
            m_ScanPos = m_ExprText.GetLength();
            return 1;
        }
    } catch (...) {
        cut.thrown = std::current_exception();
    }
    return Reenact(nested, cut);
}

bool CFmlaExpression::RunAgain(Sequence& sequence, SequenceCut& cut)
{
    for (;;) {
        switch (sequence.Run()) {
        case Sequence::Stop::TextEnd:
            m_MessageNum = MSG_NONE;
            break;
        case Sequence::Stop::End:
            return true;
        case Sequence::Stop::Failure:
            return false;
        case Sequence::Stop::Nested:
            m_MessageNum = MSG_NONE;
            const bool isFormula = sequence.Token().IsFormula() != 0;
            if (!(isFormula ? CheckNested(sequence.Find<IFormulaObj>(), sequence.Name())
                            : CheckNested(sequence.Find<IFormulaTableObj>(), sequence.Name()))) {
                cut.message = m_MessageNum;
                return false;
            }
            m_MessageNum = MSG_NONE;
            cut.isReading = true;
            if (!sequence.ReadNested())
                return false;
            cut.isReading = false;
        }
    }
}

// Builds the tree as it is built up to the failure, or up to where an object of the host has thrown
// something, which goes on from there.
int CFmlaExpression::Reenact(int nested, const SequenceCut& cut)
{
    struct End {
        CExprTree& tree;
        ~End() { tree.EndReenacting(); }
    };
    m_MessageNum = MSG_NONE;
    m_Tree.m_Sequence->StartReenacting(m_Tree.TakeOut(), cut);
    const End end{m_Tree};
    return BuildTree(nested);
}

// Takes one token of the text into the tree, a reference after its check. The position at fault is
// that of the token, until it is taken.
int CFmlaExpression::InsertScanned(int code, const CString& token, int pos, int nested)
{
    m_InvalidPos = pos;
    if (code == TOK_ILLEGAL)
        return Fail(MSG_INVALID_ELEMENT);
    if (nested && !PassesCheck(code, token))
        return 0;
    if (!m_Tree.InsertToken(code, token, pos, nested)) {
        m_MessageNum = static_cast<int>(m_Tree.GetMsg());
        return 0;
    }
    m_MessageNum = MSG_NONE;
    m_InvalidPos = 0;
    return 1;
}

bool CFmlaExpression::PassesCheck(int code, const CString& token)
{
    if (!m_Tree.IsReenacted())
        return CheckNestedReference(code, token) != 0;
    const bool isNested = code == TOK_FORMULA || code == TOK_FORMTBL;
    const std::optional<int> message = isNested ? m_Tree.m_Sequence->ReenactCheck() : std::nullopt;
    m_MessageNum = message.value_or(m_MessageNum);
    return !message;
}

// What is left to do when the scanner delivers no more: endPos is where it stopped, lastPos where
// the last token stands.
int CFmlaExpression::CloseTree(int lastPos, int endPos)
{
    if (m_MessageNum) {
        m_InvalidPos = endPos;
        return 0;
    }
    if (m_Tree.EndOfExpression())
        return 1;
    m_MessageNum = static_cast<int>(m_Tree.GetMsg());
    m_InvalidPos = lastPos;
    return 0;
}

int CFmlaExpression::LoadNamed(const CString& name, int nested)
{
    const int isLoaded = LoadExpressionTree(nested);
    if (name.IsEmpty())
        return isLoaded;
    if (!isLoaded) {
        CalcSet().ErrorTracker().AddObj(this, u"Formula: " + name);
        return 0;
    }
    const bool isYesNo = m_Tree.IsBoolean() != 0;
    return isYesNo == IsYesNoName(name.View()) ? 1 : Fail(MSG_WRONG_RESULT_TYPE);
}
