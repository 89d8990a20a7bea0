#ifndef TOVOFORMULA_FUZZ_ORACLES_H
#define TOVOFORMULA_FUZZ_ORACLES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include <TovoFormula/FmlaExprBase.h>

namespace tovo::fuzz {

// Ends the process, with a message that says what was expected and what was found.
[[noreturn]] void Fail(const char* expected, const std::string& found);

inline void Require(bool holds, const char* expected)
{
    if (!holds)
        Fail(expected, {});
}

// What was found is asked for only if it is needed.
template <typename Found>
void Require(bool holds, const char* expected, Found&& found)
{
    if (!holds)
        Fail(expected, std::forward<Found>(found)());
}

// To be called first for each input. One in eight is examined thoroughly, with the comparisons that
// cost much, and one in 64 may have texts beyond what 16-bit words hold; which, its bytes decide.
void BeginInput(const std::uint8_t* bytes, std::size_t count);
bool IsThorough();
bool MayBeLong();

// Puts one of the languages that a host can bring in force for the process. In the last of them the
// separators cannot be told apart from each other or from the rest of a text.
inline constexpr int kLanguages = 5;
inline constexpr int kSoundLanguages = 3;
void SpeakLanguage(int language);

// Text and reference table: ordered, without overlaps, within the text, which begins and ends every
// stretch with a blank.
void RequireSoundTable(const CFmlaExprBase& expression);

// What is written of the stored form, read and written again comes out the same. Escapes that are
// in an unterminated form go each time that it is read, and what stands after a fault in a number
// is translated by one of two directions only, so such a form may take a few rounds.
void RequireSettledForm(const CString& encoded);

// A document of the expression shows its text, in the looks of its references.
void RequireWholeDocument(const CFmlaExprBase& expression);

// The value with all its bits, "nan" for any of those.
std::string Shown(double value);

} // namespace tovo::fuzz

#endif
