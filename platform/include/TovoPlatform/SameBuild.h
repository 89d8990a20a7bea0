#ifndef TOVOPLATFORM_SAMEBUILD_H
#define TOVOPLATFORM_SAMEBUILD_H

// Refuses hosts that are compiled in another way than the library: under an older language standard
// here, with another layout of objects when they are linked, since they would corrupt memory.
// TovoPlatform/Types.h includes this for every header.

#if __cplusplus < 202002L
#error "TovoFormula needs C++20: compile with -std=c++20 or later"
// What follows would only add to the message. A header that there is not ends it.
#include <TovoPlatform/NeedsCxx20>
#endif

#include <cstddef>
#include <string>

namespace tovo::host_and_library_must_have_the_same {

#ifdef _GLIBCXX_DEBUG
inline constexpr bool kDebug = true;
#else
inline constexpr bool kDebug = false;
#endif
#ifdef _GLIBCXX_USE_CXX11_ABI
inline constexpr int kStringAbi = _GLIBCXX_USE_CXX11_ABI;
#else
inline constexpr int kStringAbi = -1; // of another standard library
#endif
enum SmallEnumeration { ONLY };
struct PaddedPair {
    char first;
    double second;
};
inline constexpr std::size_t kEnumeration = sizeof(SmallEnumeration);
inline constexpr std::size_t kPair = sizeof(PaddedPair);

// The library defines these for what it was built with. A host that differs asks for another one,
// and the name in the linker's message says in what it differs.
template <bool>
[[gnu::visibility("default")]] void GLIBCXX_DEBUG();
template <int>
[[gnu::visibility("default")]] void GLIBCXX_USE_CXX11_ABI();
template <std::size_t, std::size_t>
[[gnu::visibility("default")]] void sizes_of_enumerations_and_padded_structures();

extern template void GLIBCXX_DEBUG<kDebug>();
extern template void GLIBCXX_USE_CXX11_ABI<kStringAbi>();
extern template void sizes_of_enumerations_and_padded_structures<kEnumeration, kPair>();

[[gnu::used]] inline void (*const questions[])() = {
    &GLIBCXX_DEBUG<kDebug>, &GLIBCXX_USE_CXX11_ABI<kStringAbi>,
    &sizes_of_enumerations_and_padded_structures<kEnumeration, kPair>};

} // namespace tovo::host_and_library_must_have_the_same

#endif
