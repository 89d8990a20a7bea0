#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Jobs.h"

using namespace tovo;
using namespace tovo::test;
namespace fs = std::filesystem;

namespace {

std::string Read(const fs::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

void Write(const fs::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

// A file of version 2 with one member more or another one.
std::string With(const std::string& variables, const std::string& formulas = "",
                 const std::string& tables = "")
{
    return R"({"version": 2, "duration": 1, "jobsize": 2, "quantity": 3, "variables": [)" +
           variables + R"(], "formulas": [)" + formulas + R"(], "tables": [)" + tables + "]}";
}

std::string TableWith(const std::string& selector, const std::string& cell)
{
    return With(R"({"name": "Width", "value": 1})", "",
                R"({"name": "T", "rowSelector": )" + selector +
                    R"(, "rowLimits": [1, 2], "cells": [[)" + cell + "], [7]]}");
}

constexpr const char* kVersion1 = R"j({"duration": 1, "jobsize": 2, "quantity": 3,
    "variables": [{"name": "Width", "value": 1}, {"name": "Wet?", "value": true}],
    "formulas": [{"name": "Edge", "expression": "V(Width)*T(T)"}],
    "tables": [{"name": "T", "rowSelector": "VWidth", "rowLimits": [2, 1],
                "cells": [["4500"], [""]]}]})j";

class JobFiles : public testing::Test {
protected:
    void SetUp() override
    {
        m_Folder = fs::path(testing::TempDir()) /
                   (std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) +
                    std::to_string(getpid()));
        fs::remove_all(m_Folder);
        fs::create_directories(m_Folder);
        Write(m_Path = m_Folder / "job.json", With(R"({"name": "A", "value": 1})"));
    }
    void TearDown() override { fs::remove_all(m_Folder); }

    fs::path m_Folder;
    fs::path m_Path;
};

} // namespace

TEST(JobText, ReferencesAreWrittenAsInFormulas)
{
    struct Case {
        const char* selector;
        const char* cell;
        const char* dump;
    };
    constexpr Case kCases[] = {
        {"\"V(Width)\"", "4.5", "T by V(Width) 1 2 [4.5] [7]"},
        {"\"F(Edge)\"", "true", "T by F(Edge) 1 2 [YES] [7]"},
        {"\"T(Rate)\"", R"j("V(a\\)b\\\\)")j", R"j(T by T(Rate) 1 2 [V(a\)b\\)] [7])j"},
        {"2", "null", "T by 2 1 2 [] [7]"},
        {"-1", "-0.0", "T by -1 1 2 [-0] [7]"},
    };
    for (const Case& row : kCases) {
        const Job job = ReadJob(TableWith(row.selector, row.cell), "job").Value();
        EXPECT_EQ(DumpContent(job), "1 2 3; Width=1; " + std::string(row.dump));
        const std::string written = WriteJob(job);
        EXPECT_EQ(WriteJob(ReadJob(written, "job").Value()), written);
    }
}

TEST(JobText, RefusalsNameThePlace)
{
    struct Case {
        std::string text;
        const char* refusal; // how it begins
    };
    const Case cases[] = {
        {"{\n \"version\": 2,,", "job:2:15: "},
        {"[]", "job: the whole document: must be an object"},
        {R"({"version": 3})", "job: /version: is not known here"},
        {With(R"({"name": "A"})"), "job: /variables/0/value: the key is missing"},
        {With(R"({"name": "A", "value": "1"})"), "job: /variables/0/value: must be a number"},
        {With(R"({"name": "A?", "value": 1})"), "job: /variables/0/value: must be true or false"},
        {With(R"({"name": "A", "value": 1, "vaule": 1})"),
         "job: /variables/0/vaule: there is no such key here"},
        {With(R"({"name": "A", "value": 1}, {"name": "A", "value": 1})"),
         "job: /variables/1/name: there is a variable of this name already"},
        {With(R"({"name": "A", "name": "B", "value": 1})"),
         "job: /variables/0/name: the key is there twice"},
        {With("", R"({"name": "", "expression": ""})"), "job: /formulas/0/name: the name"},
        {TableWith("\"VWidth\"", "1"), "job: /tables/0/rowSelector: is no reference"},
        {TableWith("\"Volt\"", "1"), "job: /tables/0/rowSelector: is no reference"},
        {TableWith("null", "1"), "job: /tables/0: the row selector is missing"},
        {TableWith("1", "\"4.5\""),
         "job: /tables/0/cells/0/0: a number is written without quotation marks: 4.5"},
        {TableWith("1", ""), "job: /tables/0: a table has 1 to 32768 columns"},
    };
    for (const Case& row : cases) {
        const Result<Job> job = ReadJob(row.text, "job");
        ASSERT_FALSE(job) << row.text;
        EXPECT_EQ(job.Why().text.substr(0, std::string(row.refusal).size()), row.refusal);
    }
}

TEST(JobText, Version1BecomesVersion2)
{
    const Job old = ReadJob(kVersion1, "job").Value();
    EXPECT_EQ(DumpContent(old),
              "1 2 3; Width=1; Wet?=1; Edge=V(Width)*T(T); T by V(Width) 2 1 [4.5] [0]");
    EXPECT_EQ(DumpContent(ReadJob(WriteJob(old), "job").Value()), DumpContent(old));
    EXPECT_EQ(Dump(Job(old).Calculate()), "Width=1; Wet?=yes; Edge!10847; T!10847");
}

// The engine keeps constants in thousandths, of which not every number is the quotient.
TEST(JobText, AConstantOfATableIsExact)
{
    for (const char* const number : {"0.0012", "1e-20", "0.1234567", "3e-310", "-1.7e308"}) {
        Job job = ReadJob(TableWith("\"V(Width)\"", number), "job").Value();
        job.Update();
        EXPECT_EQ(job.ValueOf(TableNamed("T")), std::strtod(number, nullptr)) << number;
    }
    // A selector that is equal to a limit is within it.
    Job job = ReadJob(With("", "", R"({"name": "T", "rowSelector": 0.0012,
                                       "rowLimits": [0.0012, 1], "cells": [[5], [7]]})"),
                      "job")
                  .Value();
    job.Update();
    EXPECT_EQ(job.ValueOf(TableNamed("T")), 5);
}

TEST(JobText, AnEmptyCellIsAFaultWhereItIsReached)
{
    Job job = ReadJob(TableWith("\"V(Width)\"", "null"), "job").Value();
    const std::vector<Fault> faults = job.Calculate().faults;
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].message, MSG_JOB_EMPTY_CELL);
    EXPECT_EQ(faults[0].place.part, "row 1, column 1");
    job.SetValue("Width", 2).Value();
    EXPECT_EQ(Dump(job.Calculate()), "Width=2; T=7");
}

TEST_F(JobFiles, ExamplesKeepTheSchema)
{
    std::string command =
        TOVO_PYTHON " " TOVO_SCRIPTS "/check_schema.py " TOVO_DOCS "/job.schema.json";
    for (const char* const name : {"house-slab.json", "faults.json"}) {
        JobFile file = JobFile::Open(TOVO_EXAMPLES "/" + std::string(name)).Value();
        file.SaveAs(m_Folder / name).Value();
        command += " " + file.Path();
    }
    EXPECT_EQ(std::system(command.c_str()), 0);
}

TEST_F(JobFiles, SavingKeepsModeAndLinks)
{
    fs::permissions(m_Path, fs::perms(0640));
    fs::create_symlink("job.json", m_Folder / "link.json");
    JobFile file = JobFile::Open(m_Folder / "link.json").Value();
    EXPECT_FALSE(file.IsModified());
    file.Content().SetValue("A", 2).Value();
    EXPECT_TRUE(file.IsModified());
    file.Save().Value();
    EXPECT_FALSE(file.IsModified());
    EXPECT_TRUE(fs::is_symlink(m_Folder / "link.json"));
    EXPECT_EQ(fs::status(m_Path).permissions(), fs::perms(0640));
    EXPECT_EQ(Read(m_Path), WriteJob(file.Content()));
    EXPECT_EQ(std::distance(fs::directory_iterator(m_Folder), {}), 2);
}

TEST_F(JobFiles, SavingAsksBeforeItOverwrites)
{
    JobFile file = JobFile::Open(m_Path).Value();
    Write(m_Path, "other");
    EXPECT_TRUE(file.IsChangedOnDisk());
    EXPECT_EQ(file.Save().Why().kind, RefusalKind::FileChanged);
    EXPECT_EQ(Read(m_Path), "other");
    file.Save({.evenIfChanged = true}).Value();
    EXPECT_FALSE(file.IsChangedOnDisk());

    fs::permissions(m_Path, fs::perms(0440));
    EXPECT_EQ(file.Save().Why().kind, RefusalKind::ReadOnlyFile);
    file.Save({.evenIfReadOnly = true}).Value();
    EXPECT_EQ(fs::status(m_Path).permissions(), fs::perms(0440));

    EXPECT_EQ(file.SaveAs(m_Folder / "none" / "job.json").Why().kind, RefusalKind::CannotWrite);
    EXPECT_EQ(file.SaveAs(m_Folder).Why().kind, RefusalKind::CannotWrite);
    EXPECT_EQ(file.Path(), m_Path);
    file.SaveAs(m_Folder / "new.json").Value();
    EXPECT_EQ(Read(m_Folder / "new.json"), WriteJob(file.Content()));
    EXPECT_EQ(JobFile(m_Path).Save().Why().kind, RefusalKind::FileChanged);
}

TEST_F(JobFiles, AFailedSaveLeavesTheOldFileAlone)
{
    JobFile file = JobFile::Open(m_Path).Value();
    const std::string bytes = Read(m_Path);
    file.Content().SetValue("A", 2).Value();

    rlimit limit = {};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit tooSmall = {20, limit.rlim_max};
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &tooSmall);
    EXPECT_EQ(file.Save().Why().kind, RefusalKind::CannotWrite);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, oldHandler);

    // No mode of a folder holds root, so root steps down for a moment.
    constexpr uid_t kNobody = 65534;
    const uid_t self = geteuid();
    fs::permissions(m_Folder, fs::perms(0555));
    EXPECT_EQ(seteuid(self == 0 ? kNobody : self), 0);
    EXPECT_FALSE(file.Save());
    EXPECT_EQ(seteuid(self), 0);
    fs::permissions(m_Folder, fs::perms(0755));

    EXPECT_EQ(Read(m_Path), bytes);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_Folder), {}), 1);
    EXPECT_TRUE(file.IsModified());
}
