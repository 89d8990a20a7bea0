#include <TovoPlatform/NumberText.h>

#include <limits>
#include <string>

#include <gtest/gtest.h>

#include <TovoPlatform/LocaleSettings.h>

namespace {

using Limits = std::numeric_limits<double>;
constexpr double kInfinity = Limits::infinity();

// Takes the user's decimal separator away again.
class NumberTexts : public testing::Test {
protected:
    ~NumberTexts() override { SetLocaleSetting(LOCALE_SDECIMAL, ""); }
};

// clang-format off

TEST(ParseDouble, ReadsTheNumberThatTheTextBeginsWith)
{
    const auto zeros = [](std::size_t count) { return std::string(count, '0'); };
    const std::pair<std::string, double> rows[] = {
        {"", 0.0}, {"abc", 0.0}, {".", 0.0}, {"-", 0.0}, {"e5", 0.0}, {"inf", 0.0}, {"0x10", 0.0},
        {"--1", 0.0}, {"- 1", 0.0}, {"12", 12.0}, {"+1.5", 1.5}, {"-1.5e0", -1.5}, {".5", 0.5},
        {"5.", 5.0}, {"5.e1", 50.0}, {"1e", 1.0}, {"1e+", 1.0}, {"1E-2x", 0.01}, {"1.2.3", 1.2},
        {"1,5", 1.0}, {" \t\r\n\v\f7", 7.0}, {"1e400", kInfinity}, {"2e-324", 0.0},
        {"-1e99999999999999999999999", -kInfinity}, {"1e-99999999999999999999999", 0.0},
        {"1.7976931348623157e308", Limits::max()}, {"1.7976931348623159e308", kInfinity},
        {"4.9406564584124654e-324", Limits::denorm_min()},
        // The number is rounded once, however long its text is.
        {"0." + zeros(700000) + "25e700001", 2.5}, {"25" + zeros(700000) + "e-700001", 2.5},
        {"9007199254740993." + zeros(5000) + "1", 9007199254740994.0}};
    for (const auto& [text, value] : rows)
        EXPECT_EQ(tovo::ParseDouble(CString(text)), value) << text.substr(0, 60);
    EXPECT_EQ(tovo::ParseDouble("-1,25e1", ','), -12.5);
    EXPECT_EQ(tovo::ParseDouble("1,234.5", ','), 1.234) << "only one separator is decimal";
}

TEST(ParseInt, ReadsThePrefixAndSaturates)
{
    const std::pair<const char*, int> rows[] = {
        {"", 0}, {" 12.9", 12}, {"-7x", -7}, {"+7", 7}, {"2147483648", 0x7FFFFFFF},
        {"-2147483648", -0x7FFFFFFF - 1}, {"-99999999999999999999", -0x7FFFFFFF - 1}};
    for (const auto& [text, value] : rows)
        EXPECT_EQ(tovo::ParseInt(text), value) << text;
}

TEST(IsAlphabetic, HoldsForLettersOfAnyAlphabetOnly)
{
    for (const int code : {0x41, 0x7A, 0xAA, 0x391, 0x5D0, 0xAC00, 0xD7A3, 0xFFDC})
        EXPECT_TRUE(tovo::IsAlphabetic(static_cast<char16_t>(code))) << std::hex << code;
    for (const int code : {0x0, 0x35, 0x40, 0x5B, 0xD7, 0x301, 0x660, 0xD7A4, 0xFFDD})
        EXPECT_FALSE(tovo::IsAlphabetic(static_cast<char16_t>(code))) << std::hex << code;
}

TEST_F(NumberTexts, HaveTheUsersSeparatorAndComeBackClean)
{
    const struct { const char* separator; double value; unsigned decimals;
                   const char *shown, *clean; } rows[] = {
        {".", 1234.5, 3, "1234.500", "1234.5"}, {",", 1234.5, 3, "1234,500", "1234.5"},
        {"'", 0.25, 4, "0'2500", "0.25"},       {"::", 0.5, 1, "0.5", "0.5"},
        {".", -0.0004, 3, "0.000", "0"},        {".", -0.0, 0, "0", "0"},
        {".", -kInfinity, 2, "0.00", "0"},      {".", Limits::quiet_NaN(), 0, "0", "0"},
        {",", 0.5, 4000000000u, "0,500000000000000", "0.5"},
        {",", -1e22, 0, "-10000000000000000000000", "-10000000000000000000000"}};
    CString text("old");
    for (const auto& row : rows) {
        SetLocaleSetting(LOCALE_SDECIMAL, row.separator);
        EXPECT_EQ(FloatToNumString(row.value, text, 1, row.decimals, 0), 1);
        EXPECT_EQ(FormatNumString(text, 1, row.decimals, 1), 1);
        EXPECT_EQ(text.ToUtf8(), row.shown);
        CleanNumericString(text, 0);
        EXPECT_EQ(text.ToUtf8(), row.clean) << row.shown;
    }
    const std::pair<const char*, const char*> withComma[] = {
        {"", ""}, {",", ","}, {"abc", "abc"}, {"-,50", "-.5"}, {",00", "0"}, {"1,50e3", "1.5e3"},
        {"1,00cm", "1cm"}, {"1,00,5", "1.00,5"}};
    for (const auto& [displayed, clean] : withComma) {
        text = displayed;
        CleanNumericString(text, 0);
        EXPECT_EQ(text.ToUtf8(), clean) << displayed;
    }
    SetLocaleSetting(LOCALE_SDECIMAL, "");
    EXPECT_EQ(GetLocaleSetting(LOCALE_SDECIMAL, "none"), "none") << "an empty text takes it away";
    ftoa(9.9, text, -1);
    EXPECT_EQ(text, "10");
    ftoa(Limits::lowest(), text, 99);
    EXPECT_EQ(text.GetLength(), 1 + 309 + 1 + 15);
    EXPECT_EQ(tovo::ParseDouble(text), Limits::lowest());
}

TEST_F(NumberTexts, AreRoundedToTheirDecimals)
{
    const struct { const char* separator; const char* text; unsigned decimals;
                   const char* formatted; } rows[] = {
        // What has no more decimals stays as it is, grouped or not.
        {".", "2.5", 3, "2.5"}, {",", "2.5", 3, "2.5"}, {".", "1,234.500", 3, "1,234.500"},
        {",", "1.234", 2, "1.234"}, {",", "1.234.567", 0, "1.234.567"}, {".", "", 0, ""},
        {".", "abc", 0, "abc"}, {".", "e-9", 0, "e-9"}, {".", " 1'234.5 ", 3, "1234.5"},
        {".", "2.123456789", 6, "2.123457"}, {".", "-2.1234565", 6, "-2.123457"},
        {".", "2.12345649999", 6, "2.123456"}, {".", "9.9999996", 6, "10.000000"},
        {".", "999.95cm", 1, "1000.0cm"}, {".", ".9999", 3, "1.000"}, {".", "-.0004", 3, "-.000"},
        {".", "0.5", 0, "1"}, {".", ".4", 0, "0"}, {".", ".5", 0, "1"}, {".", "7.", 0, "7."},
        {".", "0.12345678901234567", 4000000000u, "0.123456789012346"},
        // The reader must not take three decimals for a group.
        {",", "1.23456", 3, "1,235"}, {",", "1,234.56789", 3, "1234,568"},
        {".", "1.234.567,56789", 3, "1234567.568"}, {"'", "0'12345", 3, "0'123"},
        // An exponent shifts the place.
        {".", "2.1234567e3", 3, "2.123457e3"}, {".", "2.1234567e4", 3, "2.1234567e4"},
        {".", "1234.5e-5", 3, "1200e-5"}, {".", "951e-4", 1, "1000e-4"}, {".", "9.9e-5", 3, "0e-5"},
        {".", "1.5e-99999999999999999999", 3, "0e-99999999999999999999"},
        {".", "1.5e99999999999999999999", 3, "1.5e99999999999999999999"}};
    for (const auto& row : rows) {
        SetLocaleSetting(LOCALE_SDECIMAL, row.separator);
        CString text(row.text);
        EXPECT_EQ(FormatNumString(text, 1, row.decimals, 1), 1);
        EXPECT_EQ(text.ToUtf8(), row.formatted) << row.text;
    }
}

// Only a separator that is usual for decimals as well as for groups, and stands where either could,
// depends on what the user has set.
TEST_F(NumberTexts, TypedWithGroupsComeOutClean)
{
    const struct { const char *typed, *withPoint, *withComma; } rows[] = {
        {"1,234.50", "1234.5", "1234.5"}, {"1.234.567", "1234567", "1234567"},
        {"1.234,50", "1234.5", "1234.5"}, {"1.234.567,5", "1234567.5", "1234567.5"},
        {"-0,125", "-0.125", "-0.125"},   {"1234,567", "1234.567", "1234.567"},
        {",125", ".125", ".125"}, {"1,23", "1.23", "1.23"}, {"1,2345", "1.2345", "1.2345"},
        {"1'234.5", "1234.5", "1234.5"},  {"1\u202F234", "1234", "1234"}, {"12,", "12", "12"},
        {"", "", ""}, {",.,", ",.,", ",.,"}, {"x1,5", "x1,5", "x1,5"},
        {"1,234", "1234", "1.234"},       {"-123,456", "-123456", "-123.456"},
        {"1.234", "1.234", "1234"},       {"1,234e5", "1234e5", "1.234e5"}};
    for (const auto& row : rows) {
        for (const char* const user : {".", ","}) {
            SetLocaleSetting(LOCALE_SDECIMAL, user);
            CString text(row.typed);
            CleanIntlNumericString(text, 0);
            EXPECT_EQ(text, *user == '.' ? row.withPoint : row.withComma) << row.typed << user;
        }
    }
}

// clang-format on

} // namespace
