#include <algorithm>
#include <filesystem>
#include <iomanip>
#include <numeric>
#include <ranges>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <TovoFormula/TovoFormula.h>
#include <TovoPlatform/Fmt.h>

// Lines as hosts write them. Most of what is tested is that they compile.

namespace tovo::test {

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

// Overloads of hosts, for what they had when a text was made from fewer types.
std::string Chosen(const CString&)
{
    return "CString";
}
std::string Chosen(std::string_view)
{
    return "view";
}
std::string Chosen(std::u16string_view)
{
    return "16-bit view";
}
std::string ChosenOfPath(const CString&)
{
    return "CString";
}
std::string ChosenOfPath(const std::filesystem::path&)
{
    return "path";
}

class Renamed : public VariableImpl {
public:
    using VariableImpl::SetName;
    using VariableImpl::VariableImpl;

    void SetName(CString& name) override
    {
        CString longer = u"my " + name;
        VariableImpl::SetName(longer);
    }
};

TEST(HostLines, ThatCompiledStillDo)
{
    CalcSetImpl job;
    VariableImpl width(&job);
    CString name = u"Width";
    const CString constant("Height");
    CExString extended = u"Width";
    width.SetName(name);
    width.SetName(extended);
    IVarObj& variable = width;
    variable.SetName(name);
    void (VariableImpl::*setName)(CString&) = &VariableImpl::SetName;
    (width.*setName)(name);
    EXPECT_EQ(width.GetName(), u"Width");

    CString text = CString(u'x', 3) + u"y" + char16_t(u'z');
    text = u"a" + text;
    text = "b";
    text += u"c";
    text = {};
    const WideText wide = u"wide";
    EXPECT_TRUE(CString(wide) == u"wide" && CString(WideView(wide)) == "wide");
    EXPECT_TRUE(u"Height" == constant && constant != name && constant < name && name > "A");
    EXPECT_TRUE(extended == name && name == extended);
    EXPECT_EQ((job.GetQuantity() > 0 ? constant : u"none"), u"none");
    EXPECT_EQ(CString("a-b").Find(u'-') + CString("a-b").Find(u"b"), 3);
    text.Format(u"%s %d %s", name, 2, u"x");
    EXPECT_EQ(text, u"Width 2 x");

    EXPECT_EQ(Chosen(name), "CString");
    EXPECT_EQ(Chosen("x"s), "view");
    EXPECT_EQ(Chosen("x"sv), "view");
    EXPECT_EQ(Chosen(u"x"s), "16-bit view");
    EXPECT_EQ(ChosenOfPath(name) + ChosenOfPath("x"s), "CStringpath");
    const std::vector<CString> names{u"a", "b", name};
    EXPECT_EQ(names.size(), 3u);
    FormulaImpl area(&job);
    unsigned int message = MSG_NONE;
    EXPECT_EQ(area.IsValid(message, 1), 0);
    void (*start)(std::uintptr_t) = &InitTovoFormulaDLL;
    start(0);
}

TEST(HostLines, TextsAreMadeFromWhatAHostHas)
{
    const std::string utf8 = "Länge";
    const std::u16string utf16 = u"Länge";
    const CExString texts[] = {utf8,    utf16,   std::string_view(utf8), std::u16string_view(utf16),
                               "Länge", u"Länge"};
    for (const CString& each : texts)
        EXPECT_EQ(each, u"Länge");
    CString text(utf16);
    text = utf8;
    text += " "sv;
    EXPECT_EQ(text + u"m"sv, u"Länge m"sv);
    const CString view = "Länge"sv, wideView = u"Länge"sv;
    EXPECT_EQ(view, wideView);
    EXPECT_TRUE(text == u"Länge "sv && u"Länge "s == text && text == "Länge "s);
    EXPECT_TRUE(text < u"M"sv && u"A"sv < text && text != u""sv && text > "A"sv);

    CalcSetImpl job;
    VariableImpl width(&job, "Width"s, 2.5);
    job.AddVariable(&width);
    EXPECT_EQ(job.GetVarObj("Width", 1, 0), &width);
    EXPECT_EQ(job.GetVarObj("Width"s, 1, 0), &width);
    EXPECT_EQ(job.GetVarObj(u"Width"sv, 1, 0), &width);
    FormulaImpl area(&job, u"Area", "V(Width)*2"s);
    EXPECT_EQ(area.IsValid(), 1);
    EXPECT_TRUE(area.IsNumeric());
    area.SetFromEncodedString("1+*"sv);
    EXPECT_EQ(area.IsValid(), 0);
    EXPECT_EQ(area.GetExpression().GetMessageNum(), MSG_UNEXPECTED_OPERATOR);
    FormulaTableImpl rate(&job, 2, 1);
    EXPECT_EQ(rate.IsValid(), 0);
    EXPECT_NE(job.ErrorTracker().GetError(), MSG_NONE);
    EXPECT_THROW(FormulaImpl(nullptr, "Area", "1"), CInvalidArgException);
    EXPECT_FALSE(CalculationOperand(job).IsValid());
}

TEST(HostLines, NamesAreSetFromAnyText)
{
    CalcSetImpl job;
    const CString constant = u"Heated?";
    const auto nameAll = [&](auto& object) {
        object.SetName(u"Width");
        object.SetName("Width");
        object.SetName("Width"s);
        object.SetName(u"Width"sv);
        EXPECT_TRUE(object.IsNumeric());
        object.SetName(constant);
        EXPECT_TRUE(object.IsBoolean() && object.GetName() == constant);
    };
    VariableImpl variable(&job);
    FormulaImpl formula(&job);
    FormulaTableImpl table(&job, 2, 1);
    nameAll(variable);
    nameAll(formula);
    nameAll(table);
    Renamed renamed(&job);
    renamed.SetName(u"Width");
    EXPECT_EQ(renamed.GetName(), u"my Width") << "a host's operation sees each of them";
}

TEST(HostLines, TextsAreWritten)
{
    const CString name = u"Länge";
    std::ostringstream out;
    out << name << std::setw(4) << CExString(u"m");
    EXPECT_EQ(out.str(), "Länge   m");
    EXPECT_EQ(fmt::format("{}: {:>4}|{}", name, CExString(u"m"), CString()), "Länge:    m|");
}

TEST(HostLines, CollectionsAreRanges)
{
    CStringList list;
    for (const CString& name : list)
        FAIL() << name;
    list.AddTail(u"b");
    list.AddHead("a");
    std::string joined;
    for (const CString& name : list)
        joined += name.ToUtf8();
    static_assert(std::ranges::forward_range<const CStringList>);
    EXPECT_EQ(std::ranges::find(list, u"b"sv), std::next(list.begin()));
    EXPECT_EQ(joined, "ab");

    CWordArray words;
    words.Add(3);
    words.Add(4);
    for (WORD& word : words)
        ++word;
    static_assert(std::ranges::random_access_range<const CWordArray>);
    EXPECT_EQ(std::accumulate(words.begin(), words.end(), 0), 9);

    CMap<CString, const CString&, int, int> map;
    EXPECT_EQ(map.begin(), map.end());
    map.SetAt(u"x", 1);
    map.SetAt(u"y", 2);
    std::string entries;
    for (const auto& [key, value] : map)
        entries += key.ToUtf8() + std::to_string(value);
    EXPECT_EQ(entries, "x1y2");
}

} // namespace

} // namespace tovo::test
