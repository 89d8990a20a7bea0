#ifndef TOVOFORMULA_SRC_BOUNDWORK_H
#define TOVOFORMULA_SRC_BOUNDWORK_H

#include <TovoFormula/FmlaExpression.h>
#include <TovoFormula/TokenCodes.h>

#include "../expression_core/Program.h"

namespace tovo::detail {

// What stands behind the operations of a bound expression.
//
// A check with nested references goes one of two roads. The short one runs the program that was
// compiled from the present text; it knows successes only. Where it gives up, and for whatever is
// asked rarely, the long one builds the tree and calculates it, and is the only one that makes
// messages, positions and chains. What succeeds on either is remembered for the pass.
//
// A view on an expression, made where it is needed.
class BoundWork {
public:
    explicit BoundWork(CFmlaExpression& expression) : m_Expression(expression) {}
    // The name is that of the formula, whose member the expression is.
    BoundWork(CFmlaExpression& expression, const CString& formulaName);

    // Calculates the formula whose expression it is, if that needs no pass. False, with nothing
    // done that shows, if it does. Requires: a pass at rest.
    static bool RunAlone(CFmlaExpression& expression, const CString& name);

    // These are CFmlaExpression::IsValid, LoadExpressionTree and Calculate within a pass.
    int Validate(unsigned int& message, const CString& name, int nested);
    int Load(int nested);
    int Calculate(CScannedVariables* list);
    // Checks and calculates, as a named formula does.
    int CheckAndCalculate(unsigned int& message, const CString& name, CScannedVariables* list);
    // The short road alone, for a formula of that name that a program refers to: what IsValid and
    // Calculate would do one after the other, or Calculate alone. False if it ends nowhere, with
    // nothing done that shows.
    static bool CalculateByProgram(ExpressionState& state, const CString& name, bool withIsValid);

    int CheckNestedReference(int code, const CString& text);
    int NestedFormulasOK();
    void ScanStatically(CScannedVariables& list, int all);
    // The formula is going to have another name.
    void NoteRenamed();
    // The tree is no longer what was loaded last, or it is gone.
    void Forget();
    // The text is another one, and there is no tree. One that is being built or walked stays for so
    // long, and is that of the text that it was begun with.
    void ForgetTree();

    int Fail(unsigned int message);
    void TakeMessage(unsigned int message);
    ExpressionState& State();

private:
    class Former;

    // How things were when an operation began.
    struct Start {
        PassNumber pass = Pass::Present();
        std::uint64_t scan = Pass::Scan();
        std::uint64_t turn = ErrorTexts::Turn();
    };

    bool MayUsePrograms() const;
    bool IsCheckedAtOnce(const CString& name);
    int ValidateWithCare(Former& former, unsigned int& message, const CString& name);
    int ValidateAfresh(unsigned int& message, const CString& name, int nested);
    int LoadNamed(Former& former, const CString& name, int nested);
    int LoadAfresh(Former& former, int nested);
    int BuildTree(int nested);
    int InsertScanned(int code, const CString& token, int pos, int nested);
    int CloseTree(int lastPos, int endPos);
    void BuildTreeOfProgram();

    class Rerun;

    bool RunAgain(ExpressionState& state, const CString& name);
    bool RunAsCheck(ExpressionState& state);
    bool RerunMarked(ExpressionState& state);
    [[gnu::noinline]] bool CalculateWithCare(ExpressionState& state, const CString& name,
                                             bool withIsValid);
    [[gnu::noinline]] bool CalculateDisturbed(ExpressionState& state, const CString& name,
                                              bool withIsValid);
    bool CheckWithCare(Former& former, ExpressionState& state, const CString& name,
                       const Start& start);
    [[gnu::noinline]] bool WalkByProgram(ExpressionState& state, const Start& start,
                                         const CString* checkedName);
    bool CheckByProgram(Former& former, const CString& name);
    bool RunMarked(Former& former, ExpressionState& state);
    bool HasProgramFor(Former& former, const CString& name);
    std::unique_ptr<Program> Compile();
    bool RunAsWalk();
    void GiveTextOfProgram();
    // The name is that of a check that has just succeeded, null for none.
    int Walk(CScannedVariables* list, const Start& start, const CString* checkedName);

    bool IsUnderOwnName(const CString& name) const;
    bool IsChecked(const CString& name) const;
    bool IsCalculated(CScannedVariables* list) const;
    void NoteLoaded();
    void NoteChecked(const CString& name, const Start& start);
    void NoteCalculated(CScannedVariables* list, const Start& start, const CString* checkedName);
    void KeepText();
    bool KeepElsewhere(const Start& start, std::vector<LeftText> LeftElsewhere::*by) noexcept;
    void NoteDisturbed();
    void LeaveTexts(std::vector<LeftText> LeftElsewhere::*by);
    bool EndsWithObject() const;
    bool EndsWithTable() const;
    static bool IsScanOf(const ExpressionState& state, const CScannedVariables& list);

    struct NamedReference {
        int kind;
        CString name;
    };
    std::vector<NamedReference> References() const;
    int CheckNested(int kind, const CString& name);
    template <typename Object>
    int CheckFound(Object* object, int kind, const CString& name);

    CFmlaExpression& m_Expression;
    bool m_IsNamesake = false; // what was checked last bears the name of another
};

} // namespace tovo::detail

#endif
