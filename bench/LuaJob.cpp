#include "LuaJob.h"

#include <dlfcn.h>

#include "Measure.h"

namespace bench {
namespace {

using Maker = decltype(&MakeLuaJobInModule);

Maker MakerIn(const char* module)
{
    // Local, so that what one module links is not found by the other.
    void* const library = dlopen(module, RTLD_NOW | RTLD_LOCAL);
    void* const maker = library ? dlsym(library, "MakeLuaJobInModule") : nullptr;
    if (!maker)
        Require(false, dlerror());
    return reinterpret_cast<Maker>(maker);
}

} // namespace

std::unique_ptr<LuaJob> MakeLuaJob(Engine engine, const std::vector<NamedValue>& variables)
{
    static const Maker makeLua = MakerIn(TOVO_BENCH_LUA);
    static const Maker makeLuaJit = MakerIn(TOVO_BENCH_LUAJIT);
    const Maker make = engine == Engine::LuaJit ? makeLuaJit : makeLua;
    return std::unique_ptr<LuaJob>(make(variables));
}

} // namespace bench
