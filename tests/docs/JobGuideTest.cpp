#include <cstddef>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include <TovoJob/TovoJob.h>

#include "MarkdownTable.h"

// The lines between "[guide: ...]" and "[end]" are those of the code blocks of docs/job-guide.md.

namespace tovo::test {

namespace {

Job Shed()
{
    Job job;
    job.AddVariable("Width", 2.5, "m").Value();
    job.AddVariable("Heated?", 1).Value();
    job.AddFormula("Area", "V(Width)*V(Width)", "m²").Value();
    job.AddFormula("Price", "F(Area)*T(Rate)", "€").Value();
    Table rate;
    rate.name = "Rate";
    rate.rowSelector = FormulaNamed("Area");
    rate.rowLimits = {5, 10};
    rate.cells = {{120.0}, {95.5}};
    job.AddTable(rate).Value();
    return job;
}

TEST(JobGuide, MakesAJob)
{
    // [guide: Make a job]
    tovo::Job job;
    job.AddVariable("Width", 2.5, "m").Value();
    job.AddVariable("Heated?", 1).Value(); // "?" at the end: 1 is yes, 0 is no
    job.AddFormula("Area", "V(Width)*V(Width)", "m²").Value();
    job.AddFormula("Price", "F(Area)*T(Rate)", "€").Value();

    tovo::Table rate;
    rate.name = "Rate";
    rate.rowSelector = tovo::FormulaNamed("Area");
    rate.rowLimits = {5, 10}; // up to 5 m², and everything above
    rate.cells = {{120.0}, {95.5}};
    job.AddTable(rate).Value();

    const tovo::Report report = job.Calculate();
    const double price = job.ValueOf(tovo::FormulaNamed("Price")).value_or(0.0); // 596.875
    // [end]
    EXPECT_EQ(report.outcomes.size(), 5u);
    EXPECT_EQ(price, 596.875);
}

TEST(JobGuide, AsksForResults)
{
    Job job = Shed();
    std::string said;
    // [guide: Ask before taking]
    const tovo::Result<void> added = job.AddVariable("Width", 3);
    if (!added)
        said = added.Why().text; // there is a variable of this name already
    // [end]
    EXPECT_EQ(said, "there is a variable of this name already");
}

TEST(JobGuide, Recalculates)
{
    Job job = Shed();
    job.Calculate();
    std::string news;
    // [guide: Calculate what has changed]
    job.SetValue("Width", 2).Value();
    for (const tovo::ValueChange& change : job.Update().values)
        news += change.object.name + " "; // Width Area Rate Price
    // [end]
    EXPECT_EQ(news, "Width Area Rate Price ");
}

TEST(JobGuide, ListsFaults)
{
    Job job = Shed();
    std::string shown;
    // [guide: List the faults]
    job.SetExpression("Area", "V(Width)*V(Lenght)").Value();
    for (const tovo::Fault& fault : job.Calculate().faults) {
        const std::string text = job.TextOf(fault.object); // " Width * Lenght "
        const tovo::Span span = fault.place.span.value();  // of " Lenght "
        shown += fault.object.name + ": " + fault.text + " " +
                 text.substr(span.begin.utf8, span.end.utf8 - span.begin.utf8);
        for (const tovo::ObjectName& other : fault.affected)
            shown += "; so does " + other.name;
    }
    // [end]
    EXPECT_EQ(shown, "Area: The variable was not found.  Lenght ; so does Price; so does Rate");
}

TEST(JobGuide, TakesTypedTexts)
{
    Job job = Shed();
    std::string asked;
    // [guide: Resolve names]
    const auto typed = tovo::ResolveTyped("2*(width+if(heated?,1,0))", job).Value();
    job.AddFormula("Edge", typed.expression).Value(); // 2*(V(Width)+IF(V(Heated?),1,0))
    for (const tovo::UnresolvedWord& word :
         tovo::ResolveTyped("Widht+LOG(2)", job).Value().unresolved)
        asked += word.message + (word.choices.empty() ? "" : " " + word.choices[0] + "?") + "\n";
    // [end]
    EXPECT_EQ(typed.expression, "2*(V(Width)+IF(V(Heated?),1,0))");
    EXPECT_EQ(asked, CodeBlocks(ReadDocument("job-guide.md"), "text").at(0));
}

TEST(JobGuide, HelpsTyping)
{
    const Job job = Shed();
    // [guide: Complete names]
    const std::string text = "2*w";
    std::string labels;
    for (const tovo::Completion& completion : tovo::Complete(text, text.size(), job, {"Area", 10}))
        labels += completion.label + " "; // Width POWER
    const auto signature = tovo::SignatureAt("ROUND(2.675,", 12, job);
    const std::string help = signature->text + ": " + signature->example;
    const std::size_t parameter = signature->parameter.value(); // 1: places
    // [end]
    EXPECT_EQ(labels, "Width POWER ");
    EXPECT_EQ(help, "ROUND(value,places): ROUND(2.675,2)");
    EXPECT_EQ(parameter, 1u);
}

TEST(JobGuide, OffersFixes)
{
    Job job = Shed();
    std::string said;
    // [guide: Apply fixes]
    job.SetExpression("Area", "V(Widht)^2").Value();
    for (int round = 0; round < 2; ++round) {
        job.Update();
        const std::vector<tovo::Fault> faults = job.Faults();
        const std::vector<tovo::Fix> fixes = tovo::FixesFor(faults.at(0), job);
        job.Apply(fixes.at(0).change).Value();
        said += fixes.at(0).description + "; ";
    }
    const std::string area = job.FindFormula("Area")->expression; // POWER(V(Width),2)
    // [end]
    EXPECT_EQ(area, "POWER(V(Width),2)");
    EXPECT_EQ(said, "Use variable \"Width\"; Use POWER; ");
}

TEST(JobGuide, Asks)
{
    Job job = Shed();
    std::string users;
    // [guide: Ask who depends on what]
    for (const auto& user :
         tovo::UsedBy(job, tovo::VariableNamed("Width"), tovo::Reach::Transitive))
        users += user.object.name + " ";             // Area Price Rate
    const std::string graph = tovo::WriteGraph(job); // for the program dot
    // [end]
    EXPECT_EQ(users, "Area Price Rate ");
    EXPECT_FALSE(graph.empty());
}

TEST(JobGuide, Explains)
{
    Job job = Shed();
    // [guide: Explain a value]
    const auto explanation = tovo::Explain(job, tovo::FormulaNamed("Price")).Value();
    const std::string text = tovo::WriteText(explanation);
    // [end]
    EXPECT_EQ(text, CodeBlocks(ReadDocument("job-guide.md"), "text").at(1));
}

TEST(JobGuide, Edits)
{
    Job job = Shed();
    // [guide: Change safely]
    const tovo::Edit edits[] = {
        tovo::RenameObject{tovo::FormulaNamed("Area"), "Floor area"},
        tovo::RemoveObject{tovo::TableNamed("Rate"), tovo::References::ReplaceByValue},
    };
    const tovo::Preview preview = job.PreviewOf(edits).Value();
    const std::size_t places = preview.places.size();               // what would be written where
    job.Apply(edits).Value();                                       // both, or none
    const std::string price = job.FindFormula("Price")->expression; // F(Floor area)*95.5
    job.Undo();                                                     // both
    // [end]
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
    // [guide: Read and save a file]
    tovo::JobFile file = tovo::JobFile::Open(path).Value();
    file.Content().AddVariable("Width", 2.5, "m").Value();
    if (const tovo::Result<void> saved = file.Save(); !saved)
        if (saved.Why().kind == tovo::RefusalKind::FileChanged)
            question = "The file was changed meanwhile. Replace it?";
    // [end]
    EXPECT_EQ(question, "");
    std::filesystem::remove(path);
}

TEST(JobGuide, LaysScenariosOverAJob)
{
    const Job job = Shed();
    std::string news;
    // [guide: Ask what if]
    const tovo::Snapshot snapshot(job);
    const tovo::Scenario narrow = {{{tovo::VariableNamed("Width"), 2}}};
    const tovo::ScenarioReport report = snapshot.Calculate(narrow).Value();
    for (const tovo::ValueChange& change : report.report.changes.values)
        news += change.object.name + " "; // Width Area Rate Price
    const std::size_t worse = report.newFaults.size();
    // [end]
    EXPECT_EQ(news, "Width Area Rate Price ");
    EXPECT_EQ(worse, 0u);
}

TEST(JobGuide, CalculatesRows)
{
    const Job job = Shed();
    // [guide: Calculate rows]
    const tovo::ObjectName inputs[] = {tovo::VariableNamed("Width")};
    const tovo::ObjectName outputs[] = {tovo::FormulaNamed("Area"), tovo::FormulaNamed("Price")};
    const tovo::Batch batch = tovo::Batch::Make(job, inputs, outputs).Value();
    const double widths[] = {1, 2, 4};
    double values[6]; // 1 120 4 480 16 1528
    tovo::BatchOptions options;
    options.threads = 2;
    const tovo::BatchReport report = batch.Run(widths, values, options).Value();
    const std::size_t faulty = report.faultyRows;
    // [end]
    EXPECT_EQ(faulty, 0u);
    EXPECT_EQ(std::vector<double>(values, values + 6),
              (std::vector<double>{1, 120, 4, 480, 16, 1528}));
}

TEST(JobGuide, CalculatesRecords)
{
    const Job job = Shed();
    // [guide: Calculate records]
    std::istringstream rows("Room,Width\nHall,2\nAttic,wide\n");
    std::ostringstream results;
    tovo::CsvBatchOptions options;
    options.outputs = {tovo::FormulaNamed("Price")};
    options.copied = {"Room"};
    const tovo::BatchReport report = tovo::RunCsvBatch(job, rows, results, options).Value();
    const std::string text = results.str();
    // [end]
    EXPECT_EQ(report.faultyRows, 1u);
    EXPECT_EQ(text, CodeBlocks(ReadDocument("job-guide.md"), "text").at(2));
}

TEST(JobGuide, Solves)
{
    const Job job = Shed();
    std::string said;
    // [guide: Solve]
    const tovo::ObjectName width = tovo::VariableNamed("Width");
    const auto found = tovo::Solve(job, tovo::FormulaNamed("Area"), 9, width, {0, 10}).Value();
    const double side = found.input; // 3
    const auto none = tovo::Solve(job, tovo::FormulaNamed("Price"), -1, width, {0, 10});
    if (!none)
        said = none.Why().text;
    // [end]
    EXPECT_NEAR(side, 3, 1e-9);
    EXPECT_EQ(said + "\n", CodeBlocks(ReadDocument("job-guide.md"), "text").at(3));
}

TEST(JobGuide, ShowsTheseBlocks)
{
    EXPECT_EQ(CodeBlocks(ReadDocument("job-guide.md"), "cpp"),
              GuideRegions(ReadDocument("../tests/docs/JobGuideTest.cpp")));
}

} // namespace

} // namespace tovo::test
