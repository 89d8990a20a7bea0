#include <TovoPlatform/NumberText.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <TovoPlatform/LocaleSettings.h>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Sets the user's decimal separator and takes the setting away again.
class UserSeparator {
public:
    explicit UserSeparator(const char* separator) { SetLocaleSetting(LOCALE_SDECIMAL, separator); }
    ~UserSeparator() { SetLocaleSetting(LOCALE_SDECIMAL, CString()); }
};

std::string Zeros(std::size_t count)
{
    return std::string(count, '0');
}

TEST(TextToDouble, ReadsTheNumberThatTheTextBeginsWith)
{
    const std::pair<const char*, double> rows[] = {
        {"", 0.0},     {"abc", 0.0},         {".", 0.0},      {"-", 0.0},     {"e5", 0.0},
        {"inf", 0.0},  {"0x10", 0.0},        {"--1", 0.0},    {"- 1", 0.0},   {"12", 12.0},
        {"+1.5", 1.5}, {"-1.5e0", -1.5},     {".5", 0.5},     {"5.", 5.0},    {"5.e1", 50.0},
        {"1e", 1.0},   {"1e+", 1.0},         {"1E-2x", 0.01}, {"1.2.3", 1.2}, {"1,5", 1.0},
        {"0.1", 0.1},  {" \t\r\n\v\f7", 7.0}};
    for (const auto& [text, value] : rows)
        EXPECT_EQ(tovo::TextToDouble(text), value) << text;
}

TEST(TextToDouble, IsRoundedOnceHoweverLongTheTextIs)
{
    const std::pair<std::string, double> rows[] = {
        {"1e400", kInfinity},
        {"-1e99999999999999999999999", -kInfinity},
        {"1.7976931348623157e308", std::numeric_limits<double>::max()},
        {"1.7976931348623159e308", kInfinity},
        {"4.9406564584124654e-324", std::numeric_limits<double>::denorm_min()},
        {"2e-324", 0.0},
        {"1e-99999999999999999999999", 0.0},
        {"0." + Zeros(700000) + "25e700001", 2.5},
        {"25" + Zeros(700000) + "e-700001", 2.5},
        {"9007199254740993." + Zeros(5000) + "1", 9007199254740994.0}};
    for (const auto& [text, value] : rows)
        EXPECT_EQ(tovo::TextToDouble(CString(text)), value) << text.substr(0, 60);
}

TEST(TextToDouble, TakesTheGivenSeparatorAsWellAsThePoint)
{
    EXPECT_EQ(tovo::TextToDouble("-1,25e1", ','), -12.5);
    EXPECT_EQ(tovo::TextToDouble("1.25", ','), 1.25);
    EXPECT_EQ(tovo::TextToDouble("1,234.5", ','), 1.234) << "only one separator is decimal";
}

TEST(TextToInt, ReadsThePrefixAndSaturates)
{
    constexpr int kLowest = std::numeric_limits<int>::lowest();
    constexpr int kHighest = std::numeric_limits<int>::max();
    const std::pair<const char*, int> rows[] = {{"", 0},
                                                {" 12.9", 12},
                                                {"-7x", -7},
                                                {"+7", 7},
                                                {"2147483647", kHighest},
                                                {"2147483648", kHighest},
                                                {"-2147483648", kLowest},
                                                {"-99999999999999999999", kLowest}};
    for (const auto& [text, value] : rows)
        EXPECT_EQ(tovo::TextToInt(text), value) << text;
}

TEST(IsAlphabetic, HoldsForLettersOfAnyAlphabetOnly)
{
    for (const int code : {0x41, 0x7A, 0xAA, 0x2C1, 0x391, 0x5D0, 0x9FFF, 0xAC00, 0xD7A3, 0xFFDC})
        EXPECT_TRUE(tovo::IsAlphabetic(static_cast<WCHAR>(code))) << std::hex << code;
    for (const int code :
         {0x0, 0x40, 0x5B, 0x35, 0xD7, 0x2C2, 0x301, 0x660, 0xD7A4, 0xD800, 0xFFDD})
        EXPECT_FALSE(tovo::IsAlphabetic(static_cast<WCHAR>(code))) << std::hex << code;
}

TEST(Ftoa, WritesPlainFixedDecimals)
{
    const struct {
        double value;
        short decimals;
        const char* text;
    } rows[] = {{-0.25, 2, "-0.25"},
                {-0.0004, 3, "0.000"},
                {-0.0, 0, "0"},
                {9.9, -1, "10"},
                {0.1, 99, "0.100000000000000"},
                {1e22, 0, "10000000000000000000000"},
                {-kInfinity, 2, "0.00"},
                {std::nan(""), 0, "0"}};
    for (const auto& row : rows) {
        CString text("old");
        ftoa(row.value, text, row.decimals);
        EXPECT_EQ(text.ToUtf8(), row.text) << row.value << " with " << row.decimals;
    }
    CString longest;
    ftoa(std::numeric_limits<double>::lowest(), longest, 15);
    EXPECT_EQ(tovo::TextToDouble(longest), std::numeric_limits<double>::lowest());
}

TEST(DisplayText, HasTheUsersSeparatorAndComesBackClean)
{
    const struct {
        const char* separator;
        double value;
        unsigned int decimals;
        const char *shown, *clean;
    } rows[] = {{".", 1234.5, 3, "1234.500", "1234.5"},
                {",", 1234.5, 3, "1234,500", "1234.5"},
                {"'", 0.25, 4, "0'2500", "0.25"},
                {"::", 0.5, 1, "0.5", "0.5"},
                {",", 0.5, 4000000000u, "0,500000000000000", "0.5"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.value << " with " << row.separator);
        const UserSeparator separator(row.separator);
        CString text;
        EXPECT_EQ(FloatToNumString(row.value, text, 1, row.decimals, 0), 1);
        EXPECT_EQ(text.ToUtf8(), row.shown);
        EXPECT_EQ(FormatNumString(text, 1, row.decimals, 1), 1);
        EXPECT_EQ(text.ToUtf8(), row.shown);
        CleanNumericString(text, 0);
        EXPECT_EQ(text.ToUtf8(), row.clean);
    }
}

TEST(CleanNumericString, LeavesWhatIsNoNumberReadable)
{
    const UserSeparator separator(",");
    const struct {
        const char *text, *clean;
        double value;
    } rows[] = {{"", "", 0.0},          {",", ",", 0.0},          {"abc", "abc", 0.0},
                {"-,50", "-.5", -0.5},  {",00", "0", 0.0},        {"1,50e3", "1.5e3", 1500.0},
                {"1,00cm", "1cm", 1.0}, {"1,00,5", "1.00,5", 1.0}};
    for (const auto& row : rows) {
        CString text(row.text);
        CleanNumericString(text, 0);
        EXPECT_EQ(text.ToUtf8(), row.clean) << row.text;
        EXPECT_EQ(tovo::TextToDouble(text), row.value) << row.text;
    }
}

CString CleanTyped(const char* typed, const char* userSeparator)
{
    const UserSeparator separator(userSeparator);
    CString text(typed);
    CleanIntlNumericString(text, 0);
    return text;
}

TEST(CleanIntlNumericString, TellsGroupsFromDecimals)
{
    const std::pair<const char*, const char*> rows[] = {{"1,234.50", "1234.5"},
                                                        {"1.234,50", "1234.5"},
                                                        {"1.234.567", "1234567"},
                                                        {"1.234.567,5", "1234567.5"},
                                                        {"1234,567", "1234.567"},
                                                        {"-0,125", "-0.125"},
                                                        {"0.125", "0.125"},
                                                        {",125", ".125"},
                                                        {"1,23", "1.23"},
                                                        {"1,2345", "1.2345"},
                                                        {"1 234,5", "1234.5"},
                                                        {"1'234.5", "1234.5"},
                                                        {"1\u202F234", "1234"},
                                                        {"12,", "12"},
                                                        {"", ""},
                                                        {",.,", ",.,"},
                                                        {"x1,5", "x1,5"}};
    for (const auto& [typed, clean] : rows) {
        EXPECT_EQ(CleanTyped(typed, "."), clean) << typed;
        EXPECT_EQ(CleanTyped(typed, ","), clean) << typed;
    }
}

TEST(CleanIntlNumericString, TheUsersSeparatorAloneIsDecimalAndTheOtherMayGroup)
{
    const struct {
        const char *typed, *withPoint, *withComma;
    } rows[] = {{"1,234", "1234", "1.234"},
                {"1.234", "1.234", "1234"},
                {"-123,456", "-123456", "-123.456"},
                {"1,234e5", "1234e5", "1.234e5"}};
    for (const auto& row : rows) {
        EXPECT_EQ(CleanTyped(row.typed, "."), row.withPoint) << row.typed;
        EXPECT_EQ(CleanTyped(row.typed, ","), row.withComma) << row.typed;
    }
}

} // namespace
