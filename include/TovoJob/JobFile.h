#ifndef TOVOJOB_JOBFILE_H
#define TOVOJOB_JOBFILE_H

#include <string>
#include <string_view>

#include <TovoJob/Export.h>
#include <TovoJob/Job.h>
#include <TovoJob/Result.h>

// Jobs as JSON, in the format that docs/job.schema.json describes.

namespace tovo {

// Reads a job from the text of a file, of format version 2 or 1. A text that is no job is refused
// with what is wrong and where: name:line:column, or a JSON pointer. What is wrong with a formula,
// or limits that do not rise, is for Calculate to say, so that an author can open the file and mend
// it. The name serves for messages.
TOVO_JOB_API Result<Job> ReadJob(std::string_view text, const std::string& name,
                                 const JobOptions& options = {});

// The job as the text of a file of format version 2, always the same for the same content. What a
// host computes, or has linked, is left out.
TOVO_JOB_API std::string WriteJob(const Job& job);

// How to save.
struct SaveOptions {
    bool evenIfChanged = false;  // replace a file that is not the one that was read
    bool evenIfReadOnly = false; // replace a file that its mode protects
};

// A job together with the file that it was read from.
class TOVO_JOB_API JobFile {
public:
    // An empty job for a file that is not there yet.
    explicit JobFile(std::string path, const JobOptions& options = {});
    static Result<JobFile> Open(const std::string& path, const JobOptions& options = {});

    Job& Content() { return m_Job; }
    const Job& Content() const { return m_Job; }
    const std::string& Path() const { return m_Path; }

    // Whether saving would write another job than the file has.
    bool IsModified() const;
    // Whether the file on disk is no longer what was read or saved last, or is gone.
    bool IsChangedOnDisk() const;

    // In format version 2, as ReplaceFile writes. SaveAs goes on with the other file.
    Result<void> Save(const SaveOptions& options = {});
    Result<void> SaveAs(const std::string& path, const SaveOptions& options = {});

private:
    JobFile(std::string path, std::string bytes, Job job);

    std::string m_Path;
    std::string m_Bytes; // of the file when it was read or saved last; empty for none
    bool m_IsThere = false;
    std::string m_Saved; // the job as it was then
    Job m_Job;
};

} // namespace tovo

#endif
