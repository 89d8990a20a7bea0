#ifndef TOVOFORMULA_SRC_PASS_H
#define TOVOFORMULA_SRC_PASS_H

#include <cstdint>

#include <TovoFormula/CalculationInterfaces.h>

#include "OwnObjects.h"

// What a formula may remember between two meetings in one pass.
//
// A pass is what happens on one thread between a host's call into a formula, an expression, a table
// or an operand and its return. Taken literally, a formula is checked and calculated afresh
// wherever it is named, at every level again, so that the work multiplies with the depth. Within a
// pass nothing can have changed but by what the library is told of, so a success holds until then:
// a stamp taken at the success is compared with the present one.
//
// All of it is kept for each thread.
namespace tovo::detail {

// Stands for a state of everything that calculations rest on. Two equal stamps other than
// kNeverStamped belong to one pass in which nothing changed. No two threads give the same one,
// since a set may be handed from thread to thread: each thread takes its stamps from blocks of its
// own.
using Stamp = std::uint64_t;
inline constexpr Stamp kNeverStamped = 0;
inline constexpr Stamp kStampsInBlock = Stamp(1) << 32;
inline constexpr Stamp kNoBlockYet = kStampsInBlock - 1;

struct PassState {
    int depth = 0;
    bool isInForeignCall = false;
    bool isRemembering = true;
    std::uint64_t number = 0; // of the pass
    Stamp present = kNeverStamped;
    Stamp last = kNoBlockYet; // of all that were given
    Stamp foreignReads = 0;
};

// Marks a call into the library for its duration; the outermost one begins a pass, and so does the
// outermost one that a host's own object makes.
class Pass {
public:
    Pass() : m_WasInForeignCall(state.isInForeignCall)
    {
        if (state.depth++ == 0)
            Begin();
        else if (m_WasInForeignCall)
            NoteChange();
        state.isInForeignCall = false;
    }
    ~Pass()
    {
        --state.depth;
        state.isInForeignCall = m_WasInForeignCall;
    }

    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;

    // The same without an object of this class.
    static void Enter()
    {
        if (state.depth++ == 0)
            Begin();
    }
    static void Leave() { --state.depth; }

    // Never equal to an earlier stamp outside a pass, or while remembering is turned off.
    static Stamp Now()
    {
        if (state.depth == 0 || !state.isRemembering)
            NoteChange();
        return state.present;
    }
    // Voids what was remembered. Every operation calls it that changes what a calculation may read.
    static void NoteChange()
    {
        if (++state.last % kStampsInBlock == 0)
            state.last = NextBlock();
        state.present = state.last;
    }
    // Reads a variable. One that is not exactly a stock variable may have another value each time,
    // so nothing that was calculated from it is remembered: the number of such reads tells.
    static double ValueOf(IVarObj& variable)
    {
        if (const VariableImpl* const own = AsOwn(variable))
            return OwnObjects::ValueOf(*own);
        ++state.foreignReads;
        return variable.GetValue();
    }
    static Stamp ForeignReads() { return state.foreignReads; }
    static bool IsRemembering() { return state.isRemembering; }
    // Tells one pass of this thread from another.
    static std::uint64_t Number() { return state.number; }
    // For tests, which hold results with and without remembering against each other.
    static void SetRemembering(bool isOn) { state.isRemembering = isOn; }

private:
    friend class NestedCall;
    friend class NoChange;
    friend class NarrowerPass;

    static void Begin()
    {
        NoteChange();
        ++state.number;
    }
    // The first stamp of a block that no thread has had.
    static Stamp NextBlock();

    static inline constinit thread_local PassState state;

    bool m_WasInForeignCall;
};

// Marks a call out of the library into an object of a formula or a table. One that is not exactly a
// stock object may do anything, so nothing remembered before outlives it.
class NestedCall {
public:
    explicit NestedCall(IFormulaObj& formula) : NestedCall(!AsOwn(formula)) {}
    explicit NestedCall(IFormulaTableObj& table) : NestedCall(!AsOwn(table)) {}
    ~NestedCall()
    {
        Pass::state.isInForeignCall = m_WasInForeignCall;
        if (m_IsForeign)
            Pass::NoteChange();
    }

    NestedCall(const NestedCall&) = delete;
    NestedCall& operator=(const NestedCall&) = delete;

private:
    explicit NestedCall(bool isForeign)
        : m_IsForeign(isForeign), m_WasInForeignCall(Pass::state.isInForeignCall)
    {
        Pass::state.isInForeignCall = m_WasInForeignCall || isForeign;
    }

    bool m_IsForeign;
    bool m_WasInForeignCall;
};

// Undoes, at its end, the notes of changes in between: for a change that nothing remembered rests
// on.
class NoChange {
public:
    NoChange() : m_Found(Pass::state.present) {}
    ~NoChange() { Pass::state.present = m_Found; }

    NoChange(const NoChange&) = delete;
    NoChange& operator=(const NoChange&) = delete;

private:
    Stamp m_Found;
};

// Voids what was remembered for its duration: for what is asked for more than before. What succeeds
// under that would succeed without, so nothing has changed for those who were there before.
class NarrowerPass {
public:
    NarrowerPass() : m_Found(Pass::state.present)
    {
        Pass::NoteChange();
        m_Narrower = Pass::state.present;
    }
    ~NarrowerPass()
    {
        if (Pass::state.present == m_Narrower)
            Pass::state.present = m_Found;
    }

    NarrowerPass(const NarrowerPass&) = delete;
    NarrowerPass& operator=(const NarrowerPass&) = delete;

private:
    Stamp m_Found;
    Stamp m_Narrower;
};

// Gives the set a text of a mathematical error. The last one is kept, for an object that answers
// from memory and so leaves the text as its calculation would have left it.
class StrError {
public:
    static void Give(ICalculationSet& calcSet, const CString& text)
    {
        // Nearly every token clears the text, which the stock set can tell is clear already.
        const CalcSetImpl* const own = AsOwn(calcSet);
        if (text.IsEmpty() && own && IsClear(*own))
            return;
        isLeft = !text.IsEmpty();
        isOfTable = false;
        last = text;
        calcSet.SetStrError(text);
    }
    // Whether giving an empty text would change nothing.
    static bool IsClear(const CalcSetImpl& calcSet)
    {
        return !isLeft && !OwnObjects::HasStrError(calcSet);
    }
    // What was last given came from a table, which answers from its value the next time and gives
    // no more than the empty text that its token gives.
    static void NoteTable() { isOfTable = true; }
    // Takes down what would be given last if the same were calculated again.
    static void Keep(CString& text)
    {
        if (isOfTable)
            text.Empty();
        else if (isLeft || !text.IsEmpty())
            text = last;
    }

private:
    static inline constinit thread_local bool isLeft = false; // the last one is not empty
    static inline constinit thread_local bool isOfTable = false;
    static thread_local CString last;
};

} // namespace tovo::detail

#endif
