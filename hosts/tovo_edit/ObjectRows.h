#ifndef TOVO_EDIT_OBJECTROWS_H
#define TOVO_EDIT_OBJECTROWS_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <TovoPlatform/WideString.h>

#include <TovoJob/TovoJob.h>

// What a line of the list says of an object.
struct ObjectFacts {
    std::string kind;
    std::string name; // of a job value in the user's language
    std::string value;
    std::string unit;
    std::string text; // of a formula; of a table its selectors; of a variable its note
    bool isFault = false;
};

ObjectFacts FactsOf(const tovo::Job& job, const tovo::ObjectName& object,
                    const std::string& decimal);

// The objects of a job that a search finds: job values, variables, formulas and tables, each kind
// in its order. What is searched are names, units, notes, values, expressions and the fields of
// tables, in any letter case.
class ObjectRows {
public:
    ObjectRows(const tovo::Job& job, std::string decimal);

    // To be called after a change of the job.
    void Refresh();
    const CString& Filter() const { return m_Filter; }
    void SetFilter(const CString& filter);

    std::size_t Count() const { return m_Objects.size(); }
    // Requires: an index below Count().
    const tovo::ObjectName& At(std::size_t index) const { return m_Objects[index]; }
    std::optional<std::size_t> Find(const tovo::ObjectName& object) const;

private:
    bool IsFound(const tovo::ObjectName& object, const WideText& filter) const;

    const tovo::Job& m_Job;
    std::string m_Decimal;
    CString m_Filter;
    std::vector<tovo::ObjectName> m_Objects;
};

// A name like this one that no object of its kind has yet.
std::string FreeName(const tovo::Job& job, const tovo::ObjectName& like);
// The object under another name. Requires: an object that the job owns.
tovo::AnyObject CopyOf(const tovo::Job& job, const tovo::ObjectName& object, std::string name);

#endif
