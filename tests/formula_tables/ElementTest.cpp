#include <calculation/Job.h>
#include <expression_text/Texts.h>

namespace tovo::test {

namespace {

class Element : public Job {
protected:
    CFormtblElem m_Element{m_Set};
};

TEST_F(Element, CombinedStringIsAKindAndANameOrThousandths)
{
    const struct {
        const char* given;
        char16_t type;
        const char* name;
        int valid;
        double value;
        const char* written;
    } rows[] = {
        {"VHeight", u'V', "Height", 1, 3.5, "VHeight"},
        {"FArea", u'F', "Area", 1, 0, "FArea"}, // not calculated yet
        {"TUnion?", u'T', "Union?", 1, 0, "TUnion?"},
        {"V", u'V', "", 1, 0, "V"},
        {"7500", 0, "7500", 1, 7.5, "7500.000000"},
        {"-12.5", 0, "-12.5", 1, -0.0125, "-12.500000"},
        {"x1", 0, "x1", 1, 0, ""},
        {"", 0, "", 0, 0, ""},
    };
    Var("Height", 3.5);
    Formula("Area", "V(Height)*2");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.given);
        m_Element.SetFromCombinedString(row.given);
        EXPECT_EQ(m_Element.GetType(), row.type);
        EXPECT_EQ(m_Element.GetName().ToUtf8(), row.name);
        EXPECT_EQ(m_Element.isValid(), row.valid);
        EXPECT_EQ(m_Element.value(), row.value);
        EXPECT_EQ(m_Element.GetCombinedString().ToUtf8(), row.written);
        EXPECT_EQ(CFormtblElem(row.written, m_Set).value(), row.value);
    }
}

TEST_F(Element, UserTypesAPlainNumber)
{
    const struct {
        const char* decimal;
        const char* typed;
        const char* kept;
        const char* shown;
    } rows[] = {
        {".", "2.5", "2500", "2.500"},
        {".", "1,234.5", "1234500", "1234.500"},
        {".", "0.000002", "0.002", "0.000"},
        {".", "", "0", "0.000"},
        {",", "2.5", "2500", "2,500"},
        // Six decimals are taken of what is typed, whatever is kept of it.
        {".", "2.123456789", "2123.457", "2.123"},
        {",", "-2,1234565", "-2123.457", "-2,123"},
        {".", "1,234.0000005", "1234000.001", "1234.000"},
        {".", "0.9999996", "1000", "1.000"},
        {".", "0.0000004", "0", "0.000"},
        {".", "2.1234567e0", "2123.457", "2.123"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.typed) + " with " + row.decimal);
        const UserLanguage language(row.decimal, ";");
        m_Element.ClearAll();
        m_Element.XSetName(row.typed);
        EXPECT_EQ(m_Element.GetName().ToUtf8(), row.kept);
        EXPECT_EQ(m_Element.XGetName().ToUtf8(), row.shown);
        EXPECT_EQ(m_Element.isValid() + m_Element.isConstant(), 2);
        const double value = m_Element.value();
        m_Element.XSetName(m_Element.XGetName());
        EXPECT_NEAR(m_Element.value(), value, 0.0005) << "what is shown can be typed again";
    }
    m_Element.init("VRate");
    m_Element.XSetName("1,5 ");
    EXPECT_EQ(m_Element.XGetName().ToUtf8(), "1,5 ") << "a name is kept as it is";
}

TEST_F(Element, ConstantIsReadFromThePresentText)
{
    struct OpenElement : CFormtblElem {
        using CFormtblElem::CFormtblElem;
        void Write(const CString& name) { m_Name = name; }
        void Append(char16_t character) { m_Name += character; }
    };
    OpenElement element("7500", m_Set);
    EXPECT_EQ(element.value(), 7.5);
    element.SetName("8000");
    EXPECT_EQ(element.value(), 8.0);
    const CFormtblElem copy(element);
    element.Write("9000");
    EXPECT_EQ(element.value(), 9.0);
    element.Append(u'5');
    EXPECT_EQ(element.value(), 90.005);
    EXPECT_EQ(element.GetCombinedString().ToUtf8(), "90005.000000");
    element.XSetName("1.5");
    EXPECT_EQ(element.value(), 1.5);
    element.SetVariable("9000");
    element.SetType(0);
    EXPECT_EQ(element.value(), 9.0) << "a name that was another kind's";
    element.ClearAll();
    EXPECT_EQ(element.value(), 0.0);
    static_cast<CFormtblElem&>(element) = copy;
    EXPECT_EQ(element.value() + copy.value(), 16.0);
}

TEST_F(Element, CopyKeepsTheSetOfItsTarget)
{
    JobSet other;
    Var("Rate", 3);
    CFormtblElem source("VRate", m_Set);
    CFormtblElem target("5000", other);
    target = source;
    EXPECT_EQ(target.GetCombinedString().ToUtf8(), "VRate");
    EXPECT_EQ(target.value(), 0.0) << "the other set makes up its own variable";
    EXPECT_EQ(CFormtblElem(source).value(), 3.0);
    source.ClearAll();
    EXPECT_EQ(source.isValid() + source.GetType(), 0);
    source.SetType(u'F');
    EXPECT_EQ(source.isValid(), 0) << "it has no name yet";
}

TEST_F(Element, NestedCheckNamesTheElement)
{
    Formula("Good", "1");
    Formula("Bad", "1+");
    Formula("Deep", "F(Gone)");
    Table("Twisted", "", {"", ""}).SetRowLimit(1, 0.0);
    const struct {
        const char* combined;
        unsigned int message;
        const char* chain;
    } rows[] = {
        {"FGone", 6614, "6614 [Formula: Gone]"},
        {"TGone", 6615, "6615 [Formula table: Gone]"},
        {"FBad", 10732, "10732 [token: + | Formula: Bad | Formula table element: Bad]"},
        {"FDeep", 6614, "6614 [Formula: Gone | Formula: Deep | Formula table element: Deep]"},
        {"TTwisted", 10847, "10847 [Formula table: Twisted | Formula table element: Twisted]"},
        {"FGood", 0, nullptr},
        {"", 0, nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.combined);
        m_Element.init(row.combined);
        unsigned int message = 77;
        EXPECT_EQ(m_Element.CheckNestedFormulas(message), row.message == 0);
        EXPECT_EQ(message, row.message == 0 ? 77 : row.message);
        if (row.chain) {
            EXPECT_EQ(Chain(), row.chain);
        }
    }
}

TEST_F(Element, CalculationRecordsWhatItMeets)
{
    VariableImpl& rate = Var("Rate", 1);
    Var("x", 1);
    Formula("Area", "V(x)*2");
    CScannedVariables scanned;
    const auto scan = [&](const char* combined) {
        m_Element.init(combined);
        return MessageOfCalculation(m_Element, &scanned) == 0;
    };
    rate.SetInCond(1);
    EXPECT_TRUE(scan("VRate"));
    EXPECT_EQ(rate.InCond(), 0);
    EXPECT_TRUE(scan("FArea") && m_Element.value() == 2.0);
    EXPECT_TRUE(scan("2000"));
    EXPECT_FALSE(scan("FGone") || scan("TGone"));
    EXPECT_EQ(Names(scanned), "Rate x");

    CScannedVariables walked;
    for (const char* combined : {"VRate \t ", "VRate  ", "VRate", "FArea", "FGone", "1000"}) {
        m_Element.init(combined);
        m_Element.GetVariables(walked, 1, 0);
    }
    EXPECT_EQ(Names(walked), "Rate x");
}

} // namespace

} // namespace tovo::test
