#ifndef TOVOJOB_SRC_WORDCHARACTERS_H
#define TOVOJOB_SRC_WORDCHARACTERS_H

#include <cstddef>

#include <TovoPlatform/WideString.h>

namespace tovo::job {

// Whether the character can be inside a word that someone typed: a letter of any alphabet, with its
// accents, a digit or a low line. Halves of pairs count, so that no pair is ever cut.
bool IsWordCharacter(char16_t character);
bool IsDigit(char16_t character);

// The end of the word that begins at a position; the position itself if none does.
std::size_t EndOfWord(WideView text, std::size_t begin);

// The small letter in place of a capital one of the Latin, Greek or Cyrillic alphabet. Texts are
// compared in this form where letter case is not to matter; it has the same length.
char16_t Folded(char16_t character);
WideText Folded(WideView text);
// A to Z in place of a to z.
WideText InCapitals(WideView text);

} // namespace tovo::job

#endif
