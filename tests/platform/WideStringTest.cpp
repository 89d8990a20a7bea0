#include <TovoPlatform/WideString.h>

#include <iterator>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <TovoPlatform/InvalidArgument.h>

namespace {

CString Units(std::initializer_list<int> units)
{
    CString text;
    for (const int unit : units)
        text += static_cast<char16_t>(unit);
    return text;
}

TEST(WideString, CarriesEveryCodePointOverTheUtf8Border)
{
    // clang-format off
    const std::pair<std::string, CString> rows[] = {
        {std::string("a\0\x7F", 3), Units({'a', 0, 0x7F})}, {"\xC2\x80", Units({0x80})},
        {"\xDF\xBF\xE0\xA0\x80", Units({0x7FF, 0x800})}, {"\xED\x9F\xBF", Units({0xD7FF})},
        {"\xEE\x80\x80\xEF\xBF\xBF", Units({0xE000, 0xFFFF})},
        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", Units({0xD800, 0xDC00, 0xDBFF, 0xDFFF})}};
    // clang-format on
    for (const auto& [utf8, wide] : rows) {
        EXPECT_EQ(CString(utf8), wide) << utf8;
        EXPECT_EQ(wide.ToUtf8(), utf8);
    }
    // A surrogate without its other half is replaced.
    EXPECT_EQ(Units({0xDC00, 0xDC00, 0xDBFF, '>'}).ToUtf8(), "\uFFFD\uFFFD\uFFFD>");
    EXPECT_EQ(Units({0xD800, 0xD800, 0xDC00}).ToUtf8(), "\uFFFD\U00010000");
}

TEST(WideString, EachByteOutsideWellFormedUtf8IsReplaced)
{
    // Each byte in angle brackets is bad: trail bytes alone, sequences cut short, overlong ones,
    // a surrogate, what lies behind the last code point, and bytes that lead nothing.
    for (const std::string utf8 :
         {"<\x80>", "<\xE2\x82>", "<\xC1\xBF>", "<\xE0\x9F\xBF>", "<\xF0\x8F\xBF\xBF>",
          "<\xED\xA0\x80>", "<\xF4\x90\x80\x80>", "<\xF8\xFF>"}) {
        const CString bad(char16_t(0xFFFD), static_cast<int>(utf8.size()) - 2);
        EXPECT_EQ(CString(utf8), "<" + bad + ">") << testing::PrintToString(utf8);
    }
    EXPECT_EQ(CString("<\xE2\x82"), "<" + CString(char16_t(0xFFFD), 2)) << "cut short by the end";
}

// clang-format off
TEST(WideString, IndexesOutsideThrowAndRangesAreClipped)
{
    constexpr int kFar = 0x7FFFFFFF;
    CString text("abcde");
    EXPECT_EQ(text[5], 0) << "the length gives the terminating zero";
    EXPECT_THROW(text.GetAt(-1), CInvalidArgException);
    EXPECT_THROW(text.GetAt(6), CInvalidArgException);
    EXPECT_THROW(text.SetAt(-1, 'x'), CInvalidArgException);
    EXPECT_THROW(text.SetAt(5, 'x'), CInvalidArgException);

    EXPECT_EQ(text.Left(-1) + '|' + text.Left(2) + '|' + text.Left(kFar), "|ab|abcde");
    EXPECT_EQ(text.Right(-kFar) + '|' + text.Right(2) + '|' + text.Right(kFar), "|de|abcde");
    EXPECT_EQ(text.Mid(2) + '|' + text.Mid(-2) + '|' + text.Mid(kFar), "cde|abcde|");
    EXPECT_EQ(text.Mid(1, 2) + '|' + text.Mid(-1, 2) + '|' + text.Mid(4, kFar), "bc|ab|e");
    EXPECT_EQ(text.Mid(1, -1) + '|' + CString().Mid(1, 2) + '|' + CString(char16_t('x'), -3), "||");

    const auto inserted = [](int index) {
        CString abc("abc");
        return abc.Insert(index, "<>") == 5 ? abc : CString("bad length");
    };
    EXPECT_EQ(inserted(0) + inserted(1) + inserted(-5) + inserted(9), "<>abca<>bc<>abcabc<>");
    const auto deleted = [](int index, int count) {
        CString abc("abc");
        const int length = abc.Delete(index, count);
        return abc + char16_t('0' + length);
    };
    EXPECT_EQ(deleted(1, 1) + deleted(-5, 2) + deleted(9, 1), "ac2c1abc3");
    EXPECT_EQ(deleted(2, 99) + deleted(1, -1), "ab2abc3");
}
// clang-format on

TEST(WideString, AnArgumentMayBeTheStringItself)
{
    CString text("ab");
    text += text;
    text.Insert(1, text);
    text.Format(text.GetString());
    text.Replace(text, text);
    EXPECT_EQ(text, "aababbab");
    // A replacement goes from left to right and never over its own result.
    EXPECT_EQ(text.Replace("ba", "aba"), 2);
    EXPECT_EQ(text.Replace("", "x"), 0);
    EXPECT_EQ(text, "aaabababab");
}

TEST(WideString, ChangingACopyLeavesTheOthersAlone)
{
    using Change = void (*)(CString&);
    const Change changes[] = {
        [](CString& text) { text.SetAt(0, 'x'); },    [](CString& text) { text += "x"; },
        [](CString& text) { text += char16_t('x'); }, [](CString& text) { text.TrimRight(); },
        [](CString& text) { text.Insert(0, text); },  [](CString& text) { text.Delete(0); },
        [](CString& text) { text.Replace("b", ""); }, [](CString& text) { text.Empty(); }};
    for (std::size_t i = 0; i < std::size(changes); ++i) {
        const CString original("abc ");
        CString changed = original;
        EXPECT_EQ(changed.GetString(), original.GetString()) << "a copy shares its characters";
        changes[i](changed);
        EXPECT_NE(changed, original) << "change " << i;
        EXPECT_EQ(original, "abc ") << "change " << i;
    }
    CString blanks = " a b \t\r\n" + Units({0xA0, 0x2003, 0x202F, 0x3000});
    blanks.TrimRight();
    EXPECT_EQ(blanks, " a b");
}

TEST(WideString, FormatFillsItsPlacesInOrder)
{
    CString text;
    text.Format(CString("%s = %d%%, %x %").GetString(), CString("Len"), -5);
    EXPECT_EQ(text, "Len = -5%, %x %");
    text.Format(CString("[%s%d]").GetString(), CString("Len"));
    EXPECT_EQ(text, "[Len]") << "a place without an argument";
    text.Format(CString("[%s]").GetString(), CString("%d"), 7);
    EXPECT_EQ(text, "[%d]") << "an argument is no format, and a surplus one is passed over";
}

} // namespace
