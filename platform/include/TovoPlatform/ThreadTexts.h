#ifndef TOVOPLATFORM_THREADTEXTS_H
#define TOVOPLATFORM_THREADTEXTS_H

#include <map>
#include <span>
#include <vector>

#include <TovoPlatform/StringResources.h>
#include <TovoPlatform/WideString.h>

namespace tovo {

// String resources and regional settings that one thread finds before those of the process. Does
// not change once it is made, so that any number of threads may use it at once.
class TOVO_PLATFORM_API ThreadTexts {
public:
    // Of two strings with one id the first counts. Copies the table, not the texts, which must live
    // as long as anything that was read from here.
    ThreadTexts(std::span<const AfxStringResource> strings, std::map<int, CString> settings);

    // Null for what is not here.
    const char16_t* FindString(UINT id) const;
    const CString* FindSetting(int code) const;

    // What this thread has in force, null for nothing of its own.
    static const ThreadTexts* InForce() noexcept;
    // Puts these in force, which must live as long as they are; null leaves the thread to what the
    // process has. Returns what was in force before.
    static const ThreadTexts* Exchange(const ThreadTexts* texts) noexcept;

private:
    std::vector<AfxStringResource> m_Strings; // by id
    std::map<int, CString> m_Settings;
};

// Puts texts in force on this thread from construction to destruction. Destroy it where it was
// made, in reverse order.
class ThreadTextsInForce {
public:
    explicit ThreadTextsInForce(const ThreadTexts* texts) noexcept
        : m_Found(ThreadTexts::Exchange(texts))
    {}
    ~ThreadTextsInForce() { ThreadTexts::Exchange(m_Found); }

    ThreadTextsInForce(const ThreadTextsInForce&) = delete;
    ThreadTextsInForce& operator=(const ThreadTextsInForce&) = delete;

private:
    const ThreadTexts* m_Found;
};

} // namespace tovo

#endif
