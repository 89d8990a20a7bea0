#ifndef TOVO_EDIT_COMMANDS_H
#define TOVO_EDIT_COMMANDS_H

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Dialogs.h"
#include "Document.h"

// A line of the help: keys, and what they do.
struct KeyHelp {
    const char16_t* keys;
    const char16_t* meaning;
};

// What can be done on more than one of the screens, with the questions that it asks.
//
// Does not own: terminal and document, which must outlive it.
class Commands {
public:
    Commands(Terminal& terminal, Document& document, std::string decimal)
        : m_Terminal(terminal), m_Document(document), m_Decimal(std::move(decimal))
    {}

    const std::string& Decimal() const { return m_Decimal; }

    // Asks what an earlier run has left. False if the user rather leaves.
    bool AskAboutRecovery();
    // Asks if another program has changed the file; tells if no recovery file could be written.
    Notice AskAboutNews();
    // To be called often.
    void KeepRecovery();
    Notice Save();
    Notice SaveAs();
    // Asks if something is not saved. A save that fails must not lose what it was to keep.
    bool MayQuit(Notice& notice);

    void ShowKeys(const CString& title, const std::vector<KeyHelp>& keys);
    // Why an object has its value.
    void ShowWhy(const tovo::ObjectName& object);
    // Who uses an object; the one that the user chooses to go to.
    std::optional<tovo::ObjectName> ShowUsers(const tovo::ObjectName& object, Notice& notice);
    // Offers corrections of the fault for which an object fails.
    Notice Correct(const tovo::ObjectName& object);

private:
    Notice SaveAt(const std::string* path);

    Terminal& m_Terminal;
    Document& m_Document;
    std::string m_Decimal;
    Notice m_RecoveryFault; // until it is told
    bool m_IsFaultKnown = false;
};

CString Wide(std::string_view text);
// The lines of a text, broken at a width.
std::vector<CString> Wrapped(std::string_view text, int width);
Notice Refused(const tovo::Refusal& refusal);

#endif
