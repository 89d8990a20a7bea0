#include "Messages.h"

#include <mutex>

#include <TovoFormula/MessageIds.h>
#include <TovoFormula/Module.h>
#include <TovoPlatform/WideString.h>

#include <TovoJob/Fault.h>

namespace tovo::job {

namespace {

// What the string table of the engine has no text for. A host may give each a translation.
constexpr struct {
    unsigned int message;
    const char* text;
} kTexts[] = {
    {MSG_NONE, "The value cannot be calculated."},
    {MSG_GENERAL_FAILURE, "The expression is incomplete or cannot be calculated."},
    {MSG_COLUMN_LIMITS_ORDER, "The column limits do not rise."},
    {MSG_ROW_LIMITS_ORDER, "The row limits do not rise."},
    {MSG_JOB_VARIABLE_NOT_FOUND, "The variable was not found."},
    {MSG_JOB_TEXT_TOO_LONG, "The expression is longer than the limit of this job."},
    {MSG_JOB_NESTED_TOO_DEEP, "Parentheses are nested deeper than the limit of this job."},
    {MSG_JOB_TOO_MANY_STEPS, "The calculation takes more steps than the limit of this job."},
    {MSG_JOB_RING, "The value depends on itself."},
    {MSG_JOB_LINKED_FAILED, "The object of the host cannot be calculated."},
    {MSG_JOB_EMPTY_CELL, "The cell of the table is empty."},
    {MSG_JOB_NO_FUNCTION, "%s is not a function of this language."},
    {MSG_JOB_NO_WORD, "%s is neither a name of this job nor a word of this language."},
    {MSG_JOB_AMBIGUOUS_WORD, "%s can mean more than one thing."},
    {MSG_JOB_INPUT_NOT_A_NUMBER, "The input is not a number."},
    {MSG_JOB_INPUT_NOT_YES_NO, "The input is neither yes nor no."},
};

// A host that has put the table there already, perhaps below a translation, keeps its order.
void NeedStringTable()
{
    static std::once_flag once;
    std::call_once(once, [] {
        CString text;
        if (!text.LoadString(MSG_COMMA_EXPECTED))
            InitTovoFormulaDLL(0);
    });
}

} // namespace

std::string MessageText(unsigned int message)
{
    NeedStringTable();
    CString text;
    if (message != MSG_NONE && text.LoadString(message))
        return text.ToUtf8();
    for (const auto& row : kTexts) {
        if (row.message == message)
            return row.text;
    }
    return "Message " + std::to_string(message) + ".";
}

std::string MessageAbout(unsigned int message, const std::string& word)
{
    CString text;
    text.Format(CString(MessageText(message)).GetString(), CString(word));
    return text.ToUtf8();
}

bool IsDomainMessage(unsigned int message)
{
    switch (message) {
    case MSG_DIVIDE_BY_ZERO:
    case MSG_MOD_BY_ZERO:
    case MSG_POWER_BY_ZERO:
    case MSG_INVALID_PARAMETER:
    case MSG_MATH_RANGE:
        return true;
    default:
        return false;
    }
}

} // namespace tovo::job
