#include <TovoPlatform/WideString.h>

#include <initializer_list>
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
        text += static_cast<WCHAR>(unit);
    return text;
}

TEST(WideString, CarriesEveryCodePointOverTheUtf8Border)
{
    const std::pair<std::string, CString> rows[] = {
        {"A\x7F", Units({0x41, 0x7F})},
        {"\xC2\x80\xDF\xBF", Units({0x80, 0x7FF})},
        {"\xE0\xA0\x80\xED\x9F\xBF", Units({0x800, 0xD7FF})},
        {"\xEE\x80\x80\xEF\xBF\xBF", Units({0xE000, 0xFFFF})},
        {"\xF0\x90\x80\x80", Units({0xD800, 0xDC00})},
        {"\xF4\x8F\xBF\xBF", Units({0xDBFF, 0xDFFF})},
        {std::string("a\0b", 3), Units({'a', 0, 'b'})}};
    for (const auto& [utf8, wide] : rows) {
        EXPECT_EQ(CString(utf8), wide) << utf8;
        EXPECT_EQ(wide.ToUtf8(), utf8);
    }
}

TEST(WideString, EachByteOutsideWellFormedUtf8IsReplaced)
{
    // Each byte in angle brackets is bad: trail bytes alone, sequences cut short, overlong ones,
    // a surrogate, what lies behind the last code point, and bytes that lead nothing.
    for (const std::string utf8 :
         {"<\x80>", "<\xE2\x82>", "<\xC1\xBF>", "<\xE0\x9F\xBF>", "<\xF0\x8F\xBF\xBF>",
          "<\xED\xA0\x80>", "<\xF4\x90\x80\x80>", "<\xF8\xFF>"}) {
        const CString bad(WCHAR(0xFFFD), static_cast<int>(utf8.size()) - 2);
        EXPECT_EQ(CString(utf8), "<" + bad + ">") << testing::PrintToString(utf8);
    }
    EXPECT_EQ(CString("<\xE2\x82"), "<" + CString(WCHAR(0xFFFD), 2)) << "cut short by the end";
}

TEST(WideString, LoneSurrogatesAreReplacedInUtf8)
{
    EXPECT_EQ(Units({0xD800, '>'}).ToUtf8(), "\uFFFD>");
    EXPECT_EQ(Units({0xDC00, 0xDBFF}).ToUtf8(), "\uFFFD\uFFFD");
    EXPECT_EQ(Units({0xD800, 0xD800, 0xDC00}).ToUtf8(), "\uFFFD\U00010000");
}

TEST(WideString, IndexesOutsideTheStringThrow)
{
    CString text("abc");
    EXPECT_EQ(text[3], 0) << "the length gives the terminating zero";
    EXPECT_EQ(CString()[0], 0);
    for (const int index : {-1, 4, 1 << 30})
        EXPECT_THROW(text.GetAt(index), CInvalidArgException) << index;
    for (const int index : {-1, 3})
        EXPECT_THROW(text.SetAt(index, 'x'), CInvalidArgException) << index;
}

TEST(WideString, PartsAreClippedToTheString)
{
    constexpr int kFar = 0x7FFFFFFF;
    const CString text("abcde");
    const std::pair<CString, const char*> rows[] = {
        {text.Left(2), "ab"},   {text.Left(-1), ""},       {text.Left(kFar), "abcde"},
        {text.Right(2), "de"},  {text.Right(-kFar), ""},   {text.Right(kFar), "abcde"},
        {text.Mid(2), "cde"},   {text.Mid(-2), "abcde"},   {text.Mid(kFar), ""},
        {text.Mid(1, 2), "bc"}, {text.Mid(-1, 2), "ab"},   {text.Mid(4, kFar), "e"},
        {text.Mid(1, -1), ""},  {CString().Mid(1, 2), ""}, {CString(WCHAR('x'), -3), ""}};
    for (const auto& [part, expected] : rows)
        EXPECT_EQ(part, expected) << "row of " << expected << ", not " << part.ToUtf8();
}

TEST(WideString, EditsAreClippedToTheString)
{
    const struct {
        int index, count;
        const char *inserted, *deleted;
    } rows[] = {{0, 1, "<>abc", "bc"},  {1, 1, "a<>bc", "ac"},  {-5, 2, "<>abc", "c"},
                {9, 1, "abc<>", "abc"}, {2, 99, "ab<>c", "ab"}, {1, -1, "a<>bc", "abc"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.index << ", " << row.count);
        CString inserted("abc");
        CString deleted("abc");
        EXPECT_EQ(inserted.Insert(row.index, "<>"), 5);
        EXPECT_EQ(inserted, row.inserted);
        EXPECT_EQ(deleted.Delete(row.index, row.count), CString(row.deleted).GetLength());
        EXPECT_EQ(deleted, row.deleted);
    }
}

TEST(WideString, AnArgumentMayBeTheStringItself)
{
    CString text("ab");
    text += text;
    text.Insert(1, text);
    text.Format(text.GetString());
    EXPECT_EQ(text, "aababbab");
    text.Replace(text, text);
    EXPECT_EQ(text, "aababbab");
}

TEST(WideString, ReplaceGoesFromLeftToRightAndNotOverItsOwnResult)
{
    CString text("aaaaa-b");
    EXPECT_EQ(text.Replace("aa", "a"), 2);
    EXPECT_EQ(text.Replace("b", "bb"), 1);
    EXPECT_EQ(text.Replace("", "x"), 0);
    EXPECT_EQ(text, "aaa-bb");
}

TEST(WideString, TrimRightTakesEveryKindOfBlank)
{
    CString text = " a b \t\r\n" + Units({0xA0, 0x2003, 0x202F, 0x3000});
    text.TrimRight();
    EXPECT_EQ(text, " a b");
}

TEST(WideString, ChangingACopyLeavesTheOthersAlone)
{
    using Change = void (*)(CString&);
    const Change changes[] = {
        [](CString& text) { text.SetAt(0, 'x'); },    [](CString& text) { text += "x"; },
        [](CString& text) { text += WCHAR('x'); },    [](CString& text) { text.TrimRight(); },
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
}

TEST(WideString, FormatFillsItsPlacesInOrder)
{
    const CString name("Len");
    const CString format = "%s = %d%%, %x %";
    CString text;
    text.Format(format.GetString(), name, -5);
    EXPECT_EQ(text, "Len = -5%, %x %");
    text.Format(CString("[%s%d]").GetString(), name);
    EXPECT_EQ(text, "[Len]") << "a place without an argument";
    text.Format(CString("[%s]").GetString(), CString("%d"), 7);
    EXPECT_EQ(text, "[%d]") << "an argument is no format, and a surplus one is passed over";
}

} // namespace
