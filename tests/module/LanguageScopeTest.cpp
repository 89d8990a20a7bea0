#include <atomic>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <TovoFormula/TovoFormula.h>
#include <TovoPlatform/NumberText.h>

namespace tovo::test {

namespace {

constexpr UINT kOwnMessage = 40000; // of a host
constexpr AfxStringResource kGerman[] = {
    {6671, u"RUNDEN"},
    {6649, u"WENN"},
    {6681, u"JA"},
    {MSG_RPAREN_EXPECTED, u"Rechte Klammer erwartet."},
    {kOwnMessage, u"Gespeichert."},
};

const FormulaLanguage& German()
{
    static const FormulaLanguage german(kGerman, u",", u";");
    return german;
}

std::string Message(UINT id)
{
    CString text;
    return text.LoadString(id) ? text.ToUtf8() : "(none)";
}

std::string Shown(double value)
{
    CString text;
    FloatToNumString(value, text, 0, 1, 0);
    return text.ToUtf8();
}

std::string Text(const CString& encoded)
{
    CFmlaExprBase expression;
    expression.SetFromEncodedString(encoded);
    return expression.GetTextStr().ToUtf8();
}

// What a text of the author's is worth, or its message.
std::string Outcome(CalcSetImpl& job, const CString& text)
{
    CFmlaExpression expression(job);
    expression.SetExpr(text);
    return expression.IsValid() && expression.Calculate(nullptr)
               ? Shown(expression.GetValue())
               : Message(static_cast<UINT>(expression.GetMessageNum()));
}

class LanguageScopes : public testing::Test {
protected:
    LanguageScopes() { InitTovoFormulaDLL(); }
    ~LanguageScopes() override
    {
        SetLocaleSetting(LOCALE_SDECIMAL, CString());
        SetLocaleSetting(LOCALE_SLIST, CString());
        m_Chain.reset();
        CFmlaExprBase::ReInitExprNames();
    }

    // As a host does that has one language.
    void ChangeProcess(std::span<const AfxStringResource> strings, const CString& decimal,
                       const CString& list)
    {
        ASSERT_TRUE(AfxInitExtensionModule(m_Record, strings.data(), strings.size()));
        m_Chain.emplace(m_Record);
        SetLocaleSetting(LOCALE_SDECIMAL, decimal);
        SetLocaleSetting(LOCALE_SLIST, list);
        CFmlaExprBase::ReInitExprNames();
    }

    AFX_EXTENSION_MODULE m_Record;
    std::optional<CDynLinkLibrary> m_Chain;
    CalcSetImpl m_Job;
};

TEST_F(LanguageScopes, AuthorsOfTwoLanguagesAreServedAtOnce)
{
    std::atomic<int> faults = 0;
    const auto serve = [&faults](const FormulaLanguage& language, const CString& text,
                                 const CString& broken, const std::string& expected) {
        CalcSetImpl job;
        for (int round = 0; round < 200; ++round) {
            const LanguageScope scope(language);
            const std::string found =
                Outcome(job, text) + "|" + Outcome(job, broken) + "|" + Text("IF(YES,1.5,2)");
            faults += found != expected;
        }
    };
    std::thread german(serve, German(), u"RUNDEN(2,5;0)+0,5", u"(2,5",
                       "3,5|Rechte Klammer erwartet.|WENN(JA;1,5;2)");
    std::thread english(serve, FormulaLanguage(), u"ROUND(2.5,0)+0.5", u"(2.5",
                        "3.5|Right parenthesis expected.|IF(YES,1.5,2)");
    german.join();
    english.join();
    EXPECT_EQ(faults, 0);
    EXPECT_EQ(Outcome(m_Job, u"ROUND(2.5,0)"), "3.0") << "the process has its own";
}

TEST_F(LanguageScopes, ScopesNestAndAreLeftByAnyWay)
{
    CString name;
    try {
        const LanguageScope outer(German());
        {
            const LanguageScope inner{FormulaLanguage()};
            EXPECT_EQ(Text("IF(YES,1.5,2)"), "IF(YES,1.5,2)");
            EXPECT_EQ(Shown(1.5), "1.5");
        }
        EXPECT_EQ(Text("IF(YES,1.5,2)"), "WENN(JA;1,5;2)");
        EXPECT_EQ(CFmlaExprBase::GetTokenString(TOK_IF, name), 1);
        EXPECT_EQ(name, u"WENN");
        EXPECT_EQ(Message(MSG_COMMA_EXPECTED), "Comma expected.") << "what the table lacks";
        EXPECT_EQ(Message(kOwnMessage), "Gespeichert.");
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(Text("IF(YES,1.5,2)"), "IF(YES,1.5,2)");
    EXPECT_EQ(Message(kOwnMessage), "(none)");
    EXPECT_EQ(Shown(1.5), "1.5");
}

TEST_F(LanguageScopes, ProcessAndScopeKeepApart)
{
    constexpr AfxStringResource kFrench[] = {{6649, u"SI"}, {MSG_RPAREN_EXPECTED, u"Parenthèse."}};
    {
        const LanguageScope scope(German());
        ChangeProcess(kFrench, u",", u"|");
        EXPECT_EQ(Text("IF(YES,1.5,2)"), "WENN(JA;1,5;2)");
        EXPECT_EQ(Outcome(m_Job, u"RUNDEN(2,5;0)"), "3,0");
    }
    EXPECT_EQ(Text("IF(YES,1.5,2)"), "SI(YES|1,5|2)");
    EXPECT_EQ(Outcome(m_Job, u"SI(YES|1,5|2"), "Parenthèse.");
    const LanguageScope english{FormulaLanguage()};
    EXPECT_EQ(Text("IF(YES,1.5,2)"), "IF(YES,1.5,2)");
    EXPECT_EQ(Outcome(m_Job, u"ROUND(2.5,0"), "Right parenthesis expected.");
}

// An expression keeps what it was compiled to, and a pass what it has found.
TEST_F(LanguageScopes, TextCountsInTheLanguageInForce)
{
    FormulaImpl formula(&m_Job, "Sum", "0");
    formula.GetExpression().SetExpr(u"SUM(1,5)");
    m_Job.AddFormula(&formula);
    const auto value = [&] {
        unsigned int message = MSG_NONE;
        return formula.Calculate(message, nullptr) ? formula.GetValue() : -1.0;
    };
    for (const bool isHeld : {false, true}) {
        std::optional<CalculationPass> pass;
        if (isHeld)
            pass.emplace();
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(value(), 6.0);
            const LanguageScope scope(German());
            EXPECT_EQ(value(), 1.5);
            const LanguageScope inner{FormulaLanguage()};
            EXPECT_EQ(value(), 6.0);
        }
    }
}

TEST_F(LanguageScopes, LanguagesThatCannotBeReadAreRefused)
{
    const auto reason = [](std::vector<AfxStringResource> strings, const CString& decimal,
                           const CString& list) -> std::string {
        try {
            const FormulaLanguage language(strings, decimal, list);
            return "";
        } catch (const CInvalidArgException& refusal) {
            return std::string(refusal.what()).substr(17);
        }
    };
    EXPECT_EQ(reason({}, u",", u";"), "");
    EXPECT_EQ(reason({}, u",", u" ;").substr(0, 18), "the list separator");
    EXPECT_EQ(reason({}, u".", u"||"), "");
    const struct {
        AfxStringResource string;
        const char16_t* decimal;
        const char16_t* list;
        const char* reason;
    } rows[] = {
        {{6649, u"ABS"}, u".", u",", "ABS is the name of two tokens"},
        {{6649, u"Wenn"}, u".", u",", "Wenn must be of the letters A to Z"},
        {{6649, nullptr}, u".", u",", "an id stands in the table twice, or a text is missing"},
        {{6649, u"IF"}, u",", u",", "the list separator must not begin with the decimal one"},
        {{6649, u"IF"}, u",", u",,", "the list separator must not begin with the decimal one"},
        {{6649, u"IF"}, u"", u",", "the decimal separator must be one mark such as a comma"},
        {{6649, u"IF"}, u"..", u",", "the decimal separator must be one mark such as a comma"},
        {{6649, u"IF"}, u"5", u",", "the decimal separator must be one mark such as a comma"},
        {{6649, u"IF"}, u".", u"", "the list separator must be of marks such as a semicolon"},
        {{6649, u"IF"}, u".", u"+", "the list separator must be of marks such as a semicolon"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(reason({row.string}, row.decimal, row.list), row.reason);
    EXPECT_EQ(reason({kGerman[0], kGerman[0]}, u".", u","), rows[2].reason);
}

TEST_F(LanguageScopes, ExpressionsAreConverted)
{
    VariableImpl width(&m_Job, "ROUND(1,5", 2); // no name is touched
    m_Job.AddVariable(&width);
    FormulaImpl rounded(&m_Job, "Rounded", "ROUND(1.5,0)");
    FormulaImpl wide(&m_Job, "Wide", "IF(YES,V(ROUND(1,5),0.5)");
    m_Job.AddFormula(&rounded);
    m_Job.AddFormula(&wide);
    rounded.SetName("Again");
    m_Job.AddFormula(&rounded); // under two names, converted once
    const auto texts = [&] {
        return rounded.GetExpression().GetTextStr() + u" " + wide.GetExpression().GetTextStr();
    };
    const CString english = u"ROUND(1.5,0) IF(YES, ROUND(1,5 ,0.5)";
    const CString german = u"RUNDEN(1,5;0) WENN(JA; ROUND(1,5 ;0,5)";
    EXPECT_EQ(texts(), english);
    EXPECT_EQ(rounded.IsValid(), 1);

    ConvertExpressions(m_Job, German());
    EXPECT_EQ(texts(), german);
    {
        const LanguageScope scope(German());
        EXPECT_EQ(rounded.IsValid() && wide.IsValid(), true);
        EXPECT_EQ(wide.GetExpression().GetEncodedString(), u"IF(YES,V(ROUND(1,5),0.5)");
        ConvertExpressions(m_Job, FormulaLanguage());
    }
    EXPECT_EQ(texts(), english);

    ConvertExpressions(m_Job, [&] { ChangeProcess(kGerman, u",", u";"); });
    EXPECT_EQ(texts(), german);
    EXPECT_EQ(rounded.IsValid() && wide.IsValid(), true);
    EXPECT_EQ(rounded.GetExpression().GetEncodedString(), u"ROUND(1.5,0)");
    EXPECT_THROW(ConvertExpressions(m_Job, [] { throw 1; }), int);
    EXPECT_EQ(texts(), german);
}

} // namespace

} // namespace tovo::test
