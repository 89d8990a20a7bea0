#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <TovoFormula/MessageIds.h>

#include "Jobs.h"

using namespace tovo;
using namespace tovo::test;

TEST(Job, CalculatesWhatItOwns)
{
    Job job;
    job.AddVariable("Width", 2.5, "m").Value();
    job.AddVariable("Heated?", 1).Value();
    job.AddFormula("Area", "V(Width)*V(Width)*QUANTITY", "m²").Value();
    job.AddFormula("Large?", "F(Area)>T(Limit)").Value();
    job.AddTable(StepTable("Limit", VariableNamed("Heated?"), {0, 1}, {100.0, 4.5})).Value();
    job.SetJobValues({0, 0, 2}).Value();

    const Report report = job.Calculate();

    EXPECT_EQ(Dump(report), "Width=2.5 m; Heated?=yes; Area=12.5 m²; Large?=yes; Limit=4.5");
    EXPECT_EQ(report.changes.calculated, 3u);
}

TEST(Job, KeepsTheNumbersOfCells)
{
    for (const double number :
         {0.0, -0.25, 0.1, 151.0, 139.5, 0.001, 123456789.125, 4e22, -1e300}) {
        Job job;
        job.AddTable(StepTable("Rate", 0.0, {0, 1}, {number, 1.0})).Value();
        job.Update();
        EXPECT_EQ(job.ValueOf(TableNamed("Rate")), number);
    }
}

TEST(Job, RefusesWhatItCannotHold)
{
    struct Case {
        const char* what;
        Edit edit;
        RefusalKind kind;
    };
    const auto table = [](std::vector<double> limits, std::vector<Element> cells,
                          Element columnSelector = {}) {
        Table made = StepTable("New", VariableNamed("Width"), std::move(limits), std::move(cells));
        made.columnSelector = std::move(columnSelector);
        return AddObject{std::move(made)};
    };
    const Case cases[] = {
        {"no name", AddObject{Variable{"", 1, "", "", {}}}, RefusalKind::BadName},
        {"blank at the end", AddObject{Variable{"A ", 1, "", "", {}}}, RefusalKind::BadName},
        {"broken UTF-8", AddObject{Variable{"A\xFF", 1, "", "", {}}}, RefusalKind::BadName},
        {"broken unit", AddObject{Variable{"A", 1, "\xFF", "", {}}}, RefusalKind::BadValue},
        {"broken note", AddObject{Formula{"A", "", "", "\xFF", nullptr}}, RefusalKind::BadValue},
        {"broken reference", table({1, 2}, {1.0, FormulaNamed("\xFF")}), RefusalKind::BadTable},
        {"name taken", AddObject{Variable{"Width", 1, "", "", {}}}, RefusalKind::NameTaken},
        {"not finite", AddObject{Variable{"A", INFINITY, "", "", {}}}, RefusalKind::BadValue},
        {"neither yes nor no", AddObject{Variable{"A?", 2, "", "", {}}}, RefusalKind::BadValue},
        {"equal limits", table({1, 1}, {1.0, 2.0}), RefusalKind::BadTable},
        {"too few limits", table({1}, {1.0, 2.0}), RefusalKind::BadTable},
        {"one row", table({1}, {1.0}), RefusalKind::BadTable},
        {"infinite cell", table({1, 2}, {1.0, INFINITY}), RefusalKind::BadTable},
        {"infinite selector of no use", table({1, 2}, {1.0, 2.0}, INFINITY), RefusalKind::BadTable},
        {"reference without a name", table({1, 2}, {1.0, FormulaNamed("")}), RefusalKind::BadTable},
        {"change of nothing", ChangeObject{Formula{"Gone", "1", "", "", nullptr}},
         RefusalKind::UnknownName},
        {"rename of nothing", RenameObject{FormulaNamed("Gone"), "A"}, RefusalKind::UnknownName},
        {"rename to a taken name", RenameObject{FormulaNamed("Area"), "Side"},
         RefusalKind::NameTaken},
        {"rename to the other kind", RenameObject{FormulaNamed("Area"), "Area?"},
         RefusalKind::BadName},
        {"removal of what is used", RemoveObject{VariableNamed("Width")}, RefusalKind::InUse},
        {"job value not finite", ChangeJobValues{{NAN, 0, 0}}, RefusalKind::BadValue},
    };
    Job job;
    job.AddVariable("Width", 2).Value();
    job.AddFormula("Area", "V(Width)*2").Value();
    job.AddFormula("Side", "1").Value();
    const std::string before = DumpContent(job);
    for (const Case& row : cases) {
        const Result<void> result = job.Apply(row.edit);
        ASSERT_FALSE(result) << row.what;
        EXPECT_EQ(result.Why().kind, row.kind) << row.what << ": " << result.Why().text;
        EXPECT_EQ(DumpContent(job), before) << row.what;
    }
    EXPECT_THROW(job.AddVariable("Width", 1).Value(), Refused);
}

TEST(Job, AsksHostsOnceForEachCalculation)
{
    int asked = 0;
    Job job;
    job.AddVariable("Now", [&] { return static_cast<double>(++asked); }).Value();
    job.AddFormula("Twice", "V(Now)+V(Now)").Value();
    job.AddFormula("More", "F(Twice)+V(Now)").Value();
    EXPECT_EQ(Dump(job.Calculate()), "Now=1; Twice=2; More=3");
    EXPECT_EQ(Dump(job.Calculate()), "Now=2; Twice=4; More=6");

    CalcSetImpl set;
    FormulaImpl hosts(&set);
    CString name = u"Host's";
    hosts.SetName(name);
    hosts.SetFromEncodedString(u"V(own)+7");
    job.Link(static_cast<IFormulaObj&>(hosts)).Value();
    job.AddFormula("Of host", "F(Host's)*2").Value();
    EXPECT_EQ(Dump(job.Calculate()), "Now=3; Twice=6; More=9; Host's=7; Of host=14");
    hosts.SetFromEncodedString(u"1/");
    EXPECT_EQ(Dump(job.Calculate()), "Now=4; Twice=8; More=12; Host's!10732; Of host!10732");
}

TEST(Job, IsSafeByDefault)
{
    Job job;
    job.AddFormula("Ratio", "1/0").Value();
    job.AddFormula("Sum", "V(Unknown)+1").Value();
    EXPECT_EQ(Dump(job.Calculate()), "Ratio!6604; Sum!20001");
    JobOptions options;
    options.domainErrorsAreFaults = options.undefinedVariablesAreFaults = false;
    job.SetOptions(options);
    EXPECT_EQ(Dump(job.Calculate()), "Ratio=0; Sum=1");
}

// Deeper than the engine goes by itself, and deeper than a stack would bear.
TEST(Job, CalculatesChainsOfAnyDepth)
{
    constexpr int kDepth = 10000;
    Job job;
    job.AddVariable("Start", 1).Value();
    for (int at = kDepth; at > 0; --at)
        job.AddFormula(Numbered(at), "F(" + Numbered(at - 1) + ")+1").Value();
    job.AddFormula(Numbered(0), "V(Start)").Value();
    EXPECT_EQ(job.Calculate().changes.calculated, kDepth + 1u);
    EXPECT_EQ(job.ValueOf(FormulaNamed(Numbered(kDepth))), kDepth + 1.0);

    job.SetExpression(Numbered(0), "F(" + Numbered(kDepth) + ")").Value();
    const std::vector<Fault> faults = job.Calculate().faults;
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].ring.size(), kDepth + 1u);

    job.SetExpression(Numbered(0), "1+").Value();
    EXPECT_EQ(job.Calculate().faults.front().affected.size(), std::size_t{kDepth});
    EXPECT_EQ(job.FailureOf(FormulaNamed(Numbered(kDepth)))->path.size(), kDepth + 1u);
}

TEST(Job, CalculatesOnlyWhatDependsOnAChange)
{
    Job job;
    job.AddVariable("A", 1).Value();
    job.AddVariable("B", 2).Value();
    job.AddFormula("OfA", "V(A)*2").Value();
    job.AddFormula("OfB", "V(B)*2").Value();
    job.AddFormula("Sign", "IF(F(OfA)>0,1,0)").Value();
    job.AddFormula("OfSign", "F(Sign)+F(OfB)").Value();
    EXPECT_EQ(job.Calculate().changes.calculated, 4u);
    EXPECT_EQ(job.Update().calculated, 0u);

    job.SetValue("A", 5).Value();
    const Changes changes = job.Update();
    EXPECT_EQ(changes.calculated, 2u); // the sign is the same, so what uses it has nothing to do
    EXPECT_EQ(Dump(changes), "A: 1->5; OfA: 2->10");

    job.Remove(VariableNamed("B"), References::Leave).Value();
    EXPECT_EQ(Dump(job.Update()), "B: 2->none; OfB: 4->none; OfSign: 5->none");
    job.Undo();
    EXPECT_EQ(Dump(job.Update()), "B: none->2; OfB: none->4; OfSign: none->5");
}

TEST(Job, ProgressCanEndACalculation)
{
    Job job;
    job.AddFormula(Numbered(0), "1").Value();
    for (int at = 1; at < 1000; ++at)
        job.AddFormula(Numbered(at), "F(" + Numbered(at - 1) + ")+1").Value();
    std::size_t total = 0;
    const Changes begun = job.Update([&](std::size_t done, std::size_t all) {
        total = all;
        return done < 500;
    });
    EXPECT_FALSE(begun.isComplete);
    EXPECT_EQ(job.ValueOf(FormulaNamed(Numbered(999))), std::nullopt);
    const Changes rest = job.Update();
    EXPECT_TRUE(rest.isComplete);
    EXPECT_EQ(begun.calculated + rest.calculated, 1000u);
    EXPECT_GE(total, 1000u);
    EXPECT_EQ(job.ValueOf(FormulaNamed(Numbered(999))), 1000.0);
}

TEST(Job, LimitsAreFaultsThatNameThem)
{
    JobOptions options;
    options.limits = {4, 10, 2, 12};
    Job job(options);
    job.AddFormula("Long", "1111111111+1").Value();
    job.AddFormula("Deep", "(((1)))").Value();
    job.AddFormula("Many", "1+1+1+1+1").Value();
    job.AddFormula("More", "1+1+1+1").Value();
    EXPECT_EQ(Dump(job.Calculate()), "Long!20002; Deep!20003; Many=5; More!20004");
    EXPECT_EQ(job.AddFormula("Fifth", "1").Why().kind, RefusalKind::LimitExceeded);
}
