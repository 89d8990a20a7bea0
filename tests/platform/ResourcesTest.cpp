#include <TovoPlatform/ArgumentValidator.h>
#include <TovoPlatform/InvalidArgument.h>
#include <TovoPlatform/StringResources.h>
#include <TovoPlatform/WideString.h>

#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace {

const char16_t kOld[] = {'o', 'l', 'd', 0};
const char16_t kNew[] = {'n', 'e', 'w', 0};
const AfxStringResource kOldStrings[] = {{50300, kOld}, {50100, kOld}, {50200, kOld}};
const AfxStringResource kNewStrings[] = {{50200, kNew}};

std::string Load(UINT id)
{
    CString text("unchanged");
    const bool isLoaded = text.LoadString(id) != 0;
    return isLoaded == (text == "unchanged") ? "confused" : text.ToUtf8();
}

TEST(ModuleChain, AsksTheNewestModuleThatIsStillThere)
{
    AFX_EXTENSION_MODULE older, newer;
    EXPECT_EQ(AfxInitExtensionModule(older, kOldStrings, 3), 1);
    EXPECT_EQ(AfxInitExtensionModule(newer, kNewStrings, 1), 1);
    EXPECT_EQ(Load(50200), "unchanged") << "a record alone is not on the chain";

    std::optional<CDynLinkLibrary> first(std::in_place, older);
    std::optional<CDynLinkLibrary> second(std::in_place, newer, 1);
    EXPECT_EQ(Load(50100) + Load(50200) + Load(50300) + Load(50201), "oldnewoldunchanged");
    second.reset();
    EXPECT_EQ(Load(50200), "old");
    second.emplace(newer);
    first.reset();
    EXPECT_EQ(Load(50200), "new") << "a module may leave before a newer one";
}

TEST(ModuleChain, RefusesABadTableAndLeavesTheRecordAlone)
{
    const AfxStringResource bad[] = {{7, kOld}, {8, kOld}, {7, kOld}, {9, nullptr}};
    AFX_EXTENSION_MODULE module{kNewStrings, 1};
    EXPECT_EQ(AfxInitExtensionModule(module, nullptr, 0), 0);
    EXPECT_EQ(AfxInitExtensionModule(module, bad, 3), 0) << "one id twice";
    EXPECT_EQ(AfxInitExtensionModule(module, bad + 2, 2), 0) << "an id without a text";
    EXPECT_EQ(module.strings, kNewStrings);
}

TEST(ArgumentValidator, AFailedCheckNamesItsPlace)
{
    CArgumentValidator::ValidateIsTrue("Cell.cpp", 17, true, "row", "GetCell");
    try {
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
