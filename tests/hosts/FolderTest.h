#ifndef TOVOFORMULA_TESTS_FOLDERTEST_H
#define TOVOFORMULA_TESTS_FOLDERTEST_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

inline std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// A folder of its own for each test, gone at its end.
class FolderTest : public testing::Test {
protected:
    FolderTest()
    {
        std::string folder = testing::TempDir() + "tovo_XXXXXX";
        m_Folder = mkdtemp(folder.data());
    }
    ~FolderTest() override { std::filesystem::remove_all(m_Folder); }

    std::string File(const std::string& name, const std::string& content) const
    {
        std::ofstream(m_Folder / name, std::ios::binary) << content;
        return (m_Folder / name).string();
    }

    std::filesystem::path m_Folder;
};

#endif
