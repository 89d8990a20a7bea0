#ifndef TOVOFORMULA_FMLAEXPRESSION_H
#define TOVOFORMULA_FMLAEXPRESSION_H

#include <memory>

#include <TovoFormula/Export.h>
#include <TovoFormula/ExprTree.h>
#include <TovoFormula/FmlaExprBase.h>

struct IFormulaObj;
struct IFormulaTableObj;

namespace tovo::detail {
class BoundWork;
struct ExpressionState;
} // namespace tovo::detail

// An expression bound to a calculation set: its text can be checked and calculated.
//
// Text and tree are not kept in step: SetExpr and the other changes of the text leave the tree as
// it was until the next IsValid or LoadExpressionTree, which build it anew.
//
// The library may keep a compiled program in place of the tree, which is then built anew when it is
// needed. In a class derived from this one, m_Tree always holds it.
//
// Owns: its tree. Does not own: the set, which must outlive it. Belongs to the thread of its set.
// While it is being checked, calculated or scanned, whatever it calls must not destroy it, and a
// change of its text counts from the next check on; checking or calculating it again from there is
// refused with 6608. If something throws meanwhile, the expression has its former tree, value,
// message and invalid position again.
class TOVO_FORMULA_API CFmlaExpression : public CFmlaExprBase {
public:
    explicit CFmlaExpression(ICalculationSet& calcSet);
    // The same set, text, table, invalid position and scan position; no tree, no message.
    CFmlaExpression(const CFmlaExpression& other);
    ~CFmlaExpression() override;

    CFmlaExprBase* Clone() override;
    // Clears the tree too, unless it is in progress.
    void ClearExpr() override;
    using CFmlaExprBase::operator=;
    // Starts a new chain in the set's tracker, with this expression as the object.
    void TrackError(unsigned int message) override;
    // As the base, and clears the tree. The set stays that of this object.
    virtual CFmlaExpression& operator=(CFmlaExpression& other);

    using CFmlaExprBase::SetExpr;
    // Takes text and table. A last reference that lacks just its trailing blank gets it, below the
    // text limit.
    void SetExpr(const CFmlaExpression& source);

    // Builds the tree from the text. Nested nonzero: each formula and table referred to must exist
    // and be sound, and is calculated while the tree is built. Answers 0 with GetMessageNum and
    // GetInvalidPos telling what and where.
    [[nodiscard]] int LoadExpressionTree(int nested);
    // Builds the tree and holds its kind against the name: a name that ends in "?" wants a yes/no
    // value, any other name wants none. An empty name leaves the kind open. Nested as above; a name
    // that is being validated already on this thread ends in 6608. The message is written on
    // failure only.
    [[nodiscard]] int IsValid(unsigned int& message, CString name, int nested);
    // This expression alone, without a name; the message is in GetMessageNum.
    [[nodiscard]] int IsValid();
    // Calculates the tree that was built last, without building it. The list may be null.
    [[nodiscard]] int Calculate(CScannedVariables* list);
    // These speak of the tree, and give 0 without one.
    double GetValue() const;
    int IsLoaded() const;
    int IsCalculated() const;
    int IsNumeric() const;
    int IsBoolean() const;
    // Adds what the built tree refers to: with all nonzero every reference of the text, calculating
    // nothing; with all zero what a calculation reaches. Clear nonzero tells the set that a new
    // scan begins. A failed calculation leaves its message in GetMessageNum.
    void GetVariables(CScannedVariables& list, int all, int clear);

    ICalculationSet& CalcSet() const { return *m_CalcSet; }

    // Whether the formula or table exists and is sound with everything below it; else 0 with
    // GetMessageNum set. The name may have its two blanks.
    [[nodiscard]] int CheckNestedFormula(CString name);
    [[nodiscard]] int CheckNestedFormtbl(CString name);
    // The two checks for each reference of the built tree, from the left to the first that fails.
    [[nodiscard]] int NestedFormulasOK();

    // For a formula that is renamed or removed: rewrite text and table, and leave the tree as it
    // was. They answer 1 if there was a reference to the formula of exactly that name; else 0, with
    // nothing changed. Renaming passes through the encoded string, so the table is new. Removing
    // takes each reference with the text up to its neighbour, but for one character, so that of
    // operands joined by signs one goes with one sign; what is left may not be sound.
    int ChangeFormulaInExpression(const CString& oldName, const CString& newName);
    int RemoveFormulaFromExpression(const CString& name);

protected:
    CExprTree m_Tree;
    ICalculationSet* m_CalcSet; // never null, not owned

    // The names of the formulas under validation, innermost at the head. Kept for each thread; an
    // entry goes again on every way out of the IsValid that made it.
    static thread_local CStringList m_NestedFmlaNames;

private:
    friend class tovo::detail::BoundWork;

    std::unique_ptr<tovo::detail::ExpressionState> m_State; // null until it is needed
};

#endif
