#include <algorithm>
#include <climits>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include <TovoFormula/FmlaExprBase.h>

#include "Texts.h"

namespace tovo::test {

namespace {

// Rows give expressions encoded: that shows at a glance what is a reference and what is text.
constexpr const char* kUnitCost = "2 * V(Unit Cost)F(bc)+"; // gaps 4 to 15, and 15 to 19

class Editing : public ::testing::Test {
protected:
    void Start(const std::string& encoded, int limit = kDefaultTextLimit)
    {
        m_Expression.SetFromEncodedString(CString(encoded));
        Mark(limit);
    }
    void Mark(int limit = kDefaultTextLimit)
    {
        m_Expression.SetExprTextLimit(limit);
        m_Expression.SetInvalidPos(1);
        m_Before = Whole(m_Expression);
    }
    void ExpectDone(const std::string& encoded, int answer) const
    {
        EXPECT_EQ(answer, 1);
        EXPECT_EQ(Whole(m_Expression), Whole(Read(encoded)));
        EXPECT_EQ(m_Expression.GetInvalidPos(), -1);
    }
    void ExpectRefused(int answer) const
    {
        EXPECT_EQ(answer, 0);
        EXPECT_EQ(Whole(m_Expression), m_Before);
        EXPECT_EQ(m_Expression.GetInvalidPos(), 1);
    }
    int Delete(int start, int end, int expectedWholeVar = 0)
    {
        int wholeVar = 77;
        const int answer = m_Expression.DeleteChars(start, end, &wholeVar);
        EXPECT_EQ(wholeVar, expectedWholeVar);
        return answer;
    }
    // What lies at the gap, as inside, right or left edge with the index: "R0L1".
    std::string At(int gap) const
    {
        int index = 0;
        std::string found;
        found += m_Expression.InVar(gap, &index) ? 'I' + std::to_string(index) : "";
        found += m_Expression.OnVarRightEdge(gap, &index) ? 'R' + std::to_string(index) : "";
        found += m_Expression.OnVarLeftEdge(gap, &index) ? 'L' + std::to_string(index) : "";
        return found;
    }

    CFmlaExprBase m_Expression;

private:
    std::string m_Before;
};

TEST_F(Editing, TextGoesInBesideAReferenceNeverIntoIt)
{
    const struct {
        const char* text;
        int pos;
        const char* edited;
    } rows[] = {
        {"x", 0, "x2 * V(Unit Cost)F(bc)+"},    {"x", 4, "2 * xV(Unit Cost)F(bc)+"},
        {"+1", 15, "2 * V(Unit Cost)+1F(bc)+"}, {" b ", 19, "2 * V(Unit Cost)F(bc) b +"},
        {"", 15, "2 * V(Unit Cost)F(bc)+"},     {"x", 99, "2 * V(Unit Cost)F(bc)+x"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text + (" at " + std::to_string(row.pos)));
        Start(kUnitCost);
        ExpectDone(row.edited, m_Expression.InsertString(row.text, row.pos));
    }
    Start(kUnitCost);
    for (const int pos : {5, 14, 18, -1, 1470, INT_MAX}) {
        SCOPED_TRACE(pos);
        ExpectRefused(m_Expression.InsertString("x", pos));
        ExpectRefused(m_Expression.InsertString("", pos));
    }
}

TEST_F(Editing, AReferenceGoesAsAWhole)
{
    // At the end of the text there is nothing to take, which is no refusal. A start behind the end
    // acts as the Delete key at the end.
    const struct {
        int start;
        int end;
        const char* edited;
        int wholeVar;
    } rows[] = {
        {4, 4, "2 * F(bc)+", 1},       {15, 15, "2 * V(Unit Cost)+", 1},
        {4, 15, "2 * F(bc)+", 0},      {3, 3, "2 *V(Unit Cost)F(bc)+", 0},
        {2, 15, "2 F(bc)+", 0},        {19, 19, "2 * V(Unit Cost)F(bc)", 0},
        {0, INT_MAX, "", 0},           {20, 20, kUnitCost, 0},
        {INT_MAX, 4, "2 * F(bc)+", 1}, {9, 2, "2  V(Unit Cost)F(bc)+", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.start) + " to " + std::to_string(row.end));
        Start(kUnitCost);
        ExpectDone(row.edited, Delete(row.start, row.end, row.wholeVar));
    }
    const int refused[][2] = {
        {3, 6}, {9, 9}, {14, 19}, {15, 9}, {0, -1}, {INT_MIN, 3}, {INT_MAX, INT_MAX},
    };
    Start(kUnitCost);
    for (const auto& [start, end] : refused) {
        SCOPED_TRACE(std::to_string(start) + " to " + std::to_string(end));
        ExpectRefused(Delete(start, end));
    }
    EXPECT_THROW(m_Expression.DeleteChars(19, 20, nullptr), CInvalidArgException);
}

TEST_F(Editing, DeletionEndsAtTheLimitButAReferenceGoesBeyond)
{
    for (const int limit : {17, 0, INT_MIN}) {
        SCOPED_TRACE(limit);
        Start(kUnitCost, limit);
        ExpectRefused(Delete(0, 99)); // 17 is inside a reference
    }
    Start(kUnitCost, 17);
    ExpectDone("2 * V(Unit Cost)+", Delete(15, 15, 1));
    Start(kUnitCost, 15);
    ExpectDone("F(bc)+", Delete(0, 99));
    Start(kUnitCost, INT_MAX);
    ExpectDone(kUnitCost, Delete(INT_MAX - 1, INT_MAX - 1));
}

TEST_F(Editing, ReferenceBringsItsBlanksAndItsEntry)
{
    Start("2 * ");
    ExpectDone("2 * V(Unit Cost)", m_Expression.InsertVariable("Unit Cost", 4, 0));
    ExpectDone("2 * V(Unit Cost)F( f)", m_Expression.InsertFormula(" f", 15));
    ExpectDone("2 * V(Unit Cost)T(t)F( f)", m_Expression.InsertFormulaTable("t", 15));
    ExpectDone("V()2 * V(Unit Cost)T(t)F( f)", m_Expression.InsertVariable("", 0, 0));
    // A table out of order, as a host may load one, has no place for the entry.
    for (const char* name : {"n", ""}) {
        SCOPED_TRACE(name);
        m_Expression.SetExpr("abcdefghij", "4,3,0,0,3,0,");
        Mark();
        ExpectRefused(m_Expression.InsertVariable(name, 4, 0));
    }
}

TEST_F(Editing, EntryGoesWhereNoReferenceStands)
{
    const int refused[][3] = {
        {2, 1, 0}, {4, 1, 0}, {-1, 1, 0}, {8, -1, 0}, {65536, 1, 0}, {8, 65536, 0}, {8, 1, 65537},
    };
    for (const auto& [pos, length, kind] : refused) {
        SCOPED_TRACE(std::to_string(pos) + ", " + std::to_string(length));
        Start("1+V(a)F(b)");
        ExpectRefused(m_Expression.InsVarPtrs(pos, length, kind));
    }
    Start("1+V(a)F(b)");
    EXPECT_EQ(m_Expression.InsVarPtrs(65535, 65535, 1) + m_Expression.InsVarPtrs(0, 2, 2), 2);
    EXPECT_EQ(Whole(m_Expression), "1+ a  b [0,2,2,2,3,0,5,3,1,65535,65535,1,]");
    for (const int index : {-1, 4})
        EXPECT_THROW(m_Expression.DelVarPtrs(index), CInvalidArgException) << index;
    m_Expression.DelVarPtrs(1);
    EXPECT_EQ(Whole(m_Expression), "1+ a  b [0,2,2,5,3,1,65535,65535,1,]");
}

TEST_F(Editing, CursorStandsOutsideReferences)
{
    const struct {
        int pos;
        const char* found;
        int right; // where the cursor goes on its way to the right
        int left;
        int nearest;
    } rows[] = {
        {3, "", 3, 3, 3},
        {4, "L0", 4, 4, 4},
        {5, "I0", 15, 4, 4},
        {9, "I0", 15, 4, 4},
        {10, "I0", 15, 4, 15},
        {15, "R0L1", 15, 15, 15},
        {17, "I1", 19, 15, 15},
        {18, "I1", 19, 15, 19},
        {19, "R1", 19, 19, 19},
        {99, "", 99, 99, 99},
        {1471, "", 1470, 1470, 1470},
        {-1, "", 0, 0, 0},
        {INT_MAX - 1, "", 1470, 1470, 1470},
    };
    Start(kUnitCost);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.pos);
        EXPECT_EQ(At(row.pos), row.found);
        EXPECT_EQ(m_Expression.FixPos(row.pos, row.pos - 1), row.right);
        EXPECT_EQ(m_Expression.FixPos(row.pos, row.pos + 1), row.left);
        EXPECT_EQ(m_Expression.FixPos(row.pos, row.pos), row.nearest);
        EXPECT_EQ(m_Expression.FixPos(row.pos, FD_NEAREST), row.nearest);
        EXPECT_EQ(m_Expression.FixPos(row.pos, FD_LEFT), row.left);
        EXPECT_EQ(m_Expression.FixPos(row.pos, FD_RIGHT), row.right);
        EXPECT_EQ(m_Expression.FixPos(row.pos, FMLA_DIRECTION{-1}), row.right);
    }
    int index = 77;
    EXPECT_EQ(m_Expression.InVar(5, nullptr), 1);
    EXPECT_EQ(m_Expression.InVar(4, &index), 0);
    EXPECT_EQ(index, 77);
    // The questions end at the limit, and so does the cursor, reference or not.
    m_Expression.SetExprTextLimit(15);
    EXPECT_EQ(At(15) + At(16) + At(19), "R0L1");
    m_Expression.SetExprTextLimit(9);
    EXPECT_EQ(m_Expression.FixPos(10, FD_RIGHT), 9);
}

TEST_F(Editing, TrailingBlanksTakeNoRoom)
{
    // Every character before the place takes room, blank or not.
    const struct {
        const char* text;
        int pos;
        const char* refused;
        const char* inserted;
        const char* edited;
    } rows[] = {
        {"12345", 0, "678901", "67890", "6789012345"},
        {"12345     ", 0, "abcdef", "abcde", "abcde12345"},
        {"12345     ", 3, "abcdef", "ab", "123ab45   "},
        {"12345     ", 7, "abcd", "abc", "12345  abc"},
        {"1234567890  ", 0, "a", "", "1234567890"},
        {"V(a)  12    ", 3, "abcd", "abc", "V(a)abc  12"},
        {"12345\t\t\t\t", 0, "ab", "a", "a12345\t\t\t\t"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.edited);
        Start(row.text, 10);
        ExpectRefused(m_Expression.InsertString(row.refused, row.pos));
        ExpectDone(row.edited, m_Expression.InsertString(row.inserted, row.pos));
    }
    Start("12345", 10);
    ExpectRefused(m_Expression.InsertVariable("abcd", 5, 0)); // with two blanks
    ExpectDone("12345V(abc)", m_Expression.InsertVariable("abc", 5, 0));
    // Not even an empty text goes into one that is too long.
    Start("12345", 4);
    ExpectRefused(m_Expression.InsertString("", 0));
    // A loaded entry that reaches behind the text takes no room there.
    m_Expression.SetExpr("1+2", "2,40000,1,");
    m_Expression.SetExprTextLimit(4);
    EXPECT_EQ(m_Expression.InsertString("3", 0), 1);
    EXPECT_EQ(Whole(m_Expression), "31+2[3,40000,1,]");
}

TEST_F(Editing, LimitCutsTheBlankOfALastReferenceButNotTheReference)
{
    const char* const kCut = "x1234567 a[8,3,0,]";
    const auto cut = [this](int limit) {
        Start("1234567V(a)", 10);
        ExpectRefused(m_Expression.InsertString("xy", 0));
        EXPECT_EQ(m_Expression.InsertString("x", 0), 1);
        Mark(limit);
    };
    cut(10);
    EXPECT_EQ(Whole(m_Expression), kCut);
    EXPECT_EQ(m_Expression.GetEncodedString().ToUtf8(), "x1234567V(a)");
    EXPECT_EQ(m_Expression.VarName(0).ToUtf8(), "a");
    m_Expression.TranslateText(TL_ENGLISH);
    EXPECT_EQ(Whole(m_Expression), kCut);
    EXPECT_EQ(At(8) + At(9) + At(10) + At(11), "L0I0I0");
    EXPECT_EQ(m_Expression.FixPos(10, FD_LEFT), 8);
    for (const int pos : {0, 8, 9, 10})
        ExpectRefused(m_Expression.InsertString("y", pos));
    ExpectRefused(Delete(0, 11));
    ExpectDone("x1234567", Delete(8, 8, 1));

    // With room again the reference's end stands behind the text, and what is put there does not
    // become part of the name.
    const struct {
        std::function<int()> edit;
        const char* edited; // null for a refusal
    } rows[] = {
        {[&] { return m_Expression.InsertString("+1", 11); }, "x1234567 a +1[8,3,0,]"},
        {[&] { return m_Expression.InsertString("+", 13); }, "x1234567 a +[8,3,0,]"},
        {[&] { return m_Expression.InsertString("", 13); }, kCut},
        {[&] { return m_Expression.InsertFormula("b", 11); }, "x1234567 a  b [8,3,0,11,3,1,]"},
        {[&] { return m_Expression.InsertFormula("b", 8); }, "x1234567 b  a[8,3,1,11,3,0,]"},
        {[&] { return m_Expression.InsertString("1", 10); }, nullptr},
        {[&] { return m_Expression.InsertFormula("b", 10); }, nullptr},
        {[&] { return m_Expression.InsVarPtrs(10, 3, 1); }, nullptr},
        {[&] { return Delete(8, 10); }, nullptr},
        {[&] { return Delete(7, 11); }, "x123456[]"},
        {[&] { return Delete(0, 3); }, "34567 a[5,3,0,]"},
        {[&] { return Delete(11, 11); }, kCut},
    };
    for (std::size_t row = 0; row < std::size(rows); ++row) {
        SCOPED_TRACE(row);
        cut(14);
        EXPECT_EQ(At(10) + At(11), "I0R0");
        const int answer = rows[row].edit();
        if (!rows[row].edited) {
            ExpectRefused(answer);
            continue;
        }
        EXPECT_EQ(answer, 1);
        EXPECT_EQ(Whole(m_Expression), rows[row].edited);
    }
    // An entry wholly behind the text, as a host may load one, brings no blanks.
    m_Expression.SetExpr("1+2", "8,3,0,");
    EXPECT_EQ(m_Expression.InsertString("3", 11), 1);
    EXPECT_EQ(Whole(m_Expression), "1+23[8,3,0,]");
}

TEST_F(Editing, EntryOfNoLengthIsAbsent)
{
    m_Expression.SetExpr("1+2", "1,0,0,");
    EXPECT_EQ(At(1), "");
    EXPECT_EQ(Delete(1, 1), 1);
    EXPECT_EQ(m_Expression.GetTextStr().ToUtf8(), "12");
    m_Expression.SetExpr("", "0,0,0,");
    EXPECT_EQ(m_Expression.IsSingleVarElement(), 0);
}

TEST_F(Editing, SixteenthReferenceIsRefused)
{
    for (int i = 0; i < 15; ++i)
        EXPECT_EQ(m_Expression.InsertVariable("n", 0, i % 3), 1);
    Mark();
    ExpectRefused(m_Expression.InsertVariable("n", 45, 0));
    ExpectRefused(m_Expression.InsVarPtrs(45, 3, 0));
    // More of them can be loaded, and are moved like any others.
    Start(Repeated("V(n)", 20));
    ExpectRefused(m_Expression.InsertFormula("n", 0));
    ExpectDone("1+" + Repeated("V(n)", 20), m_Expression.InsertString("1+", 0));
}

TEST_F(Editing, ReferenceStaysWithinSixteenBits)
{
    const std::string longest = Repeated("m", 65533);
    const struct {
        int loadedPos; // of the reference in the text before
        int pos;
        const std::string name; // "+1" is inserted as text
        const char* pointers;   // null for a refusal
    } rows[] = {
        {0, 3, longest, "0,3,0,3,65535,1,"}, {0, 3, longest + "m", nullptr},
        {0, 65535, "m", "0,3,0,65535,3,1,"}, {0, 65536, "m", nullptr},
        {65532, 0, "m", "0,3,1,65535,3,0,"}, {65533, 0, "m", nullptr},
        {65533, 0, "+1", "65535,3,0,"},      {65534, 0, "+1", nullptr},
        {65534, 69990, "+1", "65534,3,0,"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.loadedPos) + " and " + std::to_string(row.pos));
        Start(Repeated("1", row.loadedPos) + "V(n)" + Repeated("1", 70000 - row.loadedPos), 200000);
        const int answer = row.name == "+1"
                               ? m_Expression.InsertString("+1", row.pos)
                               : m_Expression.InsertFormula(CString(row.name), row.pos);
        if (!row.pointers) {
            ExpectRefused(answer);
            continue;
        }
        EXPECT_EQ(m_Expression.GetPtrStr().ToUtf8(), row.pointers);
        for (int i = 0; i < m_Expression.NumVars(); ++i)
            EXPECT_TRUE(m_Expression.VarText(i).ToUtf8() ==
                        (m_Expression.VarType(i) == 1 ? ' ' + row.name + ' ' : " n "));
    }
}

// The names of random references are all different, tell their kind and hold the only "#".
std::string NameOf(int number)
{
    return '#' + std::to_string(number) + ")\\ V(";
}

void CheckNamedReferences(const CFmlaExprBase& expression)
{
    int end = 0;
    for (int i = 0; i < expression.NumVars(); ++i) {
        const int number = std::atoi(expression.VarName(i).Mid(1).ToUtf8().c_str());
        const bool lacksBlank = expression.VarEndPos(i) == expression.GetTextStr().GetLength() + 1;
        EXPECT_EQ(expression.VarText(i).ToUtf8(), ' ' + NameOf(number) + (lacksBlank ? "" : " "));
        EXPECT_EQ(expression.VarType(i), number % 3);
        EXPECT_GE(expression.VarPos(i), end);
        end = expression.VarEndPos(i);
    }
    const std::string text = expression.GetTextStr().ToUtf8();
    EXPECT_EQ(std::count(text.begin(), text.end(), '#'), expression.NumVars());
}

TEST_F(Editing, RandomEditsKeepTextAndTableInStep)
{
    static constexpr const char* kTexts[] = {"1", "+", " ", "(", ")", "V(", "IF", "      ", ""};
    std::mt19937 random(20240229);
    const auto below = [&random](int count) { return static_cast<int>(random() % 1000) % count; };
    int cuts = 0; // how often the limit cut a blank off a reference
    for (int step = 0; step < 3000 && !HasFailure(); ++step) {
        const std::string before = Whole(m_Expression);
        SCOPED_TRACE(before);
        CString text = m_Expression.GetTextStr();
        const int lastEnd = m_Expression.VarEndPos(m_Expression.NumVars() - 1);
        const int pos = below(std::max(text.GetLength(), lastEnd) + 2) - 1;
        const int limit = step % 600 < 300 ? kDefaultTextLimit : 60;
        m_Expression.SetExprTextLimit(limit);
        const int end = std::min(below(3) == 0 ? below(text.GetLength() + 2) - 1 : pos, limit);
        const auto insert = [&](const CString& inserted) {
            const bool lacksBlank = lastEnd == text.GetLength() + 1;
            if (lacksBlank && pos >= lastEnd && !inserted.IsEmpty())
                text += u' ';
            text.Insert(pos, inserted);
            text = text.Left(limit);
            cuts += m_Expression.VarEndPos(m_Expression.NumVars() - 1) > text.GetLength() ? 1 : 0;
        };
        const CString name(NameOf(step));
        const CString literal = kTexts[below(9)];
        const int edit = below(5);
        int wholeVar = 0;
        int answer = 0;
        if (edit == 0) {
            answer = m_Expression.DeleteChars(pos, end, &wholeVar);
            const int key = wholeVar ? text.GetLength() - m_Expression.GetTextStr().GetLength() : 1;
            text.Delete(std::min(pos, end), pos < end ? end - pos : key);
        } else if (edit < 3) {
            answer = m_Expression.InsertString(literal, pos);
            insert(literal);
        } else {
            answer = m_Expression.InsertVariable(name, pos, step % 3);
            insert(" " + name + " ");
        }
        EXPECT_TRUE(answer != 0 ? m_Expression.GetTextStr() == text : Whole(m_Expression) == before)
            << edit << " from " << pos << " to " << end << ": " << Whole(m_Expression);
        CheckNamedReferences(m_Expression);
        const std::string encoded = m_Expression.GetEncodedString().ToUtf8();
        EXPECT_EQ(Read(encoded).GetEncodedString().ToUtf8(), encoded);
    }
    EXPECT_GT(cuts, 10);
}

} // namespace

} // namespace tovo::test
