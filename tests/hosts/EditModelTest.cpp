#include <chrono>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Document.h"
#include "ElementText.h"
#include "FolderTest.h"
#include "FormulaDraft.h"
#include "ObjectForms.h"
#include "ObjectRows.h"
#include "TableGrid.h"

using namespace tovo;

namespace {

namespace fs = std::filesystem;

CString Wide(const std::string& text)
{
    return CString(std::string_view(text));
}

class EditModel : public FolderTest {
protected:
    EditModel() : m_Document(Path("job.json"))
    {
        Add(Variable{"Length", 2, "m", {}, {}});
        Add(Variable{"Width", 3, "m", "inside", {}});
        Add(Variable{"Heated?", 1, {}, {}, {}});
        Add(Variable{"Edge", 4, {}, {}, {}});
        Add(Formula{"Edge", "5", {}, {}});
        Add(Formula{"Slab", "7", {}, {}});
        Add(Formula{"Slab area", "V(Length)*V(Width)", "m²", {}});
        Add(Formula{"x", "1", {}, {}});
        Table rate;
        rate.name = "Rate";
        rate.rowSelector = VariableNamed("Length");
        rate.rowLimits = {1, 5};
        rate.cells = {{10.5}, {FormulaNamed("Edge")}};
        Add(rate);
        m_Document.Update();
    }

    std::string Path(const std::string& name) const { return (m_Folder / name).string(); }
    void Add(AnyObject object) { m_Document.Apply(AddObject{std::move(object)}).Value(); }
    const std::string& Expression() const { return m_Document.Job().FindFormula("x")->expression; }

    // Characters typed one by one. "\b" is the Backspace key, "\r" leaves the word by the End key.
    static void Type(FormulaDraft& draft, const std::string& utf8)
    {
        const CString text = Wide(utf8);
        for (int at = 0; at < text.GetLength(); ++at) {
            if (text[at] == u'\b')
                draft.Session().Backspace();
            else if (text[at] == u'\r')
                draft.Session().TravelTo(0);
            else
                draft.Session().Type(text.Mid(at, 1));
            draft.Check();
        }
    }
    FormulaDraft Cleared()
    {
        FormulaDraft draft(m_Document, "x");
        draft.Session().ReplaceAll("");
        draft.Check();
        return draft;
    }

    Document m_Document;
};

} // namespace

TEST_F(EditModel, TypedNamesBecomeReferences)
{
    struct Row {
        const char* typed;
        const char* shown;
        const char* expression;
        double value;
    };
    const Row rows[] = {
        {"2*(Length+Width)", "2*( Length + Width )", "2*(V(Length)+V(Width))", 10},
        {"length*width", " Length *width", "V(Length)*V(Width)", 6},
        {"length*width\r", " Length * Width ", "V(Length)*V(Width)", 6},
        {"slab area*2+slab*10", " Slab area *2+ Slab *10", "F(Slab area)*2+F(Slab)*10", 82},
        {"round(width/2,0)", "ROUND( Width /2,0)", "ROUND(V(Width)/2,0)", 2},
        {"if(heated?,2,3)", "IF( Heated? ,2,3)", "IF(V(Heated?),2,3)", 2},
        {"V(Edge)*F(Edge)", " Edge * Edge ", "V(Edge)*F(Edge)", 20},
        {"F(Edge)+[rate]*2", " Edge + Rate *2", "F(Edge)+T(Rate)*2", 15},
        {"width\b\b\b\b\blength+", " Length +", "V(Length)+", 0},
        {"quantity+1.2.3", "QUANTITY+1.2.3", "QUANTITY+1.2.3", 0},
    };
    for (const Row& row : rows) {
        {
            FormulaDraft draft = Cleared();
            Type(draft, row.typed);
            EXPECT_EQ(draft.Session().Text().ToUtf8(), row.shown) << row.typed;
            EXPECT_EQ(Expression(), row.expression) << row.typed;
            EXPECT_EQ(draft.Value().value_or(0.0), row.value) << row.typed;
        }
        EXPECT_EQ(FormulaDraft(m_Document, "x").Session().Stored(), row.expression);
        EXPECT_TRUE(m_Document.Undo());
        EXPECT_EQ(Expression(), "1") << "all that was typed is one edit";
    }
}

TEST_F(EditModel, FaultsHaveAPlaceAndCorrections)
{
    struct Row {
        const char* typed;
        const char* marked;    // of what is shown
        const char* corrected; // by the first correction
    };
    const Row rows[] = {
        {"2*lenght+1", "lenght", "2*V(Length)+1"},
        {"2*edge", "edge", "2*V(Edge)"},
        {"(Length+1", "", "(V(Length)+1)"},
        {"1+V(Lengt)*2", "Lengt", "1+V(Length)*2"},
        {"Length/0", "", ""},
    };
    for (const Row& row : rows) {
        FormulaDraft draft = Cleared();
        Type(draft, row.typed);
        const auto problem = draft.WhatIsWrong();
        ASSERT_TRUE(problem) << row.typed;
        EXPECT_FALSE(problem->text.empty());
        const CString shown = draft.Session().Text();
        const CString marked =
            shown.Mid(problem->place.begin, problem->place.end - problem->place.begin);
        if (*row.marked) {
            EXPECT_EQ(marked.ToUtf8(), row.marked) << row.typed;
        }
        const auto corrections = draft.Corrections();
        ASSERT_EQ(corrections.empty(), !*row.corrected) << row.typed;
        if (corrections.empty())
            continue;
        EXPECT_EQ(corrections.front().expression, row.corrected);
        draft.Session().ReplaceAll(corrections.front().expression);
        draft.Check();
        EXPECT_FALSE(draft.WhatIsWrong()) << row.typed;
        EXPECT_TRUE(draft.Session().Undo());
        EXPECT_EQ(draft.Session().Text(), shown);
    }
}

TEST_F(EditModel, CompletionsAndSignatures)
{
    struct Row {
        const char* typed;
        const char* label; // the first of the list; empty for no list
        const char* shown; // after it was taken
        int cursor;
    };
    const Row rows[] = {
        {"2*wid", "Width", "2* Width ", 9},
        {"2*slab a", "Slab area", "2* Slab area ", 13},
        {"sq", "SQRT", "SQRT()", 5},
        {"2+12", "", "", 0},
        {"2*", "", "", 0},
        {"Length+edg", "Edge", " Length + Edge ", 15},
        {"IF(Heated? a", "AND", "IF( Heated?  AND", 16},
    };
    for (const Row& row : rows) {
        FormulaDraft draft = Cleared();
        Type(draft, row.typed);
        const auto list = draft.Completions(false);
        ASSERT_EQ(list.empty(), !*row.label) << row.typed;
        if (list.empty())
            continue;
        EXPECT_EQ(list.front().label, row.label);
        EXPECT_EQ(draft.Take(list.front()), KeyRefusal::None);
        EXPECT_EQ(draft.Session().Text().ToUtf8(), row.shown);
        EXPECT_EQ(draft.Session().Cursor(), row.cursor) << row.typed;
    }
    FormulaDraft draft = Cleared();
    EXPECT_FALSE(draft.SignatureHere());
    EXPECT_FALSE(draft.Completions(true).empty());
    Type(draft, "1+ROUND(Width,");
    const auto signature = draft.SignatureHere();
    ASSERT_TRUE(signature);
    EXPECT_EQ(signature->function->name, "ROUND");
    EXPECT_EQ(signature->parameter, 1U);
}

TEST_F(EditModel, RandomTypingKeepsDraftAndJobTogether)
{
    const std::vector<std::string> keys = {
        "length", "Width",   "slab", " ",      "area", "edge", "+",  "*", "(",
        ")",      "1",       ".",    "2",      "and ", "V(",   "F(", "x", "[",
        "]",      "heated?", "\b",   "\b\b\b", "\r",   "é",    ","};
    for (unsigned seed = 0; seed < 10; ++seed) {
        std::mt19937 random(seed);
        std::string typed;
        FormulaDraft draft(m_Document, "x");
        for (int count = 0; count < 40; ++count) {
            const std::string& key = keys[random() % keys.size()];
            typed += key;
            Type(draft, key);
            const CString text = draft.Session().Text();
            ASSERT_FALSE(draft.Session().Expression().InVar(draft.Session().Cursor(), nullptr));
            draft.Check();
            ASSERT_EQ(draft.Session().Text(), text) << typed;
        }
        const std::string expression = Expression();
        EXPECT_EQ(FormulaDraft(m_Document, "x").Session().Stored(), expression) << typed;
        while (draft.Session().Undo()) {
        }
        draft.Check();
        EXPECT_EQ(Expression(), "1") << typed;
    }
}

TEST_F(EditModel, ElementsAreReadAsTyped)
{
    struct Row {
        const char* typed;
        Element element;
        const char* shown;
    };
    const Row rows[] = {
        {"", {}, ""},
        {" 4,5 ", 4.5, "4,5"},
        {"-1e-7", -1e-7, "-1e-07"},
        {"yes", true, "YES"},
        {"WIDTH", VariableNamed("Width"), "Width"},
        {"[Slab area]", FormulaNamed("Slab area"), "Slab area"},
        {"F(Edge)", FormulaNamed("Edge"), "F(Edge)"},
        {"V(Nobody)", VariableNamed("Nobody"), "V(Nobody)"},
    };
    const tovo::Job& job = m_Document.Job();
    for (const Row& row : rows) {
        const auto element = ReadElement(row.typed, job, ",");
        ASSERT_TRUE(element) << row.typed;
        EXPECT_EQ(element.Value(), row.element) << row.typed;
        EXPECT_EQ(ElementText(row.element, job, ","), row.shown);
    }
    for (const char* const typed : {"Edge", "nobody", "1+1", "Length+Width", "1.5.", "inf"})
        EXPECT_FALSE(ReadElement(typed, job, ",")) << typed;
    EXPECT_EQ(ReadValue("no", true, job, ",").Value(), 0.0);
    EXPECT_FALSE(ReadValue("1", true, job, ","));
    EXPECT_FALSE(ReadValue("yes", false, job, ","));
}

TEST_F(EditModel, TablesGrowAndShrink)
{
    const auto table = [&]() -> const Table& { return *m_Document.Job().FindTable("Rate"); };
    const auto dump = [&] {
        const TableGrid grid(table(), m_Document.Job(), ".");
        std::string text;
        for (std::size_t line = 0; line < grid.LineCount(); ++line) {
            for (std::size_t column = 0; column < grid.ColumnCount(); ++column)
                text += (column > 0 ? "," : "") + grid.TextAt(line, column);
            text += ";";
        }
        return text;
    };
    const auto apply = [&](const Result<Table>& changed) {
        return changed && m_Document.Apply(ChangeObject{changed.Value()});
    };
    const auto grid = [&] { return TableGrid(table(), m_Document.Job(), "."); };
    const std::string first = dump();
    EXPECT_EQ(first, "Length,;,;,;1,10.5;5,F(Edge);");
    EXPECT_TRUE(apply(grid().WithText(1, 0, "width")));
    EXPECT_TRUE(apply(grid().WithColumnBehind(1)));
    EXPECT_TRUE(apply(grid().WithRowBelow(3)));
    EXPECT_TRUE(apply(grid().WithText(4, 2, "slab")));
    EXPECT_TRUE(apply(grid().WithText(4, 0, "2.5")));
    EXPECT_EQ(dump(), "Length,,;Width,,;,1,2;1,10.5,;2.5,,Slab;5,F(Edge),;");
    EXPECT_FALSE(apply(grid().WithText(4, 0, "6"))) << "limits must rise";
    EXPECT_FALSE(apply(grid().WithText(0, 0, ""))) << "the selector must be there";
    EXPECT_TRUE(apply(grid().WithRowBelow(2)));
    EXPECT_TRUE(apply(grid().WithColumnBehind(0)));
    EXPECT_EQ(dump(), "Length,,,;Width,,,;,0,1,2;0,,,;1,,10.5,;2.5,,,Slab;5,,F(Edge),;");
    EXPECT_TRUE(apply(grid().WithoutRow(3)));
    EXPECT_TRUE(apply(grid().WithoutRow(3)));
    EXPECT_FALSE(apply(grid().WithoutRow(0)) && dump().size() < 10);
    EXPECT_TRUE(apply(grid().WithoutColumn(1)));
    EXPECT_EQ(dump(), "Length,,;Width,,;,1,2;2.5,,Slab;5,F(Edge),;");
    EXPECT_FALSE(apply(grid().WithoutRow(3))) << "two rows at least";
}

TEST_F(EditModel, SearchLooksEverywhere)
{
    struct Row {
        const char* filter;
        const char* found;
    };
    const Row rows[] = {
        {"slab", "Slab Slab area "},
        {"M²", "Slab area "},
        {"INSIDE", "Width "},
        {"10.5", "Rate "},
        {"length *", "Slab area "},
        {"jobsize", "JOBSIZE "},
        {"nothing", ""},
        {"\n", ""},
    };
    ObjectRows all(m_Document.Job(), ".");
    const std::size_t count = all.Count();
    EXPECT_EQ(count, 12U);
    for (const Row& row : rows) {
        all.SetFilter(Wide(row.filter));
        std::string found;
        for (std::size_t at = 0; at < all.Count(); ++at)
            found += all.At(at).name + " ";
        if (row.filter[0] != '\n') {
            EXPECT_EQ(found, row.found) << row.filter;
        }
    }
    EXPECT_EQ(FreeName(m_Document.Job(), VariableNamed("Heated?")), "Heated 2?");
    Add(CopyOf(m_Document.Job(), TableNamed("Rate"), "Rate 2"));
    EXPECT_EQ(m_Document.Job().FindTable("Rate 2")->rowLimits.size(), 2U);
}

TEST_F(EditModel, FormsMakeObjects)
{
    struct Row {
        Kind kind;
        std::vector<std::string> texts;
        bool isTaken;
    };
    const Row rows[] = {
        {Kind::Variable, {"Depth", "0.4", "m", "of the edge"}, true},
        {Kind::Variable, {"Winter?", "no", "", ""}, true},
        {Kind::Variable, {"Height", "4m", "", ""}, false},
        {Kind::Variable, {"Width", "4", "", ""}, false},
        {Kind::Formula, {"Price", "€", ""}, true},
        {Kind::Formula, {"", "€", ""}, false},
        {Kind::Table, {"Wage", "width", "€/h", ""}, true},
        {Kind::Table, {"Delivery", "", "", ""}, false},
    };
    for (const Row& row : rows) {
        const auto edit = ReadNewForm(m_Document.Job(), row.kind, row.texts, ".");
        ASSERT_EQ(NewForm(row.kind).size(), row.texts.size());
        EXPECT_EQ(edit && m_Document.Apply(edit.Value()), row.isTaken) << row.texts[0];
        const ObjectName object{row.kind, row.texts[0]};
        if (!row.isTaken)
            continue;
        std::vector<std::string> texts;
        for (const ObjectField& field : FormOf(m_Document.Job(), object, "."))
            texts.push_back(field.text);
        EXPECT_EQ(texts.back(), row.texts.back());
        texts.back() = "another note";
        m_Document.Apply(ReadForm(m_Document.Job(), object, texts, ".").Value()).Value();
        EXPECT_EQ(FormOf(m_Document.Job(), object, ".").back().text, "another note");
    }
    const ObjectName size{Kind::JobValue, "JOBSIZE"};
    m_Document.Apply(ReadForm(m_Document.Job(), size, {"7.5"}, ".").Value()).Value();
    EXPECT_EQ(m_Document.Job().Values().jobSize, 7.5);
}

TEST_F(EditModel, AnUnchangedFileKeepsItsBytes)
{
    const std::string bytes = ReadFile(fs::path(TOVO_EXAMPLES) / "house-slab.json");
    const std::string path = File("old.json", bytes);
    Document document(path);
    for (const char* const name : {"Slab area", "Job price"}) {
        FormulaDraft draft(document, name);
        Type(draft, "+1");
        draft.Session().Undo();
        draft.Session().Undo();
        draft.Check();
    }
    EXPECT_FALSE(document.IsModified());
    document.Save().Value();
    EXPECT_EQ(ReadFile(path), bytes);
    document.Apply(RenameObject{FormulaNamed("Slab area"), "Slab"}).Value();
    document.Save().Value();
    EXPECT_NE(ReadFile(path), bytes);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(EditModel, RecoveryFileKeepsWhatIsNotSaved)
{
    using Clock = Document::Clock;
    EXPECT_FALSE(m_Document.FindRecovery());
    m_Document.KeepRecovery(Clock::now() + std::chrono::seconds(10)).Value();
    EXPECT_TRUE(fs::exists(m_Document.RecoveryPath()));
    m_Document.Apply(RenameObject{FormulaNamed("x"), "y"}).Value();
    m_Document.KeepRecovery(Clock::now()).Value();
    {
        Document other(Path("job.json"));
        EXPECT_TRUE(other.FindRecovery());
        other.Recover().Value();
        EXPECT_TRUE(other.Job().FindFormula("x")) << "the pause was not over";
    }
    m_Document.KeepRecovery(Clock::now() + std::chrono::seconds(10)).Value();
    Document other(Path("job.json"));
    EXPECT_TRUE(other.FindRecovery());
    other.Recover().Value();
    EXPECT_TRUE(other.IsModified());
    EXPECT_EQ(WriteJob(other.Job()), WriteJob(m_Document.Job()));
    other.Save().Value();
    EXPECT_FALSE(fs::exists(other.RecoveryPath()));
    EXPECT_FALSE(other.FindRecovery());
}

TEST_F(EditModel, NewsOnDiskAreToldOnceAndNeverOverwritten)
{
    m_Document.Save().Value();
    EXPECT_FALSE(m_Document.HasNewsOnDisk());
    tovo::Job job = m_Document.Job();
    job.Rename(FormulaNamed("x"), "from elsewhere").Value();
    File("job.json", WriteJob(job));
    EXPECT_TRUE(m_Document.HasNewsOnDisk());
    EXPECT_FALSE(m_Document.HasNewsOnDisk());
    EXPECT_EQ(m_Document.Save().Why().kind, RefusalKind::FileChanged);
    m_Document.Reload().Value();
    EXPECT_TRUE(m_Document.Job().FindFormula("from elsewhere"));
    EXPECT_FALSE(m_Document.IsModified());
    File("job.json", "no job");
    EXPECT_TRUE(m_Document.HasNewsOnDisk());
    EXPECT_FALSE(m_Document.Reload());
    EXPECT_TRUE(m_Document.Job().FindFormula("from elsewhere"));
    m_Document.SaveAs(Path("other.json")).Value();
    EXPECT_EQ(m_Document.Path(), Path("other.json"));
    EXPECT_FALSE(m_Document.HasNewsOnDisk());
}
