#ifndef TOVOJOB_REPLACEFILE_H
#define TOVOJOB_REPLACEFILE_H

#include <optional>
#include <string>
#include <string_view>

#include <TovoJob/Export.h>
#include <TovoJob/Result.h>

namespace tovo {

// What may be overwritten.
struct ReplaceOptions {
    // What the file is taken to hold now. Another content is refused as FileChanged, and so is a
    // file that is gone; none of it is asked for if this is absent.
    std::optional<std::string> expected = std::nullopt;
    bool evenIfReadOnly = false; // else a file that its mode protects is refused
};

// Gives a file other content in one step: whatever happens meanwhile, the file is whole, the old
// one or the new one, and on the disk when this returns. Its mode stays, its owner where that is
// allowed, and a symbolic link goes on to lead to it. A file that is not there is made.
TOVO_JOB_API Result<void> ReplaceFile(const std::string& path, std::string_view content,
                                      const ReplaceOptions& options = {});

} // namespace tovo

#endif
