#include "Document.h"

#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace {

namespace fs = std::filesystem;

// What a crash may cost, and how much longer than the writing itself a pause is at least, so that a
// large job is not written all the time.
constexpr std::chrono::seconds kPause(2);
constexpr int kPausesPerWriting = 20;

tovo::JobFile OpenOrNew(const std::string& path, const tovo::JobOptions& options)
{
    std::error_code fault;
    if (fs::status(path, fault).type() == fs::file_type::not_found)
        return tovo::JobFile(path, options);
    return tovo::JobFile::Open(path, options).Value();
}

} // namespace

Document::Document(const std::string& path, const tovo::JobOptions& options)
    : m_File(OpenOrNew(path, options)), m_Mark(MarkOf(path))
{
    Update();
}

bool Document::IsModified() const
{
    if (!m_IsModified)
        m_IsModified = m_File.IsModified();
    return *m_IsModified;
}

tovo::Result<void> Document::Apply(const tovo::Edit& edit)
{
    NoteChange();
    return m_File.Content().Apply(edit);
}

tovo::Result<void> Document::ApplyInstead(const tovo::Edit& edit)
{
    NoteChange();
    m_File.Content().Undo();
    return m_File.Content().Apply(edit);
}

tovo::Result<tovo::Preview> Document::PreviewOf(const tovo::Edit& edit)
{
    return m_File.Content().PreviewOf({&edit, 1});
}

tovo::Result<tovo::Explanation> Document::Explain(const tovo::ObjectName& object)
{
    return tovo::Explain(m_File.Content(), object);
}

bool Document::Undo()
{
    NoteChange();
    return m_File.Content().Undo();
}

bool Document::Redo()
{
    NoteChange();
    return m_File.Content().Redo();
}

tovo::Result<void> Document::Save(const tovo::SaveOptions& options)
{
    if (!IsModified() && m_Mark.isThere && !m_File.IsChangedOnDisk())
        return {};
    tovo::Result<void> isDone = m_File.Save(options);
    if (isDone)
        NoteSaved();
    return isDone;
}

tovo::Result<void> Document::SaveAs(const std::string& path, const tovo::SaveOptions& options)
{
    const fs::path oldRecovery = RecoveryPath();
    tovo::Result<void> isDone = m_File.SaveAs(path, options);
    if (!isDone)
        return isDone;
    std::error_code ignored;
    if (m_HasRecovery)
        fs::remove(oldRecovery, ignored);
    NoteSaved();
    return isDone;
}

bool Document::HasNewsOnDisk()
{
    const FileMark mark = MarkOf(Path());
    if (mark == m_Mark)
        return false;
    m_Mark = mark;
    return m_File.IsChangedOnDisk();
}

tovo::Result<void> Document::Reload()
{
    auto file = tovo::JobFile::Open(Path(), Job().Options());
    if (!file)
        return file.Why();
    m_File = std::move(file).Value();
    m_Mark = MarkOf(Path());
    NoteChange();
    Update();
    RemoveRecovery();
    return {};
}

fs::path Document::RecoveryPath() const
{
    const fs::path path(Path());
    return path.parent_path() / ("." + path.filename().string() + ".recovery");
}

std::optional<fs::file_time_type> Document::FindRecovery()
{
    std::error_code fault;
    const fs::file_time_type time = fs::last_write_time(RecoveryPath(), fault);
    if (fault)
        return std::nullopt;
    std::ifstream stream(RecoveryPath(), std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    if (text != WriteJob(Job()))
        return time;
    fs::remove(RecoveryPath(), fault);
    return std::nullopt;
}

tovo::Result<void> Document::Recover()
{
    auto recovered = tovo::JobFile::Open(RecoveryPath().string(), Job().Options());
    if (!recovered)
        return recovered.Why();
    m_File.Content() = std::move(recovered.Value().Content());
    NoteChange();
    m_HasRecovery = true;
    Update();
    return {};
}

tovo::Result<void> Document::KeepRecovery(Clock::time_point now)
{
    if (!m_IsRecoveryDue || now < m_NextRecovery)
        return {};
    return WriteRecovery();
}

tovo::Result<void> Document::WriteRecovery()
{
    m_IsRecoveryDue = false;
    if (!IsModified()) {
        RemoveRecovery();
        return {};
    }
    const Clock::time_point start = Clock::now();
    tovo::Result<void> isDone = tovo::ReplaceFile(RecoveryPath().string(), WriteJob(Job()));
    const Clock::time_point end = Clock::now();
    m_NextRecovery = end + std::max<Clock::duration>(kPause, (end - start) * kPausesPerWriting);
    m_HasRecovery = m_HasRecovery || isDone;
    return isDone;
}

// Only what this run has written or taken: another one may still need its own.
void Document::RemoveRecovery()
{
    std::error_code ignored;
    if (m_HasRecovery)
        fs::remove(RecoveryPath(), ignored);
    m_HasRecovery = false;
    m_IsRecoveryDue = false;
}

void Document::DiscardRecovery()
{
    m_HasRecovery = true;
    RemoveRecovery();
}

Document::FileMark Document::MarkOf(const std::string& path)
{
    std::error_code fault;
    FileMark mark;
    mark.time = fs::last_write_time(path, fault);
    if (fault)
        return {};
    mark.size = fs::file_size(path, fault);
    mark.isThere = true;
    return mark;
}

void Document::NoteChange()
{
    ++m_Version;
    m_IsModified.reset();
    m_IsRecoveryDue = true;
}

void Document::NoteSaved()
{
    m_IsModified = false;
    m_Mark = MarkOf(Path());
    RemoveRecovery();
}
