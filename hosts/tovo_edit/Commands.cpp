#include "Commands.h"

#include <cstdint>
#include <utility>

#include "Glyphs.h"
#include "ObjectRows.h"

namespace {

std::string WordsFor(const tovo::Dependency& dependency)
{
    std::string words = dependency.inCondition ? "in a condition" : "";
    if (dependency.asValue)
        words += words.empty() ? "as a value" : ", as a value";
    for (const tovo::Place& place : dependency.places)
        words += place.part.empty() ? "" : ", " + place.part;
    return words;
}

tovo::SaveOptions Allowing(tovo::SaveOptions options, tovo::RefusalKind refused)
{
    options.evenIfChanged |= refused == tovo::RefusalKind::FileChanged;
    options.evenIfReadOnly |= refused == tovo::RefusalKind::ReadOnlyFile;
    return options;
}

} // namespace

CString Wide(std::string_view text)
{
    return CString(text);
}

std::vector<CString> Wrapped(std::string_view text, int width)
{
    std::vector<CString> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        for (const CString& line : WrappedLines(Wide(text.substr(0, end)), width, SIZE_MAX))
            lines.push_back(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

Notice Refused(const tovo::Refusal& refusal)
{
    return {Wide(tovo::Refused(refusal).what()), true};
}

bool Commands::AskAboutRecovery()
{
    if (!m_Document.FindRecovery())
        return true;
    m_Terminal.Clear();
    m_Terminal.WriteBar(0, Wide(m_Document.Path()), Paint::Bar);
    int row = 1;
    for (const CString& line :
         Wrapped("There is a recovery file with changes that were not saved. It was left by an "
                 "editor that did not end as it should, or belongs to one that is still running. "
                 "y takes the changes, n discards them, Esc leaves.",
                 m_Terminal.Columns()))
        m_Terminal.Write(++row, 0, line);
    const auto isToTake = AskYesOrNo(m_Terminal, u"Take the changes?");
    if (!isToTake)
        return false;
    if (!*isToTake) {
        m_Document.DiscardRecovery();
        return true;
    }
    if (const auto isDone = m_Document.Recover(); !isDone)
        return Confirm(m_Terminal, Wide(m_Document.Path()),
                       Wrapped(tovo::Refused(isDone.Why()).what(), m_Terminal.Columns()),
                       u"Enter go on without it  Esc leave");
    return true;
}

Notice Commands::AskAboutNews()
{
    if (!m_Document.HasNewsOnDisk())
        return std::exchange(m_RecoveryFault, {});
    const CString question = m_Document.IsModified()
                                 ? u"The file has changed on disk. Read it and lose your changes?"
                                 : u"The file has changed on disk. Read it again?";
    m_Terminal.Beep();
    if (!AskYesOrNo(m_Terminal, question).value_or(false))
        return {u"Kept as it is here; saving will ask again"};
    const auto isDone = m_Document.Reload();
    return isDone ? Notice{u"Read again"} : Refused(isDone.Why());
}

void Commands::KeepRecovery()
{
    const auto isDone = m_Document.KeepRecovery();
    if (isDone || m_IsFaultKnown)
        return;
    m_IsFaultKnown = true;
    m_RecoveryFault = {u"No recovery file: " + Refused(isDone.Why()).text, true};
}

Notice Commands::Save()
{
    return SaveAt(nullptr);
}

Notice Commands::SaveAs()
{
    const auto typed = AskForText(m_Terminal, u"Save as: ", Wide(m_Document.Path()));
    if (!typed || typed->IsEmpty())
        return {};
    const std::string path = typed->ToUtf8();
    return path == m_Document.Path() ? Save() : SaveAt(&path);
}

// To the path, or where the job was read from.
Notice Commands::SaveAt(const std::string* path)
{
    tovo::SaveOptions options;
    for (;;) {
        const auto isDone = path ? m_Document.SaveAs(*path, options) : m_Document.Save(options);
        if (isDone)
            return {u"Saved " + Wide(m_Document.Path())};
        const tovo::RefusalKind kind = isDone.Why().kind;
        const bool mayAsk =
            kind == tovo::RefusalKind::FileChanged || kind == tovo::RefusalKind::ReadOnlyFile;
        const Notice refusal = Refused(isDone.Why());
        if (!mayAsk || !AskYesOrNo(m_Terminal, refusal.text + u". Replace it?").value_or(false))
            return {u"Not saved: " + refusal.text, true};
        options = Allowing(options, kind);
    }
}

bool Commands::MayQuit(Notice& notice)
{
    if (!m_Document.IsModified())
        return true;
    const auto isToSave = AskYesOrNo(m_Terminal, u"Save the changes?");
    if (!isToSave)
        return false;
    if (*isToSave)
        notice = Save();
    return !notice.isRefusal;
}

void Commands::ShowKeys(const CString& title, const std::vector<KeyHelp>& keys)
{
    constexpr int kKeysWidth = 22;
    std::vector<CString> lines;
    for (const KeyHelp& help : keys) {
        const int width = std::max(m_Terminal.Columns() - kKeysWidth, 10);
        CString label = Padded(help.keys, kKeysWidth);
        for (const CString& line : WrappedLines(help.meaning, width, SIZE_MAX)) {
            lines.push_back(label + line);
            label = CString(u' ', kKeysWidth);
        }
    }
    Confirm(m_Terminal, title, lines, u"Esc back  Down more");
}

void Commands::ShowWhy(const tovo::ObjectName& object)
{
    const auto explanation = m_Document.Explain(object);
    const std::string text = explanation ? tovo::WriteText(explanation.Value())
                                         : tovo::Refused(explanation.Why()).what();
    Confirm(m_Terminal, u"Why " + Wide(object.name), Wrapped(text, m_Terminal.Columns()),
            u"Esc back  Down more");
}

std::optional<tovo::ObjectName> Commands::ShowUsers(const tovo::ObjectName& object, Notice& notice)
{
    const auto users = tovo::UsedBy(m_Document.Job(), object);
    std::vector<PickEntry> entries;
    for (const tovo::Dependency& user : users)
        entries.push_back({Wide(WordFor(user.object.kind)), Wide(user.object.name),
                           Wide(WordsFor(user)), PaintOf(user.object.kind)});
    if (entries.empty()) {
        notice = {u"Nothing uses " + Wide(object.name)};
        return std::nullopt;
    }
    const auto chosen = Pick(m_Terminal, u"Who uses " + Wide(object.name), entries, u"go there");
    if (!chosen)
        return std::nullopt;
    return users[*chosen].object;
}

Notice Commands::Correct(const tovo::ObjectName& object)
{
    const auto failure = m_Document.Job().FailureOf(object);
    if (!failure)
        return {u"Nothing is wrong with " + Wide(object.name)};
    const tovo::ObjectName root = failure->path.empty() ? object : failure->path.front();
    std::vector<tovo::Fix> fixes;
    std::vector<PickEntry> entries;
    for (const tovo::Fault& fault : m_Document.Job().Faults()) {
        if (fault.object != root || !fixes.empty())
            continue;
        fixes = tovo::FixesFor(fault, m_Document.Job());
    }
    for (const tovo::Fix& fix : fixes)
        entries.push_back({fix.isSound ? u"fix" : u"step", Wide(fix.description), Wide(fix.text)});
    if (entries.empty())
        return {Wide(failure->text + " No correction is known."), true};
    const auto chosen = Pick(m_Terminal, u"Correct " + Wide(root.name), entries, u"correct");
    if (!chosen)
        return {};
    const auto isDone = m_Document.Apply(fixes[*chosen].change);
    return isDone ? Notice{u"Corrected " + Wide(root.name)} : Refused(isDone.Why());
}
