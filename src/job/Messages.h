#ifndef TOVOJOB_SRC_MESSAGES_H
#define TOVOJOB_SRC_MESSAGES_H

#include <string>

namespace tovo::job {

// The text of a message id of the engine or of this library: as the newest module on the chain of
// string resources has it, else in English.
std::string MessageText(unsigned int message);

// The text of a message about a word, with the word in it.
std::string MessageAbout(unsigned int message, const std::string& word);

// Whether the message is about values and not about the text: a fault of mathematics.
bool IsDomainMessage(unsigned int message);

} // namespace tovo::job

#endif
