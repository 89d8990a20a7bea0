#include <cstddef>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include <TovoJob/TovoJob.h>

#include "MarkdownTable.h"
#include "Shed.h"

// What is included from job-guide/ is a code block of docs/job-guide.md.

namespace tovo::test {

namespace {

TEST(JobGuide, MakesAJob)
{
#include <job-guide/make-a-job.inc>
    EXPECT_EQ(report.outcomes.size(), 5u);
    EXPECT_EQ(price, 596.875);
}

TEST(JobGuide, AsksForResults)
{
    Job job = Shed();
    std::string said;
#include <job-guide/ask-before-taking.inc>
    EXPECT_EQ(said, "there is a variable of this name already");
}

TEST(JobGuide, Recalculates)
{
    Job job = Shed();
    job.Calculate();
    std::string news;
#include <job-guide/calculate-what-has-changed.inc>
    EXPECT_EQ(news, "Width Area Rate Price ");
}

TEST(JobGuide, ListsFaults)
{
    Job job = Shed();
    std::string shown;
#include <job-guide/list-the-faults.inc>
    EXPECT_EQ(shown, "Area: The variable was not found.  Lenght ; so does Price; so does Rate");
}

TEST(JobGuide, TakesTypedTexts)
{
    Job job = Shed();
    std::string asked;
#include <job-guide/resolve-names.inc>
    EXPECT_EQ(typed.expression, "2*(V(Width)+IF(V(Heated?),1,0))");
    EXPECT_EQ(asked, CodeBlocks(ReadDocument("job-guide.md"), "text").at(0));
}

TEST(JobGuide, HelpsTyping)
{
    const Job job = Shed();
#include <job-guide/complete-names.inc>
    EXPECT_EQ(labels, "Width POWER ");
    EXPECT_EQ(help, "ROUND(value,places): ROUND(2.675,2)");
    EXPECT_EQ(parameter, 1u);
}

TEST(JobGuide, OffersFixes)
{
    Job job = Shed();
    std::string said;
#include <job-guide/apply-fixes.inc>
    EXPECT_EQ(area, "POWER(V(Width),2)");
    EXPECT_EQ(said, "Use variable \"Width\"; Use POWER; ");
}

TEST(JobGuide, Asks)
{
    Job job = Shed();
    std::string users;
#include <job-guide/ask-who-depends-on-what.inc>
    EXPECT_EQ(users, "Area Price Rate ");
    EXPECT_FALSE(graph.empty());
}

TEST(JobGuide, Explains)
{
    Job job = Shed();
#include <job-guide/explain-a-value.inc>
    EXPECT_EQ(text, CodeBlocks(ReadDocument("job-guide.md"), "text").at(1));
}

TEST(JobGuide, Edits)
{
    Job job = Shed();
#include <job-guide/change-safely.inc>
    EXPECT_GE(places, 4u);
    EXPECT_EQ(price, "F(Floor area)*95.5");
    EXPECT_TRUE(job.FindTable("Rate"));
}

TEST(JobGuide, SavesFiles)
{
    const auto folder = std::filesystem::path(testing::TempDir());
    const std::string path = folder / ("guide" + std::to_string(getpid()) + ".json");
    ASSERT_TRUE(JobFile(path).Save());
    std::string question;
#include <job-guide/read-and-save-a-file.inc>
    EXPECT_EQ(question, "");
    std::filesystem::remove(path);
}

TEST(JobGuide, LaysScenariosOverAJob)
{
    const Job job = Shed();
    std::string news;
#include <job-guide/ask-what-if.inc>
    EXPECT_EQ(news, "Width Area Rate Price ");
    EXPECT_EQ(worse, 0u);
}

TEST(JobGuide, CalculatesRows)
{
    const Job job = Shed();
#include <job-guide/calculate-rows.inc>
    EXPECT_EQ(faulty, 0u);
    EXPECT_EQ(std::vector<double>(values, values + 6),
              (std::vector<double>{1, 120, 4, 480, 16, 1528}));
}

TEST(JobGuide, CalculatesRecords)
{
    const Job job = Shed();
#include <job-guide/calculate-records.inc>
    EXPECT_EQ(report.faultyRows, 1u);
    EXPECT_EQ(text, CodeBlocks(ReadDocument("job-guide.md"), "text").at(2));
}

TEST(JobGuide, Solves)
{
    const Job job = Shed();
    std::string said;
#include <job-guide/solve.inc>
    EXPECT_NEAR(side, 3, 1e-9);
    EXPECT_EQ(said + "\n", CodeBlocks(ReadDocument("job-guide.md"), "text").at(3));
}

} // namespace

} // namespace tovo::test
