#include <TovoJob/ReplaceFile.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tovo {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const std::string& what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

class Descriptor {
public:
    explicit Descriptor(int number) : m_Number(number) {}
    ~Descriptor() { close(m_Number); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return m_Number; }

private:
    int m_Number;
};

// A file beside the one that it is to replace, so that both are on one file system. It goes again
// unless it has been put in place.
class TemporaryFile {
public:
    TemporaryFile(const fs::path& folder, mode_t mode)
        : m_Path((folder / NewName()).string()),
          m_File(open(m_Path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, mode))
    {
        if (m_File.Number() < 0) {
            m_Path.clear();
            Fail("no file can be made in " + folder.string());
        }
    }
    ~TemporaryFile()
    {
        if (!m_Path.empty())
            unlink(m_Path.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    // The owner comes first, since a change of owner takes mode bits away.
    void TakeOwnerAndMode(const struct stat& model)
    {
        const bool hasOwner = fchown(m_File.Number(), model.st_uid, model.st_gid) == 0;
        const mode_t mode = model.st_mode & (hasOwner ? 07777U : 0777U);
        if (fchmod(m_File.Number(), mode) != 0)
            Fail("the mode cannot be set");
    }

    // On the disk, and not just on its way there, before the old file goes.
    void Write(std::string_view content)
    {
        while (!content.empty()) {
            const ssize_t written = write(m_File.Number(), content.data(), content.size());
            if (written >= 0)
                content.remove_prefix(static_cast<std::size_t>(written));
            else if (errno != EINTR)
                Fail("cannot be written");
        }
        if (fsync(m_File.Number()) != 0)
            Fail("cannot be written");
    }

    void PutInPlaceOf(const fs::path& target)
    {
        if (std::rename(m_Path.c_str(), target.c_str()) != 0)
            Fail("cannot be replaced");
        m_Path.clear();
    }

private:
    // No other thread and no other running program has it.
    static std::string NewName()
    {
        static std::atomic<unsigned> count = 0;
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        return ".tovo-save-" + std::to_string(getpid()) + "-" + std::to_string(++count) + "-" +
               std::to_string(now);
    }

    std::string m_Path;
    Descriptor m_File;
};

// Without this a crash of the machine could bring the old file back. The new one is in place all
// the same, so a file system that cannot do it is no failure.
void SyncFolder(const fs::path& folder)
{
    const Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.Number() >= 0)
        fsync(opened.Number());
}

// Where the content goes: to replace a link itself would leave the file that others see as it was.
fs::path TargetOf(const std::string& path)
{
    fs::path target = path;
    for (int links = 0; fs::is_symlink(target) && links < 40; ++links) {
        const fs::path next = fs::read_symlink(target);
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return fs::exists(target) ? fs::canonical(target) : fs::absolute(target);
}

bool Holds(const fs::path& file, const std::string& content)
{
    std::ifstream stream(file, std::ios::binary);
    return stream && std::string(std::istreambuf_iterator<char>(stream), {}) == content &&
           !stream.bad();
}

// The file that is there now, or nothing.
std::optional<struct stat> StatusOf(const fs::path& target)
{
    struct stat status = {};
    if (stat(target.c_str(), &status) == 0)
        return status;
    if (errno != ENOENT)
        Fail("cannot be read");
    return std::nullopt;
}

std::optional<Refusal> WhyNot(const std::string& path, const fs::path& target,
                              const std::optional<struct stat>& old, const ReplaceOptions& options)
{
    if (old && !S_ISREG(old->st_mode))
        return Refusal{RefusalKind::CannotWrite, "is no plain file", path};
    if (old && !options.evenIfReadOnly && access(target.c_str(), W_OK) != 0)
        return Refusal{RefusalKind::ReadOnlyFile, "may only be read", path};
    // A superuser may write what nobody may, which is seldom what is meant.
    if (old && !options.evenIfReadOnly && (old->st_mode & 0222U) == 0)
        return Refusal{RefusalKind::ReadOnlyFile, "may only be read", path};
    if (options.expected && (!old || !Holds(target, *options.expected)))
        return Refusal{RefusalKind::FileChanged,
                       old ? "has been changed by another program" : "is no longer there", path};
    return std::nullopt;
}

} // namespace

Result<void> ReplaceFile(const std::string& path, std::string_view content,
                         const ReplaceOptions& options)
{
    try {
        const fs::path target = TargetOf(path);
        const std::optional<struct stat> old = StatusOf(target);
        if (const std::optional<Refusal> refusal = WhyNot(path, target, old, options))
            return *refusal;
        // Nobody may read here what the old file kept from them.
        TemporaryFile file(target.parent_path(), old ? 0600 : 0666);
        if (old)
            file.TakeOwnerAndMode(*old);
        file.Write(content);
        file.PutInPlaceOf(target);
        SyncFolder(target.parent_path());
        return {};
    } catch (const std::system_error& fault) {
        return Refusal{RefusalKind::CannotWrite, fault.what(), path};
    }
}

} // namespace tovo
