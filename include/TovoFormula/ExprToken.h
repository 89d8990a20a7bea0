#ifndef TOVOFORMULA_EXPRTOKEN_H
#define TOVOFORMULA_EXPRTOKEN_H

#include <cstddef>

#include <TovoFormula/Export.h>
#include <TovoFormula/TokenCodes.h>
#include <TovoPlatform/Object.h>
#include <TovoPlatform/WideString.h>

class CScannedVariables;
struct ICalculationSet;
struct IVarObj;

namespace tovo::detail {
struct MathResult;
} // namespace tovo::detail

// One element of an expression: what it is, from the token catalogue, and its present value.
//
// Owned by the tree node that holds it. Does not own: the calculation set, which must outlive it.
// Belongs to the thread of its set. A position counts 16-bit characters of the expression's text. A
// yes/no value is 1.0 or 0.0. Operations that answer int give 1 or 0 unless they say otherwise.
class TOVO_FORMULA_API CExprToken : public CObject {
public:
    // The columns of the catalogue. A code outside 0 to 54 is answered from the row of TOK_ILLEGAL.
    static int GetTokCodeNameId(int code);
    static int GetTokCodeType(int code);
    static int GetTokCodePrecedence(int code);
    static int GetTokCodeMinArgs(int code);
    static int GetTokCodeMaxArgs(int code);
    static int GetTokCodeReturnType(int code);
    static int GetTokCodeArgType(int code);

    // A code outside 0 to 54 makes a TOK_ILLEGAL that keeps the text. The text of a TOK_NUMBER is
    // read as a number in the user's spelling or the English one; the last character of a
    // reference's text decides its kind, "?" meaning yes/no. Names are not looked up here.
    CExprToken(ICalculationSet& calcSet, int code, CString text, int pos);
    ~CExprToken() override;

    // Tokens come and go by the dozen, so the library keeps some of their memory for the next ones.
    static void* operator new(std::size_t size);
    static void operator delete(void* memory, std::size_t size) noexcept;

    CExprToken(const CExprToken&) = delete;
    CExprToken& operator=(const CExprToken&) = delete;

    int GetCode() const { return m_Code; }
    CString GetText() const { return m_Text; }
    int GetPrecedence() const { return m_Precedence; }
    int GetReturnType() const { return m_ReturnType; }
    int GetMinArgs() const { return m_MinArgs; }
    int GetMaxArgs() const { return m_MaxArgs; }
    double GetValue() const { return m_Value; }
    // The message id of the last calculation; 0 if it had none.
    unsigned int GetCalculationError() const { return m_CalcError; }
    // Loaded: the tree has finished checking the token. Calculated: its value is valid.
    int IsLoaded() const { return m_Loaded; }
    int IsCalculated() const { return m_Calculated; }

    void SetValue(double value) { m_Value = value; }
    void SetLoaded(int loaded) { m_Loaded = loaded; }
    void SetCalculated(int calculated) { m_Calculated = calculated; }

    int IsConstant() const { return m_Type == TT_CONSTANT; }
    int IsVarValue() const { return m_Type == TT_VARVALUE; }
    int IsOperator() const { return m_Type == TT_OPERATOR; }
    int IsFunction() const { return m_Type == TT_FUNCTION; }
    int IsPunctuation() const { return m_Type == TT_PUNCTUATION; }
    int IsIllegal() const { return m_Type == TT_ILLEGAL; }
    int IsOperand() const { return IsConstant() || IsVarValue(); }
    int IsVariable() const { return m_Code == TOK_VARIABLE; }
    int IsFormula() const { return m_Code == TOK_FORMULA; }
    int IsFormtbl() const { return m_Code == TOK_FORMTBL; }
    int IsComma() const { return m_Code == TOK_COMMA; }
    int IsLeftParen() const { return m_Code == TOK_LPAREN; }
    int IsRightParen() const { return m_Code == TOK_RPAREN; }
    // A minus whose place has not settled it yet counts as unary.
    int IsUnaryOperator() const { return IsOperator() && m_MinArgs == 1; }
    int IsBinaryOperator() const { return IsOperator() && m_MinArgs == 2; }
    int IsNumeric() const { return m_ReturnType == RT_NUMERIC; }
    int IsBoolean() const { return m_ReturnType == RT_BOOLEAN; }

    // Settles a range of argument counts that holds the count to just that count, which makes a
    // minus unary or binary; says whether the token now takes at least that many.
    [[nodiscard]] int SetNumArgs(int count);
    // Each settles a kind that is RT_ANY; a settled kind never changes. They say whether the kind
    // is now the one given.
    [[nodiscard]] int SetArgType(int kind) { return Settle(m_ArgType, kind); }
    int SetReturnType(int kind) { return Settle(m_ReturnType, kind); }
    // The kind that the argument must have, counted from 0.
    int GetTokArgType(int argument) const
    {
        return m_Code == TOK_IF && argument == 0 ? static_cast<int>(RT_BOOLEAN) : m_ArgType;
    }

    // The text without one blank at its start and one at its end.
    CString GetName() const;
    // The message for a token that stands where it may not.
    unsigned int UnexpectedTokenMsg() const;

    // Gives the token its value, from its arguments or from outside. Answers 0 on failure, with
    // GetCalculationError telling why and the set's tracker naming this token. A reference given 0
    // for nested fails without being looked up. The list is filled by references and job values;
    // null outside a scan. Requires: args holds numArgs values.
    [[nodiscard]] int Calculate(double* args, int numArgs, int nested, CScannedVariables* list);
    // Whether errno holds a domain or a range error. If so, the token's message and the set's text
    // of the error are set by it.
    bool BadErrno();

protected:
    ICalculationSet& CalcSet() const { return m_CalcSet; }

private:
    static int Settle(int& kind, int wanted)
    {
        if (kind == RT_ANY)
            kind = wanted;
        return kind == wanted ? 1 : 0;
    }
    int CalculateAfresh(double* args, int numArgs, int nested, CScannedVariables* list);
    int ReadFromOutside(int nested, CScannedVariables* list);
    bool Reach(IVarObj& variable, const CString& name, CScannedVariables* list);
    template <typename Object>
    bool Reach(Object& object, const CString& name, CScannedVariables* list);

    // The ways in which a calculation ends.
    int Conclude(const tovo::detail::MathResult& result);
    int Give(double value);
    int HardFailure(unsigned int message);
    int DomainFailure(unsigned int message);

protected:
    int m_Code;
    CString m_Text; // empty for TOK_GROUP
    int m_Pos;
    int m_NameId;
    int m_Type;
    int m_ReturnType;
    int m_Precedence;
    int m_MinArgs;
    int m_MaxArgs;
    int m_ArgType;
    double m_Value;
    int m_Loaded;
    int m_Calculated;
    unsigned int m_CalcError;
    ICalculationSet& m_CalcSet;
};

#endif
