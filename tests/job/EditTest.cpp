#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "Jobs.h"

using namespace tovo;
using namespace tovo::test;

namespace {

std::string Dump(const std::vector<PlaceChange>& places)
{
    std::string text;
    for (const PlaceChange& place : places)
        text += (text.empty() ? "" : "; ") + place.object.name + " " + place.part + ": " +
                place.before.value_or("-") + " -> " + place.after.value_or("-");
    return text;
}

// With every kind of reference to everything that can be renamed.
Job WovenJob()
{
    Job job;
    job.AddVariable("a)b\\", 2).Value();
    job.AddVariable("On?", 1).Value();
    job.AddFormula("Sum", "V(a)b\\\\)+V(a\\)b\\\\)*2").Value();
    job.SetExpression("Sum", "V(a\\)b\\\\)+V(a\\)b\\\\)*2").Value();
    job.AddFormula("IF", "IF(V(On?),F(Sum),T(Rate))+F(Sum)").Value();
    job.AddTable(StepTable("Rate", VariableNamed("a)b\\"), {1, 2}, {FormulaNamed("Sum"), 4.5}))
        .Value();
    job.AddTable(StepTable("Other", TableNamed("Rate"), {1, 2}, {VariableNamed("a)b\\"), 1.0}))
        .Value();
    return job;
}

} // namespace

TEST(Edits, RenamingReachesEveryReference)
{
    struct Case {
        ObjectName object;
        const char* newName;
    };
    const Case cases[] = {
        {VariableNamed("a)b\\"), "V(Sum)"},
        {VariableNamed("On?"), "x) ?"},
        {FormulaNamed("Sum"), "1+1"},
        {FormulaNamed("IF"), "Sum "
                             "x"},
        {TableNamed("Rate"), "Größe 😀"},
        {TableNamed("Other"), "a)b\\"},
    };
    for (const Case& row : cases) {
        Job job = WovenJob();
        const std::string before = DumpContent(job);
        const Report report = job.Calculate();
        job.Rename(row.object, row.newName).Value();
        const Report renamed = job.Calculate();
        EXPECT_TRUE(renamed.faults.empty()) << row.newName;
        ASSERT_EQ(renamed.outcomes.size(), report.outcomes.size());
        for (std::size_t at = 0; at < report.outcomes.size(); ++at)
            EXPECT_EQ(renamed.outcomes[at].value, report.outcomes[at].value) << row.newName;
        EXPECT_FALSE(job.Has(row.object));
        job.Rename({row.object.kind, row.newName}, row.object.name).Value();
        EXPECT_EQ(DumpContent(job), before);
    }
}

TEST(Edits, RemovalDoesWithReferencesWhatItIsTold)
{
    struct Case {
        RemoveObject edit;
        const char* sum; // the expressions after it
        const char* other;
        const char* cell; // of the table
    };
    const Case cases[] = {
        {{FormulaNamed("Sum"), References::Leave}, "", "F(Sum)-2*F(Sum)", "F(Sum)"},
        {{FormulaNamed("Sum"), References::ReplaceByValue}, "", "(-1.5)-2*(-1.5)", "-1.5"},
        {{FormulaNamed("Sum"), References::ReplaceByObject, VariableNamed("b")},
         "",
         "V(b)-2*V(b)",
         "V(b)"},
        {{VariableNamed("a"), References::ReplaceByValue}, "0.5-V(b)", "F(Sum)-2*F(Sum)", "F(Sum)"},
        {{VariableNamed("b"), References::ReplaceByValue}, "V(a)-2", "F(Sum)-2*F(Sum)", "F(Sum)"},
    };
    for (const Case& row : cases) {
        Job job;
        job.AddVariable("a", 0.5).Value();
        job.AddVariable("b", 2).Value();
        job.AddFormula("Sum", "V(a)-V(b)").Value();
        job.AddFormula("Other", "F(Sum)-2*F(Sum)").Value();
        job.AddTable(StepTable("T", VariableNamed("a"), {1, 2}, {FormulaNamed("Sum"), 1.0}))
            .Value();
        const std::string before = DumpContent(job);
        job.Apply(row.edit).Value();
        if (*row.sum) {
            EXPECT_EQ(job.FindFormula("Sum")->expression, row.sum);
        }
        EXPECT_EQ(job.FindFormula("Other")->expression, row.other);
        EXPECT_EQ(Dump(job.FindTable("T")->cells[0][0]), row.cell);
        EXPECT_TRUE(job.Undo());
        EXPECT_EQ(DumpContent(job), before);
        EXPECT_FALSE(job.Apply(RemoveObject{row.edit.object}));
    }
}

// What stands for a value comes to that value, as far as the 15 digits of a number go.
TEST(Edits, ValuesAreWrittenAsExpressions)
{
    const double values[] = {0,      1,       -1,   0.1,  123456789012345, 1e15, 1e300, -2.5e-7,
                             1e-280, 1.0 / 3, 0.05, -99.5};
    for (const double value : values) {
        Job job;
        job.AddVariable("x", value).Value();
        job.AddFormula("y", "V(x)").Value();
        job.Apply(RemoveObject{VariableNamed("x"), References::ReplaceByValue}).Value();
        const Report report = job.Calculate();
        const std::string expression = job.FindFormula("y")->expression;
        ASSERT_TRUE(report.outcomes[0].value) << expression;
        EXPECT_NEAR(*report.outcomes[0].value, value, std::abs(value) * 1e-14) << expression;
    }
    for (const double value : {4.9e-324, 1.7976931348623157e308}) {
        Job job;
        job.AddVariable("x", value).Value();
        job.AddFormula("y", "V(x)").Value();
        EXPECT_FALSE(job.Apply(RemoveObject{VariableNamed("x"), References::ReplaceByValue}));
    }
}

TEST(Edits, PreviewTellsWhatWouldHappen)
{
    Job job = WovenJob();
    const std::string before = DumpContent(job);
    // A removal by value calculates for itself.
    const Edit removal[] = {ChangeObject{Variable{"On?", 0, "", "", {}}},
                            RemoveObject{VariableNamed("On?"), References::ReplaceByValue}};
    EXPECT_EQ(test::Dump({job.PreviewOf(removal).Value().values}), "On?: 1->none; IF: 12->10.5");
    const Edit edits[] = {RenameObject{FormulaNamed("Sum"), "Total"},
                          ChangeObject{Variable{"a)b\\", 3, "m", "", {}}},
                          AddObject{Formula{"New", "F(Nobody)", "", "", nullptr}}};
    const Preview preview = job.PreviewOf(edits).Value();
    EXPECT_EQ(Dump(preview.places),
              "IF expression: IF(V(On?),F(Sum),T(Rate))+F(Sum) -> "
              "IF(V(On?),F(Total),T(Rate))+F(Total); "
              "Rate row 1, column 1: F(Sum) -> F(Total); Sum name: Sum -> Total; "
              "a)b\\ value: 2 -> 3; a)b\\ unit:  -> m; "
              "New name: - -> New; New expression: - -> F(Nobody)");
    ASSERT_EQ(preview.newFaults.size(), 1u);
    EXPECT_EQ(preview.newFaults[0].object, FormulaNamed("New"));
    EXPECT_EQ(DumpContent(job), before);
    EXPECT_FALSE(job.CanRedo());
    // The first calculation tells all values, as if nobody had looked ahead.
    EXPECT_EQ(Dump(job.Update()), "a)b\\: none->2; On?: none->1; Sum: none->6; Rate: none->4.5; "
                                  "IF: none->12; Other: none->1");
}

TEST(Edits, ATransactionIsAllOrNothing)
{
    Job job = WovenJob();
    const std::string before = DumpContent(job);
    const Edit edits[] = {RenameObject{FormulaNamed("Sum"), "Total"},
                          RemoveObject{VariableNamed("On?"), References::Leave},
                          AddObject{Variable{"a)b\\", 1, "", "", {}}}};
    EXPECT_EQ(job.Apply(edits).Why().kind, RefusalKind::NameTaken);
    EXPECT_EQ(DumpContent(job), before);
    job.Apply(std::span(edits, 2)).Value();
    const std::string after = DumpContent(job);
    EXPECT_TRUE(job.Undo());
    EXPECT_EQ(DumpContent(job), before);
    EXPECT_TRUE(job.Redo());
    EXPECT_EQ(DumpContent(job), after);
}

namespace {

// Random edits of a job of few names, so that rings, missing names and faults are common.
class RandomEdits {
public:
    explicit RandomEdits(unsigned seed) : m_Random(seed) {}

    Edit Next()
    {
        switch (Below(8)) {
        case 0:
            return RemoveObject{Object(), static_cast<References>(Below(4)), Object()};
        case 1:
            return RenameObject{Object(), Name()};
        case 2:
            return AddObject{Any(), Below(3)};
        case 3:
            return AddObject{Any()};
        case 4:
            return ChangeJobValues{{Number(), Number(), Number()}};
        default:
            return ChangeObject{Any()};
        }
    }
    unsigned Below(unsigned limit) { return static_cast<unsigned>(m_Random() % limit); }

private:
    double Number() { return static_cast<double>(Below(5)) - 1; }
    std::string Name() { return std::string(1, static_cast<char>('a' + Below(6))); }
    ObjectName Object() { return {static_cast<Kind>(Below(3)), Name()}; }
    Element Part()
    {
        if (Below(3) == 0)
            return Number();
        return Object();
    }
    std::string Expression()
    {
        constexpr const char* kJoints[] = {"+", "*", "/", "-"};
        std::string text = WriteReference(Object());
        for (unsigned count = Below(3); count > 0; --count)
            text += kJoints[Below(4)] + (Below(4) ? WriteReference(Object()) : "QUANTITY");
        return Below(8) ? Below(4) ? text : "IF(" + text + ">1," + text + ",1)" : text + "+";
    }
    AnyObject Any()
    {
        switch (Below(3)) {
        case 0:
            return Variable{Name(), Number(), "", "", {}};
        case 1:
            return StepTable(Name(), Object(), {1, 2, 3}, {Part(), Part(), Part()});
        default:
            return Formula{Name(), Expression(), "", "", nullptr};
        }
    }

    std::mt19937 m_Random;
};

std::string DumpResults(const Report& report)
{
    std::string text = test::Dump(report);
    for (const Fault& fault : report.faults) {
        text += "\n" + fault.object.name + " " + std::to_string(fault.message) + " " +
                fault.offender + " " + fault.place.part;
        for (const ObjectName& affected : fault.affected)
            text += " " + WriteReference(affected);
    }
    return text;
}

} // namespace

// After each edit, what was calculated step by step is what a new job comes to.
TEST(Edits, IncrementalResultsAreThoseOfANewJob)
{
    for (unsigned seed = 1; seed <= 60; ++seed) {
        Job job;
        RandomEdits random(seed);
        for (int step = 0; step < 60; ++step) {
            (void)job.Apply(random.Next());
            if (random.Below(8) == 0)
                (void)(random.Below(2) ? job.Undo() : job.Redo());
            if (random.Below(3) == 0)
                continue;
            Job fresh(job);
            ASSERT_EQ(DumpResults(job.Calculate()), DumpResults(fresh.Calculate()))
                << "seed " << seed << ", step " << step << ": " << DumpContent(job);
        }
    }
}

TEST(Edits, UndoneToTheStartAJobIsWhatItWas)
{
    for (unsigned seed = 1; seed <= 40; ++seed) {
        RandomEdits random(seed);
        Job job;
        for (int step = 0; step < 30; ++step)
            (void)job.Apply(random.Next());
        job = Job(job); // without the history
        const std::string start = WriteJob(job);
        std::vector<std::string> states = {start};
        for (int step = 0; step < 40; ++step) {
            if (job.Apply(random.Next()) && WriteJob(job) != states.back())
                states.push_back(WriteJob(job));
        }
        const std::string end = states.back();
        while (job.CanUndo())
            job.Undo();
        ASSERT_EQ(WriteJob(job), start) << "seed " << seed;
        while (job.Redo())
            ;
        ASSERT_EQ(WriteJob(job), end) << "seed " << seed;
    }
}
