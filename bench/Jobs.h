#ifndef TOVOFORMULA_BENCH_JOBS_H
#define TOVOFORMULA_BENCH_JOBS_H

#include <deque>
#include <lua.hpp>
#include <memory>
#include <muParser.h>
#include <string>
#include <vector>

#include <TovoFormula/TovoFormula.h>

namespace bench {

// The same named variables in each engine, so that the same formula can be calculated by all. Each
// job owns its variables; an index is that of the list it was made from.
struct NamedValue {
    std::string name;
    double value;
};

// What all engines take to round with; neither muParser nor Lua has it.
double RoundedTo(double value, double places);

class OurJob {
public:
    explicit OurJob(const std::vector<NamedValue>& variables);

    CalcSetImpl& Set() { return m_Set; }
    void SetValue(std::size_t index, double value) { m_Variables[index].SetValue(value); }

private:
    CalcSetImpl m_Set;
    std::deque<VariableImpl> m_Variables;
};

class MuParserJob {
public:
    explicit MuParserJob(const std::vector<NamedValue>& variables);

    // With its functions, without variables.
    const mu::Parser& Prototype() const { return m_Prototype; }
    // With all variables bound.
    mu::Parser MakeParser();
    void Bind(mu::Parser& parser, std::size_t index);
    void SetValue(std::size_t index, double value) { m_Values[index] = value; }

private:
    std::vector<std::string> m_Names;
    std::vector<double> m_Values;
    mu::Parser m_Prototype;
};

class LuaJob {
public:
    explicit LuaJob(const std::vector<NamedValue>& variables);

    lua_State* State() const { return m_State.get(); }
    void SetValue(std::size_t index, double value);
    // Compiles, and keeps the function under the number that it gives.
    int Keep(const std::string& chunk);
    // Calculates the function on top of the stack and takes it off.
    double CallTop();
    double Call(int kept);

private:
    std::vector<std::string> m_Names;
    std::unique_ptr<lua_State, void (*)(lua_State*)> m_State;
};

} // namespace bench

#endif
