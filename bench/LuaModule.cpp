#include <lua.hpp>
#include <stdexcept>

#include "LuaJob.h"

// The one source of both modules: compiled with the headers of Lua, and with those of LuaJIT.

namespace bench {
namespace {

int Round(lua_State* state)
{
    lua_pushnumber(state, RoundedTo(luaL_checknumber(state, 1), luaL_checknumber(state, 2)));
    return 1;
}

class LuaJobInModule : public LuaJob {
public:
    explicit LuaJobInModule(const std::vector<NamedValue>& variables)
        : m_State(luaL_newstate(), lua_close)
    {
        luaL_openlibs(State());
        lua_register(State(), "round", Round);
        for (const auto& [name, value] : variables) {
            m_Names.push_back(name);
            LuaJobInModule::SetValue(m_Names.size() - 1, value);
        }
    }

    void SetValue(std::size_t index, double value) override
    {
        lua_pushnumber(State(), value);
        lua_setglobal(State(), m_Names[index].c_str());
    }
    int Keep(const std::string& chunk) override
    {
        Compile(chunk);
        return luaL_ref(State(), LUA_REGISTRYINDEX);
    }
    double Call(int kept) override
    {
        lua_rawgeti(State(), LUA_REGISTRYINDEX, kept);
        return CallTop();
    }
    void Load(const std::string& chunk) override
    {
        lua_settop(State(), 0);
        Compile(chunk);
    }
    double CallLoaded() override { return CallTop(); }

private:
    lua_State* State() const { return m_State.get(); }

    void Compile(const std::string& chunk)
    {
        if (luaL_loadstring(State(), chunk.c_str()) != 0)
            throw std::invalid_argument(lua_tostring(State(), -1));
    }
    // Calls the function on top of the stack and takes it off.
    double CallTop()
    {
        lua_call(State(), 0, 1);
        const double value = lua_tonumber(State(), -1);
        lua_pop(State(), 1);
        return value;
    }

    std::vector<std::string> m_Names;
    std::unique_ptr<lua_State, void (*)(lua_State*)> m_State;
};

} // namespace
} // namespace bench

extern "C" __attribute__((visibility("default"))) bench::LuaJob*
MakeLuaJobInModule(const std::vector<bench::NamedValue>& variables)
{
    return new bench::LuaJobInModule(variables);
}
