#include <TovoPlatform/LocaleSettings.h>

#include <algorithm>
#include <utility>
#include <vector>

#include <TovoPlatform/ProcessState.h>
#include <TovoPlatform/ThreadTexts.h>

#include "ResourceLock.h"

namespace {

struct Setting {
    int code;
    CString text;
};

constinit tovo::Everlasting<std::vector<Setting>> settings; // few, so in no order

auto Find(int code)
{
    return std::find_if(settings.value.begin(), settings.value.end(),
                        [code](const Setting& setting) { return setting.code == code; });
}

} // namespace

// The copy is taken under the lock; it shares the characters and costs little.
CString GetLocaleSetting(int code, CString defaultText)
{
    const tovo::ThreadTexts* const own = tovo::ThreadTexts::InForce();
    if (const CString* const setting = own ? own->FindSetting(code) : nullptr)
        return *setting;
    const std::lock_guard lock(tovo::ResourceLock());
    const auto found = Find(code);
    return found == settings.value.end() || found->text.IsEmpty() ? defaultText : found->text;
}

void SetLocaleSetting(int code, CString text)
{
    const std::lock_guard lock(tovo::ResourceLock());
    const auto found = Find(code);
    if (found == settings.value.end())
        settings.value.push_back({code, std::move(text)});
    else
        found->text = std::move(text);
}
