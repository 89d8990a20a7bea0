#include <cmath>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Jobs.h"

using namespace tovo;
using namespace tovo::test;

namespace {

Job BoxJob()
{
    Job job;
    job.AddVariable("Width", 2).Value();
    job.AddVariable("Open?", 0).Value();
    job.AddFormula("Area", "POWER(V(Width),2)").Value();
    job.AddFormula("Ratio", "QUANTITY/(V(Width)-3)").Value();
    job.AddFormula("Rounded", "ROUND(F(Area),0)").Value();
    job.AddFormula("Roots", "SQRT(V(Width)-1)").Value();
    job.AddFormula("Side?", "V(Width)>0").Value();
    job.SetJobValues({0, 0, 1}).Value();
    return job;
}

std::string Dump(const Result<ScenarioReport>& result)
{
    if (!result)
        return result.Why().text;
    std::string text = test::Dump(result.Value().report.changes);
    for (const Fault& fault : result.Value().newFaults)
        text += "; new " + fault.object.name + "!" + std::to_string(fault.message);
    for (const Fault& fault : result.Value().clearedFaults)
        text += "; cleared " + fault.object.name;
    return text;
}

} // namespace

TEST(Scenario, TellsWhatDiffers)
{
    Job job = BoxJob();
    job.AddFormula("Inverse", "1/IF(V(Open?),1,0)").Value();
    const std::string before = DumpContent(job);
    const Snapshot snapshot(job);
    job.SetValue("Width", 50).Value();
    const ObjectName width = VariableNamed("Width");
    struct Case {
        std::vector<Assignment> values;
        const char* expected;
    };
    const Case cases[] = {
        {{}, ""},
        {{{width, 2}}, ""},
        {{{width, 1}}, "Width: 2->1; Area: 4->1; Roots: 1->0; Ratio: -1->-0.5; Rounded: 4->1"},
        {{{width, 3}},
         "Width: 2->3; Area: 4->9; Roots: 1->1.4142135623730951; Ratio: -1->none; Rounded: 4->9; "
         "new Ratio!6604"},
        {{{{Kind::JobValue, "QUANTITY"}, 5}, {{Kind::JobValue, "JOBSIZE"}, 5}}, "Ratio: -1->-5"},
        {{{width, 7}, {width, 2}}, ""},
        {{{VariableNamed("Open?"), 1}}, "Open?: 0->1; Inverse: none->1; cleared Inverse"},
        {{{VariableNamed("Open?"), 2}}, "a name that ends in \"?\" takes 1 for yes or 0 for no"},
        {{{width, NAN}}, "the value is not finite"},
        {{{FormulaNamed("Area"), 1}}, "there is no variable or job value of this name to set"},
        {{{{Kind::JobValue, "AREA"}, 1}}, "there is no variable or job value of this name to set"},
    };
    for (int round = 0; round < 2; ++round) {
        for (const Case& row : cases)
            EXPECT_EQ(Dump(snapshot.Calculate({row.values})), row.expected);
    }
    EXPECT_EQ(Dump(snapshot.Base()), "Width=2; Open?=no; Area=4; Ratio=-1; Rounded=4; Roots=1; "
                                     "Side?=yes; Inverse!6604");
    job.Undo();
    EXPECT_EQ(DumpContent(job), before);
}

TEST(Scenario, ThreadsAskOneSnapshot)
{
    int asked = 0;
    Job job = BoxJob();
    job.AddVariable("Now", [&] { return static_cast<double>(++asked); }).Value();
    job.AddFormula("Late", "V(Now)+F(Area)").Value();
    const Snapshot snapshot(job);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&, thread] {
            for (int round = 0; round < 20; ++round) {
                const double width = 10 * thread + round;
                const auto result = snapshot.Calculate({{{VariableNamed("Width"), width}}});
                for (const Outcome& outcome : result.Value().report.outcomes) {
                    if (outcome.object.name == "Late") {
                        EXPECT_EQ(outcome.value, 1 + width * width);
                    }
                }
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(asked, 1);
}

TEST(Solve, FindsInputsOrSaysWhyNot)
{
    struct Case {
        const char* formula;
        double target;
        Range range;
        double input; // or what the refusal contains
        const char* refusal;
    };
    const Case cases[] = {
        {"Area", 2, {0, 5}, 1.4142135623730951, nullptr},
        {"Area", 2, {-5, 5}, -1.4142135623730951, nullptr}, // the smaller of two
        {"Area", 25, {0, 5}, 5, nullptr},                   // at an end
        {"Area", 9, {3, 3}, 3, nullptr},
        {"Roots", 1, {-10, 10}, 2, nullptr}, // has no value in half of the range
        {"Ratio", 4, {0, 10}, 3.25, nullptr},
        {"Rounded", 9, {0, 10}, 2.9296875, nullptr}, // anywhere on a stair
        {"Area",
         -1,
         {-5, 5},
         0,
         "does not come to -1 from -5 to 5: it lies between 0 for 0 and 25"},
        {"Rounded", 8.5, {0, 10}, 0, "the value jumps over 8.5: it is 8 for 2.9"},
        {"Ratio", 0, {0, 7}, 0, "the value jumps over 0: it is -"},
        {"Roots", 5, {-3, 0}, 0, "it has no value anywhere from -3 to 0: "},
        {"Area", NAN, {0, 1}, 0, "not finite"},
        {"Area", 1, {1, 0}, 0, "the range does not lead"},
        {"Gone", 1, {0, 1}, 0, "there is no formula of this name"},
    };
    const Job job = BoxJob();
    for (const Case& row : cases) {
        const auto result =
            Solve(job, FormulaNamed(row.formula), row.target, VariableNamed("Width"), row.range);
        if (row.refusal) {
            ASSERT_FALSE(result) << row.formula << row.target;
            EXPECT_NE(result.Why().text.find(row.refusal), std::string::npos) << result.Why().text;
        } else {
            ASSERT_TRUE(result) << row.formula << row.target << result.Why().text;
            EXPECT_NEAR(result.Value().input, row.input, 1e-9) << row.formula << row.target;
            EXPECT_LE(result.Value().calculations, 400u);
        }
    }
}

TEST(Csv, ReadsAsItIsWritten)
{
    struct Case {
        const char* text;
        const char* records; // each field in brackets, each record ended by a semicolon
    };
    const Case cases[] = {
        {"", ""},
        {"a,b\n1,2", "[a][b];[1][2];"},
        {"a,b\r\n1,2\r\n", "[a][b];[1][2];"},
        {"\xEF\xBB\xBF"
         "a\n",
         "[a];"},
        {"\n", "[];"},
        {",\n\n,", "[][];[];[][];"},
        {"\"a,\"\"b\"\"\r\nc\",\" d \"\n", "[a,\"b\"\r\nc][ d ];"},
        {"a\rb,c\n", "[a\rb][c];"},
        {"\"\"", "[];"},
        {"a,\"b\"c\n", "!x:1:6 a text follows the closing quote of a field"},
        {"a\n\"b\nc", "[a];!x:2:1 the quote is never closed"},
        {"a,b\"\n", "!x:1:4 a quote stands in a field that is not quoted"},
    };
    for (const Case& row : cases) {
        std::istringstream in(row.text);
        CsvReader reader(in, "x");
        std::string records;
        std::string written;
        std::vector<std::string> fields;
        for (;;) {
            const Result<bool> next = reader.Next(fields);
            if (!next)
                records += "!" + next.Why().place + " " + next.Why().text;
            if (!next || !next.Value())
                break;
            for (const std::string& field : fields)
                records += "[" + field + "]";
            records += ";";
            AppendCsvRecord(written, fields);
        }
        EXPECT_EQ(records, row.records) << row.text;
        EXPECT_FALSE(reader.Next(fields).Value());
        std::istringstream again(written);
        CsvReader second(again);
        std::string rewritten;
        while (second.Next(fields).Value())
            AppendCsvRecord(rewritten, fields);
        EXPECT_EQ(rewritten, written);
    }
}

TEST(CsvBatch, CalculatesRecords)
{
    struct Case {
        const char* rows;
        const char* expected; // what is written, or the refusal at its end
    };
    const Case cases[] = {
        {"Width,Open?\n1.5,yes\n3,NO\n", "Area,Ratio,fault\n2.25,-0.6666666666666666,\n"
                                         "9,,Ratio: A divide by zero occurred during "
                                         "calculation.\n"},
        {"V(Width),QUANTITY\n1,4\n", "Area,Ratio,fault\n1,-2,\n"},
        {"Width,Open?\n,maybe\n", "Area,Ratio,fault\n,,Width: The input is not a number.; Open?: "
                                  "The input is neither yes nor no.\n"},
        {"Width\n1e3\n\"1,5\"\n", "Area,Ratio,fault\n1e+06,0.0010030090270812437,\n"
                                  ",,Width: The input is not a number.\n"},
        {"Width\n1 \n", "Area,Ratio,fault\n,,Width: The input is not a number.\n"},
        {"Width\n", "Area,Ratio,fault\n"},
        {"", "!x there is no first record that names the inputs"},
        {"Length\n1\n", "!x:1 the column \"Length\" is no variable or job value"},
        {"Width,Width\n1,1\n", "!Width the input is named twice"},
        {"Width,Open?\n1,no\n2\n",
         "Area,Ratio,fault\n1,-0.5,\n!x:3 the record has 1 fields, and the first one has 2"},
    };
    const Job job = BoxJob();
    for (const Case& row : cases) {
        std::istringstream in(row.rows);
        std::ostringstream out;
        CsvBatchOptions options;
        options.outputs = {FormulaNamed("Area"), FormulaNamed("Ratio")};
        options.name = "x";
        const auto result = RunCsvBatch(job, in, out, options);
        std::string text = out.str();
        if (!result)
            text += "!" + result.Why().place + " " + result.Why().text;
        EXPECT_EQ(text, row.expected) << row.rows;
    }
}

TEST(CsvBatch, CopiesColumnsAndTellsProgress)
{
    std::string rows = "Id,Width\n";
    for (int row = 0; row < 5000; ++row)
        rows += "\"no, " + std::to_string(row) + "\"," + std::to_string(row % 10) + "\n";
    std::istringstream in(rows);
    std::ostringstream out;
    CsvBatchOptions options;
    options.outputs = {FormulaNamed("Side?"), FormulaNamed("Ratio")};
    options.copied = {"Id"};
    options.threads = 2;
    std::size_t told = 0;
    options.progress = [&](std::size_t done, std::size_t total) {
        EXPECT_EQ(total, rows.size());
        EXPECT_GE(done, told);
        told = done;
        return true;
    };
    const BatchReport report = RunCsvBatch(BoxJob(), in, out, options).Value();
    EXPECT_EQ(report.rows, 5000u);
    EXPECT_EQ(report.faultyRows, 500u);
    EXPECT_EQ(report.causes.size(), 1u);
    EXPECT_EQ(told, rows.size());
    EXPECT_EQ(out.str().substr(0, 70), "Id,Side?,Ratio,fault\n\"no, 0\",no,-0.3333333333333333,\n"
                                       "\"no, 1\",yes,-0.5,");
}
