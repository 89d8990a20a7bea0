#include <TovoJob/JobFile.h>

#include <utility>

#include <JsonFile.h>

#include <TovoJob/ReplaceFile.h>

namespace tovo {

JobFile::JobFile(std::string path, const JobOptions& options)
    : m_Path(std::move(path)), m_Job(options)
{
    m_Saved = WriteJob(m_Job);
}

JobFile::JobFile(std::string path, std::string bytes, Job job)
    : m_Path(std::move(path)), m_Bytes(std::move(bytes)), m_IsThere(true), m_Job(std::move(job))
{
    m_Saved = WriteJob(m_Job);
}

Result<JobFile> JobFile::Open(const std::string& path, const JobOptions& options)
{
    try {
        std::string bytes = ReadWhole(path);
        Result<Job> job = ReadJob(bytes, path, options);
        if (!job)
            return job.Why();
        return JobFile(path, std::move(bytes), std::move(job).Value());
    } catch (const FileFault& fault) {
        return Refusal{RefusalKind::BadFile, fault.what(), {}};
    }
}

bool JobFile::IsModified() const
{
    return WriteJob(m_Job) != m_Saved;
}

bool JobFile::IsChangedOnDisk() const
{
    try {
        return ReadWhole(m_Path) != m_Bytes;
    } catch (const FileFault&) {
        return m_IsThere;
    }
}

Result<void> JobFile::Save(const SaveOptions& options)
{
    std::string text = WriteJob(m_Job);
    ReplaceOptions replacing;
    replacing.evenIfReadOnly = options.evenIfReadOnly;
    // A file that was not there must not be overwritten if it is now.
    if (!options.evenIfChanged && !m_IsThere && IsChangedOnDisk())
        return Refusal{RefusalKind::FileChanged, "has been made by another program", m_Path};
    if (!options.evenIfChanged && m_IsThere)
        replacing.expected = m_Bytes;
    if (Result<void> isDone = ReplaceFile(m_Path, text, replacing); !isDone)
        return isDone;
    m_IsThere = true;
    m_Bytes = m_Saved = std::move(text);
    return {};
}

Result<void> JobFile::SaveAs(const std::string& path, const SaveOptions& options)
{
    JobFile other(path, m_Job.Options());
    std::swap(other.m_Job, m_Job);
    Result<void> isDone = other.Save(options);
    std::swap(other.m_Job, m_Job);
    if (isDone) {
        std::swap(other.m_Job, m_Job);
        *this = std::move(other);
    }
    return isDone;
}

} // namespace tovo
