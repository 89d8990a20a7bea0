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
    Outcome Run(const Arguments& arguments, const std::string& input = "/dev/null") const
    {
        std::string command = Quoted(kProgram);
        for (const std::string& argument : arguments)
            command += " " + Quoted(argument);
        command += " <" + Quoted(input) + " >" + Quoted((m_Folder / "out").string());
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
        {"[]", ": the whole document: must be an object"},
        {JobWith("variables", R"([{"name":"A?","value":1}])"),
         ": /variables/0/value: must be true"},
        {"{\"version\":3}", ": /version: "},
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
        {{"-e", "1", "--colour"}, "--colour"},
        {{"check"}, "JOB is required"},
        {{m_Folder.string()}, "cannot be read: Is a directory"},
        {{job, "--set", "B=1"}, "B"},
        {{job, "--set", "A"}, "A is not NAME=VALUE"},
        {{job, "--set", "A=1e999"}, "takes a number"},
        {{"-e", "1", "--set", "A?=1"}, "takes yes or no"},
        {{"-e", "1", "--decimal", "5"}, "decimal separator"},
        {{"-e", "1", "--list", "+"}, "list separator"},
        {{"-e", "1", "--list", ""}, "must not be empty"},
        {{"-e", "1", "--decimal", ",", "--list", ","}, "list separator"},
        {{"rename", job, "Gone", "B"}, "the job has no \"Gone\""},
        {{"explain", job}, "NAME is required"},
        {{"remove", job, "A", "--leave", "--replace-by-value"}, "excludes"},
        {{"convert", "-", "--in-place"}, "has no file"},
        {{"new", job}, "has been made"},
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
        {{"1/0", "--lenient-domains"}, "1/0 = 0\n"},
        {{"1>2"}, "1>2 = no\n"},
        {{"V(Höhe)*2", "--set", "Höhe=1.5"}, "Höhe *2 = 3\n"},
        {{"V(a=b)", "--set", "a=b=4"}, "a=b = 4\n"},
        {{"NOT V(Dry?)", "--set", "Dry?=yes"}, "NOT  Dry? = no\n"},
        {{"IF(QUANTITY>1,V(x),V(y))", "--set", "QUANTITY=2", "--set", "x=5", "--set", "y=6"},
         "IF(QUANTITY>1, x , y ) = 5\n"},
        {{"V(x)+1", "--undefined-as-zero"}, "x +1 = 1\n"},
        {{"F(Slab area)*2", Example("house-slab.json"), "--set", "Width=2"}, "Slab area *2 = 50\n"},
        {{"ROUND(7/4,1)", "--decimal", ","}, "ROUND(7/4;1) = 1,8\n"},
        {{"MAX(1.5,2)", "--list", "|"}, "MAX(1.5|2) = 2\n"},
        {{"V(\x1b[31m)", "--set", "\x1b[31m=1"}, "\xEF\xBF\xBD[31m = 1\n"},
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
        {"", "Formula text required. (6610)\n    \n    ^\n"},
        {"V(Höhe)+*2", "Unexpected operator. (6628)\n     Höhe +*2\n           ^\n"},
        {"V(\U0001F600)+TWICE(2)", "TWICE is not a function of this language. (6682)\n     "
                                   "\U0001F600 +TWICE(2)\n        ^^^^^\n"},
        {"1+\t", "Invalid formula element. (6682)\n    1+\xEF\xBF\xBD\n      ^\n"},
        {"2>F(A)", "Formula not found. (6614)\n    2> A \n      ^^^\n"},
        {"V(x)", "The variable was not found. (20001)\n     x \n    ^^^\n"},
        {"1/0", "A divide by zero occurred during calculation. (6604)\n    1/0\n      ^\n"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = Run({"-e", row.expression});
        EXPECT_EQ(outcome.exitCode, 1) << row.expression;
        EXPECT_NE(outcome.out.find(row.out), std::string::npos) << outcome.out;
    }
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

    EXPECT_EQ(Named(facts["tables"], "Concrete rate")["value"], 139.5);
    EXPECT_EQ(Named(facts["tables"], "Wage")["value"], 48);
    EXPECT_EQ(facts["faults"], Json::array());
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
    const Outcome outcome = Run({Example("faults.json")});
    EXPECT_EQ(outcome.exitCode, 1);
    const std::string readme = ReadFile(Example("README.md"));
    const std::size_t start = readme.find("\nFaults\n");
    const std::size_t end = readme.find("```", start);
    ASSERT_NE(end, std::string::npos);
    EXPECT_NE(outcome.out.find("  failed  "), std::string::npos) << outcome.out;
    const std::string report = std::regex_replace(outcome.out, std::regex(" +\n"), "\n");
    EXPECT_EQ(report.substr(report.find("\nFaults\n")), readme.substr(start, end - start));

    EXPECT_EQ("\nFaults\n" + std::regex_replace(Run({"check", Example("faults.json")}).out,
                                                std::regex(" +\n"), "\n"),
              readme.substr(start, end - start));

    const Outcome lenient = Run({"check", Example("faults.json"), "--lenient-domains"});
    EXPECT_EQ(lenient.exitCode, 1);
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

TEST_F(TovoCalc, EditsPreviewPrintOrSaveTheJob)
{
    const std::string original = JobWith(
        "formulas", R"~([{"name":"A","expression":"1"}, {"name":"a=b","expression":"2*F(A)"}])~");
    const struct {
        Arguments edit;
        int exitCode;
        std::vector<std::string> expressions; // of what is a formula afterwards
        const char* told;
    } rows[] = {
        {{"rename", "A", "New"}, 0, {"1", "2*F(New)"}, "    to    2*F(New)\n"},
        {{"rename", "F(A)", "New"}, 0, {"1", "2*F(New)"}, "formula A, name\n"},
        {{"remove", "A", "--replace-by-value"}, 0, {"2*1"}, "    to    2*1\n"},
        {{"remove", "A", "--leave"}, 1, {"2*F(A)"}, "New faults\n  formula a=b: Formula not"},
        {{"remove", "a=b"}, 0, {"1"}, "    from  2*F(A)\n"},
        {{"remove", "A"}, 2, {}, "used by formula \"a=b\""},
        {{"rename", "A", "a=b"}, 2, {}, "a=b"},
        {{"convert"}, 0, {"1", "2*F(A)"}, ""},
    };
    for (const auto& row : rows) {
        const std::string path = File("job.json", original);
        Arguments arguments = row.edit;
        arguments.insert(arguments.begin() + 1, path);
        const Outcome printed = Run(arguments);
        EXPECT_EQ(printed.exitCode, row.exitCode) << row.told;
        EXPECT_NE(printed.err.find(row.told), std::string::npos) << printed.err;
        EXPECT_EQ(ReadFile(path), original);

        arguments.emplace_back("--in-place");
        const Outcome saved = Run(arguments);
        EXPECT_EQ(saved.exitCode, row.exitCode) << row.told;
        if (row.exitCode == 2) {
            EXPECT_EQ(printed.out, "");
            EXPECT_EQ(ReadFile(path), original);
            continue;
        }
        EXPECT_EQ(saved.out, printed.err);
        EXPECT_EQ(ReadFile(path), printed.out);
        std::vector<std::string> expressions;
        const Json job = Json::parse(printed.out, nullptr, false);
        for (const Json& formula : job["formulas"])
            expressions.push_back(formula["expression"]);
        EXPECT_EQ(expressions, row.expressions);
    }
    const std::string path = File("job.json", original);
    const Json preview = Facts({"rename", path, "A", "New", "--preview"});
    EXPECT_EQ(preview["places"].size(), 2U);
    EXPECT_EQ(preview["values"], Json::array());
    EXPECT_EQ(ReadFile(path), original);
}

TEST_F(TovoCalc, AnswersQuestionsAboutTheExample)
{
    const struct {
        Arguments question; // the job goes after its first word
        const char* parts[2];
    } rows[] = {
        {{"explain", "Concrete rate"}, {"table Concrete rate = 139.5 €/m³\n", "row 3: 24.75"}},
        {{"explain", "Pump cost", "--set", "Pump limit=30"},
         {"formula Pump cost = 0 €\n", "Pump rental = 310 (not taken)"}},
        {{"uses", "Slab area"},
         {"formula Slab area\n  uses     Length, Width\n", "  used by  formula Concrete volume,"}},
        {{"uses", "V(Pump limit)", "--all"}, {"formula Pump cost*", "formula Job price*"}},
        {{"uses"}, {"\nformula Discount          QUANTITY*\n", "\ntable Wage                "}},
        {{"graph"}, {"digraph", "Job price"}},
        {{"graph", "Pump cost", "--json"}, {"\"V(Pump rental)\"", "\"edges\""}},
    };
    for (const auto& row : rows) {
        Arguments arguments = row.question;
        arguments.insert(arguments.begin() + 1, Example("house-slab.json"));
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        for (const char* const part : row.parts)
            EXPECT_NE(outcome.out.find(part), std::string::npos) << part << '\n' << outcome.out;
    }
    const std::string job = Example("faults.json");
    EXPECT_EQ(Run({"explain", job, "Level two"}).exitCode, 1);
    const Json uses = Facts({"uses", job, "Formula missing"})["uses"];
    EXPECT_EQ(uses[0]["object"], "F(Sond)");
    EXPECT_EQ(uses[0]["defined"], false);
    EXPECT_EQ(uses[0]["places"][0]["span"]["utf8"], Json::parse("[2,8]"));
}

TEST_F(TovoCalc, CalculatesRowsAndFindsInputs)
{
    const std::string job = Example("house-slab.json");
    const std::string rows = File("rows.csv", "Length,id\n10,first\nwide,second\n");
    const Arguments batch = {"batch", job, rows, "--output", "Slab area", "--copy", "id"};
    const Outcome printed = Run(batch);
    EXPECT_EQ(printed.exitCode, 1);
    EXPECT_EQ(printed.out.find("id,Slab area,fault\nfirst,84,\nsecond,,"), 0U) << printed.out;
    EXPECT_EQ(printed.err.find("2 rows, 1 with a fault\n  row 2: "), 0U) << printed.err;

    Arguments saved = batch;
    saved.insert(saved.end(), {"--results", (m_Folder / "results.csv").string()});
    EXPECT_EQ(Facts(saved)["faults"], Json::parse(R"([{"row":1,"cause":0}])"));
    EXPECT_EQ(ReadFile(m_Folder / "results.csv"), printed.out);

    Arguments solve = {"solve",  job,      "Slab area", "--target", "84", "--vary",
                       "Length", "--from", "1",         "--to",     "20"};
    EXPECT_EQ(Run(solve).out, "Length = 10\nformula Slab area = 84\n");
    solve[4] = "-84";
    const Outcome none = Run(solve);
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(none.out.find("No solution: "), 0U) << none.out;
}

TEST_F(TovoCalc, MakesAJobAndReadsItFromTheStandardInput)
{
    const std::string path = (m_Folder / "new.json").string();
    EXPECT_EQ(Run({"new", path, "--set", "Width=3", "--formula", "Area=V(Width)*2", "--set",
                   "QUANTITY=4"})
                  .exitCode,
              0);
    const Outcome outcome = Run({"-", "--json"}, path);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    const Json facts = Json::parse(outcome.out, nullptr, false);
    EXPECT_EQ(Named(facts["formulas"], "Area")["value"], 6);
    EXPECT_EQ(facts["jobValues"]["QUANTITY"], 4);
}

// The words that bash offers behind a command line.
TEST_F(TovoCalc, BashCompletesWhatTheProgramTakes)
{
    const struct {
        const char* words;
        const char* offered;
    } rows[] = {
        {"ch", "check \n"},
        {"re", "rename remove \n"},
        {"--de", "--decimal \n"},
        {"check x.json --r", "\n"},
        {"calc x.json --r", "--rtf \n"},
        {"remove x.json --rep", "--replace-by --replace-by-value \n"},
    };
    for (const auto& row : rows) {
        const std::string script = std::string(". " TOVO_COMPLETION "; COMP_WORDS=(") + kProgram +
                                   " " + row.words +
                                   "); COMP_CWORD=$((${#COMP_WORDS[@]}-1)); _tovo_calc; "
                                   "printf '%s ' ${COMPREPLY[@]+\"${COMPREPLY[@]}\"}; echo";
        const std::string out = (m_Folder / "out").string();
        ASSERT_EQ(std::system(("cd " + Quoted(m_Folder.string()) + " && bash -c " + Quoted(script) +
                               " >" + Quoted(out))
                                  .c_str()),
                  0);
        std::string offered = ReadFile(out);
        if (offered == " \n")
            offered = "\n";
        EXPECT_EQ(offered, row.offered) << row.words;
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
        EXPECT_EQ(Run(arguments).exitCode, 1) << row.part; // nobody defines the variables
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
    Json formulas = Json::array({{{"name", "0"}, {"expression", "0"}}});
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
    const Json deep = Facts({File("deep.json", NestedJob(5000, "@+1"))});
    EXPECT_EQ(Named(deep["formulas"], "4999")["value"], 4999);
}

} // namespace
