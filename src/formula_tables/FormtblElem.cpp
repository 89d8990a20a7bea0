#include <TovoFormula/FormtblElem.h>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>
#include <TovoPlatform/NumberText.h>

#include "../expression_core/Names.h"
#include "../expression_core/Pass.h"
#include "../expression_core/ScanRecord.h"
#include "../expression_text/ReferenceTable.h"

using namespace tovo::detail;

namespace {

// The kinds of a combined string: the letters of the references, and none.
constexpr WCHAR kConstant = 0;
constexpr WCHAR kVariable = kReferenceKinds[TOK_VARIABLE].letter;
constexpr WCHAR kFormula = kReferenceKinds[TOK_FORMULA].letter;
constexpr WCHAR kFormtbl = kReferenceKinds[TOK_FORMTBL].letter;

// Constants are kept multiplied by this.
constexpr double kThousandths = 1000.0;
constexpr int kStoredDecimals = 6;
constexpr int kShownDecimals = 3;

// A reference that the set does not know has no value.
template <typename Object>
double ValueOf(Object* object)
{
    return object ? object->GetValue() : 0.0;
}

double ValueOfVariable(IVarObj* variable)
{
    return variable ? Pass::ValueOf(*variable) : 0.0;
}

template <typename Object>
int CalculateNested(Object* object, unsigned int& message, CScannedVariables* list)
{
    if (!object)
        return 0;
    const NestedCall call(*object);
    return object->Calculate(message, list);
}

template <typename Object>
void ScanNested(Object* object, CScannedVariables& list, int all, int clear)
{
    if (!object)
        return;
    const NestedCall call(*object);
    object->GetVariables(list, all, clear);
}

} // namespace

CFormtblElem::CFormtblElem(ICalculationSet& calcSet) : m_CalcSet(&calcSet)
{}

CFormtblElem::CFormtblElem(const CString& combined, ICalculationSet& calcSet) : m_CalcSet(&calcSet)
{
    init(combined);
}

CFormtblElem::CFormtblElem(const CFormtblElem& other) = default;

CFormtblElem::~CFormtblElem() = default;

CFormtblElem& CFormtblElem::operator=(const CFormtblElem& other)
{
    Pass::NoteChange();
    m_Valid = other.m_Valid;
    m_Type = other.m_Type;
    m_Name = other.m_Name;
    return *this;
}

void CFormtblElem::init(const CString& combined)
{
    if (combined.IsEmpty())
        return ClearAll();
    const bool hasKind = KindOfLetter(combined[0]) != kNoKind;
    SetType(hasKind ? combined[0] : kConstant);
    SetName(hasKind ? combined.Mid(1) : combined);
}

void CFormtblElem::SetFromCombinedString(const CString& combined)
{
    init(combined);
}

CString CFormtblElem::GetCombinedString() const
{
    if (m_Type != kConstant)
        return m_Type + m_Name;
    CString text;
    const double thousandths = tovo::ParseDouble(m_Name);
    if (thousandths != 0.0)
        ftoa(thousandths, text, kStoredDecimals);
    return text;
}

void CFormtblElem::SetVariable(const CString& name)
{
    init(kVariable + name);
}

void CFormtblElem::SetFormula(const CString& name)
{
    init(kFormula + name);
}

void CFormtblElem::SetFormtbl(const CString& name)
{
    init(kFormtbl + name);
}

void CFormtblElem::SetName(const CString& name)
{
    Pass::NoteChange();
    m_Name = name;
    m_Valid = 1;
}

void CFormtblElem::XSetName(const CString& text)
{
    if (m_Type != kConstant)
        return SetName(text);
    CString number = text;
    FormatNumString(number, 1, kStoredDecimals, 1);
    CleanIntlNumericString(number, 0);
    FloatToNumString(tovo::ParseDouble(number) * kThousandths, number, 1, kStoredDecimals, 0);
    CleanNumericString(number, 0);
    SetName(number);
}

CString CFormtblElem::XGetName() const
{
    if (m_Type != kConstant)
        return m_Name;
    CString number = m_Name;
    FormatNumString(number, 1, kShownDecimals, 1);
    CleanNumericString(number, 0);
    FloatToNumString(tovo::ParseDouble(number) / kThousandths, number, 1, kShownDecimals, 0);
    return number;
}

void CFormtblElem::SetType(WCHAR type)
{
    Pass::NoteChange();
    m_Type = type;
}

void CFormtblElem::ClearAll()
{
    Pass::NoteChange();
    m_Type = kConstant;
    m_Name.Empty();
    m_Valid = 0;
}

int CFormtblElem::isFormula() const
{
    return m_Type == kFormula ? 1 : 0;
}

int CFormtblElem::isVariable() const
{
    return m_Type == kVariable ? 1 : 0;
}

int CFormtblElem::isFormtbl() const
{
    return m_Type == kFormtbl ? 1 : 0;
}

int CFormtblElem::isYesNo() const
{
    return IsYesNoName(m_Name.View()) ? 1 : 0;
}

double CFormtblElem::value() const
{
    switch (m_Type) {
    case kConstant:
        return tovo::ParseDouble(m_Name) / kThousandths;
    case kVariable:
        return ValueOfVariable(CalcSet().GetVarObj(m_Name, 1, 0));
    case kFormula:
        return ValueOf(CalcSet().GetFormulaObj(m_Name));
    case kFormtbl:
        return ValueOf(CalcSet().GetFormulaTableObj(m_Name));
    default:
        return 0.0;
    }
}

int CFormtblElem::Calculate(unsigned int& message, CScannedVariables* list)
{
    switch (m_Type) {
    case kVariable: {
        IVarObj* const variable = CalcSet().GetVarObj(m_Name, 1, 0);
        if (variable && list)
            RecordVariable(*list, m_Name, *variable);
        return variable ? 1 : 0;
    }
    case kFormula:
        return CalculateNested(CalcSet().GetFormulaObj(m_Name), message, list);
    case kFormtbl:
        return CalculateNested(CalcSet().GetFormulaTableObj(m_Name), message, list);
    default:
        return 1;
    }
}

int CFormtblElem::CheckNestedFormulas(unsigned int& message)
{
    switch (m_Type) {
    case kFormula:
        return CheckNested(CalcSet().GetFormulaObj(m_Name), MSG_FORMULA_NOT_FOUND, u"Formula: ",
                           message);
    case kFormtbl:
        return CheckNested(CalcSet().GetFormulaTableObj(m_Name), MSG_FORMTBL_NOT_FOUND,
                           u"Formula table: ", message);
    default:
        return 1;
    }
}

template <typename Object>
int CFormtblElem::CheckNested(Object* object, unsigned int notFound, const WCHAR* label,
                              unsigned int& message)
{
    if (!object) {
        message = notFound;
        CalcSet().ErrorTracker().SetError(notFound, this, label + m_Name);
        return 0;
    }
    const NestedCall call(*object);
    if (object->IsValid(message, 1))
        return 1;
    CalcSet().ErrorTracker().AddObj(this);
    return 0;
}

void CFormtblElem::GetVariables(CScannedVariables& list, int all, int clear)
{
    switch (m_Type) {
    case kVariable:
        AddOnce(list, m_Name);
        break;
    case kFormula:
        return ScanNested(CalcSet().GetFormulaObj(m_Name), list, all, clear);
    case kFormtbl:
        return ScanNested(CalcSet().GetFormulaTableObj(m_Name), list, all, clear);
    default:
        break;
    }
}
