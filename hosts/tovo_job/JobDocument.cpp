#include "JobDocument.h"

#include <algorithm>
#include <utility>

#include <TovoJob/ReplaceFile.h>

#include "JsonFile.h"
#include "JsonPatch.h"

namespace {

constexpr std::size_t kMostUndoSteps = 100; // each holds a whole file

std::string FormulaPointer(std::size_t index)
{
    return "/formulas/" + std::to_string(index);
}

// The rewriting of one formula's name, or its removal, where others speak of it.
class Rewriting {
public:
    Rewriting(const CString& name, const std::optional<CString>& newName)
        : m_Name(name), m_NewName(newName)
    {}

    void Visit(const std::string& pointer, JobFormula& formula)
    {
        // A copy, since an effect that is only shown must change nothing.
        CFmlaExpression copy(formula.GetExpression());
        // The limit is for typing. It must not keep a long text from being rewritten to its end.
        copy.SetExprTextLimit(std::max(kDefaultTextLimit, copy.GetTextStr().GetLength() + 1));
        const CString before = copy.GetTextStr();
        const int isChanged = m_NewName ? copy.ChangeFormulaInExpression(m_Name, *m_NewName)
                                        : copy.RemoveFormulaFromExpression(m_Name);
        if (isChanged)
            m_Changes.push_back({pointer, u"formula " + formula.GetName(), before,
                                 copy.GetTextStr(), copy.GetEncodedString()});
    }

    void Visit(const std::string& pointer, const CString& place, const CFormtblElem& element)
    {
        if (!element.isFormula() || element.GetName() != m_Name)
            return;
        CFormtblElem copy(element);
        if (m_NewName)
            copy.SetFormula(*m_NewName);
        else
            copy.ClearAll();
        m_Changes.push_back({pointer, place, element.GetName(),
                             m_NewName ? *m_NewName : CString(u"(nothing)"),
                             copy.GetCombinedString()});
    }

    // Pointers are made for every place, though a table of one column may lack its column selector:
    // an element that is not in the file names nothing.
    void Visit(const std::string& pointer, JobTable& table)
    {
        const CString place = u"table " + table.GetName() + u", ";
        Visit(pointer + "/rowSelector", place + u"row selector", table.GetRowSelector());
        Visit(pointer + "/columnSelector", place + u"column selector", table.GetColumnSelector());
        for (int row = 0; row < table.GetRowCount(); ++row) {
            const std::string rowPointer = pointer + "/cells/" + std::to_string(row) + "/";
            for (int column = 0; column < table.GetColumnCount(); ++column) {
                CString cell;
                cell.Format(u"row %d, column %d", row + 1, column + 1);
                Visit(rowPointer + std::to_string(column), place + cell,
                      *table.GetCell(row, column));
            }
        }
    }

    std::vector<Change> Take() { return std::move(m_Changes); }

private:
    const CString& m_Name;
    const std::optional<CString>& m_NewName;
    std::vector<Change> m_Changes;
};

void PutInto(JsonPatch& patch, const std::vector<Change>& changes)
{
    for (const Change& change : changes)
        patch.ReplaceString(change.pointer, change.stored.ToUtf8());
}

} // namespace

JobDocument::JobDocument(std::string path, bool isStrict)
    : m_Path(std::move(path)),
      m_IsStrict(isStrict),
      m_Bytes(ReadWhole(m_Path)),
      m_SavedBytes(m_Bytes),
      m_Entries(ParseJob(m_Path, m_Bytes))
{
    Refresh();
}

const CString& JobDocument::Expression(std::size_t formula) const
{
    return m_Entries.formulas.at(formula).expression;
}

void JobDocument::StoreExpression(std::size_t formula, const CString& encoded)
{
    if (Expression(formula) == encoded)
        return;
    JsonPatch patch(m_Bytes);
    patch.ReplaceString(FormulaPointer(formula) + "/expression", encoded.ToUtf8());
    Adopt(patch.Apply());
}

// From the bytes, and not from the objects as an editor left them.
void JobDocument::Refresh()
{
    m_Job = std::make_unique<Job>(m_Entries, m_IsStrict);
}

std::vector<Change> JobDocument::Effects(std::size_t formula, const std::optional<CString>& newName)
{
    if (newName == Formula(formula).GetName())
        return {};
    Rewriting rewriting(Formula(formula).GetName(), newName);
    for (std::size_t index = 0; index < FormulaCount(); ++index) {
        // A removed formula need not be rewritten, a renamed one may name itself.
        if (newName || index != formula)
            rewriting.Visit(FormulaPointer(index) + "/expression", Formula(index));
    }
    for (std::size_t index = 0; index < m_Job->Tables().size(); ++index)
        rewriting.Visit("/tables/" + std::to_string(index), *m_Job->Tables()[index]);
    return rewriting.Take();
}

std::size_t JobDocument::Rename(std::size_t formula, const CString& newName)
{
    // Encoding anew might write the same text in another way.
    if (newName == Formula(formula).GetName())
        return 0;
    const std::vector<Change> changes = Effects(formula, newName);
    JsonPatch patch(m_Bytes);
    PutInto(patch, changes);
    patch.ReplaceString(FormulaPointer(formula) + "/name", newName.ToUtf8());
    Adopt(patch.Apply());
    Refresh();
    return changes.size();
}

// An expression that is left unsound is stored all the same: its author mends it, and Undo brings
// it back.
std::size_t JobDocument::Remove(std::size_t formula)
{
    const std::vector<Change> changes = Effects(formula, std::nullopt);
    JsonPatch patch(m_Bytes);
    PutInto(patch, changes);
    patch.RemoveElement("/formulas", formula);
    Adopt(patch.Apply());
    Refresh();
    return changes.size();
}

bool JobDocument::Undo()
{
    return Step(m_Undo, m_Redo);
}

bool JobDocument::Redo()
{
    return Step(m_Redo, m_Undo);
}

void JobDocument::Save()
{
    tovo::ReplaceFile(m_Path, m_Bytes).Value();
    m_SavedBytes = m_Bytes;
}

// Everything that is to become the file passes through the reader of job files, so that what is
// saved can always be opened.
void JobDocument::Adopt(std::string bytes)
{
    m_Entries = ParseJob("Refused", bytes);
    m_Undo.push_back(std::exchange(m_Bytes, std::move(bytes)));
    if (m_Undo.size() > kMostUndoSteps)
        m_Undo.erase(m_Undo.begin());
    m_Redo.clear();
}

// The bytes were a job before, so reading them again cannot fail.
bool JobDocument::Step(std::vector<std::string>& from, std::vector<std::string>& to)
{
    if (from.empty())
        return false;
    to.push_back(std::exchange(m_Bytes, std::move(from.back())));
    from.pop_back();
    m_Entries = ParseJob(m_Path, m_Bytes);
    Refresh();
    return true;
}
