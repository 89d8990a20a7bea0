#include "ObjectListView.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include <TovoFormula/FmlaExprBase.h>

#include "EditorView.h"
#include "Glyphs.h"
#include "ObjectForms.h"
#include "TableView.h"
#include "ValueText.h"

namespace {

constexpr int kKindWidth = 9;   // the longest of the words is cut, which says enough
constexpr int kValueWidth = 12; // columns; most values have up to six decimals

const std::vector<KeyHelp>& Help()
{
    static const std::vector<KeyHelp> kHelp = {
        {u"Enter", u"edit the object"},
        {u"letters", u"search in names, units, notes, values, expressions and tables; Esc ends it"},
        {u"F2", u"new variable, formula or table"},
        {u"F3", u"duplicate"},
        {u"F4", u"rename, wherever the object is named"},
        {u"F5", u"remove, after a list of what that changes"},
        {u"F6", u"offer corrections of a fault"},
        {u"F7", u"why: how the value came about"},
        {u"F8", u"who: the users of the object"},
        {u"F9", u"value, unit and note"},
        {u"Ctrl-Z, Ctrl-Y", u"undo, redo"},
        {u"Ctrl-S, Ctrl-W", u"save, save as"},
        {u"Ctrl-Q", u"leave, with a question if something is not saved"},
    };
    return kHelp;
}

CString Placed(std::size_t count)
{
    CString text;
    text.Format(count == 1 ? u"%d other place changed" : u"%d other places changed",
                static_cast<int>(count));
    return text;
}

std::string ShownValue(const tovo::ObjectName& object, const std::optional<double>& value,
                       const std::string& decimal)
{
    return value ? ValueText(*value, tovo::IsYesNoName(object.name), decimal) : "none";
}

// As an author reads it; what is no expression reads as it is.
std::string Shown(const tovo::PlaceChange& place, const std::optional<std::string>& text)
{
    if (!text || place.part != "expression")
        return text.value_or("");
    CFmlaExprBase expression;
    expression.SetFromEncodedString(*text);
    return expression.GetTextStr().ToUtf8();
}

// What an edit does, place by place, in lines.
std::string PreviewText(const tovo::Preview& preview, const tovo::ObjectName& object,
                        const std::string& decimal)
{
    std::string text;
    for (const tovo::PlaceChange& place : preview.places) {
        if (place.object == object)
            continue;
        text += fmt::format("{} {}, {}\n  now:  {}\n  then: {}\n", WordFor(place.object.kind),
                            place.object.name, place.part, Shown(place, place.before),
                            Shown(place, place.after));
    }
    for (const tovo::ValueChange& change : preview.values) {
        if (change.object != object)
            text += fmt::format("{}: {} becomes {}\n", change.object.name,
                                ShownValue(change.object, change.before, decimal),
                                ShownValue(change.object, change.after, decimal));
    }
    for (const tovo::Fault& fault : preview.newFaults)
        text += fmt::format("new fault in {} {}: {}\n", WordFor(fault.object.kind),
                            fault.object.name, fault.text);
    return text.empty() ? "Nothing else refers to it." : text;
}

std::size_t PositionOf(const tovo::Job& job, const tovo::ObjectName& object)
{
    const auto position = [&](const auto& objects) {
        const auto isIt = [&](const auto& other) { return other.name == object.name; };
        return static_cast<std::size_t>(
            std::distance(objects.begin(), std::find_if(objects.begin(), objects.end(), isIt)));
    };
    if (object.kind == tovo::Kind::Variable)
        return position(job.Variables());
    return object.kind == tovo::Kind::Formula ? position(job.Formulas()) : position(job.Tables());
}

// Asks until the texts of a form make an edit that the job takes. Apply returns what is wrong.
template <typename ApplyTexts>
bool Fill(Terminal& terminal, const CString& title, const std::vector<ObjectField>& fields,
          ApplyTexts apply)
{
    Form form{title, {}};
    for (const ObjectField& field : fields)
        form.fields.push_back({Wide(field.label), Wide(field.text)});
    while (FillIn(terminal, form)) {
        std::vector<std::string> texts;
        for (const FormField& field : form.fields)
            texts.push_back(field.text.ToUtf8());
        const tovo::Result<void> isDone = apply(texts);
        if (isDone)
            return true;
        form.fault = Refused(isDone.Why()).text;
    }
    return false;
}

} // namespace

ObjectListView::ObjectListView(Terminal& terminal, Document& document, Commands& commands)
    : m_Terminal(terminal),
      m_Document(document),
      m_Commands(commands),
      m_Rows(document.Job(), commands.Decimal()),
      m_Version(document.Version())
{
    // What one comes for, if it is there.
    if (!document.Job().Formulas().empty())
        Select(tovo::FormulaNamed(document.Job().Formulas()[0].name));
}

Key ObjectListView::Run()
{
    for (;;) {
        Refresh();
        Draw();
        const KeyPress press = m_Terminal.Read();
        if (press.key == Key::Idle) {
            if (const Notice news = m_Commands.AskAboutNews(); !news.text.IsEmpty())
                m_Notice = news;
            continue;
        }
        m_Notice = {};
        if (const auto end = Handle(press))
            return *end;
    }
}

// A search looks at everything that the job says, so only after a change.
void ObjectListView::Refresh()
{
    if (m_Version == m_Document.Version())
        return;
    m_Version = m_Document.Version();
    m_Document.Update();
    m_Rows.Refresh();
}

// Title and footer take a row each.
int ObjectListView::Height() const
{
    return std::max(m_Terminal.Rows() - 2, 1);
}

std::optional<tovo::ObjectName> ObjectListView::Selected() const
{
    const auto index = static_cast<std::size_t>(m_Cursor.Selected());
    if (index >= m_Rows.Count())
        return std::nullopt;
    return m_Rows.At(index);
}

void ObjectListView::Select(const tovo::ObjectName& object)
{
    Refresh();
    if (!m_Rows.Find(object))
        m_Rows.SetFilter({});
    if (const auto index = m_Rows.Find(object))
        m_Cursor.Select(static_cast<int>(*index));
}

// Returns a key if the program is to end with it.
std::optional<Key> ObjectListView::Handle(const KeyPress& press)
{
    m_Cursor.Handle(press.key, Height());
    if (press.key == Key::HangUp)
        return Key::HangUp;
    if (press.key == Key::Quit)
        return Leave();
    if (HandleSearch(press))
        return std::nullopt;
    if (press.key == Key::Click && press.row > 0 && press.row <= Height())
        m_Cursor.Select(m_Cursor.Top() + press.row - 1);
    else if (press.key == Key::F1)
        m_Commands.ShowKeys(u"Keys of the list", Help());
    else if (press.key == Key::F2)
        Add();
    else if (press.key == Key::Undo)
        m_Notice = {m_Document.Undo() ? u"Taken back" : u"Nothing to undo"};
    else if (press.key == Key::Redo)
        m_Notice = {m_Document.Redo() ? u"Done again" : u"Nothing to redo"};
    else if (press.key == Key::Save)
        m_Notice = m_Commands.Save();
    else if (press.key == Key::SaveAs)
        m_Notice = m_Commands.SaveAs();
    else if (const auto object = Selected())
        return HandleObject(press.key, *object);
    return std::nullopt;
}

// The letters search; nothing else is done with them here.
bool ObjectListView::HandleSearch(const KeyPress& press)
{
    const CString filter = m_Rows.Filter();
    if (press.key == Key::Character)
        m_Rows.SetFilter(filter + press.text);
    else if (press.key == Key::Backspace && !filter.IsEmpty())
        m_Rows.SetFilter(filter.Left(GlyphsOf(filter).back().position));
    else if (press.key != Key::Escape || filter.IsEmpty())
        return false;
    else
        EndSearch();
    return true;
}

// With what was found still selected.
void ObjectListView::EndSearch()
{
    const auto object = Selected();
    m_Rows.SetFilter({});
    if (object)
        Select(*object);
}

std::optional<Key> ObjectListView::HandleObject(Key key, const tovo::ObjectName& object)
{
    const bool isOwned = object.kind != tovo::Kind::JobValue;
    if (key == Key::Enter)
        return Open(object);
    if (key == Key::F3 && isOwned)
        Duplicate(object);
    else if (key == Key::F4 && isOwned)
        Rename(object);
    else if (key == Key::F5 && isOwned)
        Remove(object);
    else if (key == Key::F6)
        m_Notice = m_Commands.Correct(object);
    else if (key == Key::F7)
        m_Commands.ShowWhy(object);
    else if (key == Key::F9)
        EditFields(object);
    else if (key == Key::F8) {
        if (const auto user = m_Commands.ShowUsers(object, m_Notice))
            Select(*user);
    }
    return std::nullopt;
}

std::optional<Key> ObjectListView::Open(const tovo::ObjectName& object)
{
    Key end = Key::Escape;
    if (object.kind == tovo::Kind::Formula)
        end = EditorView(m_Terminal, m_Document, m_Commands, object.name).Run();
    else if (object.kind == tovo::Kind::Table)
        end = TableView(m_Terminal, m_Document, m_Commands, object.name).Run();
    else
        EditFields(object);
    if (end == Key::Escape)
        return std::nullopt;
    return end == Key::Quit ? Leave() : end;
}

std::optional<Key> ObjectListView::Leave()
{
    if (m_Commands.MayQuit(m_Notice))
        return Key::Quit;
    return std::nullopt;
}

void ObjectListView::EditFields(const tovo::ObjectName& object)
{
    const std::string& decimal = m_Commands.Decimal();
    Fill(m_Terminal, Wide(object.name), FormOf(m_Document.Job(), object, decimal),
         [&](const std::vector<std::string>& texts) -> tovo::Result<void> {
             const auto edit = ReadForm(m_Document.Job(), object, texts, decimal);
             return edit ? m_Document.Apply(edit.Value()) : tovo::Result<void>(edit.Why());
         });
}

void ObjectListView::Add()
{
    const auto kind = AskForKind();
    if (!kind)
        return;
    std::string name;
    const bool isAdded =
        Fill(m_Terminal, u"New " + Wide(WordFor(*kind)), NewForm(*kind),
             [&](const std::vector<std::string>& texts) -> tovo::Result<void> {
                 name = texts[0];
                 const auto edit =
                     ReadNewForm(m_Document.Job(), *kind, texts, m_Commands.Decimal());
                 return edit ? m_Document.Apply(edit.Value()) : tovo::Result<void>(edit.Why());
             });
    if (!isAdded)
        return;
    Select({*kind, name});
    m_Notice = {u"Added; Enter edits it"};
}

std::optional<tovo::Kind> ObjectListView::AskForKind()
{
    for (;;) {
        m_Terminal.WriteBar(m_Terminal.Rows() - 1, u"New: v variable  f formula  t table  Esc back",
                            Paint::Bar);
        m_Terminal.HideCursor();
        const KeyPress press = m_Terminal.Read();
        if (press.key == Key::Escape || press.key == Key::HangUp)
            return std::nullopt;
        const std::string letter = press.text.ToUtf8();
        if (letter == "v" || letter == "V")
            return tovo::Kind::Variable;
        if (letter == "f" || letter == "F")
            return tovo::Kind::Formula;
        if (letter == "t" || letter == "T")
            return tovo::Kind::Table;
    }
}

void ObjectListView::Duplicate(const tovo::ObjectName& object)
{
    const auto name = AskForText(m_Terminal, u"Name of the copy (Del clears): ",
                                 Wide(FreeName(m_Document.Job(), object)));
    if (!name)
        return;
    const tovo::AddObject edit{CopyOf(m_Document.Job(), object, name->ToUtf8()),
                               PositionOf(m_Document.Job(), object) + 1};
    if (Do(edit, u"Duplicated"))
        Select({object.kind, name->ToUtf8()});
}

void ObjectListView::Rename(const tovo::ObjectName& object)
{
    const auto name = AskForText(m_Terminal, u"New name (Del clears): ", Wide(object.name));
    const tovo::RenameObject edit{object, name ? name->ToUtf8() : object.name};
    if (edit.newName == object.name)
        return;
    const auto preview = m_Document.PreviewOf(edit);
    // The name itself is one of the places.
    if (Do(edit, preview ? Placed(preview.Value().places.size() - 1) : CString()))
        Select({object.kind, edit.newName});
}

// Asks in any case: a removal that changes nothing else still loses what the object says.
void ObjectListView::Remove(const tovo::ObjectName& object)
{
    const auto edit = AskHowToRemove(object);
    if (!edit)
        return;
    const auto preview = m_Document.PreviewOf(*edit);
    if (!preview) {
        m_Notice = Refused(preview.Why());
        return;
    }
    const auto lines =
        Wrapped(PreviewText(preview.Value(), object, m_Commands.Decimal()), m_Terminal.Columns());
    if (Confirm(m_Terminal, u"Removing " + Wide(object.name), lines, u"Enter remove  Esc keep"))
        Do(*edit, u"Removed");
}

std::optional<tovo::RemoveObject> ObjectListView::AskHowToRemove(const tovo::ObjectName& object)
{
    tovo::RemoveObject edit{object};
    if (tovo::UsedBy(m_Document.Job(), object).empty())
        return edit;
    const std::vector<PickEntry> ways = {
        {u"replace", u"by another object", u"the references are to that one from then on"},
        {u"replace", u"by the present value", u"as a number"},
        {u"leave", u"the references", u"faults until the name is there again"},
    };
    const auto way = Pick(m_Terminal, Wide(object.name) + u" is used", ways, u"choose");
    if (!way)
        return std::nullopt;
    edit.references = *way == 0   ? tovo::References::ReplaceByObject
                      : *way == 1 ? tovo::References::ReplaceByValue
                                  : tovo::References::Leave;
    if (*way > 0)
        return edit;
    const ObjectRows all(m_Document.Job(), m_Commands.Decimal());
    std::vector<PickEntry> entries;
    std::vector<tovo::ObjectName> others;
    for (std::size_t at = 0; at < all.Count(); ++at) {
        const tovo::ObjectName& other = all.At(at);
        if (other == object || other.kind == tovo::Kind::JobValue)
            continue;
        others.push_back(other);
        entries.push_back({Wide(WordFor(other.kind)), Wide(other.name), {}, PaintOf(other.kind)});
    }
    const auto chosen = Pick(m_Terminal, u"Instead", entries, u"choose");
    if (!chosen)
        return std::nullopt;
    edit.replacement = others[*chosen];
    return edit;
}

bool ObjectListView::Do(const tovo::Edit& edit, const CString& notice)
{
    const auto isDone = m_Document.Apply(edit);
    m_Notice = isDone ? Notice{notice} : Refused(isDone.Why());
    if (!isDone)
        m_Terminal.Beep();
    return static_cast<bool>(isDone);
}

void ObjectListView::Draw()
{
    const int count = static_cast<int>(m_Rows.Count());
    m_Cursor.Fit(count, Height());
    m_Terminal.Clear();
    CString title = Wide(m_Document.Path()) + (m_Document.IsModified() ? u" *" : u"");
    if (!m_Rows.Filter().IsEmpty())
        title += u"  search: " + m_Rows.Filter();
    m_Terminal.WriteBar(0, title, Paint::Bar);
    for (int line = m_Cursor.Top(); line < std::min(count, m_Cursor.Top() + Height()); ++line)
        DrawObject(line - m_Cursor.Top() + 1, m_Rows.At(static_cast<std::size_t>(line)),
                   line == m_Cursor.Selected());
    DrawFooter(m_Terminal, m_Notice,
               {u"F1 keys", u"^Q quit", u"Enter edit", u"F2 new", u"F4 rename", u"F5 remove",
                u"^S save", u"^Z undo"});
    m_Terminal.HideCursor();
}

// The text comes last, since it is the longest and the one that may be cut.
void ObjectListView::DrawObject(int row, const tovo::ObjectName& object, bool isSelected)
{
    const ObjectFacts facts = FactsOf(m_Document.Job(), object, m_Commands.Decimal());
    const int nameWidth = std::clamp(m_Terminal.Columns() * 2 / 5, 10, 30);
    const CString line = Padded(Wide(facts.kind), kKindWidth) + u" " +
                         Padded(Wide(facts.name), nameWidth) + u" " +
                         Padded(Wide(facts.value), kValueWidth) + u" " +
                         Padded(Wide(facts.unit), 6) + u" " + Wide(facts.text);
    if (isSelected) {
        m_Terminal.WriteBar(row, line, Paint::Selected);
        return;
    }
    m_Terminal.Write(row, 0, line, facts.isFault ? Paint::Fault : Paint::Plain);
    if (!facts.isFault)
        m_Terminal.Write(row, kKindWidth + 1, Clipped(Wide(facts.name), nameWidth),
                         PaintOf(object.kind));
}
