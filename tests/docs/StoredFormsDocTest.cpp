#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <TovoFormula/TovoFormula.h>
#include <TovoPlatform/NumberText.h>
#include <expression_text/Texts.h>
#include <operands/Operands.h>

#include "MarkdownTable.h"

namespace tovo::test {

namespace {

using Cells = std::vector<std::string>;

// Runs the check for each row, so that a failure tells the line of the document.
void ForRowsOf(const Cells& header, const std::function<void(const Cells&)>& check)
{
    static const std::string document = ReadDocument("stored-forms.md");
    const std::vector<MarkdownRow> rows = RowsOfTables(document, header);
    EXPECT_FALSE(rows.empty()) << header.front();
    for (const MarkdownRow& row : rows) {
        SCOPED_TRACE("line " + std::to_string(row.line));
        ASSERT_EQ(row.cells.size(), header.size());
        check(row.cells);
    }
}

CFmlaExprBase Typed(const std::string& text, const std::string& references)
{
    CFmlaExprBase expression;
    expression.SetExpr(CString(text), CString(references));
    return expression;
}

std::string Encoded(CFmlaExprBase expression)
{
    return expression.GetEncodedString().ToUtf8();
}

std::string Together(const std::string& text, const std::string& references)
{
    return text + "[" + references + "]";
}

void CheckBothWays(const Cells& cells)
{
    EXPECT_EQ(Encoded(Typed(cells[0], cells[1])), cells[2]);
    EXPECT_EQ(Whole(Read(cells[2])), Together(cells[0], cells[1]));
}

class OpenOperand : public CalcOpBase {
public:
    using CalcOpBase::m_ConstantValue;
    using CalcOpBase::m_OperandKind;
};

// "number 2.5" and "expression V(Height)+1" as the rows that Load takes.
CString RowToLoad(const std::string& holds)
{
    const std::size_t blank = std::min(holds.find(' '), holds.size());
    const std::string what = holds.substr(0, blank);
    if (what == "nothing")
        return CString();
    const std::string letter = what == "variable"  ? "V"
                               : what == "formula" ? "F"
                               : what == "table"   ? "T"
                               : what == "yes/no"  ? "b"
                                                   : what.substr(0, 1);
    return CString(letter + holds.substr(blank + 1));
}

TEST(StoredFormsDocument, EncodedStringsGoBothWays)
{
    ForRowsOf({"Text", "References", "Encoded string"}, CheckBothWays);
    const UserLanguage german(",", ";", kGermanNames);
    ForRowsOf({"German text", "References", "Encoded string"}, CheckBothWays);
}

TEST(StoredFormsDocument, WhatIsReadAnotherWayStaysTheSame)
{
    ForRowsOf({"Text", "References", "Encoded string", "Text read", "References read"},
              [](const Cells& cells) {
                  EXPECT_EQ(Encoded(Typed(cells[0], cells[1])), cells[2]);
                  EXPECT_EQ(Whole(Read(cells[2])), Together(cells[3], cells[4]));
                  EXPECT_EQ(Encoded(Typed(cells[3], cells[4])), cells[2]);
              });
}

TEST(StoredFormsDocument, DamagedFormsAreTakenAsTold)
{
    ForRowsOf({"Damaged string", "Text", "References"}, [](const Cells& cells) {
        EXPECT_EQ(Whole(Read(cells[0])), Together(cells[1], cells[2]));
    });
    ForRowsOf({"References given", "Encoded string", "Why"}, [](const Cells& cells) {
        EXPECT_EQ(Encoded(Typed("1+ a * b ", cells[0])), cells[1]);
    });
    ForRowsOf({"Reference string", "Read as", "Why"}, [](const Cells& cells) {
        EXPECT_EQ(Typed("1", cells[0]).GetPtrStr().ToUtf8(), cells[1]);
    });
}

TEST(StoredFormsDocument, OperandsAreStoredAsTold)
{
    ForRowsOf({"Holds", "Kind", "Prefixed string", "Encoded string"}, [](const Cells& cells) {
        OpenOperand operand;
        EXPECT_TRUE(Load(operand, RowToLoad(cells[0])));
        EXPECT_EQ(std::to_string(operand.m_OperandKind), cells[1]);
        EXPECT_EQ(operand.GetPrefixedString().ToUtf8(), cells[2]);
        EXPECT_EQ(operand.GetEncodedString().ToUtf8(), cells[3]);
    });
    ForRowsOf({"Encoded string", "Kind", "Encoded again"}, [](const Cells& cells) {
        OpenOperand operand;
        EXPECT_TRUE(operand.LoadEncodedExpression(CString(cells[0])));
        EXPECT_EQ(std::to_string(operand.m_OperandKind), cells[1]);
        EXPECT_EQ(operand.GetEncodedString().ToUtf8(), cells[2]);
    });
    ForRowsOf({"Prefixed string", "Kind", "Value", "Prefixed again"}, [](const Cells& cells) {
        OpenOperand operand;
        EXPECT_TRUE(operand.LoadPrefixedString(CString(cells[0])));
        EXPECT_EQ(std::to_string(operand.m_OperandKind), cells[1]);
        EXPECT_EQ(operand.m_ConstantValue, ParseDouble(CString(cells[2])));
        EXPECT_EQ(operand.GetPrefixedString().ToUtf8(), cells[3]);
        EXPECT_EQ(operand.IsTypeKnown(), !operand.IsConstant());
    });
}

TEST(StoredFormsDocument, WhatASetRefusesIsStoredEmpty)
{
    CalcSetImpl set;
    CalculationOperand operand(set);
    EXPECT_TRUE(operand.LoadEncodedExpression("F(Gone)"));
    EXPECT_FALSE(operand.IsLoaded());
    EXPECT_EQ(operand.GetEncodedString().ToUtf8(), "");
}

TEST(StoredFormsDocument, ElementsAreStoredAsTold)
{
    CalcSetImpl set;
    VariableImpl height(&set);
    CString name = u"Height";
    height.SetName(name);
    height.SetValue(3.5);
    set.AddVariable(&height);
    // Element strings have "." under any language.
    const UserLanguage german(",", ";", kGermanNames);
    ForRowsOf(
        {"Combined string", "Letter", "Name", "Value", "Combined again"},
        [&set](const Cells& cells) {
            const CString combined(cells[0]);
            const CFormtblElem element(combined, set);
            const CString letter = element.isConstant() ? CString() : CString(element.GetType());
            EXPECT_EQ(letter.ToUtf8(), cells[1]);
            EXPECT_EQ(element.GetName().ToUtf8(), cells[2]);
            EXPECT_EQ(element.value(), ParseDouble(CString(cells[3])));
            EXPECT_EQ(element.GetCombinedString().ToUtf8(), cells[4]);
            EXPECT_EQ(CFormtblElem(element.GetCombinedString(), set).value(), element.value());
        });
}

} // namespace

} // namespace tovo::test
