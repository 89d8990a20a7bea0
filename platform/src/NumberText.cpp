#include <TovoPlatform/NumberText.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <system_error>

#include <TovoPlatform/LocaleSettings.h>
#include <TovoPlatform/Maths.h>

#include "WhiteSpace.h"

namespace {

constexpr char16_t kPoint = '.';
constexpr char16_t kComma = ',';
constexpr char16_t kApostrophe = '\'';
constexpr char16_t kTypographicApostrophe = 0x2019;

constexpr int kMaxDecimals = 15; // what a double holds
constexpr int kMaxErrorTextLength = 1028;

constexpr std::int64_t kBase = 10;
// Beyond what any count of digits can make up for, so a larger exponent means the same.
constexpr std::int64_t kExponentLimit = 1'000'000'000'000;
constexpr std::int64_t kLargestOrder = std::numeric_limits<double>::max_exponent10;
constexpr std::int64_t kSmallestOrder = -324; // of half the smallest positive double

// The run-time library's answer would depend on the locale of the process.
bool IsDigit(char16_t character)
{
    return character >= '0' && character <= '9';
}

bool IsSign(char16_t character)
{
    return character == '-' || character == '+';
}

// Zero behind the end, which is no part of any number.
char16_t CharacterAt(WideView text, std::size_t at)
{
    return at < text.size() ? text[at] : char16_t();
}

std::size_t EndOfDigits(WideView text, std::size_t at)
{
    while (IsDigit(CharacterAt(text, at)))
        ++at;
    return at;
}

std::size_t EndOfSign(WideView text, std::size_t at)
{
    return IsSign(CharacterAt(text, at)) ? at + 1 : at;
}

// What the run-time library's conversions pass over, and no more.
WideView WithoutBlanksInFront(WideView text)
{
    while (!text.empty() && (text[0] == ' ' || (text[0] >= '\t' && text[0] <= '\r')))
        text.remove_prefix(1);
    return text;
}

void AppendDigits(std::string& digits, WideView part)
{
    for (const char16_t digit : part)
        digits += static_cast<char>(digit);
}

// A sign and digits, cut off at the limit in either direction; 0 if there are no digits.
std::int64_t ReadWhole(WideView text, std::int64_t limit)
{
    const std::size_t start = EndOfSign(text, 0);
    std::int64_t value = 0;
    for (const char16_t digit : text.substr(start, EndOfDigits(text, start) - start))
        value = std::min(value * kBase + (digit - '0'), limit);
    return CharacterAt(text, 0) == '-' ? -value : value;
}

// What begins at the place in a number text, if it is an exponent; else 0.
std::int64_t ExponentAt(WideView text, std::size_t at)
{
    const bool isExponent = CharacterAt(text, at) == 'e' || CharacterAt(text, at) == 'E';
    return isExponent ? ReadWhole(text.substr(at + 1), kExponentLimit) : 0;
}

// A positive number d.ddd times ten to the order. No digits mean zero.
struct Decimal {
    std::string digits; // without zeros in front
    std::int64_t order = 0;
};

Decimal ReadDecimal(WideView text, char16_t decimalSeparator)
{
    Decimal number;
    const std::size_t wholeEnd = EndOfDigits(text, 0);
    AppendDigits(number.digits, text.substr(0, wholeEnd));

    std::size_t end = wholeEnd;
    const char16_t separator = CharacterAt(text, wholeEnd);
    if (end < text.size() && (separator == kPoint || separator == decimalSeparator)) {
        end = EndOfDigits(text, wholeEnd + 1);
        AppendDigits(number.digits, text.substr(wholeEnd + 1, end - wholeEnd - 1));
    }

    const std::size_t zeros = std::min(number.digits.find_first_not_of('0'), number.digits.size());
    number.digits.erase(0, zeros);
    number.order = static_cast<std::int64_t>(wholeEnd) - static_cast<std::int64_t>(zeros) - 1 +
                   ExponentAt(text, end);
    return number;
}

// Powers of ten that a double holds exactly.
constexpr auto kPowersOfTen = [] {
    std::array<double, 23> powers{1.0};
    for (std::size_t power = 1; power < powers.size(); ++power)
        powers[power] = 10.0 * powers[power - 1];
    return powers;
}();

// What people write: a whole number over a power of ten, both exact, so that the one division
// rounds as the conversion of all digits would.
std::optional<double> PlainDouble(const Decimal& number)
{
    const auto decimals = static_cast<std::int64_t>(number.digits.size()) - 1 - number.order;
    if (number.digits.size() > kMaxDecimals || decimals < 0 || decimals >= std::ssize(kPowersOfTen))
        return std::nullopt;
    std::int64_t whole = 0;
    for (const char digit : number.digits)
        whole = whole * kBase + (digit - '0');
    return static_cast<double>(whole) / kPowersOfTen[static_cast<std::size_t>(decimals)];
}

double DoubleOf(Decimal number)
{
    constexpr double kTooLarge = std::numeric_limits<double>::infinity();
    if (number.digits.empty() || number.order < kSmallestOrder)
        return 0.0;
    if (number.order > kLargestOrder)
        return kTooLarge;
    if (const std::optional<double> plain = PlainDouble(number))
        return *plain;
    // With the separator behind the first digit the exponent stays small, however many digits
    // there are.
    number.digits.insert(1, 1, '.');
    const std::string text = number.digits + 'e' + std::to_string(number.order);
    double value = 0.0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    // The conversion does not tell too large from too small; the order does.
    if (read.ec == std::errc::result_out_of_range)
        return number.order > 0 ? kTooLarge : 0.0;
    return value;
}

char16_t UserDecimalSeparator()
{
    const CString separator = GetLocaleSetting(LOCALE_SDECIMAL, ".");
    return separator.GetLength() == 1 ? separator[0] : kPoint;
}

int CountOfDecimals(unsigned int decimals)
{
    return static_cast<int>(std::min<unsigned int>(decimals, kMaxDecimals));
}

// The separator may itself be a character that otherwise serves the eye only.
WideText WithoutOrnaments(WideView text, char16_t decimalSeparator)
{
    WideText bare(text);
    std::erase_if(bare, [decimalSeparator](char16_t character) {
        const bool isOrnament = tovo::IsWhiteSpace(character) || character == kApostrophe ||
                                character == kTypographicApostrophe;
        return isOrnament && character != decimalSeparator;
    });
    return bare;
}

// The places in a number text. Behind its end an exponent or anything else may follow.
struct NumberPlaces {
    std::size_t start;   // of the digits and separators, behind the sign
    std::size_t end;     // of the digits and separators
    std::size_t decimal; // the decimal separator; the end, if there is none
};

// Without groups the first separator is the decimal one, and a second one ends the number.
NumberPlaces FindDisplayedPlaces(WideView text, char16_t decimalSeparator)
{
    const std::size_t start = EndOfSign(text, 0);
    const std::size_t wholeEnd = EndOfDigits(text, start);
    const char16_t separator = CharacterAt(text, wholeEnd);
    const bool hasDecimals =
        wholeEnd < text.size() && (separator == kPoint || separator == decimalSeparator);
    return {start, hasDecimals ? EndOfDigits(text, wholeEnd + 1) : wholeEnd, wholeEnd};
}

// Whether a separator of a kind that is usual for decimals as well as for groups looks like the
// one behind the thousands.
bool StandsBehindThousands(WideView number, std::size_t at)
{
    constexpr std::size_t kGroupLength = 3;
    const bool isLoneZero = at == 1 && number[0] == '0';
    return at >= 1 && at <= kGroupLength && !isLoneZero && number.size() - at - 1 == kGroupLength;
}

// The number consists of digits and separators. Gives its size, if it has no decimal separator.
std::size_t FindTypedDecimal(WideView number, char16_t decimalSeparator)
{
    const auto isSeparator = [](char16_t character) { return !IsDigit(character); };
    const auto found = std::find_if(number.rbegin(), number.rend(), isSeparator);
    if (found == number.rend())
        return number.size();
    // A kind that occurs more than once groups; of two kinds the last one is decimal.
    const auto last = static_cast<std::size_t>(number.rend() - found - 1);
    if (number.find(number[last]) != last)
        return number.size();
    if (EndOfDigits(number, 0) != last || number[last] == decimalSeparator)
        return last;
    return StandsBehindThousands(number, last) ? number.size() : last;
}

// With groups every separator belongs to the number, so all are looked at before one is chosen.
NumberPlaces FindTypedPlaces(WideView text, char16_t decimalSeparator)
{
    const std::size_t start = EndOfSign(text, 0);
    const auto isOther = [decimalSeparator](char16_t character) {
        return !IsDigit(character) && character != kPoint && character != kComma &&
               character != decimalSeparator;
    };
    const auto rest = text.substr(start);
    const auto length = std::find_if(rest.begin(), rest.end(), isOther) - rest.begin();
    const WideView number = rest.substr(0, static_cast<std::size_t>(length));
    return {start, start + number.size(), start + FindTypedDecimal(number, decimalSeparator)};
}

void DropZerosBehindPoint(WideText& number)
{
    if (number.find(kPoint) == WideText::npos)
        return;
    number.resize(number.find_last_not_of('0') + 1);
    if (number.back() == kPoint)
        number.pop_back();
}

// Writes the digits between the places with "." for the decimal separator and no other one. A text
// without a digit there is no number and stays.
WideText CleanNumber(WideView text, const NumberPlaces& places, char16_t decimalSeparator)
{
    WideText number;
    for (std::size_t at = places.start; at < places.end; ++at) {
        if (at == places.decimal)
            number += kPoint;
        else if (IsDigit(text[at]))
            number += text[at];
    }
    if (std::none_of(number.begin(), number.end(), IsDigit))
        return WideText(text);

    // One more separator ends the number, and must not come to stand behind its whole part.
    const WideView rest = text.substr(places.end);
    const char16_t next = CharacterAt(rest, 0);
    if (rest.empty() || (next != kPoint && next != decimalSeparator))
        DropZerosBehindPoint(number);
    if (number.empty())
        number += '0';
    return WideText(text.substr(0, places.start)).append(number).append(rest);
}

// Rounds to so many digits, half away from zero, with zeros for the others. True if the carry has
// put one more digit in front.
bool RoundDigits(WideText& digits, std::int64_t kept)
{
    auto at = static_cast<std::size_t>(std::max<std::int64_t>(kept, 0));
    bool carries = kept >= 0 && digits[at] >= '5';
    std::fill(digits.begin() + static_cast<std::ptrdiff_t>(at), digits.end(), '0');
    while (carries && at-- > 0) {
        carries = digits[at] == '9';
        digits[at] = static_cast<char16_t>(carries ? '0' : digits[at] + 1);
    }
    if (carries)
        digits.insert(0, 1, '1');
    return carries;
}

// Leaves a number alone that has no more decimals. A rounded one is written without groups and with
// the user's separator, so that every reader takes it for the same number.
WideText RoundedNumber(WideView text, const NumberPlaces& places, int decimals,
                       char16_t decimalSeparator)
{
    WideText digits;
    std::size_t whole = 0; // digits in front of the decimal separator
    for (std::size_t at = places.start; at < places.end; ++at) {
        if (!IsDigit(text[at]))
            continue;
        digits += text[at];
        whole += at < places.decimal ? 1 : 0;
    }
    const std::int64_t wanted = decimals + ExponentAt(text, places.end);
    const std::int64_t kept = static_cast<std::int64_t>(whole) + wanted;
    if (digits.empty() || kept >= std::ssize(digits))
        return WideText(text);

    whole += RoundDigits(digits, kept) ? 1 : 0;
    WideText number(text.substr(0, places.start));
    number.append(digits, 0, whole);
    if (wanted > 0)
        number.append(1, decimalSeparator).append(digits, whole, static_cast<std::size_t>(wanted));
    else if (whole == 0)
        number += '0';
    return number.append(text.substr(places.end));
}

} // namespace

namespace tovo {

double ParseDouble(const CString& text, char16_t decimalSeparator)
{
    return ParseDouble(text.View(), decimalSeparator);
}

double ParseDouble(WideView text, char16_t decimalSeparator)
{
    const WideView number = WithoutBlanksInFront(text);
    // Zero has no sign: a person who reads or writes numbers makes no difference there.
    const double value =
        DoubleOf(ReadDecimal(number.substr(EndOfSign(number, 0)), decimalSeparator));
    return CharacterAt(number, 0) == '-' && value != 0.0 ? -value : value;
}

int ParseInt(const CString& text)
{
    constexpr std::int64_t kBeyondInt = std::int64_t{std::numeric_limits<int>::max()} + 1;
    const std::int64_t value = ReadWhole(WithoutBlanksInFront(text.View()), kBeyondInt);
    return NarrowToInt(static_cast<double>(value));
}

CString RuntimeErrorText(int errorNumber)
{
    return CString(std::generic_category().message(errorNumber)).Left(kMaxErrorTextLength);
}

} // namespace tovo

void ftoa(double value, CString& text, short decimals)
{
    // Holds the digits of the largest double, a sign, a point and the decimals.
    constexpr std::size_t kLongest = kLargestOrder + 1 + 2 + kMaxDecimals;
    std::array<char, kLongest> buffer;
    // Neither an infinity nor NaN could be read back as a number.
    const double finite = std::isfinite(value) ? value : 0.0;
    const auto written =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), finite,
                      std::chars_format::fixed, std::clamp<int>(decimals, 0, kMaxDecimals));
    std::string_view number(buffer.data(), static_cast<std::size_t>(written.ptr - buffer.data()));
    // A small negative value may have lost all that made it negative.
    if (number.find_first_of("123456789") == std::string_view::npos && number[0] == '-')
        number.remove_prefix(1);
    text = CString(number);
}

int FormatNumString(CString& text, int, unsigned int decimals, int)
{
    const char16_t separator = UserDecimalSeparator();
    const WideText bare = WithoutOrnaments(text.View(), separator);
    const NumberPlaces places = FindTypedPlaces(bare, separator);
    text = CString(RoundedNumber(bare, places, CountOfDecimals(decimals), separator));
    return 1;
}

int FloatToNumString(double value, CString& text, int, unsigned int decimals, int)
{
    ftoa(value, text, static_cast<short>(CountOfDecimals(decimals)));
    const int point = text.Find(kPoint);
    if (point >= 0)
        text.SetAt(point, UserDecimalSeparator());
    return 1;
}

void CleanNumericString(CString& text, int)
{
    const char16_t separator = UserDecimalSeparator();
    const WideText bare = WithoutOrnaments(text.View(), separator);
    text = CString(CleanNumber(bare, FindDisplayedPlaces(bare, separator), separator));
}

void CleanIntlNumericString(CString& text, int)
{
    const char16_t separator = UserDecimalSeparator();
    const WideText bare = WithoutOrnaments(text.View(), separator);
    text = CString(CleanNumber(bare, FindTypedPlaces(bare, separator), separator));
}
