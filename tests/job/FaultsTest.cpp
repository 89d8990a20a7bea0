#include <gtest/gtest.h>

#include <TovoFormula/MessageIds.h>

#include "Jobs.h"

using namespace tovo;
using namespace tovo::test;

namespace {

// Object!message 'what the place marks' or [part of a table], with what is affected.
std::string DumpFaults(const Job& job, const std::vector<Fault>& faults)
{
    std::string text;
    for (const Fault& fault : faults) {
        text +=
            (text.empty() ? "" : "; ") + fault.object.name + "!" + std::to_string(fault.message);
        if (const auto& span = fault.place.span)
            text += " '" +
                    job.TextOf(fault.object)
                        .substr(span->begin.utf8, span->end.utf8 - span->begin.utf8) +
                    "'";
        text += fault.place.part.empty() ? "" : " [" + fault.place.part + "]";
        for (const ObjectName& affected : fault.affected)
            text += " >" + affected.name;
    }
    return text;
}

} // namespace

TEST(Faults, MarkTheTokenAtFault)
{
    struct Case {
        const char* expression;
        const char* faults;
    };
    constexpr Case kCases[] = {
        {"", "F!6610 ''"},
        {"2*", "F!10732 '*'"},
        {"(1+2", "F!6619 '2'"},
        {"2*)", "F!6629 ')'"},
        {"1.2.3+1", "F!6620 '1.2.3'"},
        {"V(ä)+1.2.3", "F!6620 '1.2.3'"},
        {"2+SQRT(1,2)", "F!6619 ','"},
        {"LOG(2)", "F!6682 'LOG'"},
        {"V(ä)>2", "F!6609 ' ä >2'"},
        {"1/0", "F!6604 '0'"},
        {"V(ä)+V(é)*V(é)", "F!20001 ' é '; F!20001 ' é '"},
        {"F(x)+T(x)", "F!6614 ' x '; F!6615 ' x '"},
        {"V(é)+2*)", "F!20001 ' é '; F!6629 ')'"},
        {"1/V(é)", "F!20001 ' é '"}, // its value is not known, so neither is the division's
        {"F(F)", "F!20005 ' F '"},
    };
    for (const Case& row : kCases) {
        Job job;
        job.AddVariable("ä", 1).Value();
        job.AddFormula("F", row.expression).Value();
        EXPECT_EQ(DumpFaults(job, job.Calculate().faults), row.faults) << row.expression;
    }
}

TEST(Faults, WhatFailsForAnotherIsListedWithThat)
{
    Job job;
    job.AddFormula("Top", "F(Middle)+T(Table)").Value();
    job.AddFormula("Middle", "2*F(Bottom)").Value();
    job.AddFormula("Bottom", "1+*1").Value();
    job.AddFormula("Both", "F(Bottom)+)").Value();
    job.AddTable(StepTable("Table", FormulaNamed("Bottom"), {1, 2}, {1.0, 2.0})).Value();
    const std::vector<Fault> faults = job.Calculate().faults;
    EXPECT_EQ(DumpFaults(job, faults), "Bottom!6628 '*' >Top >Middle >Table; Both!6629 ')'");
    EXPECT_EQ(faults[0].chain, (std::vector<std::string>{"token: *", "Formula: Bottom"}));

    const Failure failure = job.FailureOf(FormulaNamed("Top")).value();
    EXPECT_EQ(failure.message, 6628u);
    EXPECT_EQ(failure.place.span->begin.utf16, 0u);
    EXPECT_EQ(failure.path, (std::vector<ObjectName>{FormulaNamed("Bottom"), FormulaNamed("Middle"),
                                                     FormulaNamed("Top")}));
    EXPECT_EQ(job.FailureOf(TableNamed("Table"))->place.part, "row selector");
}

TEST(Faults, ACircleIsOneFaultWithEachOfItsReferences)
{
    Job job;
    job.AddFormula("A", "1+F(B)").Value();
    job.AddFormula("B", "T(C)").Value();
    job.AddTable(StepTable("C", FormulaNamed("D"), {1, 2}, {1.0, FormulaNamed("A")})).Value();
    job.AddFormula("D", "1").Value();
    job.AddFormula("E", "F(B)").Value();
    const std::vector<Fault> faults = job.Calculate().faults;
    EXPECT_EQ(DumpFaults(job, faults), "A!20005 ' B ' >E");
    ASSERT_EQ(faults[0].ring.size(), 3u);
    EXPECT_EQ(faults[0].ring[1].span->begin.utf16, 0u);
    EXPECT_EQ(faults[0].ring[2].part, "row 2, column 1");
    EXPECT_EQ(job.FailureOf(TableNamed("C"))->place.part, "row 2, column 1");

    job.SetExpression("B", "3").Value();
    EXPECT_TRUE(job.Calculate().faults.empty());
    EXPECT_EQ(job.ValueOf(FormulaNamed("A")), 4.0);
}
