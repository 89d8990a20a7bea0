#ifndef TOVO_EDIT_DOCUMENT_H
#define TOVO_EDIT_DOCUMENT_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include <TovoJob/TovoJob.h>

// The job that is edited, with its file and a recovery file beside that: a copy of what is not
// saved yet, for the next start after one that did not end as it should.
class Document {
public:
    using Clock = std::chrono::steady_clock;

    // A file that is not there yet is a job without objects. Throws tovo::Refused for a file that
    // cannot be read, or that is no job.
    explicit Document(const std::string& path, const tovo::JobOptions& options = {});

    // Looks only; every change goes through the operations below.
    const tovo::Job& Job() const { return m_File.Content(); }
    const std::string& Path() const { return m_File.Path(); }
    bool IsModified() const;
    // Another number after each change of the job.
    std::size_t Version() const { return m_Version; }

    tovo::Result<void> Apply(const tovo::Edit& edit);
    // The same in place of the latest change, which may be the same object's.
    tovo::Result<void> ApplyInstead(const tovo::Edit& edit);
    tovo::Result<tovo::Preview> PreviewOf(const tovo::Edit& edit);
    tovo::Result<tovo::Explanation> Explain(const tovo::ObjectName& object);
    bool Undo();
    bool Redo();
    // Brings the values up to date.
    void Update() { m_File.Content().Update(); }

    // Without a change nothing is written, so that a file keeps its bytes.
    tovo::Result<void> Save(const tovo::SaveOptions& options = {});
    // Goes on with the other file.
    tovo::Result<void> SaveAs(const std::string& path, const tovo::SaveOptions& options = {});

    // Whether another program has changed the file since it was read, saved, or asked for last.
    bool HasNewsOnDisk();
    // Reads the file again; the history of edits ends. A refusal changes nothing.
    tovo::Result<void> Reload();

    std::filesystem::path RecoveryPath() const;
    // When the recovery file was written that an earlier start left, unless it says what the file
    // says.
    std::optional<std::filesystem::file_time_type> FindRecovery();
    // Takes its content as a change that is not saved.
    tovo::Result<void> Recover();
    // Writes it if there is something new and the last time is long enough ago. To be called often.
    tovo::Result<void> KeepRecovery(Clock::time_point now = Clock::now());
    // The same at once, for an end that leaves no time to save.
    tovo::Result<void> WriteRecovery();
    // The one of this run, and one that an earlier start left.
    void RemoveRecovery();
    void DiscardRecovery();

private:
    // What tells cheaply that a file may be another one.
    struct FileMark {
        std::filesystem::file_time_type time;
        std::uintmax_t size = 0;
        bool isThere = false;

        bool operator==(const FileMark&) const = default;
    };

    static FileMark MarkOf(const std::string& path);
    void NoteChange();
    void NoteSaved();

    tovo::JobFile m_File;
    FileMark m_Mark;
    mutable std::optional<bool> m_IsModified; // absent if it is not known
    std::size_t m_Version = 0;
    bool m_IsRecoveryDue = false;
    bool m_HasRecovery = false; // one of this run
    Clock::time_point m_NextRecovery = Clock::now();
};

#endif
