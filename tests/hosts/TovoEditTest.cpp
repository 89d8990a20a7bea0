#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "EditSession.h"
#include "FolderTest.h"
#include "JobDocument.h"
#include "JsonFile.h"

namespace {

namespace fs = std::filesystem;

CString Wide(const std::string& text)
{
    return CString(std::string_view(text));
}

// A session on the expression that an encoded string gives.
class Session {
public:
    explicit Session(const std::string& encoded)
        : m_Set(false), m_Expression(m_Set), m_Session(Read(encoded), Wide(encoded))
    {}

    EditSession* operator->() { return &m_Session; }
    std::string Text() const { return m_Session.Text().ToUtf8(); }
    std::string Stored() { return m_Session.Stored().ToUtf8(); }

    // A letter for each key; what is no key is typed.
    Refusal Press(const std::string& keys)
    {
        Refusal refusal = Refusal::None;
        for (const char key : keys)
            refusal = PressOne(key);
        return refusal;
    }

private:
    CFmlaExpression& Read(const std::string& encoded)
    {
        m_Expression.SetFromEncodedString(Wide(encoded));
        return m_Expression;
    }

    Refusal PressOne(char key)
    {
        static const std::map<char, std::function<void(EditSession&)>> kMoves = {
            {'<', [](EditSession& session) { session.MoveLeft(); }},
            {'>', [](EditSession& session) { session.MoveRight(); }},
            {'{', [](EditSession& session) { session.MoveWordLeft(); }},
            {'}', [](EditSession& session) { session.MoveWordRight(); }},
            {'^', [](EditSession& session) { session.TravelTo(0); }},
            {'$', [](EditSession& session) { session.TravelTo(session.Text().GetLength()); }},
            {'u', [](EditSession& session) { session.Undo(); }},
            {'r', [](EditSession& session) { session.Redo(); }},
        };
        if (const auto move = kMoves.find(key); move != kMoves.end()) {
            move->second(m_Session);
            return Refusal::None;
        }
        if (key == 'b' || key == 'd')
            return key == 'b' ? m_Session.Backspace() : m_Session.Delete();
        if (key == 'v')
            return m_Session.InsertReference(u"Unit Cost", TOK_VARIABLE);
        if (key == 'f')
            return m_Session.InsertWord(u"SQRT", true);
        return m_Session.Type(CString(static_cast<char16_t>(key)));
    }

    JobSet m_Set;
    CFmlaExpression m_Expression;
    EditSession m_Session;
};

// The text of the first three is "2 *  Unit Cost + 10", with the reference from 4 to 15.
TEST(EditSession, CursorAndKeys)
{
    struct Row {
        const char* encoded;
        const char* keys;
        int cursor;
        const char* stored;
    };
    constexpr const char* kOne = "2 * V(Unit Cost)+ 10";
    constexpr Row kRows[] = {
        {kOne, "<<<<<", 4, kOne},
        {kOne, "^>>>>>", 15, kOne},
        {kOne, "^}}}", 15, kOne},
        {kOne, "^}}", 4, kOne},
        {kOne, "{{", 15, kOne},
        {kOne, "^<{b", 0, kOne},
        {kOne, "$>}d", 19, kOne},
        {kOne, "<<<<b", 4, "2 * + 10"},
        {kOne, "^>>>>d", 4, "2 * + 10"},
        {kOne, "<<<<d", 15, "2 * V(Unit Cost) 10"},
        {kOne, "^>>>>b", 3, "2 *V(Unit Cost)+ 10"},
        {kOne, "<<<<bu", 15, kOne},
        {kOne, "<<<<burr", 4, "2 * + 10"},
        {kOne, "<<<<buXr", 16, "2 * V(Unit Cost)X+ 10"},
        {kOne, "bb11uuuu", 19, kOne},
        {"V(a)F(b)", "<b", 0, "F(b)"},
        {"V(a)F(b)", "^>d", 3, "V(a)"},
        {"V()+1", "^d", 0, "+1"},
        {"NOT", "f", 9, "NOT SQRT()"},
        {"2*", "vb", 2, "2*"},
        {"\xF0\x9F\x98\x80", "<", 0, "\xF0\x9F\x98\x80"},
        {"\xF0\x9F\x98\x80"
         "1",
         "<b", 0, "1"},
        {"\xF0\x9F\x98\x80"
         "1",
         "^d", 0, "1"},
    };
    for (const Row& row : kRows) {
        Session session(row.encoded);
        session.Press(row.keys);
        EXPECT_EQ(session->Cursor(), row.cursor) << row.encoded << "  " << row.keys;
        EXPECT_EQ(session.Stored(), row.stored) << row.encoded << "  " << row.keys;
    }
}

TEST(EditSession, WhatTheLibraryRefusesChangesNothing)
{
    struct Row {
        std::string encoded;
        const char* keys;
        Refusal refusal;
    };
    std::string references;
    for (int count = 0; count < kMaxReferences; ++count)
        references += "V(x)";
    const std::string full(kDefaultTextLimit, '1');
    const std::string almostFull = full.substr(12);
    const std::vector<Row> rows = {
        {references, "v", Refusal::ReferenceLimit},
        {full, "1", Refusal::TextLimit},
        {full.substr(1), "f", Refusal::TextLimit},
        {full.substr(10), "v", Refusal::TextLimit},
        // The blank that a reference ends in is no room.
        {full.substr(3) + "V(x)", "^1", Refusal::TextLimit},
        // A file may bring a longer text, which can only get shorter.
        {full + "11", "<<1", Refusal::TextLimit},
    };
    for (const Row& row : rows) {
        Session session(row.encoded);
        const std::string before = session.Text();
        EXPECT_EQ(session.Press(row.keys), row.refusal) << row.encoded.size() << row.keys;
        EXPECT_EQ(session.Text(), before) << row.encoded.size() << row.keys;
        EXPECT_FALSE(session->Undo());
    }
    EXPECT_EQ(Session(almostFull).Press("v1"), Refusal::None);
    Session longer(full + "V(x)");
    EXPECT_EQ(longer.Press("$bb1"), Refusal::None);
    EXPECT_EQ(longer.Text(), full);
}

TEST(EditSession, StoresTheFirstWritingAndTellsWhatReadsOtherwise)
{
    Session unusual("2*V(a\\");
    EXPECT_EQ(unusual.Text(), "2*V(a");
    unusual.Press("1u");
    EXPECT_EQ(unusual.Stored(), "2*V(a\\");

    Session typed("");
    typed.Press("V(3)");
    EXPECT_EQ(typed->TextReadBack().ToUtf8(), " 3 ");
    Session behindLetter("NOT");
    behindLetter.Press("v");
    EXPECT_EQ(behindLetter->TextReadBack(), behindLetter->Text());
}

void ExpectSound(Session& session, const std::string& keys)
{
    const CFmlaExpression& expression = session->Expression();
    const int length = expression.GetTextStr().GetLength();
    ASSERT_FALSE(expression.InVar(session->Cursor(), nullptr)) << keys;
    ASSERT_TRUE(session->Cursor() >= 0 && session->Cursor() <= length) << keys;
    ASSERT_LE(length, kDefaultTextLimit) << keys;
    for (int index = 0; index < expression.NumVars(); ++index) {
        ASSERT_GE(expression.VarPos(index), expression.VarEndPos(index - 1)) << keys;
        ASSERT_LE(expression.VarEndPos(index), length) << keys;
        ASSERT_EQ(expression.VarName(index), CString(u"Unit Cost")) << keys;
    }
    CFmlaExprBase reader;
    reader.SetFromEncodedString(session->Stored());
    ASSERT_EQ(reader.GetEncodedString(), session->Stored()) << keys;
    ASSERT_EQ(reader.NumVars(), expression.NumVars()) << keys;
}

TEST(EditSession, RandomKeysKeepItSound)
{
    constexpr const char* kKeys = "<><>{}{}^$bbddurrvvvvvf1.+ ,()AND\\";
    const std::string keys(kKeys);
    for (unsigned int seed = 0; seed < 30; ++seed) {
        std::mt19937 random(seed);
        Session session(seed % 2 ? "V(Unit Cost)+2*F(Unit Cost)"
                                 : std::string(1440, '7') + "V(Unit Cost)   ");
        const std::string first = session.Text();
        std::string pressed;
        for (int count = 0; count < 80; ++count) {
            pressed += keys[random() % keys.size()];
            session.Press(pressed.substr(pressed.size() - 1));
            ASSERT_NO_FATAL_FAILURE(ExpectSound(session, pressed));
        }
        while (session->Redo()) {
        }
        const std::string newest = session.Text();
        while (session->Undo()) {
        }
        EXPECT_EQ(session.Text(), first) << pressed;
        while (session->Redo()) {
        }
        EXPECT_EQ(session.Text(), newest) << pressed;
    }
}

class TovoEdit : public FolderTest {
protected:
    fs::path JobPath() const { return m_Folder / "job.json"; }
    JobDocument Open(const std::string& bytes) const
    {
        return JobDocument(File("job.json", bytes), false);
    }
};

// A job whose formulas stand as given, with a table that names A in all its places.
std::string JobOf(const std::string& formulas, const std::string& name = "FA")
{
    return "\xEF\xBB\xBF{ \"quantity\":1e0,\r\n\t\"duration\" : 1, \"jobsize\":2,\"variables\":[]"
           ", \"formulas\":[" +
           formulas + "],\n\"tables\":[{\"name\":\"T\",\"rowSelector\":\"" + name +
           "\",\"columnSelector\":\"" + name +
           "\",\"rowLimits\":[1,2],\"columnLimits\":[1,2],\"cells\":[[\"VA\",\"" + name +
           "\"],[ \"TA\",\"1000\"]]}]}\n\n";
}

TEST_F(TovoEdit, ChangesOnlyTheBytesConcerned)
{
    const std::string a = R"~({"name":"A", "expression":"1\u002b2 "})~";
    const std::string b = R"~({ "expression":"F(\u0041)+V(A)*F(A)" ,"name":"B"})~";
    const std::string c = R"~({"name":"C","unit":"\u20ac","expression":"\"x\"F(AA)"})~";
    const std::string longText =
        R"~({"name":"L","expression":")~" + std::string(kDefaultTextLimit, '1');
    const std::string end = "\"}";
    struct Row {
        std::string formulas;
        std::size_t formula;
        const char* newName; // null to remove
        std::string expected;
        const char* selector;
    };
    const std::vector<Row> rows = {
        {a + " ,\n" + b + "\n,\t" + c, 0, "A\"\\)",
         R"~({"name":"A\"\\)", "expression":"1\u002b2 "})~"
         " ,\n"
         R"~({ "expression":"F(A\"\\\\\\))+V(A)*F(A\"\\\\\\))" ,"name":"B"})~"
         "\n,\t" +
             c,
         R"~(FA\"\\))~"},
        {a + " ,\n" + b + "\n,\t" + c, 0, nullptr,
         R"~({ "expression":"V(A)" ,"name":"B"})~"
         "\n,\t" +
             c,
         ""},
        {a + " ,\n" + b + "\n,\t" + c, 1, nullptr, a + " ,\n" + c, "FA"},
        {a + " ,\n" + b + "\n,\t" + c, 2, nullptr, a + " ,\n" + b, "FA"},
        {" " + c + " ", 0, nullptr, "  ", "FA"},
        {c, 0, "C", c, "FA"},
        // The limit of what can be typed is none here.
        {a + "," + longText + "+F(A)" + end, 0, nullptr, longText + "+" + end, ""},
    };
    for (const Row& row : rows) {
        const std::string before = JobOf(row.formulas);
        JobDocument document = Open(before);
        if (row.newName)
            document.Rename(row.formula, Wide(row.newName));
        else
            document.Remove(row.formula);
        EXPECT_EQ(document.Bytes(), JobOf(row.expected, row.selector));
        document.Save();
        EXPECT_EQ(ReadFile(JobPath()), document.Bytes());
        EXPECT_NO_THROW(JobDocument(JobPath().string(), false));
        const std::string after = document.Bytes();
        EXPECT_EQ(document.Undo(), after != before);
        EXPECT_EQ(document.Bytes(), before);
        document.Redo();
        EXPECT_EQ(document.Bytes(), after);
    }
}

TEST_F(TovoEdit, UnchangedJobIsWrittenBackAsItWas)
{
    for (const char* name : {"house-slab.json", "faults.json"}) {
        const std::string bytes = ReadFile(fs::path(TOVO_EXAMPLES) / name);
        JobDocument document = Open(bytes);
        for (std::size_t formula = 0; formula < document.FormulaCount(); ++formula) {
            EditSession session(document.Formula(formula).GetExpression(),
                                document.Expression(formula));
            session.Type(u"1");
            session.Undo();
            document.StoreExpression(formula, session.Stored());
        }
        EXPECT_FALSE(document.IsChanged());
        document.Save();
        EXPECT_EQ(ReadFile(JobPath()), bytes);
    }
}

TEST_F(TovoEdit, NamesThatAJobMayNotHaveAreRefused)
{
    const std::string bytes =
        JobOf(R"~({"name":"A","expression":"1"},{"name":"B","expression":"F(A)"})~");
    JobDocument document = Open(bytes);
    for (const char16_t* name : {u"", u" ", u"C ", u"B"})
        EXPECT_THROW(document.Rename(0, name), FileFault);
    EXPECT_EQ(document.Bytes(), bytes);
    EXPECT_FALSE(document.Undo());
}

TEST_F(TovoEdit, EffectsTellEveryPlaceBeforeAnythingChanges)
{
    JobDocument document =
        Open(JobOf(R"~({"name":"A","expression":"F(A)"},{"name":"B","expression":"F(A)+1"})~"));
    std::string told;
    for (const Change& change : document.Effects(0, std::nullopt))
        told += (change.place + u": " + change.before + u" > " + change.after + u"\n").ToUtf8();
    EXPECT_EQ(told, "formula B:  A +1 > +1\n"
                    "table T, row selector: A > (nothing)\n"
                    "table T, column selector: A > (nothing)\n"
                    "table T, row 1, column 2: A > (nothing)\n");
    EXPECT_FALSE(document.IsChanged());
}

TEST_F(TovoEdit, SavingKeepsModeAndLink)
{
    JobDocument document = Open(JobOf(R"~({"name":"A","expression":"1"})~"));
    fs::permissions(JobPath(), fs::perms(0640));
    fs::create_symlink("job.json", m_Folder / "link.json");
    JobDocument linked((m_Folder / "link.json").string(), false);
    linked.Rename(0, u"Z");
    linked.Save();
    EXPECT_TRUE(fs::is_symlink(m_Folder / "link.json"));
    EXPECT_EQ(ReadFile(JobPath()), linked.Bytes());
    EXPECT_EQ(fs::status(JobPath()).permissions(), fs::perms(0640));
    EXPECT_FALSE(linked.IsChanged());
}

TEST_F(TovoEdit, FailedSaveLeavesTheOldFileAlone)
{
    const std::string bytes = JobOf(R"~({"name":"A","expression":"1"})~");
    JobDocument document = Open(bytes);
    document.Rename(0, u"Z");

    rlimit limit = {};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit tooSmall = {20, limit.rlim_max};
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &tooSmall);
    EXPECT_THROW(document.Save(), std::runtime_error);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, oldHandler);

    // No mode of a folder holds root, so root steps down for a moment.
    constexpr uid_t kNobody = 65534;
    const uid_t self = geteuid();
    fs::permissions(m_Folder, fs::perms(0555));
    EXPECT_EQ(seteuid(self == 0 ? kNobody : self), 0);
    EXPECT_THROW(document.Save(), std::runtime_error);
    EXPECT_EQ(seteuid(self), 0);
    fs::permissions(m_Folder, fs::perms(0755));

    EXPECT_EQ(ReadFile(JobPath()), bytes);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_Folder), {}), 1);
    EXPECT_TRUE(document.IsChanged());
}

// The program in a terminal of 80 columns and 24 rows that only tmux shows.
class TovoEditScreen : public TovoEdit {
protected:
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
    void Start(const std::string& terminal)
    {
        Tmux("kill-server");
        ++m_Server;
        Tmux("new-session -d -x 80 -y 24 \"TERM=" + terminal + " '" TOVO_EDIT "' '" +
             JobPath().string() + "'; echo left with \\$?; cat\"");
    }
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
    if (std::system("tmux -V >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "there is no tmux";
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
    WaitFor("(10732)\ndepends on: Length, Width");
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
    WaitFor("Removing Perimeter");
    WaitFor("  then:  Formwork price");
    Press("Escape");
    WaitFor("Enter edit");
    Press("C-q");
    WaitFor("left with 0");

    JobDocument saved(JobPath().string(), false);
    EXPECT_EQ(saved.Expression(0).ToUtf8(), "V(Length)*V(Width)+1");
    EXPECT_EQ(saved.Expression(7).ToUtf8(), "ROUNDTO(F(Slab)*V(Gravel depth),1,0.5)");
    Start("xterm-256color");
    WaitFor("Slab                           106");
    Press("Enter");
    WaitFor("Formula Slab\n");
    Press("Home x C-q");
    WaitFor("Save the changes?");
    Press("n");
    WaitFor("left with 0");
    EXPECT_EQ(ReadFile(JobPath()), saved.Bytes());
}

} // namespace
