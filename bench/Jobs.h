#ifndef TOVOFORMULA_BENCH_JOBS_H
#define TOVOFORMULA_BENCH_JOBS_H

#include <memory>
#include <muParser.h>
#include <string>
#include <vector>

#include <TovoFormula/TovoFormula.h>

#include "HostObjects.h"
#include "LuaJob.h"
#include "NamedValue.h"

namespace bench {

// The same named variables in each engine, so that the same formula can be calculated by all; Lua's
// are those of LuaJob. Each job owns its variables; an index is that of the list it was made from.

class OurJob {
public:
    explicit OurJob(const std::vector<NamedValue>& variables,
                    const ObjectKinds& kinds = kStockObjects);

    CalcSetImpl& Set() { return *m_Set; }
    void SetValue(std::size_t index, double value) { m_Variables[index]->SetValue(value); }
    // A formula of that name in the set. The caller owns it.
    std::unique_ptr<FormulaImpl> MakeFormula(const std::string& name, const std::string& encoded);

private:
    const ObjectKinds& m_Kinds;
    std::unique_ptr<CalcSetImpl> m_Set;
    std::vector<std::unique_ptr<VariableImpl>> m_Variables;
};

// The value as a host asks for it: Calculate checks everything first. A failure ends the program.
double ValueOf(FormulaImpl& formula);

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

} // namespace bench

#endif
