#include <TovoPlatform/SameBuild.h>

namespace tovo::host_and_library_must_have_the_same {

template <bool>
void GLIBCXX_DEBUG()
{}
template <int>
void GLIBCXX_USE_CXX11_ABI()
{}
template <std::size_t, std::size_t>
void sizes_of_enumerations_and_padded_structures()
{}

template void GLIBCXX_DEBUG<kDebug>();
template void GLIBCXX_USE_CXX11_ABI<kStringAbi>();
template void sizes_of_enumerations_and_padded_structures<kEnumeration, kPair>();

} // namespace tovo::host_and_library_must_have_the_same
