#ifndef TOVOFORMULA_SRC_PASS_H
#define TOVOFORMULA_SRC_PASS_H

#include <cstdint>

#include "ErrorTexts.h"

namespace tovo::detail {

// Names a state of everything that calculations rest on. Equal numbers mean that nothing has
// changed in between. No two threads have a number in common, since a set may be handed from one to
// another.
using PassNumber = std::uint64_t;
inline constexpr PassNumber kNeverInPass = 0;
inline constexpr PassNumber kNumbersInBlock = static_cast<PassNumber>(1) << 32;

struct PassState {
    int depth = 0; // of calls and held passes
    int held = 0;  // how many of these are held passes
    bool isRemembering = true;
    PassNumber first = kNeverInPass; // of the pass
    PassNumber present = kNeverInPass;
    PassNumber last = kNumbersInBlock - 1; // of all numbers given; the first block is never used
    std::uint64_t scan = 0;
};

// One pass, and in it what may be remembered.
//
// A pass is the outermost call of a host into the library, or the time for which a host holds one
// open. Calls that come back from the host's objects belong to it. An object that succeeds in
// something writes down the present number; as long as that number is the present one, it would
// succeed again, with the same result. Whatever changes what a calculation reads takes the next
// number, so that all that was written down no longer counts.
//
// Every public operation that checks, calculates or scans constructs one of these. Kept for each
// thread.
class Pass {
public:
    Pass()
    {
        if (state.depth++ == state.held)
            BeginCall();
    }
    ~Pass() { --state.depth; }

    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;

    static PassNumber Present() { return state.present; }
    // Tells one pass of this thread from another.
    static PassNumber First() { return state.first; }
    // For whatever changes what a calculation may read. Outside a pass nothing is remembered.
    static void NoteChange()
    {
        if (state.depth > 0)
            Renew();
    }
    // Names what scans have recorded within one call of a host.
    static std::uint64_t Scan() { return state.scan; }
    // For a scan that has taken back an in-condition flag which another one has raised.
    static void NoteFlagLowered() { ++state.scan; }

    // Whether no call is under way and no pass is held, where tests have not turned remembering
    // off.
    static bool IsAtRest() { return state.depth == 0 && state.isRemembering; }
    // Whether something may have been remembered before this call: it is not the outermost one, or
    // a pass is held.
    static bool HasHistory() { return state.depth > 1; }

    static void Hold()
    {
        if (state.depth++ == 0)
            BeginPass();
        ++state.held;
    }
    static void Release()
    {
        --state.held;
        --state.depth;
    }

    // For tests, which compare results with and without remembering. Without, everything is checked
    // and calculated afresh wherever it is named.
    static void SetRemembering(bool isOn) { state.isRemembering = isOn; }
    static bool IsRemembering() { return state.isRemembering; }

private:
    friend class PassApart;

    static void BeginCall()
    {
        ++state.scan;
        if (state.depth == 1)
            BeginPass();
    }
    static void BeginPass()
    {
        Renew();
        state.first = state.present;
        ErrorTexts::BeginPass();
    }
    static void Renew()
    {
        if (++state.last % kNumbersInBlock == 0)
            state.last = NextBlock();
        state.present = state.last;
    }
    // The first number of a block that no thread has had.
    static PassNumber NextBlock();

    static inline constinit thread_local PassState state;
};

// A pass within the pass, in which nothing is remembered from before. At its end, what was
// remembered before it counts again, unless something has changed.
class PassApart {
public:
    PassApart() : m_Found(Pass::state.present)
    {
        Pass::Renew();
        m_Own = Pass::state.present;
    }
    ~PassApart()
    {
        if (Pass::state.present == m_Own)
            Pass::state.present = m_Found;
    }

    PassApart(const PassApart&) = delete;
    PassApart& operator=(const PassApart&) = delete;

private:
    PassNumber m_Found;
    PassNumber m_Own;
};

} // namespace tovo::detail

#endif
