#ifndef TOVO_JOB_JOBDOCUMENT_H
#define TOVO_JOB_JOBDOCUMENT_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <TovoPlatform/WideString.h>

#include "Job.h"
#include "JobFile.h"

// What a renaming or a removal does to one place that names the formula.
struct Change {
    std::string pointer; // to the string of the job file
    CString place;       // for people
    CString before;      // in the user's language
    CString after;
    CString stored; // what the file is to say
};

// A job file that is being edited. Its bytes are what counts: each change is a change of the few
// bytes that it concerns, and the objects are made from them, so what is shown is what a reader of
// the saved file will find.
//
// Owns: the objects. Those operations that say so make them anew, and references to them die.
class JobDocument {
public:
    // Throws a FileFault for a file that is no job.
    JobDocument(std::string path, bool isStrict);

    const std::string& Path() const { return m_Path; }
    const std::string& Bytes() const { return m_Bytes; }
    Job& Objects() { return *m_Job; }
    std::size_t FormulaCount() const { return m_Entries.formulas.size(); }
    JobFormula& Formula(std::size_t index) { return *m_Job->Formulas().at(index); }
    bool IsChanged() const { return m_Bytes != m_SavedBytes; }

    // The encoded string of a formula as the file has it. Storing leaves the objects alone, so that
    // an editor can go on with its expression; Refresh makes them anew.
    const CString& Expression(std::size_t formula) const;
    void StoreExpression(std::size_t formula, const CString& encoded);
    void Refresh();

    // What other formulas and what tables say of the formula, and would say after the renaming or,
    // without a new name, after the removal. A cell or a selector that names a removed formula
    // becomes empty.
    std::vector<Change> Effects(std::size_t formula, const std::optional<CString>& newName);
    // These make the objects anew. Rename throws a FileFault, with nothing changed, for a name that
    // a job file may not have there; both give the number of places that changed elsewhere.
    std::size_t Rename(std::size_t formula, const CString& newName);
    std::size_t Remove(std::size_t formula);

    // Take back and do again what was stored, renamed or removed. They make the objects anew and
    // answer false if there is nothing to do.
    bool Undo();
    bool Redo();

    // Throws std::system_error, with the file as it was.
    void Save();

private:
    void Adopt(std::string bytes);
    bool Step(std::vector<std::string>& from, std::vector<std::string>& to);

    std::string m_Path;
    bool m_IsStrict;
    std::string m_Bytes;
    std::string m_SavedBytes;
    std::vector<std::string> m_Undo; // bytes, the latest last
    std::vector<std::string> m_Redo;
    JobEntries m_Entries;
    std::unique_ptr<Job> m_Job;
};

#endif
