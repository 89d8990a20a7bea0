#ifndef TOVOFORMULA_SRC_FORMERCONTENT_H
#define TOVOFORMULA_SRC_FORMERCONTENT_H

#include <memory>
#include <utility>

#include <TovoFormula/CalcOpBase.h>

#include "../expression_core/RestoreOnThrow.h"

// What an operand held, while something else is loaded into it: for so long it holds nothing. If
// that throws, the operand holds it again.
class CalcOpBase::FormerContent {
public:
    explicit FormerContent(CalcOpBase& operand)
        : m_Operand(operand),
          m_Fields(operand.m_OperandKind, operand.m_ConstantText, operand.m_ConstantValue,
                   operand.m_NumericConstant, operand.m_BooleanConstant, operand.m_RefName),
          m_Expression(std::exchange(operand.m_Expression, nullptr))
    {
        if (operand.IsExpression())
            operand.m_OperandKind = OP_NOT_LOADED;
    }
    ~FormerContent()
    {
        if (!m_HasEnded)
            delete std::exchange(m_Operand.m_Expression, m_Expression.release());
    }

    FormerContent(const FormerContent&) = delete;
    FormerContent& operator=(const FormerContent&) = delete;

    void End()
    {
        m_Fields.End();
        m_HasEnded = true;
    }

private:
    CalcOpBase& m_Operand;
    tovo::detail::RestoreOnThrow<int, CString, double, bool, bool, CString> m_Fields;
    std::unique_ptr<CFmlaExprBase> m_Expression;
    bool m_HasEnded = false;
};

#endif
