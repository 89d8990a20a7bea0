#include <algorithm>
#include <array>
#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "FolderTest.h"

namespace {

using Json = nlohmann::json;
using Arguments = std::vector<std::string>;

struct Outcome {
    int exitCode;
    std::string out;
    std::string err;
};

// The program under test and the examples, where the build has them.
const std::string kProgram = TOVO_CALC;
const std::string kExamples = TOVO_EXAMPLES;

std::string Quoted(const std::string& argument)
{
    std::string quoted = "'";
    for (const char character : argument)
        quoted += character == '\'' ? "'\\''" : std::string(1, character);
    return quoted + "'";
}

std::string Example(const std::string& name)
{
    return kExamples + "/" + name;
}

// A job with one part replaced, the others sound.
std::string JobWith(const std::string& key, const std::string& value)
{
    std::string text = "{";
    for (const char* each : {"duration", "jobsize", "quantity"})
        text += "\"" + std::string(each) + "\":" + (key == each ? value : "1") + ",";
    for (const char* each : {"variables", "formulas", "tables"})
        text += "\"" + std::string(each) + "\":" + (key == each ? value : "[]") + ",";
    text.back() = '}';
    return text;
}

std::string TableWith(const std::string& rest)
{
    return JobWith("tables", R"([{"name":"T","rowSelector":"",)" + rest + "}]");
}

Json Named(const Json& list, const std::string& name)
{
    for (const Json& entry : list) {
        if (entry.at("name") == name)
            return entry;
    }
    ADD_FAILURE() << "nothing is named " << name;
    return Json::object();
}

class TovoCalc : public FolderTest {
protected:
    Outcome Run(const Arguments& arguments) const
    {
        std::string command = Quoted(kProgram);
        for (const std::string& argument : arguments)
            command += " " + Quoted(argument);
        command += " >" + Quoted((m_Folder / "out").string());
        command += " 2>" + Quoted((m_Folder / "err").string());
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(m_Folder / "out"),
                ReadFile(m_Folder / "err")};
    }

    Json Facts(Arguments arguments) const
    {
        arguments.emplace_back("--json");
        return Json::parse(Run(arguments).out, nullptr, false);
    }

    // What the program prints when a terminal listens.
    static std::string RunOnTerminal(bool noColour)
    {
        const std::string& program = kProgram;
        int terminal = -1;
        if (forkpty(&terminal, nullptr, nullptr, nullptr) == 0) {
            noColour ? setenv("NO_COLOR", "1", 1) : unsetenv("NO_COLOR");
            execl(program.c_str(), program.c_str(), "-e", "1/", nullptr);
            _exit(127);
        }
        std::string text;
        std::array<char, 4096> block;
        for (ssize_t size = 0; (size = read(terminal, block.data(), block.size())) > 0;)
            text.append(block.data(), static_cast<std::size_t>(size));
        close(terminal);
        wait(nullptr);
        return text;
    }
};

TEST_F(TovoCalc, RefusesFilesThatAreNoJob)
{
    const struct {
        std::string content;
        const char* place;
    } rows[] = {
        {"", ":1:1: "},
        {"{\n  \"duration\": 1,,\n}", ":2:17: "},
        {"{\"duration\":1} x", ":1:16: "},
        {"{\"duration\":1e999}", ":1:17: number overflow"},
        {"{\"\xC3\x28\":1}", ":1:4: "},
        {std::string(200000, '['), ":1:200001: "},
        {"[]", ": the whole document: must be an object"},
        {"{\"durations\":1}", ": /durations: there is no such key here"},
        {"{\"duration\":1,\"duration\":1}", ": /duration: the key is there twice"},
        {JobWith("quantity", "\"2\""), ": /quantity: must be a number"},
        {JobWith("variables", R"([{"name":"A","value":1},{"name":"B","value":1,"value":2}])"),
         ": /variables/1/value: the key is there twice"},
        {JobWith("variables", R"([{"name":"A","value":true}])"), ": /variables/0/value: must be a"},
        {JobWith("variables", R"([{"name":"A?","value":1}])"),
         ": /variables/0/value: must be true"},
        {JobWith("variables", R"([{"name":"A ","value":1}])"), ": /variables/0/name: must not end"},
        {JobWith("variables", R"([{"name":"A","value":1},{"name":"A","value":1}])"),
         ": /variables/1/name: the name \"A\" is there twice"},
        {TableWith(R"("rowLimits":[1],"cells":[["1"]])"), ": /tables/0/cells: a table has 2 to"},
        {TableWith(R"("rowLimits":[1],"cells":[["1"],["2"]])"), ": /tables/0/rowLimits: 1 limits"},
        {TableWith(R"("rowLimits":[1,2],"cells":[["1"],["2","3"]])"), ": /tables/0/cells/1: 2 cel"},
        {TableWith(R"("rowLimits":[1,2],"cells":[["1","1"],["2","3"]])"),
         ": /tables/0/columnSelector: the key is missing"},
        {TableWith(R"("rowLimits":[1,2],"cells":[["1"],["Height"]])"), ": /tables/0/cells/1/0: is"},
        {TableWith(R"("rowLimits":[1,2],"cells":[["V"],["2"]])"), ": /tables/0/cells/0/0: the ref"},
        {TableWith(R"("rowLimits":[1,2],"a/b":1,"cells":[["1"],["2"]])"),
         ": /tables/0/a~1b: there"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.content.substr(0, 200));
        const std::string path = File("job.json", row.content);
        const Outcome outcome = Run({path});
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err.find("tovo-calc: " + path + row.place), 0U) << outcome.err;
        EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    }
}

TEST_F(TovoCalc, RefusesWhatItCannotUseOnTheCommandLine)
{
    const std::string job = File("job.json", JobWith("variables", R"([{"name":"A","value":1}])"));
    const struct {
        Arguments arguments;
        const char* part;
    } rows[] = {
        {{}, "a job file or an expression"},
        {{job, "-e", "1"}, "excludes"},
        {{"-e", "1", "--colour"}, "--colour"},
        {{m_Folder.string()}, "cannot be read: Is a directory"},
        {{job, "--set", "B=1"}, "the job has no variable B"},
        {{job, "--set", "A"}, "A is not NAME=VALUE"},
        {{job, "--set", "A=1e999"}, "takes a number"},
        {{"-e", "1", "--set", "A?=1"}, "takes yes or no"},
        {{"-e", "1", "--decimal", "5"}, "decimal separator"},
        {{"-e", "1", "--list", "+"}, "list separator"},
        {{"-e", "1", "--list", ""}, "must not be empty"},
        {{"-e", "1", "--decimal", ",", "--list", ","}, "list separator"},
        {{job, "--rename", "Gone=B"}, "there is no formula \"Gone\""},
        {{job, "--remove", "Gone"}, "there is no formula \"Gone\""},
        {{job, "--rename", "Gone"}, "is not OLD=NEW"},
        {{job, "--remove", "Gone", "--rtf", "new.rtf"}, "--rtf excludes --remove"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = Run(row.arguments);
        EXPECT_EQ(outcome.exitCode, 2) << row.part;
        EXPECT_EQ(outcome.out, "");
        EXPECT_NE(outcome.err.find(row.part), std::string::npos) << outcome.err;
    }
}

TEST_F(TovoCalc, RefusesLanguagesThatCannotBeRead)
{
    const struct {
        const char* content;
        const char* place;
    } rows[] = {
        {R"({})", ": /tokens: the key is missing"},
        {R"({"tokens":{"WENN":"IF"}})", ": /tokens/WENN: is no word"},
        {R"({"tokens":{"IF":"Wenn"}})", ": /tokens/IF: must be of the letters"},
        {R"({"tokens":{"IF":""}})", ": /tokens/IF: must be of the letters"},
        {R"({"tokens":{"IF":"ODER","OR":"ODER"}})", ": /tokens/IF: is the name of OR too"},
        {R"({"tokens":{"ABS":"IF"}})", ": /tokens/ABS: is the name of IF too"},
        {R"({"tokens":{},"decimal":"A"})", ": /decimal: the decimal separator"},
        {R"({"tokens":{},"decimal":",","list":","})", ": /list: the list separator"},
    };
    for (const auto& row : rows) {
        const std::string path = File("language.json", row.content);
        const Outcome outcome = Run({"-e", "1", "--language", path});
        EXPECT_EQ(outcome.exitCode, 2) << row.content;
        EXPECT_EQ(outcome.err.find("tovo-calc: " + path + row.place), 0U) << outcome.err;
    }
}

TEST_F(TovoCalc, CalculatesOneExpression)
{
    const struct {
        Arguments arguments;
        const char* out;
    } rows[] = {
        {{"1+2*3"}, "1+2*3 = 7\n"},
        {{"2/3"}, "2/3 = 0.666667\n"},
        {{"0.1+0.2"}, "0.1+0.2 = 0.3\n"},
        {{"0-0.0000001"}, "0-0.0000001 = -1e-07\n"},
        {{"POWER(10,300)*POWER(10,300)"}, "POWER(10,300)*POWER(10,300) = infinity\n"},
        {{"1/0"}, "1/0 = 0\n"},
        {{"V(Höhe)*2", "--set", "Höhe=1.5"}, "Höhe *2 = 3\n  uses  Höhe\n"},
        {{"V(a=b)", "--set", "a=b=4"}, "a=b = 4\n  uses  a=b\n"},
        {{"NOT V(Dry?)", "--set", "Dry?=yes"}, "NOT  Dry? = no\n  uses  Dry?\n"},
        {{"IF(QUANTITY>1,V(x),V(y))", "--set", "QUANTITY=2", "--set", "x=5", "--set", "y=6"},
         "IF(QUANTITY>1, x , y ) = 5\n  uses  QUANTITY*, x\n"},
        {{"IF(YES,V(x),V(y))", "--static", "--set", "x=5", "--set", "y=6"},
         "IF(YES, x , y ) = 5\n  refers to  x, y\n"},
        {{"V(x)+1"}, "x +1 = 1\n  uses  x\n\nNote: there is no variable \"x\"; it counts as 0.\n"},
        {{"ROUND(7/4,1)", "--decimal", ","}, "ROUND(7/4;1) = 1,8\n"},
        {{"MAX(1.5,2)", "--list", "|"}, "MAX(1.5|2) = 2\n"},
        {{"V(\x1b[31m)", "--set", "\x1b[31m=1"},
         "\xEF\xBF\xBD[31m = 1\n  uses  \xEF\xBF\xBD[31m\n"},
    };
    for (const auto& row : rows) {
        Arguments arguments = row.arguments;
        arguments.insert(arguments.begin(), "-e");
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << row.out;
        EXPECT_EQ(outcome.out, row.out);
        EXPECT_EQ(outcome.err, "");
    }
}

TEST_F(TovoCalc, MarksThePlaceOfAFault)
{
    const struct {
        const char* expression;
        const char* out;
    } rows[] = {
        {"", "Formula text required. (6610)\n    \n    ^\n    at Expression: \n"},
        {"V(Höhe)+*2",
         "Unexpected operator. (6628)\n     Höhe +*2\n           ^\n    at token: *\n"},
        {"V(\U0001F600)*)", "Unexpected parenthesis. (6629)\n     \U0001F600 *)\n        ^\n"
                            "    at token: )\n"},
        {"1+\t", "Invalid formula element. (6682)\n    1+\xEF\xBF\xBD\n      ^\n"
                 "    at Expression: 1+\xEF\xBF\xBD\n"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = Run({"-e", row.expression});
        EXPECT_EQ(outcome.exitCode, 1) << row.expression;
        EXPECT_EQ(outcome.out.find(row.out), 0U) << outcome.out;
    }
    EXPECT_EQ(Facts({"-e", "1/0", "--strict"})["fault"]["message"], 6604);
}

// The figures are worked out by hand in the README of the examples.
TEST_F(TovoCalc, HouseSlabAgreesWithTheHandCalculation)
{
    const Json facts = Facts({Example("house-slab.json")});
    EXPECT_EQ(Run({Example("house-slab.json")}).exitCode, 0);
    const struct {
        const char* name;
        double value;
    } rows[] = {
        {"Slab area", 105},      {"Perimeter", 41.8},    {"Concrete volume", 24.75},
        {"Gravel volume", 16},   {"Mesh sheets", 9},     {"Formwork cost", 397.1},
        {"Labour hours", 68.25}, {"Share of site", 30},  {"Concrete cost", 3663},
        {"Gravel cost", 384},    {"Mesh cost", 530.1},   {"Labour cost", 3276},
        {"Pump cost", 310},      {"Crew days", 2.5},     {"Discount", 0.03},
        {"Job price", 18599.6},  {"Bulk price", 120.79}, {"Small load price", 147.775},
        {"Diagonal", 15.060212},
    };
    for (const auto& row : rows)
        EXPECT_NEAR(Named(facts["formulas"], row.name)["value"], row.value, 1e-6) << row.name;
    EXPECT_EQ(Named(facts["formulas"], "On time?")["value"], true);

    Json rate = Named(facts["tables"], "Concrete rate");
    EXPECT_EQ(rate["value"], 139.5);
    EXPECT_EQ(rate["cell"], Json::parse(R"({"row":3,"column":2,"content":"THeated floor mix"})"));
    EXPECT_EQ(Named(facts["tables"], "Wage")["value"], 48);
    EXPECT_EQ(Named(facts["tables"], "Delivery")["cell"]["row"], 3);

    Json pump = Named(facts["formulas"], "Pump cost")["uses"];
    EXPECT_EQ(Named(pump["formulas"], "Concrete volume")["inCondition"], true);
    EXPECT_EQ(Named(pump["variables"], "Length")["inCondition"], true);
    EXPECT_EQ(Named(pump["variables"], "Pump rental")["inCondition"], false);
}

TEST_F(TovoCalc, WhatIfChangesOnlyThisRun)
{
    const Arguments job = {
        Example("house-slab.json"), "--set", "Winter work?=yes", "--set", "DURATION=1", "--set",
        "Concrete class=45"};
    const Json facts = Facts(job);
    EXPECT_EQ(Named(facts["formulas"], "Labour hours")["value"], 85.3125);
    EXPECT_EQ(Named(facts["tables"], "Wage")["value"], 54);
    EXPECT_EQ(Named(facts["tables"], "Concrete rate")["value"], 151);
    EXPECT_EQ(Named(facts["formulas"], "On time?")["value"], false);
}

TEST_F(TovoCalc, EveryLanguageGivesTheSameValues)
{
    const Json english = Facts({Example("house-slab.json")});
    const Arguments german = {Example("house-slab.json"), "--language",
                              Example("house-slab.de.json")};
    const Json local = Facts(german);
    ASSERT_EQ(english["formulas"].size(), local["formulas"].size());
    for (const Json& formula : english["formulas"]) {
        Json other = Named(local["formulas"], formula["name"]);
        EXPECT_EQ(formula["value"], other["value"]) << formula["name"];
        EXPECT_EQ(formula["uses"], other["uses"]) << formula["name"];
    }
    EXPECT_EQ(english["tables"], local["tables"]);
    EXPECT_EQ(Named(local["formulas"], "Discount")["text"],
              "WENN(ANZAHL>=5;0,06;WENN(ANZAHL>1;0,03;0))");

    const std::string text = Run(german).out;
    EXPECT_NE(text.find("18599,6  €"), std::string::npos) << text;
    EXPECT_NE(text.find("DAUER"), std::string::npos);
}

// The lists of the README were checked line by line against what each fault ought to give.
TEST_F(TovoCalc, FaultsNameMessagePlaceAndChain)
{
    const Outcome outcome = Run({Example("faults.json"), "--strict"});
    EXPECT_EQ(outcome.exitCode, 1);
    const std::string readme = ReadFile(Example("README.md"));
    const std::size_t start = readme.find("\nFaults\n");
    const std::size_t end = readme.find("```", start);
    ASSERT_NE(end, std::string::npos);
    EXPECT_NE(outcome.out.find("  failed  "), std::string::npos) << outcome.out;
    const std::string report = std::regex_replace(outcome.out, std::regex(" +\n"), "\n");
    EXPECT_EQ(report.substr(report.find("\nFaults\n")), readme.substr(start, end - start));

    const Outcome lenient = Run({Example("faults.json")});
    EXPECT_EQ(lenient.out.find("(6604)"), std::string::npos);
    EXPECT_NE(lenient.out.find("(6628)"), std::string::npos);
}

TEST_F(TovoCalc, ColumnsLineUpWhateverTheAlphabet)
{
    const std::string job = File("job.json", JobWith("variables", R"([
        {"name":"Höhe über Straße","value":12.5,"unit":"m"},{"name":"x","value":7,"unit":"cm"}])"));
    EXPECT_NE(Run({job}).out.find("Variables\n"
                                  "  Höhe über Straße  12.5  m\n"
                                  "  x                    7  cm\n"),
              std::string::npos);
}

TEST_F(TovoCalc, ColoursOnlyATerminal)
{
    EXPECT_EQ(Run({"-e", "1/"}).out.find('\x1b'), std::string::npos);
    EXPECT_NE(RunOnTerminal(false).find('\x1b'), std::string::npos);
    const std::string plain = RunOnTerminal(true);
    EXPECT_EQ(plain.find('\x1b'), std::string::npos);
    EXPECT_NE(plain.find("(10732)"), std::string::npos);
}

TEST_F(TovoCalc, RenamesOrRemovesAndTellsWhatChanged)
{
    const char* const rows[][4] = {
        {"--rename", "A=New",
         R"~([{"name":"New","expression":"1"}, {"expression":"2*F(New)","name":"a=b"}])~",
         "Renamed A to New; 1 other place changed.\n"
         "  formula a=b\n    from  2* A \n    to    2* New \n"},
        {"--rename", "a=b=c",
         R"~([{"name":"A","expression":"1"}, {"expression":"2*F(A)","name":"c"}])~",
         "Renamed a=b to c; 0 other places changed.\n"},
        {"--rename", "A=A",
         R"~([{"name":"A","expression":"1"}, {"expression":"2*F(A)","name":"a=b"}])~",
         "Renamed A to A; 0 other places changed.\n"},
        {"--remove", "A", R"~([{"expression":"2*","name":"a=b"}])~",
         "Removed A; 1 other place changed.\n"
         "  formula a=b\n    from  2* A \n    to    2*\n"},
    };
    const std::string job =
        File("job.json",
             JobWith("formulas",
                     R"~([{"name":"A","expression":"1"}, {"expression":"2*F(A)","name":"a=b"}])~"));
    for (const auto& [option, value, formulas, summary] : rows) {
        const Outcome outcome = Run({job, option, value});
        EXPECT_EQ(outcome.exitCode, 0) << summary;
        EXPECT_EQ(outcome.out, JobWith("formulas", formulas));
        EXPECT_EQ(outcome.err, summary);
    }
}

TEST_F(TovoCalc, RichTextIsPlainAscii)
{
    const std::string job = File("job.json", JobWith("formulas", R"([
        {"name":"m² {\\}","expression":"V(\uFF21)+2"}])"));
    const struct {
        Arguments arguments;
        const char* part;
    } rows[] = {
        {{job}, R"(\cf0 m\u178? \{\\\} = \plain\f0\fs22\cf1\b\ul  \u-223? \plain)"},
        {{"-e", "V(m²)"}, R"(\cf1\b\ul  m\u178? \par)"},
    };
    for (const auto& row : rows) {
        Arguments arguments = row.arguments;
        const std::string path = File("new.rtf", "");
        arguments.insert(arguments.end(), {"--rtf", path});
        EXPECT_EQ(Run(arguments).exitCode, 0) << row.part;
        const std::string document = ReadFile(path);
        EXPECT_TRUE(document.starts_with(R"({\rtf1\ansi)")) << document;
        EXPECT_NE(document.find(row.part), std::string::npos) << document;
        EXPECT_EQ(std::count_if(document.begin(), document.end(), [](char c) { return c < 0; }), 0);

        arguments.back() = m_Folder.string() + "/none/new.rtf";
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << row.part;
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "tovo-calc: " + arguments.back() + ": cannot be written\n");
    }
}

// A chain of formulas, each with the one before it in place of every @.
std::string NestedJob(int count, const std::string& expression)
{
    Json formulas = Json::array({{{"name", "0"}, {"expression", "V(x)"}}});
    for (int level = 1; level < count; ++level) {
        const std::string below = "F(" + std::to_string(level - 1) + ")";
        formulas.push_back(
            {{"name", std::to_string(level)},
             {"expression", std::regex_replace(expression, std::regex("@"), below)}});
    }
    return JobWith("formulas", formulas.dump());
}

TEST_F(TovoCalc, NestingNeitherHangsNorCrashes)
{
    // There are 3^39 ways down from the last formula to the first.
    const std::string wide = File("wide.json", NestedJob(40, "IF(@>0,@,@)"));
    EXPECT_EQ(Run({wide}).exitCode, 0);
    EXPECT_EQ(Run({wide, "--static"}).exitCode, 0);
    const Json deep = Facts({File("deep.json", NestedJob(220, "@+1"))});
    EXPECT_EQ(Named(deep["formulas"], "190")["value"], 190);
    EXPECT_EQ(Named(deep["formulas"], "219")["fault"]["message"], 20001);
}

} // namespace
