#include "ErrorTexts.h"

#include <algorithm>

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoPlatform/NumberText.h>

namespace tovo::detail {

void ErrorTexts::Set(ICalculationSet& calcSet, RuntimeError error)
{
    // What cannot be given is not noted, and the other way round.
    MakeRoom(calcSet);
    calcSet.SetStrError(error == 0 ? CString() : tovo::RuntimeErrorText(error));
    Note(calcSet, error);
}

RuntimeError ErrorTexts::LastOf(const ICalculationSet& calcSet)
{
    if (last.calcSet == &calcSet)
        return last.error;
    if (hasOthers)
        for (const LeftText& text : Others())
            if (text.calcSet == &calcSet)
                return text.error;
    return 0;
}

std::vector<LeftText> ErrorTexts::GivenElsewhere(const ICalculationSet& calcSet,
                                                 std::uint64_t since)
{
    std::vector<LeftText> given;
    if (hasOthers)
        std::ranges::copy_if(Others(), std::back_inserter(given), [&](const LeftText& text) {
            return text.turn > since && text.calcSet != &calcSet;
        });
    if (last.turn > since && last.calcSet && last.calcSet != &calcSet)
        given.push_back(last);
    return given;
}

// Makes room for what the set is going to be given.
void ErrorTexts::MoveToOthers(const ICalculationSet& calcSet)
{
    MakeRoom(calcSet);
    std::erase_if(Others(), [&](const LeftText& text) {
        return text.calcSet == &calcSet || text.calcSet == last.calcSet;
    });
    Others().push_back(last);
    hasOthers = true;
}

// For what is noted when another set was given a text before.
void ErrorTexts::MakeRoom(const ICalculationSet& calcSet)
{
    if (last.calcSet && last.calcSet != &calcSet)
        Others().reserve(Others().size() + 1);
}

void ErrorTexts::NoteGone(const ICalculationSet& calcSet)
{
    if (last.calcSet == &calcSet)
        last.calcSet = nullptr;
    if (hasOthers)
        std::erase_if(Others(), [&](const LeftText& text) { return text.calcSet == &calcSet; });
}

void ErrorTexts::ForgetOthers()
{
    Others().clear();
    hasOthers = false;
}

std::vector<LeftText>& ErrorTexts::Others()
{
    static thread_local std::vector<LeftText> others;
    return others;
}

} // namespace tovo::detail
