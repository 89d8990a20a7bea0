#include <TovoFormula/CalculationOperand.h>

#include <TovoFormula/FmlaExpression.h>
#include <TovoFormula/MessageIds.h>
#include <TovoPlatform/InvalidArgument.h>

#include "../expression_core/Pass.h"
#include "../expression_core/ReferenceKinds.h"
#include "../expression_core/ScanRecord.h"
#include "FormerContent.h"
#include "OperandKinds.h"

using namespace tovo::detail;

namespace {

template <typename Object>
Object& Required(Object* object)
{
    if (!object)
        AfxThrowInvalidArgException();
    return *object;
}

bool IsNumericObject(IFormulaTableObj& table)
{
    return !table.IsBoolean();
}

template <typename Object>
bool IsNumericObject(Object& object)
{
    return object.IsNumeric();
}

} // namespace

CalculationOperand::CalculationOperand(ICalculationSet& calcSet) : m_CalcSet(&calcSet)
{}

CalculationOperand::~CalculationOperand() = default;

void CalculationOperand::InitData()
{
    CalcOpBase::InitData();
    m_MsgId = MSG_NONE;
    m_VarObj = nullptr;
    m_FmlaObj = nullptr;
    m_FormtblObj = nullptr;
}

bool CalculationOperand::LoadVariable(CString& name)
{
    IVarObj* const variable = CalcSet().GetVarObj(name, 1, 0);
    SetReference(OP_VARIABLE, name);
    m_VarObj = variable;
    if (!m_VarObj)
        m_OperandKind = OP_NOT_LOADED;
    return m_VarObj != nullptr;
}

bool CalculationOperand::LoadFormula(CString& name)
{
    IFormulaObj* const formula = CalcSet().HasDatabase() ? CalcSet().GetFormulaObj(name) : nullptr;
    SetReference(OP_FORMULA, name);
    m_FmlaObj = formula;
    return m_FmlaObj || RefuseLoad(MSG_OPERAND_FORMULA_NOT_FOUND);
}

bool CalculationOperand::LoadFormulaTable(CString& name)
{
    IFormulaTableObj* const table =
        CalcSet().HasDatabase() ? CalcSet().GetFormulaTableObj(name) : nullptr;
    SetReference(OP_FORMTBL, name);
    m_FormtblObj = table;
    return m_FormtblObj || RefuseLoad(MSG_OPERAND_FORMTBL_NOT_FOUND);
}

bool CalculationOperand::CreateNewExpression()
{
    return TakeExpression(std::make_unique<CFmlaExpression>(CalcSet()));
}

void CalculationOperand::Clear()
{
    CalcOpBase::Clear();
    m_VarObj = nullptr;
    m_FmlaObj = nullptr;
    m_FormtblObj = nullptr;
}

bool CalculationOperand::IsTypeKnown()
{
    return IsExpression() ? GetFmlaExpression().IsLoaded() != 0 : CalcOpBase::IsTypeKnown();
}

bool CalculationOperand::IsBoolean()
{
    if (!IsTypeKnown())
        return false;
    if (IsExpression())
        return GetFmlaExpression().IsBoolean() != 0;
    if (!IsReference())
        return CalcOpBase::IsBoolean();
    return AskObject(false, [](auto& object) { return object.IsBoolean(); });
}

bool CalculationOperand::IsNumeric()
{
    if (!IsTypeKnown())
        return false;
    if (IsExpression())
        return GetFmlaExpression().IsNumeric() != 0;
    if (!IsReference())
        return CalcOpBase::IsNumeric();
    return AskObject(false, [](auto& object) { return IsNumericObject(object); });
}

CString CalculationOperand::GetTextDisplay()
{
    if (!IsReference())
        return CalcOpBase::GetTextDisplay();
    return AskObject(m_RefName, [](auto& object) { return CString(object.GetName()); });
}

CFmlaExprBase& CalculationOperand::GetFmlaExprBase()
{
    return GetFmlaExpression();
}

CalculationOperand& CalculationOperand::operator=(CalculationOperand& other)
{
    if (this == &other)
        return *this;
    CalcOpBase::operator=(other);
    m_VarObj = other.m_VarObj;
    m_FmlaObj = other.m_FmlaObj;
    m_FormtblObj = other.m_FormtblObj;
    return *this;
}

CalculationOperand& CalculationOperand::operator=(CalcOpBase& other)
{
    if (this == &other)
        return *this;
    FormerContent former(*this);
    CalcOpBase::operator=(other);
    CString name = m_RefName;
    if (!name.IsEmpty()) {
        if (other.IsVariable())
            static_cast<void>(LoadVariable(name));
        else if (other.IsFormula())
            static_cast<void>(LoadFormula(name));
        else if (other.IsFormulaTable())
            static_cast<void>(LoadFormulaTable(name));
    }
    former.End();
    return *this;
}

IVarObj& CalculationOperand::GetVarObj()
{
    // A set may make up a variable for any name that it is asked for.
    return Required(IsVariable() ? CalcSet().GetVarObj(m_RefName, 1, 0) : nullptr);
}

IFormulaObj& CalculationOperand::GetFmlaObj()
{
    return Required(IsFormula() ? CalcSet().GetFormulaObj(m_RefName) : nullptr);
}

IFormulaTableObj& CalculationOperand::GetFormtblObj()
{
    return Required(IsFormulaTable() ? CalcSet().GetFormulaTableObj(m_RefName) : nullptr);
}

CFmlaExpression& CalculationOperand::GetFmlaExpression()
{
    // CreateNewExpression makes no other kind.
    return static_cast<CFmlaExpression&>(Required(IsExpression() ? m_Expression : nullptr));
}

int CalculationOperand::GetInvalidPos()
{
    return IsExpression() ? GetFmlaExpression().GetInvalidPos() : 0;
}

bool CalculationOperand::IsValid(bool nested)
{
    const Pass pass;
    if (IsExpression())
        return GetFmlaExpression().IsValid(m_MsgId, CString(), nested) != 0;
    if (IsFormula() || IsFormulaTable())
        return OnNested([&](auto& object) { return object.IsValid(m_MsgId, nested) != 0; });
    return IsLoaded();
}

bool CalculationOperand::Calculate()
{
    const Pass pass;
    if (IsConstant() || IsVariable())
        return true;
    if (!IsValid(true))
        return false;
    if (!IsExpression())
        return OnNested([&](auto& object) { return object.Calculate(m_MsgId, nullptr) != 0; });
    return GetFmlaExpression().Calculate(nullptr) || TakeMessageOfExpression();
}

bool CalculationOperand::GetVariables(CScannedVariables& list, bool all, bool clear)
{
    const Pass pass;
    if (IsVariable()) {
        IVarObj* const variable = CalcSet().GetVarObj(m_RefName, 1, 0);
        if (variable)
            RecordVariable(list, variable->GetName(), *variable);
        return variable != nullptr;
    }
    if (IsExpression()) {
        CFmlaExpression& expression = GetFmlaExpression();
        if (!expression.IsLoaded() && !IsValid(true))
            return TakeMessageOfExpression();
        expression.GetVariables(list, all, clear);
        return true;
    }
    if (!IsReference())
        return true;
    // Looked up again, since an object that is checked may take itself out.
    return OnNested([&](auto& object) { return object.IsValid(m_MsgId, 1) != 0; }) &&
           OnNested([&](auto& object) {
               object.GetVariables(list, all, clear);
               return true;
           });
}

bool CalculationOperand::GetCalculated()
{
    if (IsExpression())
        return GetFmlaExpression().IsCalculated() != 0;
    if (IsFormula() || IsFormulaTable())
        return OnNested([](auto& object) { return object.GetCalculated() != 0; });
    return IsLoaded();
}

double CalculationOperand::GetValue()
{
    if (IsConstant())
        return m_ConstantValue;
    if (!GetCalculated())
        return 0.0;
    if (IsExpression())
        return GetFmlaExpression().GetValue();
    return AskObject(0.0, [](auto& object) { return object.GetValue(); });
}

bool CalculationOperand::RefuseLoad(unsigned int message)
{
    m_OperandKind = OP_NOT_LOADED;
    m_MsgId = message;
    return false;
}

bool CalculationOperand::TakeMessageOfExpression()
{
    m_MsgId = static_cast<unsigned int>(GetFmlaExpression().GetMessageNum());
    return false;
}

// What the object says that bears the name now, or the answer for one that has left the set.
template <typename Answer, typename Visit>
Answer CalculationOperand::AskObject(Answer missing, Visit visit)
{
    return WithObject(CalcSet(), ReferenceKindOf(m_OperandKind), m_RefName,
                      [&](auto* object) { return object ? visit(*object) : missing; });
}

// The same for a formula or a table, which is a failure if it has left the set.
template <typename Visit>
bool CalculationOperand::OnNested(Visit visit)
{
    const int kind = ReferenceKindOf(m_OperandKind);
    return WithNested(CalcSet(), kind, m_RefName, [&](auto* object) {
        if (!object)
            m_MsgId = kReferenceKinds[kind].notFoundByOperand;
        return object && visit(*object);
    });
}
