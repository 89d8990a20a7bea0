#ifndef TOVO_EDIT_TEXTALIGNMENT_H
#define TOVO_EDIT_TEXTALIGNMENT_H

#include <vector>

#include <TovoPlatform/WideString.h>

// Two texts that differ in blanks, in letter case and in one stretch, such as a formula with a name
// as it was typed and as a reference. Positions are in 16-bit characters.
class TextAlignment {
public:
    TextAlignment(const CString& from, const CString& to);

    // The place of the other text that has the same characters in front of it, or behind it if it
    // lies beyond the stretch that differs; within that stretch its end.
    int End(int position) const;
    // The same, with the blanks after the place passed: where what follows begins.
    int Begin(int position) const;

private:
    std::size_t CharactersBefore(int position) const;

    // Where the characters are that are no blanks.
    std::vector<int> m_From;
    std::vector<int> m_To;
    int m_ToLength;
    std::size_t m_AlikeAtStart = 0;
    std::size_t m_AlikeAtEnd = 0;
};

#endif
