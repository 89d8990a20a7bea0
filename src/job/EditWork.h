#ifndef TOVOJOB_SRC_EDITWORK_H
#define TOVOJOB_SRC_EDITWORK_H

#include <span>

#include <TovoJob/Edit.h>

#include "Inside.h"
#include "Rewriting.h"
#include "Validation.h"

namespace tovo::job {

// Applies edits to a job. Each edit becomes changes of records; these are what is taken back when
// one is refused, and what the history keeps.
class EditWork {
public:
    explicit EditWork(Inside& inside) : m_Inside(inside) {}

    Result<void> Apply(std::span<const Edit> edits);
    Result<Preview> PreviewOf(std::span<const Edit> edits);
    bool Undo();
    bool Redo();

private:
    // Does the edits, looks, and takes them back.
    Result<Preview> LookAhead(std::span<const Edit> edits, const std::vector<Fault>& before);
    // All, or none: what was done up to a refusal is taken back.
    Result<void> Do(std::span<const Edit> edits);
    Result<void> Do(const AddObject& edit);
    Result<void> Do(const ChangeObject& edit);
    Result<void> Do(const RenameObject& edit);
    Result<void> Do(const RemoveObject& edit);
    Result<void> Do(const ChangeJobValues& edit);

    Result<void> CheckRemoval(const RemoveObject& edit);
    Result<void> ReplaceReferences(const Replacement& replacement);
    void Take(RecordChange change);
    void TakeBack();
    bool Step(std::vector<Transaction>& from, std::vector<Transaction>& to);

    Inside& m_Inside;
    Transaction m_Changes; // of the edits so far
};

} // namespace tovo::job

#endif
