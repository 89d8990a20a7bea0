#include <algorithm>
#include <climits>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <TovoFormula/FmlaExprBase.h>

#include "Texts.h"

namespace tovo::test {

namespace {

// Text and table as one line, such as "2* a [2,3,0,]".
std::string Show(const CFmlaExprBase& expression)
{
    return expression.GetTextStr().ToUtf8() + '[' + expression.GetPtrStr().ToUtf8() + ']';
}

CFmlaExprBase Read(const std::string& encoded)
{
    CFmlaExprBase expression;
    expression.SetFromEncodedString(CString(encoded));
    return expression;
}

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
        m_Before = Show(m_Expression);
    }
    void ExpectDone(const std::string& encoded, int answer) const
    {
        EXPECT_EQ(answer, 1);
        EXPECT_EQ(Show(m_Expression), Show(Read(encoded)));
        EXPECT_EQ(m_Expression.GetInvalidPos(), -1);
    }
    void ExpectRefused(int answer) const
    {
        EXPECT_EQ(answer, 0);
        EXPECT_EQ(Show(m_Expression), m_Before);
        EXPECT_EQ(m_Expression.GetInvalidPos(), 1);
    }
    // What lies at the gap, as inside, right or left edge with the index: "R0L1".
    std::string At(int gap) const
    {
        return At('I', gap, &CFmlaExprBase::InVar) + At('R', gap, &CFmlaExprBase::OnVarRightEdge) +
               At('L', gap, &CFmlaExprBase::OnVarLeftEdge);
    }

    CFmlaExprBase m_Expression;

private:
    std::string At(char letter, int gap, int (CFmlaExprBase::*ask)(int, int*) const) const
    {
        int index = 77;
        const int answer = (m_Expression.*ask)(gap, &index);
        EXPECT_EQ((m_Expression.*ask)(gap, nullptr), answer);
        EXPECT_TRUE(answer == 1 || index == 77) << letter << gap;
        return answer == 1 ? letter + std::to_string(index) : "";
    }

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
    for (const int pos : {5, 14, 16, 18, -1, 1470, INT_MIN, INT_MAX}) {
        SCOPED_TRACE(pos);
        ExpectRefused(m_Expression.InsertString("x", pos));
        ExpectRefused(m_Expression.InsertString("", pos));
        ExpectRefused(m_Expression.InsertVariable("x", pos, 0));
    }
}

TEST_F(Editing, AReferenceGoesAsAWhole)
{
    // At the end of the text there is nothing to take, which is no refusal. A start behind the end
    // acts as the Delete key at the end. The limit ends a range, but not what the key takes.
    const struct {
        int limit;
        int start;
        int end;
        const char* edited;
        int wholeVar;
    } rows[] = {
        {99, 4, 4, "2 * F(bc)+", 1},
        {99, 4, 15, "2 * F(bc)+", 0},
        {99, 15, 15, "2 * V(Unit Cost)+", 1},
        {99, 3, 3, "2 *V(Unit Cost)F(bc)+", 0},
        {99, 2, 15, "2 F(bc)+", 0},
        {99, 19, 19, "2 * V(Unit Cost)F(bc)", 0},
        {99, 0, INT_MAX, "", 0},
        {99, 21, 98, kUnitCost, 0},
        {INT_MAX, INT_MAX - 1, INT_MAX - 1, kUnitCost, 0},
        {99, 9, 2, "2  V(Unit Cost)F(bc)+", 0},
        {99, INT_MAX, 4, "2 * F(bc)+", 1},
        {15, 0, 99, "F(bc)+", 0},
        {17, 15, 15, "2 * V(Unit Cost)+", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.start) + " to " + std::to_string(row.end));
        Start(kUnitCost, row.limit);
        int wholeVar = 77;
        ExpectDone(row.edited, m_Expression.DeleteChars(row.start, row.end, &wholeVar));
        EXPECT_EQ(wholeVar, row.wholeVar);
    }
    const struct {
        int limit;
        int start;
        int end;
    } refusals[] = {
        {99, 3, 6},
        {99, 9, 9},
        {99, 14, 19},
        {99, 15, 9},
        {99, 0, -1},
        {99, INT_MIN, 3},
        {99, INT_MAX, INT_MAX},
        {17, 0, 99},
        {15, 15, 15},
        {0, 0, 0},
        {-5, 0, 0},
        {INT_MIN, 0, 0},
    };
    for (const auto& row : refusals) {
        SCOPED_TRACE(std::to_string(row.start) + " to " + std::to_string(row.end));
        Start(kUnitCost, row.limit);
        int wholeVar = 77;
        ExpectRefused(m_Expression.DeleteChars(row.start, row.end, &wholeVar));
        EXPECT_EQ(wholeVar, 0);
    }
    Start(kUnitCost);
    EXPECT_THROW(m_Expression.DeleteChars(19, 20, nullptr), CInvalidArgException);
    ExpectRefused(0);
}

TEST_F(Editing, ReferenceBringsItsBlanksAndItsEntry)
{
    Start("2 * ");
    ExpectDone("2 * V(Unit Cost)", m_Expression.InsertVariable("Unit Cost", 4, 0));
    EXPECT_EQ(Show(m_Expression), "2 *  Unit Cost [4,11,0,]");
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
    const char* const before = "2,3,0,5,3,1,";
    const struct {
        int pos;
        int length;
        int kind;
        const char* pointers;
    } rows[] = {
        {0, 2, 2, "0,2,2,2,3,0,5,3,1,"},
        {8, 4, 0, "2,3,0,5,3,1,8,4,0,"},
        {2, 1, 0, before},
        {4, 1, 0, before},
        {5, 1, 0, before},
        {-1, 1, 0, before},
        {8, -1, 0, before},
        {8, 1, -1, before},
        {65536, 1, 0, before},
        {8, 65536, 0, before},
        {8, 1, 65536, before},
        {65535, 65535, 1, "2,3,0,5,3,1,65535,65535,1,"},
    };
    for (const auto& row : rows) {
        Start("1+V(a)F(b)");
        EXPECT_EQ(m_Expression.InsVarPtrs(row.pos, row.length, row.kind),
                  row.pointers == before ? 0 : 1);
        EXPECT_EQ(m_Expression.GetPtrStr().ToUtf8(), row.pointers)
            << row.pos << ", " << row.length << ", " << row.kind;
    }
    Start("1+V(a)F(b)");
    for (const int index : {-1, 2, INT_MIN, INT_MAX})
        EXPECT_THROW(m_Expression.DelVarPtrs(index), CInvalidArgException) << index;
    ExpectRefused(0);
    m_Expression.DelVarPtrs(0);
    EXPECT_EQ(Show(m_Expression), "1+ a  b [5,3,1,]");
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
        {14, "I0", 15, 4, 15},
        {15, "R0L1", 15, 15, 15},
        {16, "I1", 19, 15, 15},
        {17, "I1", 19, 15, 15},
        {18, "I1", 19, 15, 19},
        {19, "R1", 19, 19, 19},
        {20, "", 20, 20, 20},
        {1470, "", 1470, 1470, 1470},
        {1471, "", 1470, 1470, 1470},
        {-1, "", 0, 0, 0},
        {INT_MAX, "", 1470, 1470, 1470},
        {INT_MIN, "", 0, 0, 0},
    };
    Start(kUnitCost);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.pos);
        EXPECT_EQ(At(row.pos), row.found);
        EXPECT_EQ(m_Expression.FixPos(row.pos, std::max(row.pos, INT_MIN + 1) - 1), row.right);
        EXPECT_EQ(m_Expression.FixPos(row.pos, std::min(row.pos, INT_MAX - 1) + 1), row.left);
        EXPECT_EQ(m_Expression.FixPos(row.pos, row.pos), row.nearest);
        EXPECT_EQ(m_Expression.FixPos(row.pos, FD_NEAREST), row.nearest);
        EXPECT_EQ(m_Expression.FixPos(row.pos, FD_LEFT), row.left);
        EXPECT_EQ(m_Expression.FixPos(row.pos, FD_RIGHT), row.right);
        EXPECT_EQ(m_Expression.FixPos(row.pos, static_cast<FMLA_DIRECTION>(3)), row.right);
    }
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
        const char* inserted;
        int pos;
        const char* edited;
        const char* refused; // at the same place
    } rows[] = {
        {"12345", "67890", 0, "6789012345", "678901"},
        {"12345     ", "abcde", 0, "abcde12345", "abcdef"},
        {"12345     ", "abcde", 5, "12345abcde", "abcdef"},
        {"12345     ", "ab", 3, "123ab45   ", "abcdef"},
        {"12345     ", "abc", 7, "12345  abc", "abcd"},
        {"12", "a", 9, "12a", "ab"},
        {"1234567890", "", 0, "1234567890", "a"},
        {"1234567890  ", "", 0, "1234567890", "a"},
        {"V(a)  12    ", "abc", 3, "V(a)abc  12", "abcd"},
        {"12345\t\t\t\t", "a", 0, "a12345\t\t\t\t", "ab"},
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
    // Not even an empty text goes into one that is too long, or has no limit above its place.
    for (const int limit : {4, 0, -5, INT_MIN}) {
        SCOPED_TRACE(limit);
        Start("12345", limit);
        ExpectRefused(m_Expression.InsertString("", 0));
    }
}

TEST_F(Editing, SixteenthReferenceIsRefused)
{
    for (int i = 0; i < 15; ++i)
        EXPECT_EQ(m_Expression.InsertVariable("n", 0, i % 3), 1);
    Mark();
    for (const int kind : {0, 1, 2})
        ExpectRefused(m_Expression.InsertVariable("n", 45, kind));
    ExpectRefused(m_Expression.InsVarPtrs(45, 3, 0));

    // More of them can be loaded, and are moved like any others.
    Start(Repeated("V(n)", 20));
    ExpectRefused(m_Expression.InsertFormula("n", 0));
    ExpectDone("1+" + Repeated("V(n)", 20), m_Expression.InsertString("1+", 0));
}

TEST_F(Editing, ReferenceStaysWithinSixteenBits)
{
    const struct {
        int loadedPos; // of the reference in the text before
        int pos;
        int length; // of the name, or of a text if negative
        bool fits;
    } rows[] = {
        {0, 3, 65533, true},   {0, 3, 65534, false},     {0, 65535, 1, true},
        {0, 65536, 1, false},  {0, 69990, 1, false},     {65533, 0, -2, true},
        {65534, 0, -2, false}, {65534, 69990, -2, true}, {65535, 65535, -1, false},
        {65532, 0, 1, true},   {65533, 0, 1, false},     {65530, 65533, 70, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.loadedPos) + ", at " + std::to_string(row.pos) + ", " +
                     std::to_string(row.length));
        Start(Repeated("1", row.loadedPos) + "V(n)" + Repeated("1", 70000 - row.loadedPos), 200000);
        const std::string name = Repeated("m", std::abs(row.length));
        const std::string text = row.length < 0 ? name : ' ' + name + ' ';
        std::string expected = m_Expression.GetTextStr().ToUtf8();
        if (row.fits)
            expected.insert(static_cast<std::size_t>(row.pos), text);
        const int answer = row.length < 0 ? m_Expression.InsertString(CString(text), row.pos)
                                          : m_Expression.InsertFormula(CString(name), row.pos);
        EXPECT_EQ(answer, row.fits ? 1 : 0);
        EXPECT_TRUE(m_Expression.GetTextStr().ToUtf8() == expected);
        EXPECT_EQ(m_Expression.NumVars(), row.fits && row.length > 0 ? 2 : 1);
        for (int i = 0; i < m_Expression.NumVars(); ++i)
            EXPECT_TRUE(m_Expression.VarText(i).ToUtf8() ==
                        (m_Expression.VarType(i) == 1 ? text : " n "));
    }
}

// One character of the text that an expression ought to have.
struct Cell {
    char character;
    int reference; // a number of its own for each reference, 0 for literal text
};

// The same expression as cells, which know of a reference only that no edit may part it.
class CellRow {
public:
    explicit CellRow(int limit) : m_Limit(limit) {}

    int Length() const { return static_cast<int>(m_Cells.size()); }
    std::string Show() const
    {
        std::string text;
        std::string pointers;
        for (int start = 0; start < Length(); start = NextGap(start)) {
            const int end = NextGap(start);
            for (int i = start; i < end; ++i)
                text += At(i).character;
            if (At(start).reference != 0)
                pointers += std::to_string(start) + ',' + std::to_string(end - start) + ',' +
                            std::to_string(At(start).reference % 3) + ',';
        }
        return text + '[' + pointers + ']';
    }
    bool Insert(const std::string& text, int reference, int gap)
    {
        const auto isUsed = [](const Cell& cell) { return cell.character != ' '; };
        const auto end = std::find_if(m_Cells.rbegin(), m_Cells.rend(), isUsed).base();
        const int used = std::max(gap, static_cast<int>(end - m_Cells.begin()));
        if (!IsFree(gap) || static_cast<int>(text.size()) > m_Limit - used)
            return false;
        std::vector<Cell> cells;
        for (const char character : text)
            cells.push_back({character, reference});
        m_Cells.insert(m_Cells.begin() + gap, cells.begin(), cells.end());
        m_Cells.resize(std::min(m_Cells.size(), static_cast<std::size_t>(m_Limit)));
        return true;
    }
    bool Delete(int start, int end)
    {
        start = std::min(start, end);
        if (!IsFree(start) || !IsFree(end))
            return false;
        if (start == end && end < Length())
            end = NextGap(start);
        m_Cells.erase(m_Cells.begin() + start, m_Cells.begin() + end);
        return true;
    }

private:
    std::vector<Cell> m_Cells;
    int m_Limit;
};

} // namespace

} // namespace tovo::test
