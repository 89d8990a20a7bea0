#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>

#include "../expression_core/Names.h"
#include "../expression_core/ReferenceKinds.h"
#include "../expression_core/ScanMark.h"
#include "../expression_core/ScanRecord.h"
#include "BoundWork.h"
#include "StaticScan.h"

namespace tovo::detail {

// Taken down before anything is called that might load the expression anew.
std::vector<BoundWork::NamedReference> BoundWork::References() const
{
    std::vector<NamedReference> references;
    const ExpressionState* const state = m_Expression.m_State.get();
    if (state && state->isLoadedByProgram) {
        for (const ReferencePlace& place : state->program->Places())
            references.push_back({place.kind, state->program->NameAt(place)});
        return references;
    }
    const CExprTree& tree = m_Expression.m_Tree;
    for (POSITION pos = tree.FindFirstVarFmlOrTbl(); pos;) {
        CString text;
        int code = TOK_ILLEGAL;
        pos = tree.GetNextVarFmlOrTbl(0, pos, text, code);
        references.push_back({code, BareName(text)});
    }
    return references;
}

int BoundWork::NestedFormulasOK()
{
    for (const auto& [kind, name] : References())
        if (!CheckNested(kind, name))
            return 0;
    return 1;
}

int BoundWork::CheckNestedReference(int code, const CString& text)
{
    return IsNestedKind(code) ? CheckNested(code, BareName(text)) : 1;
}

// Tokens of another kind have nothing to check.
int BoundWork::CheckNested(int kind, const CString& name)
{
    if (!IsNestedKind(kind))
        return 1;
    return WithNested(m_Expression.CalcSet(), kind, name,
                      [&](auto* object) { return CheckFound(object, kind, name); });
}

// A failure below comes back through this expression's own message.
template <typename Object>
int BoundWork::CheckFound(Object* object, int kind, const CString& name)
{
    if (!object) {
        const ReferenceKind& row = kReferenceKinds[kind];
        State();
        m_Expression.CalcSet().ErrorTracker().SetError(row.notFound, &m_Expression,
                                                       row.missingLabel + name);
        TakeMessage(row.notFound);
        return 0;
    }
    auto message = static_cast<unsigned int>(m_Expression.m_MessageNum);
    if (object->IsValid(message, 1))
        return 1;
    State();
    TakeMessage(message);
    return 0;
}

void BoundWork::ScanStatically(CScannedVariables& list, int all)
{
    StaticScan scan(list);
    if (scan.IsTooDeep() || !scan.Enters(&m_Expression))
        return;
    ScanMark scanned(&list);
    for (const auto& [kind, name] : References()) {
        if (!IsNestedKind(kind)) {
            AddOnce(list, name);
            continue;
        }
        WithNested(m_Expression.CalcSet(), kind, name, [&](auto* object) {
            if (object && !object->GetScanned() && scan.Enters(object))
                object->GetVariables(list, all, 0);
        });
    }
    scanned.End();
}

} // namespace tovo::detail
