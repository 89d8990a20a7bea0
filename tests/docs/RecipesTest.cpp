#include <future>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <TovoFormula/LanguageScope.h>
#include <TovoFormula/TokenNameIds.h>
#include <TovoJob/TovoJob.h>

#include "Shed.h"

// What is included from recipes/ is a code block of docs/recipes.md.

namespace tovo::test {

namespace {

class Recipes : public testing::Test {
protected:
    Job job = Shed();
    std::string text;
};

TEST_F(Recipes, AskAndShow)
{
    const auto AskTheUser = [](const std::string&) { return 4.0; };
    {
#include <recipes/missing-inputs.inc>
    } job.Update();
    EXPECT_EQ(job.ValueOf(FormulaNamed("Volume")), 25);

    std::string list;
#include <recipes/all-faults.inc>
    EXPECT_EQ(list, "Area: The expression is incomplete or cannot be calculated. Affected: 3\n");

    std::vector<Fix> offers;
#include <recipes/one-click.inc>
    ASSERT_FALSE(offers.empty());
    EXPECT_EQ(offers[0].text, " Width *2");
}

TEST_F(Recipes, Recalculate)
{
    job.Update();
#include <recipes/recalculate.inc>
    EXPECT_EQ(shown, 3u); // Width, Area, Price
}

TEST_F(Recipes, Change)
{
#include <recipes/who-uses.inc>
    EXPECT_EQ(users, "Price Rate ");
    job.Update();
    {
#include <recipes/undo.inc>
        EXPECT_TRUE(job.FindVariable("Width"));
    }
    std::string question;
#include <recipes/remove-safely.inc>
    EXPECT_FALSE(question.empty());
    EXPECT_EQ(job.FindFormula("Price")->expression, "6.25*T(Rate)");
    struct {
        double Read() const { return 21; }
    } sensor;
#include <recipes/own-data.inc>
    job.Update();
    EXPECT_EQ(job.ValueOf(VariableNamed("Temperature")), 21);
}

TEST_F(Recipes, Serve)
{
    constexpr AfxStringResource kGermanWords[] = {{TOKEN_NAME_IF, u"WENN"}};
    {
#include <recipes/two-languages.inc>
        EXPECT_EQ(text, "WENN( Heated? ;1,5;2)");
    }
#include <recipes/threads.inc>
    EXPECT_EQ(reports[2].get().report.outcomes[2].value, 9);

    const std::string upload = "{}";
    std::string answer;
#include <recipes/limits.inc>
    EXPECT_EQ(answer, "upload.json: /duration: the key is missing");
}

} // namespace

} // namespace tovo::test
