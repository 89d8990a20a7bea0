#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <TovoFormula/RtfDocument.h>
#include <support/RtfReader.h>

namespace tovo::test {

namespace {

std::string Document(const char* text, const char* pointers, const char* font = "", int size = 14)
{
    CFmlaExprBase expression;
    expression.SetExpr(text, CString(pointers));
    const std::string document = expression.GetRTFString(font, size).ToUtf8();
    EXPECT_EQ(expression.GetTextStr().ToUtf8(), text);
    return document;
}

const std::string kColours = R"({\colortbl\red0\green0\blue0;\red0\green0\blue255;)"
                             R"(\red0\green128\blue0;\red128\green0\blue128;})";
const std::string kHead = R"({\rtf1\ansi)" + kColours + R"(\f0\f0\fs14)"; // no font, size 14
const std::string kTail = R"( \par})";

TEST(Rtf, EveryStretchIsARunOfItsOwn)
{
    const struct {
        const char* text;
        const char* pointers;
        const char* runs;
    } rows[] = {
        {"", "", ""},
        {"1+2", "", R"(\plain\f0\fs14\cf0\b 1+2)"},
        {"2 *  Width + 3", "4,7,0",
         R"(\plain\f0\fs14\cf0\b 2 * \plain\f0\fs14\cf1\b\ul  Width \plain\f0\fs14\cf0\b + 3)"},
        {" Base Cost ", "0,11,1", R"(\plain\f0\fs14\cf2\b\ul  Base Cost )"},
        {"1+ a", "2,3,0",
         R"(\plain\f0\fs14\cf0\b 1+\plain\f0\fs14\cf1\b\ul  a)"}, // its blank was cut
        {" T ", "0,3,2", R"(\plain\f0\fs14\cf3\b\ul  T )"},
        // An unknown kind looks like a variable.
        {" a ", "0,3,3", R"(\plain\f0\fs14\cf1\b\ul  a )"},
        {" a  b ", "0,3,2,3,3,1", R"(\plain\f0\fs14\cf3\b\ul  a \plain\f0\fs14\cf2\b\ul  b )"},
        {"  ", "0,2,0", R"(\plain\f0\fs14\cf1\b\ul   )"},
        // A backslash is escaped in a name; the literal text of a sound expression has none.
        {R"( Wall\Area )", "0,11,0", R"(\plain\f0\fs14\cf1\b\ul  Wall\\Area )"},
        {R"( \\ +\)", "0,4,1", R"(\plain\f0\fs14\cf2\b\ul  \\\\ \plain\f0\fs14\cf0\b +\)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Document(row.text, row.pointers), kHead + row.runs + kTail) << row.text;
}

TEST(Rtf, FontAndSizeAreWrittenAsGiven)
{
    EXPECT_EQ(Document("1+ a ", "2,3,0", "Arial", 20),
              R"({\rtf1\ansi{\fonttbl{\f0\fformula Arial;}})" + kColours +
                  R"(\f0\f0\fs20\plain\f0\fs20\cf0\b 1+\plain\f0\fs20\cf1\b\ul  a  \par})");
    EXPECT_EQ(Document("1", "", "", -7),
              R"({\rtf1\ansi)" + kColours + R"(\f0\f0\fs-7\plain\f0\fs-7\cf0\b 1 \par})");
}

// Texts that are, or hold, what RTF takes for something else.
constexpr WideView kHostileTexts[] = {
    u"1+\\bin999999",
    u"\\bin9 ",
    u"{",
    u"}",
    u"}}{\\rtf1 a",
    u"\\",
    u"\\\\{\\}",
    u"\\u-1",
    u"\\u8364 ?",
    u"\\'e9\\~\\*\\generator x;",
    u"{\\*\\pict",
    u"\\\n\\\r",
    u"\ta\t \t",
    u"a\nb\r\nc\r\n\n",
    u"  two  blanks  ",
    u"m\u00B2 \u20AC",
    u"5-3?1",
    {u"nul\0nul", 7},
    u"\x1\x1F\x7F\x80\xA0",
    u"\xD800",
    u"\xDC00\xD83D!",
    u"\U0001F600\U0010FFFF",
    u"\x7FFF\x8000\xFFFE\xFFFF",
};

// The text as literal text and as the name of a reference of each kind.
CFmlaExprBase EverywhereIn(const CString& text)
{
    CString whole = text;
    CWordArray words;
    for (const int kind : {0, 1, 2}) {
        words.Add(static_cast<WORD>(whole.GetLength()));
        words.Add(static_cast<WORD>(text.GetLength() + 2));
        words.Add(static_cast<WORD>(kind));
        whole += u' ' + text + u' ';
    }
    CFmlaExprBase expression;
    expression.SetExpr(whole, words);
    return expression;
}

TEST(RtfDocument, ShowsAnyTextAsItIs)
{
    for (const WideView row : kHostileTexts) {
        const CString text(row);
        const CFmlaExprBase expression = EverywhereIn(text);
        RtfDocument document(text, 22);
        document.AddText(text);
        document.AddExpression(expression);
        document.EndParagraph();
        document.AddText(u"after");

        const std::string written = document.GetRTFString().ToUtf8();
        const std::optional<RtfContent> shown = ReadRtf(written);
        ASSERT_TRUE(shown) << written;
        EXPECT_EQ(CString(shown->text), text + expression.GetTextStr() + u"\nafter") << written;
        std::string looks;
        for (const auto& [look, size] : {std::pair('t', row.size()),
                                         {'l', row.size()},
                                         {'V', row.size() + 2},
                                         {'F', row.size() + 2},
                                         {'T', row.size() + 3},
                                         {'t', 5}})
            looks.append(size, look);
        EXPECT_EQ(shown->looks, looks) << written;
    }
}

TEST(RtfDocument, IsADocumentAtAnyTime)
{
    RtfDocument document(CString(), 0);
    const std::string head = R"({\rtf1\ansi\uc1\deff0{\fonttbl{\f0\fnil ;}})" + kColours + '\n';
    EXPECT_EQ(document.GetRTFString().ToUtf8(), head + "}\n");
    document.AddText(CString());
    document.AddExpression(CFmlaExprBase());
    EXPECT_EQ(document.GetRTFString().ToUtf8(), head + "}\n");
    document.EndParagraph();
    document.AddText(u"a;b");
    EXPECT_EQ(document.GetRTFString().ToUtf8(), head + "\\par\n\\plain\\f0\\fs1\\cf0 a;b}\n");
    EXPECT_NE(RtfDocument(u"A;ri{al", 99999).GetRTFString().Find(u"\\f0\\fnil Ari\\{al;}}"), -1);
}

// What the program unrtf makes of a document; nothing if it cannot be run.
std::optional<std::string> ReadByUnrtf(const std::string& option, const std::string& document)
{
    const std::string file =
        ::testing::TempDir() + "tovo_rtf_" + std::to_string(std::random_device()());
    std::ofstream(file) << document;
    const std::string command = "unrtf " + option + " \"" + file + "\" > \"" + file + ".out\" 2>&1";
    const bool done = std::system(command.c_str()) == 0;
    std::ifstream out(file + ".out");
    const std::string read{std::istreambuf_iterator<char>(out), {}};
    std::remove(file.c_str());
    std::remove((file + ".out").c_str());
    return done ? std::optional(read) : std::nullopt;
}

TEST(Rtf, ReaderFindsTheWholeTextInItsColours)
{
    if (!ReadByUnrtf("--version", ""))
        GTEST_SKIP() << "unrtf is not installed";
    const std::string document = Document(R"(2* a  b\ (3))", "2,3,0,5,4,2", "Arial", 20);
    const std::string text = ReadByUnrtf("--text", document).value_or("");
    EXPECT_NE(text.find("-----\n2* a  b\\ (3) \n"), std::string::npos) << text;
    const std::string html = ReadByUnrtf("--html", document).value_or("");
    for (const char* part :
         {R"(<font color="#000000"><b>2*)", R"(<font color="#0000ff"><b><u> a </u></b></font>)",
          R"(<font color="#800080"><b><u> b\ </u></b></font>)"})
        EXPECT_NE(html.find(part), std::string::npos) << html;

    RtfDocument hostile(u"Arial", 20);
    hostile.AddExpression(EverywhereIn(u"1+\\bin999999{\u20AC}"));
    const std::string shown = ReadByUnrtf("--html", hostile.GetRTFString().ToUtf8()).value_or("");
    EXPECT_NE(shown.find(R"(<u> 1+\bin999999{&euro;} </u>)"), std::string::npos) << shown;
}

} // namespace

} // namespace tovo::test
