#ifndef TOVO_PRESENTATION_VALUETEXT_H
#define TOVO_PRESENTATION_VALUETEXT_H

#include <string>

// A value as people read it: yes or no, or a number with up to six decimals.
std::string ValueText(double value, bool isYesNo, const std::string& decimalSeparator);

#endif
