#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <TovoFormula/MessageIds.h>

#include "Jobs.h"

using namespace tovo;
using namespace tovo::test;

namespace {

// The values of a batch row by row, each fault as an object and its message.
std::string Dump(const BatchReport& report, const std::vector<double>& results)
{
    std::string text;
    for (const double value : results)
        text += (text.empty() ? "" : " ") + (std::isnan(value) ? "-" : Short(value));
    for (const auto& [row, cause] : report.faults)
        text += "; row " + std::to_string(row) + " " + report.causes[cause].object.name + "!" +
                std::to_string(report.causes[cause].failure.message);
    return text;
}

std::string RunText(const Job& job, const std::vector<ObjectName>& inputs,
                    const std::vector<ObjectName>& outputs, const std::vector<double>& rows)
{
    const auto batch = Batch::Make(job, inputs, outputs);
    if (!batch)
        return batch.Why().text;
    std::vector<double> results(inputs.empty() ? outputs.size()
                                               : rows.size() / inputs.size() * outputs.size());
    const auto report = batch.Value().Run(rows, results);
    return report ? Dump(report.Value(), results) : report.Why().text;
}

ObjectName Quantity()
{
    return {Kind::JobValue, "QUANTITY"};
}

Job RoomJob()
{
    Job job;
    job.AddVariable("Width", 2).Value();
    job.AddVariable("Heated?", 1).Value();
    job.AddFormula("Area", "V(Width)*V(Width)*QUANTITY").Value();
    job.AddFormula("Rate", "T(Price)/(V(Width)-4)").Value();
    job.AddFormula("Cost", "F(Area)*F(Rate)").Value();
    job.AddFormula("Large?", "F(Area)>10").Value();
    job.AddFormula("Fixed", "3+4").Value();
    job.AddFormula("Broken", "V(Width)+V(Nobody)").Value();
    job.AddFormula("On broken", "F(Broken)*1").Value();
    Table price = StepTable("Price", FormulaNamed("Area"), {10, 20}, {1.5, FormulaNamed("Fixed")});
    job.AddTable(price).Value();
    job.SetJobValues({0, 0, 1}).Value();
    return job;
}

} // namespace

TEST(Batch, CalculatesRows)
{
    const ObjectName width = VariableNamed("Width");
    const ObjectName heated = VariableNamed("Heated?");
    const ObjectName area = FormulaNamed("Area");
    const ObjectName cost = FormulaNamed("Cost");
    const ObjectName large = FormulaNamed("Large?");
    struct Case {
        std::vector<ObjectName> inputs;
        std::vector<ObjectName> outputs;
        std::vector<double> rows;
        const char* expected;
    };
    const Case cases[] = {
        {{width}, {area, large}, {2, 3, 4}, "4 0 9 0 16 1"},
        {{width, Quantity()},
         {area, cost, TableNamed("Price")},
         {2, 1, 3, 2},
         "4 -3 1.5 18 -126 7"},
        // A division by zero concerns its row alone, and what does not rest on it has a value.
        {{width}, {area, cost}, {4, 5}, "16 - 25 175; row 0 Cost!6604"},
        {{width}, {cost, FormulaNamed("Rate")}, {4}, "- -; row 0 Cost!6604; row 0 Rate!6604"},
        // What no input leads to has the value of the job; an input is an output as well.
        {{width}, {FormulaNamed("Fixed"), heated, width}, {5}, "7 1 5"},
        {{}, {area}, {}, "4"},
        // What fails whatever the inputs are.
        {{width},
         {area, FormulaNamed("On broken")},
         {1, 2},
         "1 - 4 -; row 0 On broken!20001; row 1 On broken!20001"},
        {{width, heated},
         {area},
         {NAN, 1, 1, 2, 3, 0},
         "- - 9; row 0 Width!20031; row 1 Heated?!20032"},
        {{area}, {cost}, {1}, "there is no variable or job value of this name to set"},
        {{width, width}, {cost}, {1, 1}, "the input is named twice"},
        {{width}, {FormulaNamed("Gone")}, {1}, "there is no formula of this name"},
        {{width}, {}, {1}, "a batch needs an output"},
        {{width, heated},
         {area},
         {1, 1, 1},
         "3 values for 2 inputs and 1 results for 1 outputs are not the same number of rows"},
    };
    const Job job = RoomJob();
    for (const Case& row : cases)
        EXPECT_EQ(RunText(job, row.inputs, row.outputs, row.rows), row.expected);
}

TEST(Batch, KeepsTheJobAsItWas)
{
    int asked = 0;
    Job job = RoomJob();
    job.AddVariable("Now", [&] { return static_cast<double>(++asked); }).Value();
    CalcSetImpl set;
    FormulaImpl hosts(&set, u"Host's", u"V(own)+7");
    job.Link(static_cast<IFormulaObj&>(hosts)).Value();
    job.AddFormula("Sum", "F(Host's)+V(Now)+V(Width)").Value();
    const ObjectName width = VariableNamed("Width");
    const ObjectName sum = FormulaNamed("Sum");
    const Batch batch = Batch::Make(job, {&width, 1}, {&sum, 1}).Value();
    job.SetExpression("Sum", "0").Value();
    hosts.SetFromEncodedString(u"1/");
    const double rows[] = {1, NAN, 2};
    double results[3];
    EXPECT_EQ(batch.Run(rows, results).Value().faultyRows, 1u);
    EXPECT_EQ(results[0], 9);
    EXPECT_EQ(results[2], 10);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(job.FindVariable("Width")->value, 2);
}

TEST(Batch, ThreadsShareTheRows)
{
    const ObjectName width = VariableNamed("Width");
    const ObjectName cost = FormulaNamed("Cost");
    const Batch batch = Batch::Make(RoomJob(), {&width, 1}, {&cost, 1}).Value();
    std::vector<double> rows(20000);
    for (std::size_t row = 0; row < rows.size(); ++row)
        rows[row] = static_cast<double>(row % 1000) / 100;
    std::vector<double> alone(rows.size());
    std::vector<double> shared(rows.size());
    const BatchReport report = batch.Run(rows, alone).Value();
    BatchOptions options;
    options.threads = 4;
    std::size_t told = 0;
    options.progress = [&](std::size_t done, std::size_t total) {
        EXPECT_GE(done, told);
        EXPECT_EQ(total, rows.size());
        told = done;
        return true;
    };
    EXPECT_EQ(Dump(batch.Run(rows, shared, options).Value(), shared), Dump(report, alone));
    EXPECT_EQ(told, rows.size());
    EXPECT_EQ(report.faultyRows, 20u);
    EXPECT_EQ(report.causes.size(), 1u);

    options.progress = [](std::size_t done, std::size_t) -> bool {
        return done > 0 ? throw std::string("stop") : true;
    };
    EXPECT_THROW(static_cast<void>(batch.Run(rows, shared, options)), std::string);
}

TEST(Batch, ProgressCanEndIt)
{
    const ObjectName width = VariableNamed("Width");
    const ObjectName rate = FormulaNamed("Rate");
    const Batch batch = Batch::Make(RoomJob(), {&width, 1}, {&rate, 1}).Value();
    const std::vector<double> rows(20000, 1);
    for (const std::size_t last : {0u, 1u}) {
        std::vector<double> results(rows.size(), 7);
        BatchOptions options;
        options.progress = [&](std::size_t done, std::size_t) { return done < last; };
        const BatchReport report = batch.Run(rows, results, options).Value();
        EXPECT_FALSE(report.isComplete);
        EXPECT_EQ(report.rows > 0, last > 0);
        EXPECT_LT(report.rows, rows.size());
        EXPECT_EQ(static_cast<std::size_t>(std::count(results.begin(), results.end(), 7)),
                  rows.size() - report.rows);
    }
}

namespace {

// A job of formulas and tables that refer to one another, some of which fail for some inputs.
class RandomJob {
public:
    explicit RandomJob(unsigned int seed) : m_Random(seed)
    {
        JobOptions options;
        options.domainErrorsAreFaults = Pick(4) != 0;
        options.undefinedVariablesAreFaults = Pick(4) != 0;
        job.SetOptions(options);
        for (int at = 0; at < 4; ++at)
            job.AddVariable("v" + Numbered(at), Pick(5)).Value();
        job.AddVariable("y?", 1).Value();
        for (int at = 0; at < 12; ++at) {
            if (Pick(4) == 0)
                job.AddTable(StepTable("t" + Numbered(at), Object(at), {0, 1.5, 3},
                                       {Object(at), double(Pick(9)) / 4, Object(at)}))
                    .Value();
            else
                job.AddFormula("f" + Numbered(at), Expression(at)).Value();
        }
    }

    int Pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_Random); }

    Job job;

private:
    // Mostly an object of the lower numbers, rarely one that nobody has, or one further up.
    ObjectName Object(int below)
    {
        const int at = Pick(40) == 0 ? 11 : Pick(below + 5);
        if (at >= below)
            return VariableNamed(Pick(30) == 0 ? "nobody" : "v" + Numbered(Pick(4)));
        return job.FindTable("t" + Numbered(at)) ? TableNamed("t" + Numbered(at))
                                                 : FormulaNamed("f" + Numbered(at));
    }
    std::string Expression(int at)
    {
        const std::string a = WriteReference(Object(at));
        const std::string b = WriteReference(Object(at));
        switch (Pick(7)) {
        case 0:
            return a + "/" + b;
        case 1:
            return "SQRT(" + a + "-" + b + ")";
        case 2:
            return "IF(V(y?)," + a + "," + b + "*2)";
        case 3:
            return "IF(" + a + ">" + b + ",QUANTITY,1/" + b + ")";
        case 4:
            return a + "*" + b + (Pick(20) == 0 ? "*" : "");
        default:
            return "MAX(" + a + "," + b + ")-1";
        }
    }

    std::mt19937 m_Random;
};

} // namespace

// The values and the failures of a row are those of the job with the inputs set, to the bit.
TEST(Batch, AgreesWithTheJob)
{
    for (unsigned int seed = 0; seed < 150; ++seed) {
        RandomJob random(seed);
        const std::vector<ObjectName> inputs = {VariableNamed("vn0"), VariableNamed("vn1"),
                                                VariableNamed("y?"), Quantity()};
        std::vector<ObjectName> outputs;
        for (const Formula& formula : random.job.Formulas())
            outputs.push_back(FormulaNamed(formula.name));
        for (const Table& table : random.job.Tables())
            outputs.push_back(TableNamed(table.name));
        const Batch batch = Batch::Make(random.job, inputs, outputs).Value();
        for (int row = 0; row < 5; ++row) {
            const std::vector<double> values = {double(random.Pick(5)),
                                                double(random.Pick(5)) / 2 - 1,
                                                double(random.Pick(2)), double(random.Pick(3))};
            std::vector<double> results(outputs.size());
            const BatchReport report = batch.Run(values, results).Value();
            random.job.SetValue("vn0", values[0]).Value();
            random.job.SetValue("vn1", values[1]).Value();
            random.job.SetValue("y?", values[2]).Value();
            random.job.SetJobValues({0, 0, values[3]}).Value();
            random.job.Update();
            std::size_t faults = 0;
            for (std::size_t at = 0; at < outputs.size(); ++at) {
                const auto expected = random.job.ValueOf(outputs[at]);
                ASSERT_EQ(std::isnan(results[at]), !expected) << seed << " " << outputs[at].name;
                if (!expected) {
                    EXPECT_EQ(report.causes[report.faults[faults++].cause].object, outputs[at]);
                    continue;
                }
                ASSERT_EQ(std::bit_cast<std::uint64_t>(results[at]),
                          std::bit_cast<std::uint64_t>(*expected))
                    << seed << " " << outputs[at].name;
            }
            EXPECT_EQ(faults, report.faults.size());
        }
    }
}
