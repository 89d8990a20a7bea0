#include "ReplaceFile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

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
    explicit TemporaryFile(const std::filesystem::path& folder)
        : m_Path((folder / ".tovo-edit-XXXXXX").string()),
          m_File(mkostemp(m_Path.data(), O_CLOEXEC))
    {
        if (m_File.Number() < 0)
            Fail("no file can be made in " + folder.string());
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

    void PutInPlaceOf(const std::filesystem::path& target)
    {
        if (std::rename(m_Path.c_str(), target.c_str()) != 0)
            Fail("cannot be replaced");
        m_Path.clear();
    }

private:
    std::string m_Path;
    Descriptor m_File;
};

// Without this a crash of the machine could bring the old file back. The new one is in place all
// the same, so a file system that cannot do it is no failure.
void SyncFolder(const std::filesystem::path& folder)
{
    const Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.Number() >= 0)
        fsync(opened.Number());
}

} // namespace

void ReplaceFile(const std::string& path, const std::string& content)
{
    // To replace the link itself would leave the file that others see as it was.
    const std::filesystem::path target = std::filesystem::canonical(path);
    struct stat old = {};
    if (stat(target.c_str(), &old) != 0)
        Fail("cannot be read");
    if (!S_ISREG(old.st_mode))
        throw std::system_error(std::make_error_code(std::errc::not_supported), "no plain file");

    TemporaryFile file(target.parent_path());
    file.Write(content);
    file.TakeOwnerAndMode(old);
    file.PutInPlaceOf(target);
    SyncFolder(target.parent_path());
}
