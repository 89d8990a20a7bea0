#ifndef TOVOJOB_FUNCTIONS_H
#define TOVOJOB_FUNCTIONS_H

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include <TovoJob/Export.h>
#include <TovoPlatform/Types.h>

namespace tovo {

// A function of the language, as authors need to know it. All texts are English, and live as
// long as the program.
struct FunctionInfo {
    static constexpr std::size_t kMostParameters = 3;

    int code = 0; // the token code
    std::string_view name;
    std::array<std::string_view, kMostParameters> parameters; // empty after the last
    std::size_t required = 1;                                 // how many of them must be there
    bool repeats = false;          // the last one can be there many times
    std::string_view sentence;     // what it returns
    std::string_view example;      // a call that needs no job
    std::string_view exampleValue; // what the example evaluates to, as it is shown

    std::size_t ParameterCount() const
    {
        std::size_t count = 0;
        while (count < parameters.size() && !parameters[count].empty())
            ++count;
        return count;
    }
};

// All functions, by name.
TOVO_JOB_API std::span<const FunctionInfo> Functions();
// The function of a token code; null if the code is none of a function that has a name.
TOVO_JOB_API const FunctionInfo* FindFunction(int code);

} // namespace tovo

#endif
