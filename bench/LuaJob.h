#ifndef TOVOFORMULA_BENCH_LUAJOB_H
#define TOVOFORMULA_BENCH_LUAJOB_H

#include <memory>
#include <string>
#include <vector>

#include "NamedValue.h"
#include "ResultTable.h"

namespace bench {

// Named variables, as globals of one state of Lua or LuaJIT. An index is that of the list which the
// job was made from. A chunk that does not compile ends the program.
class LuaJob {
public:
    virtual ~LuaJob() = default;

    virtual void SetValue(std::size_t index, double value) = 0;
    // Compiles, and returns the number under which the function is kept.
    virtual int Keep(const std::string& chunk) = 0;
    virtual double Call(int kept) = 0;
    // Compiles; the function takes the place of the one that was loaded before.
    virtual void Load(const std::string& chunk) = 0;
    // Requires: a function loaded since the last call.
    virtual double CallLoaded() = 0;
};

// Lua and LuaJIT export the same names, so each is linked to a module of its own. Both modules are
// opened with the first job and stay open.
std::unique_ptr<LuaJob> MakeLuaJob(Engine engine, const std::vector<NamedValue>& variables);

} // namespace bench

// What each module exports. The caller owns the job.
extern "C" bench::LuaJob* MakeLuaJobInModule(const std::vector<bench::NamedValue>& variables);

#endif
