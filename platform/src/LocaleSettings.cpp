#include <TovoPlatform/LocaleSettings.h>

#include <map>
#include <mutex>
#include <utility>

#include <TovoPlatform/ThreadTexts.h>

namespace {

struct Settings {
    std::mutex mutex;
    std::map<int, CString> texts;
};

Settings& TheSettings()
{
    // Never destroyed, because static objects of hosts may still format numbers while the process
    // ends.
    static Settings& settings = *new Settings;
    return settings;
}

} // namespace

// The copy is taken under the lock; it shares the characters and costs little.
CString GetLocaleSetting(int code, CString defaultText)
{
    const tovo::ThreadTexts* const own = tovo::ThreadTexts::InForce();
    if (const CString* const setting = own ? own->FindSetting(code) : nullptr)
        return *setting;
    Settings& settings = TheSettings();
    const std::lock_guard lock(settings.mutex);
    const auto found = settings.texts.find(code);
    return found == settings.texts.end() ? defaultText : found->second;
}

void SetLocaleSetting(int code, CString text)
{
    Settings& settings = TheSettings();
    const std::lock_guard lock(settings.mutex);
    if (text.IsEmpty())
        settings.texts.erase(code);
    else
        settings.texts[code] = std::move(text);
}
