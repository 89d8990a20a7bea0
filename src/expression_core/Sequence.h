#ifndef TOVOFORMULA_SRC_SEQUENCE_H
#define TOVOFORMULA_SRC_SEQUENCE_H

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <vector>

#include <TovoFormula/ExprToken.h>
#include <TovoFormula/TokenCodes.h>
#include <TovoFormula/Tree.h>

#include "MathFunctions.h"

class CalcSetImpl;
class FormulaImpl;
class VariableImpl;
struct IFormulaObj;
struct IFormulaTableObj;
struct IVarObj;

namespace tovo::detail {

// How a sequence was cut short at the step where it stands.
struct SequenceCut {
    bool isReading = false;    // a formula or a table had passed its check
    int message = 0;           // of that check
    std::exception_ptr thrown; // by an object of the host; null for a failure
};

// The order in which the nodes of a tree were completed while it was built, to calculate them again
// with the present values instead of building the tree anew from the same text: each token comes to
// the same value or the same failure, but nothing is scanned, checked for its place or allocated.
//
// Going on to a failure leaves the tree as it was when it was whole. To have it as building leaves
// it, cut short by the failure, it is built anew once, with what the tokens have come to meanwhile
// instead of calculations: that is reenacting it.
//
// Lives beside its tree and is void with any change of that. Does not own: the set, the tokens.
class Sequence {
public:
    // All tokens are taken, and what is left was done when the text had ended, which is passed over
    // if nothing can have come between; all is done; the next token is a formula or a table, which
    // is to be checked first; a token has failed, and has reported that.
    enum class Stop { TextEnd, End, Nested, Failure };

    explicit Sequence(ICalculationSet& calcSet);
    ~Sequence();

    Sequence(const Sequence&) = delete;
    Sequence& operator=(const Sequence&) = delete;

    // While the tree is built.
    void NoteCompleted(CETree* node)
    {
        if (!m_IsFinished)
            m_Completed.push_back(node);
    }
    void NoteTextEnd() { m_CompletedInText = m_Completed.size(); }
    void Finish();
    bool IsFinished() const { return m_IsFinished; }

    // To run, or to walk.
    void Start(bool isWalk = false);
    // Goes on to the next stop.
    Stop Run();
    // Calculates what a walk of the tree calculates: checks no reference and leaves out the branch
    // of an IF that its condition rules out. The count tells how many conditions the walk is in.
    // False on a failure, which the token has reported.
    bool Walk(int& ifCount);
    CETree* Node() const { return m_Completed[m_Steps[m_At].completed]; }
    // Of the formula or table that the sequence has stopped at: its token, its name, what the set
    // has under that name (null for nothing), and the step that calculates it.
    const CExprToken& Token() const { return *m_Steps[m_At].token; }
    const CString& Name() const { return m_References[m_Steps[m_At].reference].name; }
    template <typename Object>
    Object* Find();
    // Reads it, and goes on behind it.
    bool ReadNested();

    // Begins to reenact the sequence up to where it was cut. The tree that it speaks of is kept
    // until the end of this object.
    void StartReenacting(std::unique_ptr<CETree> tree, const SequenceCut& cut);
    bool IsReenacted() const { return m_Tree != nullptr; }
    // Gives the token built anew what its predecessor came to, or throws what that has thrown.
    int Reenact(CExprToken& token);
    // The message of the check that comes next, nothing if it was passed; or throws.
    std::optional<int> ReenactCheck() const;

private:
    struct Step {
        CExprToken* token;
        // The token's arguments: the first two, null for none, and where all of them stand.
        CExprToken* first;
        CExprToken* second;
        std::uint32_t arguments;
        std::uint16_t numArgs;
        std::uint16_t code;
        std::uint32_t completed; // which one of the nodes completed
        // Which one, if the token names something. Of a comma in an IF, the step that a walk goes
        // on with if it leaves out the next branch.
        std::uint32_t reference;
    };
    // The steps of the commas in an IF that is being recorded.
    struct OpenIf {
        std::size_t behindCondition = 0;
        std::size_t behindBranch = 0; // 0 if there is no other branch
    };
    // An object as the stock set last gave it, in that state of its names; state 0 for none. One
    // of the others is the same object, if it is exactly a stock one.
    struct Reference {
        CString name;
        std::uint64_t state = 0;
        void* object = nullptr;
        const VariableImpl* variable = nullptr;
        const FormulaImpl* formula = nullptr;
    };

    bool IsNeeded(std::size_t completed) const;
    void AddStep(std::size_t completed);
    void MarkPartOfIf(const CETree& node);
    std::size_t CompletedAt() const { return m_Steps[m_At].completed; }
    void LookAround();
    void ComeBack();
    static void NoteOwn(Reference& reference, IVarObj* variable);
    static void NoteOwn(Reference& reference, IFormulaObj* formula);
    static void NoteOwn(Reference&, IFormulaTableObj*) {}
    template <typename Object>
    Object* Find(const Step& step);
    void GoAtOnce();
    bool CalculateAtOnce(const Step& step);
    bool ComputeAtOnce(const Step& step);
    bool Calculate(const Step& step);
    MathResult Compute(const Step& step) const;
    bool ReadVariable(const Step& step);
    bool ReadRemembered(const Step& step);
    bool ReadNested(const Step& step);
    static bool Give(CExprToken& token, double value);
    void ClearStrError();

    ICalculationSet& m_CalcSet;
    const CalcSetImpl* m_OwnSet = nullptr; // the set, if it is a stock one
    std::vector<CETree*> m_Completed;
    std::vector<Step> m_Steps; // of the nodes whose calculation may show in anything
    std::vector<CExprToken*> m_Arguments;
    std::vector<Reference> m_References;
    std::size_t m_CompletedInText = 0; // how many
    std::size_t m_StepsInText = 0;
    std::size_t m_At = 0;          // the present step
    std::size_t m_End = 0;         // where to stop
    std::vector<OpenIf> m_OpenIfs; // innermost last
    bool m_IsWalk = false;
    bool m_IsInText = false;
    bool m_IsFinished = false;
    bool m_HasCalledOut = false; // an object of a host may have been called since the start
    // How the set was found when it was last looked at. Whatever may call an object of a host or a
    // formula looks again. The states are those of a stock set.
    std::uint64_t m_VariablesState = 0;
    std::uint64_t m_NestedState = 0;
    bool m_IsStrErrorClear = false;

    std::unique_ptr<CETree> m_Tree; // the one that is reenacted
    std::size_t m_Reenacted = 0;    // how many of the nodes completed
    SequenceCut m_Cut;
};

} // namespace tovo::detail

#endif
