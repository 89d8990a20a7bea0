#ifndef TOVO_JOB_JSONPATCH_H
#define TOVO_JOB_JSONPATCH_H

#include <cstddef>
#include <map>
#include <string>

// Changes to single values of a JSON text. All other bytes stay as they are, so a file keeps its
// layout and whatever way its author had of writing strings.
//
// Values are named by JSON pointers; each may be changed once. Requires: sound JSON of few levels,
// as a job file is, whose keys need no escape in a pointer.
class JsonPatch {
public:
    explicit JsonPatch(std::string text);

    void ReplaceString(const std::string& pointer, const std::string& value);
    // The element goes with one comma, and with the blanks up to its neighbour.
    void RemoveElement(const std::string& array, std::size_t index);

    // The text with all changes made. Changes within an element that is removed go with it.
    std::string Apply() const;

private:
    struct Stretch {
        std::size_t begin;
        std::size_t end;
    };
    struct Replacement {
        std::size_t end;
        std::string bytes;
    };

    class Locator;

    std::string m_Text;
    std::map<std::string, Stretch> m_Values;
    std::map<std::size_t, Replacement> m_Replacements; // by where they begin
};

#endif
