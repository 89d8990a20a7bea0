#include "Jobs.h"

#include <cmath>

#include "Measure.h"

namespace bench {
namespace {

int RoundForLua(lua_State* state)
{
    lua_pushnumber(state, RoundedTo(luaL_checknumber(state, 1), luaL_checknumber(state, 2)));
    return 1;
}

} // namespace

double RoundedTo(double value, double places)
{
    const double scale = std::pow(10.0, places);
    return std::round(value * scale) / scale;
}

OurJob::OurJob(const std::vector<NamedValue>& variables)
{
    for (const auto& [text, value] : variables) {
        VariableImpl& variable = m_Variables.emplace_back(&m_Set);
        CString name(text);
        variable.SetName(name);
        variable.SetValue(value);
        m_Set.AddVariable(&variable);
    }
}

MuParserJob::MuParserJob(const std::vector<NamedValue>& variables)
{
    for (const auto& [name, value] : variables) {
        m_Names.push_back(name);
        m_Values.push_back(value);
    }
    m_Prototype.DefineFun("round", RoundedTo);
}

mu::Parser MuParserJob::MakeParser()
{
    mu::Parser parser(m_Prototype);
    for (std::size_t index = 0; index < m_Names.size(); ++index)
        Bind(parser, index);
    return parser;
}

void MuParserJob::Bind(mu::Parser& parser, std::size_t index)
{
    parser.DefineVar(m_Names[index], &m_Values[index]);
}

LuaJob::LuaJob(const std::vector<NamedValue>& variables) : m_State(luaL_newstate(), lua_close)
{
    luaL_openlibs(State());
    lua_register(State(), "round", RoundForLua);
    for (const auto& [name, value] : variables) {
        m_Names.push_back(name);
        SetValue(m_Names.size() - 1, value);
    }
}

void LuaJob::SetValue(std::size_t index, double value)
{
    lua_pushnumber(State(), value);
    lua_setglobal(State(), m_Names[index].c_str());
}

int LuaJob::Keep(const std::string& chunk)
{
    Require(luaL_loadstring(State(), chunk.c_str()) == LUA_OK, "Lua does not take " + chunk);
    return luaL_ref(State(), LUA_REGISTRYINDEX);
}

double LuaJob::CallTop()
{
    lua_call(State(), 0, 1);
    const double value = lua_tonumber(State(), -1);
    lua_pop(State(), 1);
    return value;
}

double LuaJob::Call(int kept)
{
    lua_rawgeti(State(), LUA_REGISTRYINDEX, kept);
    return CallTop();
}

} // namespace bench
