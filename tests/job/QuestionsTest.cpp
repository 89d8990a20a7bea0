#include <cstdlib>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Jobs.h"

using namespace tovo;
using namespace tovo::test;

namespace {

std::string Dump(const std::vector<Dependency>& dependencies)
{
    std::string text;
    for (const Dependency& dependency : dependencies) {
        text += (text.empty() ? "" : " ") + WriteReference(dependency.object);
        text += dependency.asValue ? "" : "?";
        text += dependency.asValue && dependency.inCondition ? "+?" : "";
        text += dependency.isDefined ? "" : "!";
        for (const Place& place : dependency.places)
            text += place.span ? "@" + std::to_string(place.span->begin.utf16) + "-" +
                                     std::to_string(place.span->end.utf8)
                               : "@" + place.part;
    }
    return text;
}

std::string Dump(const std::vector<ObjectName>& objects)
{
    std::string text;
    for (const ObjectName& object : objects)
        text += (text.empty() ? "" : " ") + WriteReference(object);
    return text;
}

Job HouseJob()
{
    Job job;
    job.AddVariable("Länge", 12.5, "m").Value();
    job.AddVariable("Wet?", 0).Value();
    job.AddVariable("Spare", 1).Value();
    job.AddFormula("Area", "V(Länge)*(V(Länge)+1)", "m²").Value();
    job.AddFormula("Price", "IF(V(Wet?),F(Area)/0,F(Area)*T(Rate))+QUANTITY").Value();
    job.AddTable(StepTable("Rate", FormulaNamed("Area"), {100, 200, 300},
                           {1.0, VariableNamed("Länge"), 3.0}))
        .Value();
    job.AddFormula("Lost", "V(Gone)+F(Lost)").Value();
    return job;
}

} // namespace

TEST(Dependencies, FollowReferencesBothWays)
{
    const Job job = HouseJob();
    EXPECT_EQ(Dump(Uses(job, FormulaNamed("Area"))), "V(Länge)@0-8@9-18");
    EXPECT_EQ(Dump(Uses(job, FormulaNamed("Price"))),
              "V(Wet?)?@3-9 F(Area)@10-16@19-25 T(Rate)@26-32 QUANTITY@34-42");
    EXPECT_EQ(Dump(Uses(job, FormulaNamed("Price"), Reach::Transitive)),
              "V(Wet?)?@3-9 F(Area)+?@10-16@19-25 T(Rate)@26-32 QUANTITY@34-42 V(Länge)+?");
    EXPECT_EQ(Dump(Uses(job, TableNamed("Rate"))),
              "F(Area)?@row selector V(Länge)@row 2, column 1");
    EXPECT_EQ(Dump(Uses(job, FormulaNamed("Lost"))), "V(Gone)!@0-6 F(Lost)@7-13");
    EXPECT_EQ(Dump(UsedBy(job, VariableNamed("Länge"), Reach::Transitive)),
              "F(Area)@0-8@9-18 F(Price)+? T(Rate)+?@row 2, column 1");
    EXPECT_EQ(Dump(UsedBy(job, VariableNamed("Gone"))), "F(Lost)@0-6");
    EXPECT_EQ(Dump(UsedBy(job, VariableNamed("Never heard of"))), "");
    EXPECT_EQ(Dump(Order(job)), "F(Area) T(Rate) F(Price)");
    EXPECT_EQ(Dump(Unused(job)), "V(Spare) F(Price) F(Lost)");
    ASSERT_EQ(Rings(job).size(), 1u);
    EXPECT_EQ(Rings(job)[0][0].span->begin.utf16, 7u);
}

TEST(Dependencies, GraphIsTakenByItsReader)
{
    Job job = HouseJob();
    job.AddFormula("a \"b\" \\", "F(Lost)").Value();
    const std::string graph = WriteGraph(job);
    EXPECT_NE(graph.find("\"V(Wet?)\" -> \"F(Price)\" [style=dashed];"), std::string::npos);
    EXPECT_NE(graph.find("[label=\"a \\\"b\\\" \\\\\", shape=box]"), std::string::npos);
    EXPECT_EQ(graph.find("JOBSIZE"), std::string::npos);
    EXPECT_EQ(WriteGraph(job, FormulaNamed("Area")).find("Price"), std::string::npos);
}

TEST(Explain, ShowsEachStepOnce)
{
    Job job = HouseJob();
    JobOptions options;
    options.domainErrorsAreFaults = false;
    job.SetOptions(options);
    const Explanation explanation = Explain(job, FormulaNamed("Price")).Value();
    EXPECT_EQ(WriteText(explanation), R"(formula Price = 2109.375
  IF( Wet? , Area /0, Area * Rate )+QUANTITY = 2109.375
    IF( Wet? , Area /0, Area * Rate ) = 2109.375
      Wet? = no
      Area /0 = 0 (not taken)
        Area = 168.75 (not taken)
        0 = 0 (not taken)
      Area * Rate = 2109.375
        Area = 168.75
        Rate = 12.5
    QUANTITY = 0
variable Wet? = no
formula Area = 168.75 m²
  Länge *( Länge +1) = 168.75
    Länge = 12.5
    ( Länge +1) = 13.5
      Länge = 12.5
      1 = 1
variable Länge = 12.5 m
table Rate = 12.5
  row 2: 168.75 is above 100, up to 200
  cell: V(Länge)
job value QUANTITY = 0
)");
    for (const ExplainedObject& explained : explanation.objects) {
        EXPECT_EQ(explained.value, job.ValueOf(explained.object));
        if (!explained.steps.empty()) {
            EXPECT_EQ(explained.steps.front().value, explained.value);
        }
    }
    const auto json = nlohmann::json::parse(WriteJson(explanation));
    EXPECT_EQ(json["objects"][2]["steps"][2]["span"].dump(), R"({"utf16":[8,19],"utf8":[9,21]})");
}

TEST(Explain, FollowsAFailureToItsRoot)
{
    Job job = HouseJob();
    job.SetExpression("Area", "V(Länge)*").Value();
    EXPECT_EQ(WriteText(Explain(job, FormulaNamed("Price")).Value()),
              "formula Price = no value\n"
              "  The expression is incomplete or cannot be calculated.\n"
              "formula Area = no value\n"
              "  The expression is incomplete or cannot be calculated.\n");
    EXPECT_EQ(Explain(job, FormulaNamed("Gone")).Why().kind, RefusalKind::UnknownName);
}

// As deep as a text can be, with nothing on the stack.
TEST(Explain, BearsAnyDepth)
{
    constexpr std::size_t kDepth = 20000;
    std::string sum = "1";
    for (std::size_t at = 0; at < kDepth; ++at)
        sum += "+1";
    const std::string texts[] = {std::string(kDepth, '-') + "1", sum,
                                 std::string(kDepth, '(') + "1" + std::string(kDepth, ')')};
    for (const std::string& text : texts) {
        Job job;
        job.AddFormula("Deep", text).Value();
        const auto steps = Explain(job, FormulaNamed("Deep")).Value().objects[0].steps;
        ASSERT_FALSE(steps.empty());
        EXPECT_EQ(steps.front().value, job.ValueOf(FormulaNamed("Deep")));
        EXPECT_EQ(steps.front().span.end.utf8, text.size());
    }
}
