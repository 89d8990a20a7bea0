#include <TovoPlatform/ThreadTexts.h>

#include <utility>

#include "SortedStrings.h"

namespace tovo {
namespace {

constinit thread_local const ThreadTexts* inForce = nullptr;

} // namespace

ThreadTexts::ThreadTexts(std::span<const AfxStringResource> strings,
                         std::map<int, CString> settings)
    : m_Strings(SortedById(strings)), m_Settings(std::move(settings))
{}

const char16_t* ThreadTexts::FindString(UINT id) const
{
    return FindById(m_Strings, id);
}

const CString* ThreadTexts::FindSetting(int code) const
{
    const auto found = m_Settings.find(code);
    return found == m_Settings.end() ? nullptr : &found->second;
}

const ThreadTexts* ThreadTexts::InForce() noexcept
{
    return inForce;
}

const ThreadTexts* ThreadTexts::Exchange(const ThreadTexts* texts) noexcept
{
    return std::exchange(inForce, texts);
}

} // namespace tovo
