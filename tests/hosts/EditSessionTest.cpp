#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "EditSession.h"

namespace {

// A session on the expression that an encoded string gives.
class Session {
public:
    explicit Session(const std::string& stored) : m_Session(stored) {}

    EditSession* operator->() { return &m_Session; }
    std::string Text() const { return m_Session.Text().ToUtf8(); }
    std::string Stored() const { return m_Session.Stored(); }

    // A letter for each key; what is no key is typed.
    KeyRefusal Press(const std::string& keys)
    {
        KeyRefusal refusal = KeyRefusal::None;
        for (const char key : keys)
            refusal = PressOne(key);
        return refusal;
    }

private:
    KeyRefusal PressOne(char key)
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
            {'a', [](EditSession& session) { session.Adopt(session.Stored()); }},
        };
        if (const auto move = kMoves.find(key); move != kMoves.end()) {
            move->second(m_Session);
            return KeyRefusal::None;
        }
        if (key == 'b' || key == 'd')
            return key == 'b' ? m_Session.Backspace() : m_Session.Delete();
        if (key == 'v')
            return m_Session.InsertReference(tovo::VariableNamed("Unit Cost"));
        if (key == 'f')
            return m_Session.InsertWord(u"SQRT", true);
        return m_Session.Type(CString(static_cast<char16_t>(key)));
    }

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
        {kOne, "AND+12u", 23, "2 * V(Unit Cost)+ 10AND+"},
        {kOne, "AND+12uu", 22, "2 * V(Unit Cost)+ 10AND"},
        {kOne, "AND+12uuu", 19, kOne},
        {kOne, "AND+12uuurrr", 25, "2 * V(Unit Cost)+ 10AND+12"},
        {kOne, "AND<>Nu", 22, "2 * V(Unit Cost)+ 10AND"},
        {kOne, "bbbbu", 16, "2 * V(Unit Cost)+"},
        {kOne, "bbbbuuu", 19, kOne},
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
        KeyRefusal refusal;
    };
    std::string references;
    for (int count = 0; count < kMaxReferences; ++count)
        references += "V(x)";
    const std::string full(kDefaultTextLimit, '1');
    const std::string almostFull = full.substr(12);
    const std::vector<Row> rows = {
        {references, "v", KeyRefusal::ReferenceLimit},
        {full, "1", KeyRefusal::TextLimit},
        {full.substr(1), "f", KeyRefusal::TextLimit},
        {full.substr(10), "v", KeyRefusal::TextLimit},
        // The blank that a reference ends in is no room.
        {full.substr(3) + "V(x)", "^1", KeyRefusal::TextLimit},
        // A file may bring a longer text, which can only get shorter.
        {full + "11", "<<1", KeyRefusal::TextLimit},
    };
    for (const Row& row : rows) {
        Session session(row.encoded);
        const std::string before = session.Text();
        EXPECT_EQ(session.Press(row.keys), row.refusal) << row.encoded.size() << row.keys;
        EXPECT_EQ(session.Text(), before) << row.encoded.size() << row.keys;
        EXPECT_FALSE(session->Undo());
    }
    EXPECT_EQ(Session(almostFull).Press("v1"), KeyRefusal::None);
    Session longer(full + "V(x)");
    EXPECT_EQ(longer.Press("$bb1"), KeyRefusal::None);
    EXPECT_EQ(longer.Text(), full);
}

TEST(EditSession, StoresTheFirstWriting)
{
    Session unusual("2*V(a\\");
    EXPECT_EQ(unusual.Text(), "2*V(a");
    unusual.Press("1u");
    EXPECT_EQ(unusual.Stored(), "2*V(a\\");
}

void ExpectSound(Session& session, const std::string& keys)
{
    const CFmlaExprBase& expression = session->Expression();
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
    ASSERT_EQ(reader.GetEncodedString().ToUtf8(), session->Stored()) << keys;
    ASSERT_EQ(reader.NumVars(), expression.NumVars()) << keys;
}

TEST(EditSession, RandomKeysKeepItSound)
{
    constexpr const char* kKeys = "<><>{}{}^$bbddurravvvvvf1.+ ,()AND\\";
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

} // namespace
