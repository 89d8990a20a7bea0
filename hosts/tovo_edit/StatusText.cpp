#include "StatusText.h"

#include <algorithm>
#include <vector>

namespace {

CString FaultText(const Fault& fault, const CString& ownName)
{
    CString number;
    number.Format(u" (%d)", static_cast<int>(fault.message));
    const CString text = fault.text + number;
    // The chain leads outward, so what comes before this formula lies below it.
    for (const CString& entry : fault.chain) {
        if (entry == u"Formula: " + ownName)
            break;
        if (entry.View().starts_with(u"Formula"))
            return text + u" in " + entry;
    }
    return text;
}

// Variables and job values are told by their bare names, as they are in the report of a job.
CString ReferenceText(int kind, const CString& name)
{
    return kind == TOK_VARIABLE ? name : KindText(kind) + u" " + name;
}

std::vector<CString> NamesRead(const Dependencies& uses)
{
    std::vector<CString> names;
    for (const Dependency& use : uses.jobValues)
        names.push_back(LocalJobValueName(use.name));
    for (const Dependency& use : uses.variables)
        names.push_back(use.name);
    for (const Dependency& use : uses.formulas)
        names.push_back(ReferenceText(TOK_FORMULA, use.name));
    for (const Dependency& use : uses.tables)
        names.push_back(ReferenceText(TOK_FORMTBL, use.name));
    return names;
}

// Each once, in the order of the text.
std::vector<CString> NamesInText(const CFmlaExprBase& expression)
{
    std::vector<CString> names;
    for (int index = 0; index < expression.NumVars(); ++index) {
        const CString name = ReferenceText(expression.VarType(index), expression.VarName(index));
        if (std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    }
    return names;
}

} // namespace

CString ResultText(const FormulaFacts& facts, const TextManner& manner)
{
    if (facts.fault)
        return FaultText(*facts.fault, facts.value.name);
    return u"= " + CString(ValueText(facts.value, manner).c_str()) + u" " + facts.value.unit;
}

CString DependsText(const FormulaFacts& facts, const CFmlaExprBase& expression, const JobSet& set)
{
    // A name without an object is no fault to the library: the variable counts as 0. To whoever
    // mistyped it, it is.
    const std::vector<CString> unknown = set.MadeUpVariables();
    CString list;
    for (const CString& name : facts.fault ? NamesInText(expression) : NamesRead(facts.uses)) {
        const bool isUnknown = std::find(unknown.begin(), unknown.end(), name) != unknown.end();
        list += (list.IsEmpty() ? u"" : u", ") + name + (isUnknown ? u" (not in the job)" : u"");
    }
    return u"depends on: " + (list.IsEmpty() ? CString(u"nothing") : list);
}

CString KindText(int kind)
{
    const CString other = kind == TOK_FORMTBL ? u"table" : u"variable";
    return kind == TOK_FORMULA ? CString(u"formula") : other;
}
