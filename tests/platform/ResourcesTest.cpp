#include <TovoPlatform/ArgumentValidator.h>
#include <TovoPlatform/InvalidArgument.h>
#include <TovoPlatform/LocaleSettings.h>
#include <TovoPlatform/StringResources.h>

#include <iterator>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace {

const CString kOldText("old");
const CString kNewText("new");

const AfxStringResource kOldStrings[] = {
    {50300, kOldText.GetString()}, {50100, kOldText.GetString()}, {50200, kOldText.GetString()}};
const AfxStringResource kNewStrings[] = {{50200, kNewText.GetString()}};

std::string Load(UINT id)
{
    CString text("unchanged");
    const BOOL isLoaded = text.LoadString(id);
    EXPECT_EQ(isLoaded, text == "unchanged" ? 0 : 1) << id;
    return text.ToUtf8();
}

TEST(ModuleChain, AsksTheNewestModuleThatIsStillThere)
{
    AFX_EXTENSION_MODULE older;
    AFX_EXTENSION_MODULE newer;
    ASSERT_EQ(AfxInitExtensionModule(older, kOldStrings, std::size(kOldStrings)), 1);
    ASSERT_EQ(AfxInitExtensionModule(newer, kNewStrings, std::size(kNewStrings)), 1);
    EXPECT_EQ(Load(50200), "unchanged") << "a record alone is not on the chain";

    std::optional<CDynLinkLibrary> first(std::in_place, older);
    std::optional<CDynLinkLibrary> second(std::in_place, newer, 1);
    for (const UINT id : {50100u, 50300u})
        EXPECT_EQ(Load(id), "old") << id;
    EXPECT_EQ(Load(50200), "new");
    EXPECT_EQ(Load(50201), "unchanged");

    second.reset();
    EXPECT_EQ(Load(50200), "old");
    second.emplace(newer);
    first.reset();
    EXPECT_EQ(Load(50200), "new") << "a module may leave before a newer one";
    EXPECT_EQ(Load(50100), "unchanged");
}

TEST(ModuleChain, RefusesABadTableAndLeavesTheRecordAlone)
{
    const AfxStringResource twice[] = {
        {7, kOldText.GetString()}, {8, kOldText.GetString()}, {7, kNewText.GetString()}};
    const AfxStringResource textless[] = {{7, kOldText.GetString()}, {8, nullptr}};
    AFX_EXTENSION_MODULE module{kNewStrings, 1};
    EXPECT_EQ(AfxInitExtensionModule(module, nullptr, 0), 0);
    EXPECT_EQ(AfxInitExtensionModule(module, twice, std::size(twice)), 0);
    EXPECT_EQ(AfxInitExtensionModule(module, textless, std::size(textless)), 0);
    EXPECT_EQ(module.strings, kNewStrings);
    EXPECT_EQ(module.stringCount, 1u);
}

TEST(LocaleSettings, AnEmptyTextTakesTheSettingAway)
{
    SetLocaleSetting(LOCALE_SLIST, ";");
    EXPECT_EQ(GetLocaleSetting(LOCALE_SLIST, "default"), ";");
    SetLocaleSetting(LOCALE_SLIST, CString());
    EXPECT_EQ(GetLocaleSetting(LOCALE_SLIST, "default"), "default");
}

TEST(ArgumentValidator, AFailedCheckNamesItsPlace)
{
    try {
        CArgumentValidator::ValidateIsTrue("Cell.cpp", 17, true, "row", "GetCell");
        CArgumentValidator::ValidateNonNullPointer("Cell.cpp", 17, "", "row", "GetCell");
        CArgumentValidator::ValidateNonNullPointer("Cell.cpp", 18, nullptr, "row", "GetCell");
        FAIL() << "null was let through";
    } catch (const CInvalidArgException& error) {
        const std::string what = error.what();
        for (const char* const part : {"Cell.cpp", "18", "row", "GetCell"})
            EXPECT_NE(what.find(part), std::string::npos) << part << " in " << what;
    }
    EXPECT_THROW(CArgumentValidator::ValidateIsTrue(nullptr, 0, false, nullptr, nullptr),
                 CInvalidArgException);
}

} // namespace
