#ifndef TOVO_JSON_JSONFILE_H
#define TOVO_JSON_JSONFILE_H

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

// A file that cannot be used. what() is one line: the file, the place in it and the fault.
class FileFault : public std::runtime_error {
public:
    FileFault(const std::string& file, const std::string& fault)
        : std::runtime_error(file + ": " + fault)
    {}
};

// The bytes of a file. Throws a FileFault for one that cannot be read.
std::string ReadWhole(const std::string& path);

// Reads the text of a JSON file, whose name serves for messages. An object that has a key twice is
// refused as a syntax error is: the reader of the values would see one of the two and never miss
// the other.
nlohmann::json ParseJson(const std::string& file, const std::string& text);
nlohmann::json ReadJsonFile(const std::string& path);

// A value of a JSON file with its place there. Each reading either gives what was asked for or
// throws a FileFault that names the place as a JSON pointer.
//
// Does not own: the document and the file's name, which must outlive it.
class JsonPlace {
public:
    JsonPlace(const std::string& file, const nlohmann::json& document)
        : m_File(&file), m_Value(&document)
    {}

    // An object with no other keys than these: a key that is misspelt must not be passed over.
    void ExpectKeys(std::span<const std::string_view> keys) const;
    void ExpectKeys(std::initializer_list<std::string_view> keys) const
    {
        ExpectKeys(std::span(keys.begin(), keys.size()));
    }
    JsonPlace Member(const std::string& key) const;
    std::optional<JsonPlace> FindMember(const std::string& key) const;

    // The length of an array, and its element at an index below that.
    std::size_t Size() const;
    JsonPlace Element(std::size_t index) const;

    bool IsNull() const { return m_Value->is_null(); }
    bool IsNumber() const { return m_Value->is_number(); }
    bool IsYesNo() const { return m_Value->is_boolean(); }
    const nlohmann::json::object_t& Object() const;
    double Number() const;
    bool YesNo() const;
    const std::string& Text() const;

    [[noreturn]] void Refuse(const std::string& fault) const;

private:
    JsonPlace(const JsonPlace& parent, const std::string& step, const nlohmann::json& value);

    const std::string* m_File;
    const nlohmann::json* m_Value;
    std::string m_Pointer;
};

#endif
