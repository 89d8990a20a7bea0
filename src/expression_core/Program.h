#ifndef TOVOFORMULA_SRC_PROGRAM_H
#define TOVOFORMULA_SRC_PROGRAM_H

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <TovoFormula/ExpressionNames.h>
#include <TovoFormula/TokenCodes.h>
#include <TovoPlatform/Collections.h>
#include <TovoPlatform/WideString.h>

#include "ErrorTexts.h"
#include "ObjectCalls.h"
#include "Operations.h"
#include "Pass.h"

class CFmlaExpression;
struct IFormulaObj;
struct IFormulaTableObj;

namespace tovo::detail {

class Program;

// The texts that an expression leaves in other sets than its own. A check comes by all references,
// a walk after it once more by those that conditions do not rule out.
struct LeftElsewhere {
    std::vector<LeftText> byCheck;
    std::vector<LeftText> byCalculation; // which begins with a check
};

// What an expression keeps beside its text and its tree. What others look at who name the
// expression comes first.
struct ExpressionState {
    explicit ExpressionState(CFmlaExpression& owner, ICalculationSet& set)
        : calcSet(set), expression(owner)
    {}

    PassNumber calculatedIn = kNeverInPass;       // the number of the pass in which it succeeded
    double value = 0.0;                           // of the last success that is remembered
    std::unique_ptr<LeftElsewhere> leftElsewhere; // null for none
    int marks = 0;                                // how often it is in progress at present
    RuntimeError leftText = 0;
    std::unique_ptr<Program> program;    // null until a text was compiled
    PassNumber checkedIn = kNeverInPass; // as calculatedIn
    PassNumber reachedIn = kNeverInPass; // the first number of the pass in which others came by it
    // The program, and not the tree, is what was loaded last.
    bool isLoadedByProgram = false;
    // The program has succeeded under the checked name, and nothing of the expression has changed.
    bool mayRunAgain = false;
    bool isScannedInCondition = false;
    CString checkedName; // under which it was checked
    ICalculationSet& calcSet;

    CFmlaExpression& expression;
    const CString* formulaName = nullptr; // of the formula that it belongs to; null for none
    PassNumber gaveUpIn = kNeverInPass;   // the program did
    PassNumber ownNameIn = kNeverInPass;  // found in its set under its own name
    std::uint64_t ownNameAt = 0;          // the same, as of that version of all maps
    PassNumber scannedIn = kNeverInPass;
    std::uint64_t scan = 0;
    std::uint64_t scannedList = 0;
    std::uint64_t textOfProgram = 0;      // the version that was compiled
    std::uint64_t textWithoutProgram = 0; // no program was to be had from that version
};

// A place of a reference in the text that was compiled.
struct ReferencePlace {
    std::int32_t position;
    std::uint16_t length;
    std::uint16_t kind;
};

// Most expressions keep no more numbers at a time, and need no memory for them.
inline constexpr std::size_t kStackAtHand = 3;
// One place for what is on top and kept apart, one for handing it to a function with the others.
inline constexpr std::size_t kSpareOfStack = 2;

// A checked expression as a row of instructions over a stack of numbers.
//
// It comes to the same value as checking and calculating the tree of the same text, or gives up: it
// meets something that the tree must report, or cannot be sure. Up to there nothing has been done
// that anyone can see, so that the tree can start afresh.
//
// Bound to the objects of one set, and asks for them again when the set may have others.
class Program {
public:
    enum class Purpose {
        Check,     // all of it, as building the tree calculates it
        Calculate, // without the branches that conditions rule out
    };

    // Runs the program on the state that owns it. On success the state has the value. Requires: the
    // state is marked as in progress, unless the run calls nothing.
    bool Run(ExpressionState& state, Purpose purpose);

    bool IsBoolean() const { return m_Kind == RT_BOOLEAN; }
    // What the last run left as the text of an error. Nothing is known if a host's object was the
    // last to be called.
    bool EndsWithObject() const { return m_LastCode == TOK_FORMTBL || m_EndsWithHostFormula; }
    bool EndsWithReference() const
    {
        return m_LastCode == TOK_FORMULA || m_LastCode == TOK_FORMTBL;
    }
    bool EndsWithTable() const { return m_LastCode == TOK_FORMTBL; }
    RuntimeError LeftText() const { return m_LeftText; }
    // Whether a run reads stock variables and calls no object.
    bool CallsNothing() const { return m_IsClosed && !m_HasNested && IsBound(); }

    // What it was compiled from.
    const CString& Text() const { return m_Text; }
    const CExpressionNames& Names() const { return *m_Names; }
    const std::vector<ReferencePlace>& Places() const { return m_Places; }
    CString NameAt(const ReferencePlace& place) const;

private:
    friend class ProgramBuilder;

    struct Instruction {
        Operation operation;
        std::uint16_t count; // of arguments
        // Of a reference, its binding; of a function, its code; of a branch, the instruction to go
        // on with.
        std::uint32_t index;
        union {
            double number;
            const double* address;        // of a variable's value
            const ExpressionState* state; // of a stock formula, null for any other
        };
    };

    // A name, and what the set has under it. Several references of one kind and name share it.
    struct Binding {
        CString name;
        union {
            IVarObj* variable = nullptr;
            IFormulaObj* formula;
            IFormulaTableObj* table;
        };
        union {
            double value = 0.0;     // of a host's variable, as it was read for this run
            ExpressionState* state; // of a formula that is a stock one or derives from it, or null
        };
        std::uint32_t place; // the first one
        std::uint16_t kind;
        bool isHost = false;
    };

    bool BindAll(ExpressionState& state);
    bool BindTo(ExpressionState&, Binding& binding, IVarObj* variable, bool& hasMoved);
    bool BindTo(ExpressionState& state, Binding& binding, IFormulaObj* formula, bool& hasMoved);
    bool BindTo(ExpressionState&, Binding& binding, IFormulaTableObj* table, bool&);
    // Whether the set still has the same objects under the names, as far as it can tell.
    bool IsBound() const { return m_IsBound && m_StockLookup && IsBoundStill(); }
    // In the course of a run, a set that finds names elsewhere has changed only if the pass tells
    // so.
    bool IsBoundStill() const
    {
        if (!m_StockLookup)
            return Pass::Present() == m_BoundInPass;
        return MapVersions::Last() == m_SeenVersion || HasSameEntries();
    }
    bool HasSameEntries() const;
    void TakeAddresses();
    template <Purpose kPurpose, bool kReadsHost>
    bool Execute(ExpressionState& state);
    bool ReadVariable(ExpressionState& state, Binding& binding);
    bool Compute(ICalculationSet& calcSet, const Instruction& instruction, std::span<double> others,
                 double& value);
    bool CallFormula(ExpressionState& state, const Binding& binding, Purpose purpose,
                     double& value);
    // Apart from its callers, which take less of the stack without it.
    template <typename Object>
    [[gnu::noinline]] bool CallObject(ExpressionState& state, const Binding& binding,
                                      Object* Binding::*object, Purpose purpose, double& value);

    std::vector<Instruction> m_Code;
    std::vector<Binding> m_Bindings;
    const CalcSetImpl* m_StockLookup = nullptr; // the set, where its entries tell all
    LookupState m_BoundIn;
    mutable std::uint64_t m_SeenVersion = 0; // of all maps, when the entries were the same
    std::shared_ptr<const CExpressionNames> m_Names;
    std::unique_ptr<double[]> m_DeepStack; // for a program that needs more than is at hand
    RuntimeError m_LeftText = 0;
    std::uint8_t m_Kind = RT_NUMERIC;
    std::uint8_t m_LastCode = TOK_ILLEGAL; // of the root
    bool m_IsBound = false;
    bool m_IsClosed = false;
    bool m_HasNested = false;
    bool m_HasHostVariables = false;
    bool m_HasJobValues = false;
    bool m_EndsWithHostFormula = false;
    PassNumber m_BoundInPass = kNeverInPass;
    std::vector<ReferencePlace> m_Places;
    CString m_Text;
};

} // namespace tovo::detail

#endif
