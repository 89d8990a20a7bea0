#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <TovoJob/TovoJob.h>

#include "FolderTest.h"

namespace {

namespace fs = std::filesystem;

// The program in a terminal of 80 columns and 24 rows that only tmux shows.
class TovoEditScreen : public FolderTest {
protected:
    void SetUp() override
    {
        if (std::system("tmux -V >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "there is no tmux";
    }
    ~TovoEditScreen() override { Tmux("kill-server"); }

    std::string Tmux(const std::string& command) const
    {
        const std::string line = "tmux -u -f /dev/null -S '" + m_Folder.string() + "/socket" +
                                 std::to_string(m_Server) + "' " + command + " 2>/dev/null";
        std::string output;
        FILE* const pipe = popen(line.c_str(), "r");
        std::array<char, 4096> block;
        while (pipe && std::fgets(block.data(), static_cast<int>(block.size()), pipe))
            output += block.data();
        if (pipe)
            pclose(pipe);
        return output;
    }
    // On a server of its own: one that was told to end takes clients until it has.
    void Start(const std::string& terminal, const std::string& size = "-x 80 -y 24")
    {
        Tmux("kill-server");
        ++m_Server;
        Tmux("new-session -d " + size + " \"TERM=" + terminal + " sh -c 'echo \\$\\$ >" +
             m_Folder.string() + "/id; exec " TOVO_EDIT " " + JobPath().string() +
             "'; echo left with \\$?; cat\"");
    }
    fs::path JobPath() const { return m_Folder / "job.json"; }
    pid_t EditorId() const { return static_cast<pid_t>(std::stoi(ReadFile(m_Folder / "id"))); }
    tovo::Job Saved() const { return tovo::ReadJob(ReadFile(JobPath()), "job").Value(); }
    void Press(const std::string& keys) const { Tmux("send-keys " + keys); }

    // The screen and the cursor's column, as soon as they hold the text.
    std::string WaitFor(const std::string& text) const
    {
        std::string screen;
        for (int attempt = 0; attempt < 300; ++attempt) {
            screen = Tmux("capture-pane -p") + "column " + Tmux("display -p '#{cursor_x}'");
            if (screen.find(text) != std::string::npos)
                return screen;
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        ADD_FAILURE() << "no " << text << " in\n" << screen;
        return screen;
    }

private:
    int m_Server = 0;
};

TEST_F(TovoEditScreen, EditsRenamesSavesAndReopens)
{
    const std::string example = TOVO_EXAMPLES "/house-slab.json";
    File("job.json", ReadFile(example));
    Start("screen-256color");
    WaitFor("Slab area                      105");

    Press("Enter");
    WaitFor("= 105 m²");
    Press("+ F2 w i d");
    WaitFor("References: wid");
    Press("Enter");
    WaitFor(" Length * Width + Width\n");
    WaitFor("= 113.4 m²");
    WaitFor("column 24");
    Press("Left");
    WaitFor("column 17");
    Press("Right");
    WaitFor("column 24");
    Press("BSpace");
    WaitFor("(10732)\n");
    WaitFor("depends on: Length, Width");
    WaitFor("\n                ^\n");
    Press("1");
    WaitFor("= 106 m²");
    Press("C-Left C-Left C-Left");
    WaitFor("column 9");
    Press("C-z C-z C-z C-z");
    WaitFor("= 105 m²");
    Press("C-y C-y C-y C-y");
    WaitFor("= 106 m²");
    Press("Escape");
    WaitFor("Slab area                      106");

    Press("F4 Delete S l a b Enter");
    WaitFor("5 other places changed");
    Press("C-z");
    WaitFor("Taken back");
    Press("C-y C-s");
    WaitFor("Saved ");
    Press("Down F5");
    WaitFor("Perimeter is used");
    Press("Down Enter");
    WaitFor("Removing Perimeter");
    WaitFor("  then: 41.8* Formwork price");
    Press("Escape");
    WaitFor("Enter edit");
    Press("C-q");
    WaitFor("left with 0");

    const std::string bytes = ReadFile(JobPath());
    EXPECT_EQ(Saved().FindFormula("Slab")->expression, "V(Length)*V(Width)+1");
    EXPECT_EQ(Saved().FindFormula("Gravel volume")->expression,
              "ROUNDTO(F(Slab)*V(Gravel depth),1,0.5)");
    Start("xterm-256color");
    WaitFor("Slab                           106");
    Press("Enter");
    WaitFor("Formula Slab\n");
    Press("Home x C-q");
    WaitFor("Save the changes?");
    Press("n");
    WaitFor("left with 0");
    EXPECT_EQ(ReadFile(JobPath()), bytes);
}

// In a terminal so small that only the most needed keys are told.
TEST_F(TovoEditScreen, MakesAJobFromNothing)
{
    Start("screen", "-x 60 -y 15");
    WaitFor("^Q quit");
    Press("F2 v");
    WaitFor("New variable");
    Press("L e n g t h Tab 2 x Enter");
    WaitFor("2x: is no number");
    Press("BSpace . 5 Tab m Enter");
    WaitFor("variable  Length                   2.5");
    Press("F3 Enter");
    WaitFor("Length 2                 2.5");
    Press("F2 f A r e a Enter");
    WaitFor("Added");
    Press("Enter l e n");
    WaitFor("variable 2.5 m");
    Press("Tab");
    WaitFor(" Length\n");
    Press("'*' r o u n d '(' l e n g t h");
    WaitFor("ROUND(value,places)");
    Press("Escape");
    Press("Space 2 , 0 ')' '*' l e n g t j");
    WaitFor("F6: Replace");
    WaitFor("^^^^^^");
    Press("F6");
    WaitFor("Corrections");
    Press("Enter");
    WaitFor("= 18.75");
    Press("F7");
    WaitFor("Why Area");
    WaitFor("variable Length 2 = 2.5 m");
    Press("Escape");
    WaitFor("Formula Area *");
    Press("F1");
    WaitFor("Keys of the editor");
    Press("Escape");
    WaitFor("Formula Area *");
    Press("Escape");
    WaitFor("formula   Area                     18.75");
    Press("F2 t R a t e Tab a r e a Enter");
    WaitFor("Added");
    Press("Enter 1 0 Enter");
    WaitFor("Rate *");
    Press("Down w i d t h Enter");
    WaitFor("width is neither a name");
    Press("x Delete l e n g t h Enter");
    WaitFor("= 2.5");
    Press("Escape");
    WaitFor("table     Rate                     2.5");
    Press("a r e a Up Up F8");
    WaitFor("Who uses Area");
    Press("Enter");
    Press("C-s");
    WaitFor("Saved");
    Press("C-q");
    WaitFor("left with 0");
    const tovo::Job job = Saved();
    EXPECT_EQ(job.Variables().size(), 2U);
    EXPECT_EQ(job.FindFormula("Area")->expression, "V(Length)*ROUND(V(Length 2),0)*V(Length)");
    ASSERT_TRUE(job.FindTable("Rate"));
    EXPECT_EQ(job.FindTable("Rate")->cells[0][0], tovo::Element(10.0));
    EXPECT_EQ(job.FindTable("Rate")->cells[1][0], tovo::Element(tovo::VariableNamed("Length")));
}

TEST_F(TovoEditScreen, KilledEditorLosesLittleAndNewsOnDiskAreAskedFor)
{
    const std::string bytes = ReadFile(TOVO_EXAMPLES "/house-slab.json");
    File("job.json", bytes);
    Start("screen-256color");
    WaitFor("Slab area                      105");
    Press("Enter + 5");
    WaitFor("= 110 m²");
    const fs::path recovery = m_Folder / ".job.json.recovery";
    for (int attempt = 0; attempt < 100 && ReadFile(recovery).find("+5") == std::string::npos;
         ++attempt)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    ASSERT_EQ(kill(EditorId(), SIGKILL), 0);
    WaitFor("left with 137");
    EXPECT_EQ(ReadFile(JobPath()), bytes);

    Start("screen-256color");
    WaitFor("Take the changes?");
    Press("y");
    WaitFor("Slab area                      110");
    Press("C-s");
    WaitFor("Saved");
    EXPECT_FALSE(fs::exists(recovery));
    EXPECT_EQ(Saved().FindFormula("Slab area")->expression, "V(Length)*V(Width)+5");

    File("job.json", bytes);
    WaitFor("The file has changed on disk. Read it again?");
    Press("y");
    WaitFor("Slab area                      105");
    Press("C-q");
    WaitFor("left with 0");
}

} // namespace
