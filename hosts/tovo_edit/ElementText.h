#ifndef TOVO_EDIT_ELEMENTTEXT_H
#define TOVO_EDIT_ELEMENTTEXT_H

#include <string>
#include <string_view>

#include <TovoJob/TovoJob.h>

// Numbers and the parts of tables as their author types them, with the user's decimal separator and
// in the user's words.

// Every digit that the number has.
std::string ExactText(double number, std::string_view decimal);
// "yes" and "no" in the words of the formula language for a yes/no value.
std::string ValueToEdit(double value, bool isYesNo, std::string_view decimal);
tovo::Result<double> ReadValue(std::string_view text, bool isYesNo, const tovo::Job& job,
                               std::string_view decimal);

// A reference is a name, or says its kind, as in F(Edge), where the name alone would not do.
std::string ElementText(const tovo::Element& element, const tovo::Job& job,
                        std::string_view decimal);
// Refused with what is wrong: a name that the job does not have, or one that several objects have.
tovo::Result<tovo::Element> ReadElement(std::string_view text, const tovo::Job& job,
                                        std::string_view decimal);

#endif
