#ifndef TOVO_JOB_REPLACEFILE_H
#define TOVO_JOB_REPLACEFILE_H

#include <string>

// Gives a file other content in one step: whatever happens meanwhile, the file is whole, the old
// one or the new one. Its mode stays, its owner where that is allowed, and a symbolic link goes on
// to lead to it. Throws std::system_error, with the file as it was.
void ReplaceFile(const std::string& path, const std::string& content);

#endif
