#ifndef TOVOFORMULA_TESTS_TEXTS_H
#define TOVOFORMULA_TESTS_TEXTS_H

#include <algorithm>
#include <chrono>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include <TovoFormula/FmlaExprBase.h>
#include <TovoPlatform/LocaleSettings.h>
#include <TovoPlatform/StringResources.h>

namespace tovo::test {

// Token names as a German host brings them; the other names stay English.
inline constexpr AfxStringResource kGermanNames[] = {
    {6633, u"UND"},   {6649, u"WENN"}, {6663, u"NEIN"},
    {6664, u"NICHT"}, {6666, u"ODER"}, {6681, u"JA"},
};

// The user's language for as long as this object lives. An empty separator leaves the English one.
class UserLanguage {
public:
    UserLanguage(const CString& decimal, const CString& list,
                 std::span<const AfxStringResource> names = {})
    {
        SetLocaleSetting(LOCALE_SDECIMAL, decimal);
        SetLocaleSetting(LOCALE_SLIST, list);
        if (AfxInitExtensionModule(m_Record, names.data(), names.size()))
            m_Module.emplace(m_Record);
        CFmlaExprBase::ReInitExprNames();
    }
    ~UserLanguage()
    {
        m_Module.reset();
        SetLocaleSetting(LOCALE_SDECIMAL, CString());
        SetLocaleSetting(LOCALE_SLIST, CString());
        CFmlaExprBase::ReInitExprNames();
    }
    UserLanguage(const UserLanguage&) = delete;
    UserLanguage& operator=(const UserLanguage&) = delete;

private:
    AFX_EXTENSION_MODULE m_Record;
    std::optional<CDynLinkLibrary> m_Module;
};

// Text and reference table as one line, such as "2 *  Width + 3[4,7,0,]", and the way back.
inline std::string Whole(const CFmlaExprBase& expression)
{
    return expression.GetTextStr().ToUtf8() + "[" + expression.GetPtrStr().ToUtf8() + "]";
}

inline CFmlaExprBase Read(const std::string& encoded)
{
    CFmlaExprBase expression;
    expression.SetFromEncodedString(CString(encoded));
    return expression;
}

inline CFmlaExprBase Expression(const std::string& whole)
{
    const std::size_t bracket = whole.rfind('[');
    CFmlaExprBase expression;
    expression.SetExpr(CString(whole.substr(0, bracket)),
                       CString(whole.substr(bracket + 1, whole.size() - bracket - 2)));
    return expression;
}

inline std::string Repeated(const std::string& part, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += part;
    return text;
}

// The shortest of so many runs.
inline double BestSecondsOf(int runs, const std::function<void()>& work)
{
    // Once a large block was freed, common allocators keep what they get, so that the engine is
    // timed and not the system's paging.
    CString(u' ', 8'000'000).Empty();
    double best = 1e9;
    for (int run = 0; run < runs; ++run) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
        best = std::min(best, spent.count());
    }
    return best;
}

} // namespace tovo::test

#endif
