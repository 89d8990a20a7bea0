#include <TovoFormula/FmlaExprBase.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "../expression_core/Names.h"
#include "../expression_core/Pass.h"
#include "ReferenceTable.h"
#include "TextExchange.h"

using namespace tovo::detail;

CFmlaExprBase::CFmlaExprBase()
{
    InitExprNames();
}

CFmlaExprBase::CFmlaExprBase(const CFmlaExprBase& other)
    : CObject(other),
      m_ExprText(other.m_ExprText),
      m_VarPtrs(other.m_VarPtrs),
      m_InvalidPos(other.m_InvalidPos),
      m_MessageNum(other.m_MessageNum),
      m_ScanPos(other.m_ScanPos),
      m_ExprTextLimit(other.m_ExprTextLimit)
{}

CFmlaExprBase::~CFmlaExprBase() = default;

CFmlaExprBase* CFmlaExprBase::Clone()
{
    auto copy = std::make_unique<CFmlaExprBase>();
    *copy = *this;
    return copy.release();
}

void CFmlaExprBase::ClearExpr()
{
    SetExpr(CString());
}

CFmlaExprBase& CFmlaExprBase::operator=(CFmlaExprBase& other)
{
    if (this == &other)
        return *this;
    SetText(other.m_ExprText, other.m_VarPtrs);
    m_InvalidPos = other.m_InvalidPos;
    m_MessageNum = other.m_MessageNum;
    m_ScanPos = other.m_ScanPos;
    m_ExprTextLimit = other.m_ExprTextLimit;
    return *this;
}

void CFmlaExprBase::TrackError(unsigned int message)
{
    NoteTouched();
    m_MessageNum = static_cast<int>(message);
}

void CFmlaExprBase::Init()
{
    InitExprNames();
    NoteTextChange();
    m_ExprText.Empty();
    m_InvalidPos = -1;
    m_MessageNum = 0;
    m_ScanPos = 0;
    m_ExprTextLimit = kDefaultTextLimit;
}

void CFmlaExprBase::SetExpr(const CString& text)
{
    SetExpr(text, CWordArray());
}

void CFmlaExprBase::SetExpr(const CString& text, const CWordArray& pointers)
{
    SetText(text, pointers);
    m_InvalidPos = -1;
}

int CFmlaExprBase::NumVars() const
{
    return CountReferences(m_VarPtrs);
}

int CFmlaExprBase::VarPos(int index) const
{
    return EntryAt(index).position;
}

int CFmlaExprBase::VarLength(int index) const
{
    return EntryAt(index).length;
}

int CFmlaExprBase::VarEndPos(int index) const
{
    return EntryAt(index).End();
}

int CFmlaExprBase::VarType(int index) const
{
    return EntryAt(index).EffectiveKind();
}

CString CFmlaExprBase::VarText(int index) const
{
    const Reference reference = EntryAt(index);
    return m_ExprText.Mid(reference.position, reference.length);
}

CString CFmlaExprBase::VarName(int index) const
{
    return BareName(VarText(index));
}

int CFmlaExprBase::IsSingleVarElement() const
{
    const int needed = std::max(m_ExprText.GetLength(), 1);
    return NumVars() == 1 && VarPos(0) == 0 && VarLength(0) >= needed ? 1 : 0;
}

int CFmlaExprBase::IsSingleVariable() const
{
    return IsSingleOfKind(TOK_VARIABLE);
}

int CFmlaExprBase::IsSingleFormula() const
{
    return IsSingleOfKind(TOK_FORMULA);
}

int CFmlaExprBase::IsSingleFormulaTable() const
{
    return IsSingleOfKind(TOK_FORMTBL);
}

int CFmlaExprBase::IsSingleOfKind(int kind) const
{
    return IsSingleVarElement() && VarType(0) == kind ? 1 : 0;
}

// An index outside the table reads as an empty entry.
Reference CFmlaExprBase::EntryAt(int index) const
{
    return index >= 0 && index < NumVars() ? ReferenceAt(m_VarPtrs, index) : Reference();
}

// To be called at every change of text or table.
void CFmlaExprBase::NoteTextChange()
{
    Pass::NoteChange();
    NoteTouched();
    ++m_TextVersion;
    m_PassedVars = 0;
    m_PassedAt = 0;
}

void TextExchange::Swap(CFmlaExprBase& a, CFmlaExprBase& b) noexcept
{
    std::swap(a.m_ExprText, b.m_ExprText);
    std::swap(a.m_VarPtrs, b.m_VarPtrs);
    for (CFmlaExprBase* const each : {&a, &b}) {
        each->NoteTextChange();
        each->m_InvalidPos = -1;
    }
}

void CFmlaExprBase::SetText(CString text, CWordArray references) noexcept
{
    NoteTextChange();
    m_ExprText = std::move(text);
    m_VarPtrs = std::move(references);
}
