#include <TovoFormula/FormtblElem.h>

#include <limits>
#include <typeinfo>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>
#include <TovoPlatform/NumberText.h>

#include "../expression_core/Names.h"
#include "../expression_core/ObjectCalls.h"
#include "../expression_core/Pass.h"
#include "../expression_core/RestoreOnThrow.h"
#include "../expression_core/ScanRecord.h"
#include "../expression_text/ReferenceTable.h"

using namespace tovo::detail;

namespace {

// The kinds of a combined string: the letters of the references, and none.
constexpr char16_t kConstant = 0;
constexpr char16_t kVariable = kReferenceKinds[TOK_VARIABLE].letter;
constexpr char16_t kFormula = kReferenceKinds[TOK_FORMULA].letter;
constexpr char16_t kFormtbl = kReferenceKinds[TOK_FORMTBL].letter;

// No map has had this version, nor 0, when something was found in it.
constexpr std::uint64_t kForGood = std::numeric_limits<std::uint64_t>::max();

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

} // namespace

CFormtblElem::CFormtblElem(ICalculationSet& calcSet) : m_CalcSet(&calcSet)
{}

CFormtblElem::CFormtblElem(const CString& combined, ICalculationSet& calcSet) : m_CalcSet(&calcSet)
{
    init(combined);
}

// What is known of the name is not copied, since the copy may be part of a derived class.
CFormtblElem::CFormtblElem(const CFormtblElem& other)
    : CObject(other),
      m_Valid(other.m_Valid),
      m_Type(other.m_Type),
      m_Name(other.m_Name),
      m_CalcSet(other.m_CalcSet)
{}

CFormtblElem::~CFormtblElem() = default;

CFormtblElem& CFormtblElem::operator=(const CFormtblElem& other)
{
    Pass::NoteChange();
    m_KnownIn = 0;
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
    const CString name = hasKind ? combined.Mid(1) : combined;
    SetType(hasKind ? combined[0] : kConstant);
    SetName(name);
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
    const double thousandths = Thousandths();
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
    m_KnownIn = 0;
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

void CFormtblElem::SetType(char16_t type)
{
    Pass::NoteChange();
    m_KnownIn = 0;
    m_Type = type;
}

void CFormtblElem::ClearAll()
{
    Pass::NoteChange();
    m_KnownIn = 0;
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
    if (m_Type == kConstant)
        return Thousandths() / kThousandths;
    const int kind = KindOfLetter(m_Type);
    if (kind == kNoKind)
        return 0.0;
    if (kind == TOK_VARIABLE)
        return ValueOf(Variable());
    return WithObject(CalcSet(), kind, m_Name, [](auto* object) { return ValueOf(object); });
}

double CFormtblElem::Thousandths() const
{
    if (m_KnownIn == kForGood)
        return m_ReadThousandths;
    const double thousandths = tovo::ParseDouble(m_Name);
    if (typeid(*this) == typeid(CFormtblElem)) {
        m_ReadThousandths = thousandths;
        m_KnownIn = kForGood;
    }
    return thousandths;
}

IVarObj* CFormtblElem::Variable() const
{
    if (m_KnownIn == MapVersions::Last())
        return m_FoundVariable;
    IVarObj* const variable = CalcSet().GetVarObj(m_Name, 1, 0);
    if (typeid(*this) == typeid(CFormtblElem) && ObjectCalls::WithStockLookup(CalcSet())) {
        m_FoundVariable = variable;
        m_KnownIn = MapVersions::Last();
    }
    return variable;
}

int CFormtblElem::Calculate(unsigned int& message, CScannedVariables* list)
{
    const int kind = KindOfLetter(m_Type);
    if (kind == kNoKind)
        return 1;
    if (IsNestedKind(kind))
        return WithNested(CalcSet(), kind, m_Name, [&](auto* object) {
            return object ? object->Calculate(message, list) : 0;
        });
    IVarObj* const variable = Variable();
    if (variable && list)
        RecordVariable(*list, m_Name, *variable);
    return variable ? 1 : 0;
}

int CFormtblElem::CheckNestedFormulas(unsigned int& message)
{
    const int kind = KindOfLetter(m_Type);
    if (!IsNestedKind(kind))
        return 1;
    return WithNested(CalcSet(), kind, m_Name, [&](auto* object) {
        const ReferenceKind& row = kReferenceKinds[kind];
        if (!object) {
            CalcSet().ErrorTracker().SetError(row.notFound, this, row.label + m_Name);
            message = row.notFound;
            return 0;
        }
        RestoreOnThrow former(message);
        const bool isValid = object->IsValid(message, 1) != 0;
        if (!isValid)
            CalcSet().ErrorTracker().AddObj(this);
        former.End();
        return isValid ? 1 : 0;
    });
}

void CFormtblElem::GetVariables(CScannedVariables& list, int all, int clear)
{
    const int kind = KindOfLetter(m_Type);
    if (kind == TOK_VARIABLE)
        // The list itself takes off blanks alone.
        AddOnce(list, CString(tovo::TrimmedRight(m_Name.View())));
    else if (IsNestedKind(kind))
        WithNested(CalcSet(), kind, m_Name, [&](auto* object) {
            if (object)
                object->GetVariables(list, all, clear);
        });
}
