#include <TovoFormula/CalcOpBase.h>

#include <utility>

#include <TovoPlatform/InvalidArgument.h>
#include <TovoPlatform/NumberText.h>

#include "../expression_core/Names.h"
#include "../expression_text/ReferenceTable.h"
#include "FormerContent.h"
#include "OperandKinds.h"

using namespace tovo::detail;

namespace {

constexpr short kShownDecimals = 3;
// In half-points.
constexpr int kDisplayFontSize = 14;
// A constant in a prefixed string is multiplied by this.
constexpr double kThousandths = 1000.0;

} // namespace

CalcOpBase::CalcOpBase() = default;

CalcOpBase::~CalcOpBase()
{
    delete m_Expression;
}

void CalcOpBase::InitData()
{
    m_OperandKind = OP_NOT_LOADED;
    m_ConstantText.Empty();
    m_ConstantValue = 0.0;
    m_NumericConstant = false;
    m_BooleanConstant = false;
    m_RefName.Empty();
    delete std::exchange(m_Expression, nullptr);
}

bool CalcOpBase::LoadVariable(CString& name)
{
    SetReference(OP_VARIABLE, name);
    return true;
}

bool CalcOpBase::LoadFormula(CString& name)
{
    SetReference(OP_FORMULA, name);
    return true;
}

bool CalcOpBase::LoadFormulaTable(CString& name)
{
    SetReference(OP_FORMTBL, name);
    return true;
}

bool CalcOpBase::CreateNewExpression()
{
    return TakeExpression(std::make_unique<CFmlaExprBase>());
}

void CalcOpBase::Clear()
{
    switch (static_cast<OPERAND_KIND>(m_OperandKind)) {
    case OP_CONSTANT:
        m_ConstantText.Empty();
        m_ConstantValue = 0.0;
        m_NumericConstant = false;
        m_BooleanConstant = false;
        break;
    case OP_VARIABLE:
    case OP_FORMULA:
    case OP_FORMTBL:
        m_RefName.Empty();
        break;
    case OP_EXPRESSION:
        delete std::exchange(m_Expression, nullptr);
        break;
    case OP_NOT_LOADED:
        break;
    }
    m_OperandKind = OP_NOT_LOADED;
}

bool CalcOpBase::IsTypeKnown()
{
    if (IsConstant())
        return m_NumericConstant || m_BooleanConstant;
    return !IsExpression();
}

bool CalcOpBase::IsBoolean()
{
    if (!IsTypeKnown())
        return false;
    return IsConstant() ? m_BooleanConstant : IsYesNoName(m_RefName.View());
}

bool CalcOpBase::IsNumeric()
{
    if (!IsTypeKnown())
        return false;
    return IsConstant() ? m_NumericConstant : !IsYesNoName(m_RefName.View());
}

CString CalcOpBase::GetTextDisplay()
{
    if (IsConstant())
        return m_ConstantText;
    return IsExpression() ? m_Expression->GetTextStr() : m_RefName;
}

CFmlaExprBase& CalcOpBase::GetFmlaExprBase()
{
    if (!m_Expression)
        AfxThrowInvalidArgException();
    return *m_Expression;
}

CalcOpBase& CalcOpBase::operator=(CalcOpBase& other)
{
    if (this == &other)
        return *this;
    FormerContent former(*this);
    Clear();
    m_ConstantText = other.m_ConstantText;
    m_ConstantValue = other.m_ConstantValue;
    m_NumericConstant = other.m_NumericConstant;
    m_BooleanConstant = other.m_BooleanConstant;
    m_RefName = other.m_RefName;
    if (!other.IsExpression())
        m_OperandKind = other.m_OperandKind;
    else if (CreateNewExpression())
        *m_Expression = *other.m_Expression;
    former.End();
    return *this;
}

void CalcOpBase::LoadNumericConstant(double value)
{
    CString text;
    ftoa(value, text, kShownDecimals);
    LoadConstant(value);
    m_ConstantText = std::move(text);
    m_NumericConstant = true;
}

void CalcOpBase::LoadBooleanConstant(double value)
{
    const bool isYes = value != 0.0;
    CString text = isYes ? u"1" : u"0";
    LoadConstant(isYes ? 1.0 : 0.0);
    m_ConstantText = std::move(text);
    m_BooleanConstant = true;
}

// False if no expression can be made.
template <typename Fill>
bool CalcOpBase::LoadNewExpression(Fill fill)
{
    FormerContent former(*this);
    const bool isMade = CreateNewExpression();
    if (isMade)
        fill(*m_Expression);
    former.End();
    return isMade;
}

bool CalcOpBase::LoadExpression(const CString& text)
{
    return LoadNewExpression([&](CFmlaExprBase& expression) { expression.SetExpr(text); });
}

bool CalcOpBase::LoadExpression(const CString& text, const CWordArray& pointers)
{
    return LoadNewExpression(
        [&](CFmlaExprBase& expression) { expression.SetExpr(text, pointers); });
}

bool CalcOpBase::LoadExpression(const CString& text, const CString& pointers)
{
    return LoadNewExpression(
        [&](CFmlaExprBase& expression) { expression.SetExpr(text, pointers); });
}

bool CalcOpBase::LoadEncodedExpression(const CString& encoded)
{
    return LoadNewExpression([&](CFmlaExprBase& expression) {
        expression.SetFromEncodedString(encoded);
        if (expression.IsSingleVarElement())
            LoadReference(expression.VarType(0), expression.VarName(0));
    });
}

bool CalcOpBase::LoadPrefixedString(const CString& text)
{
    FormerContent former(*this);
    Clear();
    const int kind = text.GetLength() > 1 ? KindOfLetter(text[0]) : kNoKind;
    const bool isLoaded = kind == kNoKind || LoadReference(kind, text.Mid(1));
    if (kind == kNoKind)
        LoadConstant(tovo::ParseDouble(text) / kThousandths);
    former.End();
    return isLoaded;
}

CString CalcOpBase::GetPrefixedString()
{
    if (IsReference())
        return kReferenceKinds[ReferenceKindOf(m_OperandKind)].letter + GetTextDisplay();
    return IsConstant() ? m_ConstantText : CString();
}

CString CalcOpBase::GetEncodedString()
{
    if (IsReference())
        return CFmlaExprBase::EncodeVariable(GetTextDisplay(), ReferenceKindOf(m_OperandKind));
    if (IsExpression())
        return m_Expression->GetEncodedString();
    return IsConstant() ? m_ConstantText : CString();
}

CString CalcOpBase::GetRTFDisplay()
{
    if (!IsLoaded())
        return CString();
    if (IsExpression())
        return m_Expression->GetRTFString(CString(), kDisplayFontSize);
    CFmlaExprBase shown;
    if (IsConstant())
        shown.SetExpr(m_ConstantText);
    else // a name that is too long for a text leaves it empty
        static_cast<void>(
            shown.InsertVariable(GetTextDisplay(), 0, ReferenceKindOf(m_OperandKind)));
    return shown.GetRTFString(CString(), kDisplayFontSize);
}

void CalcOpBase::SetReference(OPERAND_KIND kind, const CString& name)
{
    // The name may be this operand's own, which clearing would empty.
    CString kept = name;
    Clear();
    m_OperandKind = kind;
    m_RefName = std::move(kept);
}

bool CalcOpBase::TakeExpression(std::unique_ptr<CFmlaExprBase> expression)
{
    Clear();
    m_RefName.Empty();
    m_OperandKind = OP_EXPRESSION;
    m_Expression = expression.release();
    return true;
}

bool CalcOpBase::LoadReference(int kind, const CString& name)
{
    CString loaded = name;
    switch (OperandKindOf(kind)) {
    case OP_FORMULA:
        return LoadFormula(loaded);
    case OP_FORMTBL:
        return LoadFormulaTable(loaded);
    default:
        return LoadVariable(loaded);
    }
}

void CalcOpBase::LoadConstant(double value)
{
    Clear();
    m_RefName.Empty();
    m_OperandKind = OP_CONSTANT;
    m_ConstantValue = value;
}
