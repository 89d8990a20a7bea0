#ifndef TOVOJOB_RESULT_H
#define TOVOJOB_RESULT_H

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>

#include <TovoJob/Export.h>
#include <TovoPlatform/Types.h>

namespace tovo {

// Why an operation was refused.
enum class RefusalKind {
    BadName,       // empty, ending in white space, or no well-formed UTF-8
    NameTaken,     // another object of the kind has the name
    UnknownName,   // no object of the kind has the name
    BadValue,      // no finite number, no yes/no value where one is needed, or a text not in UTF-8
    BadTable,      // limits that do not rise, or cells that are no rectangle
    InUse,         // the object is still referred to
    LimitExceeded, // one of the job's Limits
    BadFile,       // a file that cannot be read, or that is no job
    FileChanged,   // the file on disk is not the one that was read
    ReadOnlyFile,  // the file may not be written
    CannotWrite,   // the system refused; the file is as it was
    NoSolution,    // no input of the range gives the value that is wanted
};

// A refusal in words, for people. Whatever was refused has changed nothing.
struct Refusal {
    RefusalKind kind = RefusalKind::BadName;
    std::string text;  // one sentence, in English
    std::string place; // the object, the JSON pointer, or file:line:column; may be empty
};

// What Value() of a refused result throws.
class TOVO_JOB_API Refused : public std::runtime_error {
public:
    explicit Refused(Refusal refusal)
        : std::runtime_error(refusal.place.empty() ? refusal.text
                                                   : refusal.place + ": " + refusal.text),
          m_Refusal(std::move(refusal))
    {}
    const Refusal& Why() const { return m_Refusal; }

private:
    Refusal m_Refusal;
};

// What an operation returned, or why it was refused. Ask it before taking the value, or take the
// value at once and let Refused be thrown.
template <typename T>
class [[nodiscard]] Result {
public:
    Result(T value) : m_Content(std::in_place_index<0>, std::move(value)) {}
    Result(Refusal refusal) : m_Content(std::in_place_index<1>, std::move(refusal)) {}

    explicit operator bool() const { return m_Content.index() == 0; }
    T& Value() &
    {
        Require();
        return std::get<0>(m_Content);
    }
    const T& Value() const&
    {
        Require();
        return std::get<0>(m_Content);
    }
    T Value() &&
    {
        Require();
        return std::get<0>(std::move(m_Content));
    }
    // Requires: a refused result.
    const Refusal& Why() const { return std::get<1>(m_Content); }

private:
    void Require() const
    {
        if (!*this)
            throw Refused(Why());
    }

    std::variant<T, Refusal> m_Content;
};

// The same for an operation that returns nothing but whether it was done.
template <>
class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Refusal refusal) : m_Refusal(std::move(refusal)) {}

    explicit operator bool() const { return !m_Refusal; }
    void Value() const
    {
        if (m_Refusal)
            throw Refused(*m_Refusal);
    }
    // Requires: a refused result.
    const Refusal& Why() const { return *m_Refusal; }

private:
    std::optional<Refusal> m_Refusal;
};

} // namespace tovo

#endif
