#include <cstdlib>
#include <new>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <TovoFormula/TovoFormula.h>
#include <expression_text/Texts.h>

namespace tovo::test {

namespace {

thread_local bool isNextMemoryRefused = false;

} // namespace

} // namespace tovo::test

// All memory of this program and its libraries, so that a test can have a piece of it refused.
void* operator new(std::size_t size)
{
    const bool isRefused = std::exchange(tovo::test::isNextMemoryRefused, false);
    void* const memory = isRefused ? nullptr : std::malloc(size);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return std::malloc(size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace tovo::test {

namespace {

std::string Resource(UINT id)
{
    CString text;
    return text.LoadString(id) ? text.ToUtf8() : "(none)";
}

std::string TokenName(int code)
{
    CString text("(none)");
    CFmlaExprBase::GetTokenString(code, text);
    return text.ToUtf8();
}

// What a host finds that has not called InitTovoFormulaDLL. Made before main, so that no test of
// this program can come before it, and followed by the call.
struct BeforeStartUp {
    BeforeStartUp()
    {
        CFmlaExpression expression(set);
        expression.SetFromEncodedString("IF(1>2 OR YES,ROUND(2.5,0),PI)*QUANTITY");
        set.SetQuantity(2);
        isValid = expression.IsValid() && expression.Calculate(nullptr);
        value = expression.GetValue();
        message = Resource(6600);
        InitTovoFormulaDLL(0);
        InitTovoFormulaDLL(1); // once too often does no harm
    }

    CalcSetImpl set;
    int isValid = 0;
    double value = 0.0;
    std::string message;
};

const BeforeStartUp before;

TEST(Module, LanguageWorksBeforeStartUp)
{
    EXPECT_EQ(before.isValid, 1);
    EXPECT_EQ(before.value, 6.0);
    EXPECT_EQ(before.message, "(none)");
}

TEST(Module, EveryStringIsFoundByItsId)
{
    const struct {
        UINT id;
        const char* text;
    } rows[] = {
        {6600, "Comma expected."},
        {6613, "A math function returned an invalid result.  Possibly, the result was too large to "
               "be processed by the system."},
        {6665, ".0123456789"},
        {6682, "Invalid formula element."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Resource(row.id), row.text) << row.id;
    for (const UINT outside : {0u, 6599u, 6683u, 10732u, 10846u, 10847u})
        EXPECT_EQ(Resource(outside), "(none)") << outside;
    int found = 0;
    for (UINT id = 6600; id <= 6682; ++id) {
        CString text;
        found += text.LoadString(id) != 0 && !text.IsEmpty();
    }
    EXPECT_EQ(found, 83);
}

TEST(Module, TokenNamesAreThoseOfTheNewestModule)
{
    const struct {
        int code;
        const char* english;
        const char* german;
    } rows[] = {
        {TOK_VARIABLE, "", ""},        {TOK_ILLEGAL, "", ""},
        {TOK_GROUP, "", ""},           {TOK_NUMBER, ".0123456789", ",0123456789"},
        {TOK_COMMA, ",", ";"},         {TOK_GE_SIGN, ">=", ">="},
        {TOK_IF, "IF", "WENN"},        {TOK_NOT, "NOT", "NICHT"},
        {TOK_TRUNC, "TRUNC", "TRUNC"}, {-1, "(none)", "(none)"},
        {55, "(none)", "(none)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(TokenName(row.code), row.english) << row.code;
    {
        const UserLanguage german(",", ";", kGermanNames);
        for (const auto& row : rows)
            EXPECT_EQ(TokenName(row.code), row.german) << row.code;
        EXPECT_EQ(Resource(6649), "WENN");
        EXPECT_EQ(Resource(6600), "Comma expected.");
        CFmlaExprBase::ReInitExprNames();
        EXPECT_EQ(TokenName(TOK_TRUNC), "TRUNC");
    }
    for (const auto& row : rows)
        EXPECT_EQ(TokenName(row.code), row.english) << row.code;
}

TEST(Module, EmptyNameFallsBackToTheEnglishOne)
{
    static constexpr AfxStringResource kEmptyNames[] = {{6668, u""}, {6637, u""}, {6677, u""}};
    const UserLanguage careless("", "", kEmptyNames);
    EXPECT_EQ(TokenName(TOK_PLUS) + TokenName(TOK_COMMA) + TokenName(TOK_SUM), "+,SUM");
    CalcSetImpl set;
    CFmlaExpression expression(set);
    expression.SetExpr("SUM(1,2)+3");
    EXPECT_EQ(expression.IsValid(), 1);
    EXPECT_EQ(expression.GetValue(), 6.0);
}

TEST(Module, StartUpWithoutMemoryLeavesTheChainAsItWas)
{
    static constexpr AfxStringResource kNewest[] = {{6600, u"newest"}};
    AFX_EXTENSION_MODULE record;
    ASSERT_EQ(AfxInitExtensionModule(record, kNewest, 1), 1);
    const CDynLinkLibrary newest(record);
    isNextMemoryRefused = true;
    EXPECT_NO_THROW(InitTovoFormulaDLL(0));
    EXPECT_FALSE(isNextMemoryRefused);
    EXPECT_EQ(Resource(6600), "newest");
}

} // namespace

} // namespace tovo::test
