#include "Measure.h"

#include <malloc.h>
#include <memory>
#include <span>

#include "Jobs.h"

// Loading and checking ten thousand stored formulas, and the memory that they take. The first row
// is a job: each formula is kept. The second is what reading alone costs: one object takes all the
// texts in turn. Memory is that of kept formulas, short ones and long ones.

namespace bench {
namespace {

constexpr std::size_t kFormulas = 10000;
constexpr std::size_t kVariables = 50;

// $a, $b and $c stand for variables, $n for a number.
struct Pattern {
    const char* ours;
    const char* muParser;
    const char* lua;
};
constexpr Pattern kPatterns[] = {
    {"$a*$b+$n", "$a*$b+$n", "return $a*$b+$n"},
    {"ROUND(($a+$b)*$n-$c/4,2)", "round(($a+$b)*$n-$c/4,2)", "return round(($a+$b)*$n-$c/4,2)"},
    {"IF($a>$b,$c*$n,$c*1.15)", "$a>$b ? $c*$n : $c*1.15", "return $a>$b and $c*$n or $c*1.15"},
    {"SUM($a/2,$b*3,MAX($c,$n))-POWER($b,2)*0.25", "sum($a/2,$b*3,max($c,$n))-$b^2*0.25",
     "return $a/2+$b*3+math.max($c,$n)-$b^2*0.25"},
};
constexpr Pattern kLongPatterns[] = {
    {"IF($a>$b,ROUND($a*$b*1.15,2),$c)+SUM($a/2,$b*3)-($c-$n)/12+$a",
     "($a>$b ? round($a*$b*1.15,2) : $c)+sum($a/2,$b*3)-($c-$n)/12+$a",
     "return ($a>$b and round($a*$b*1.15,2) or $c)+($a/2+$b*3)-($c-$n)/12+$a"},
};

struct StoredFormula {
    std::string name;
    std::string ours;
    std::string muParser;
    std::string lua;
    std::array<std::size_t, 3> variables;
};

std::vector<NamedValue> Variables()
{
    std::vector<NamedValue> variables;
    for (std::size_t index = 0; index < kVariables; ++index)
        variables.push_back({"X" + std::to_string(index), 1.5 + static_cast<double>(index)});
    return variables;
}

std::string Filled(const std::string& pattern, const std::array<std::string, 3>& names,
                   const std::string& number)
{
    std::string text;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        if (pattern[at] != '$')
            text += pattern[at];
        else if (const char letter = pattern[++at]; letter == 'n')
            text += number;
        else
            text += names[static_cast<std::size_t>(letter - 'a')];
    }
    return text;
}

StoredFormula MakeStored(const Pattern& pattern, std::size_t number)
{
    const std::array<std::size_t, 3> variables = {
        number % kVariables, (number * 7 + 1) % kVariables, (number * 11 + 2) % kVariables};
    std::array<std::string, 3> names;
    std::array<std::string, 3> encoded;
    for (std::size_t index = 0; index < variables.size(); ++index) {
        names[index] = "X" + std::to_string(variables[index]);
        encoded[index] = "V(" + names[index] + ")";
    }
    const std::string constant = std::to_string(number) + ".25";
    return {"Formula " + std::to_string(number), Filled(pattern.ours, encoded, constant),
            Filled(pattern.muParser, names, constant), Filled(pattern.lua, names, constant),
            variables};
}

using StoredFormulas = std::vector<StoredFormula>;

StoredFormulas MakeAllStored(std::span<const Pattern> patterns)
{
    StoredFormulas formulas;
    for (std::size_t number = 0; number < kFormulas; ++number)
        formulas.push_back(MakeStored(patterns[number % patterns.size()], number));
    return formulas;
}

const StoredFormulas& ShortFormulas()
{
    static const StoredFormulas formulas = MakeAllStored(kPatterns);
    return formulas;
}

// Each loader takes all formulas, with all that they need made in the constructor, which is not
// measured. Value is that of the formula loaded last.

class OurKept {
public:
    OurKept() : m_Job(Variables()) { m_Formulas.reserve(kFormulas); }

    void Take(const StoredFormula& stored)
    {
        auto formula = m_Job.MakeFormula(stored.name, stored.ours);
        unsigned int message = 0;
        if (!formula->IsValid(message, 1))
            Require(false, "message " + std::to_string(message));
        m_Formulas.push_back(std::move(formula));
    }
    double Value() { return ValueOf(*m_Formulas.back()); }

private:
    OurJob m_Job;
    std::vector<std::unique_ptr<FormulaImpl>> m_Formulas;
};

class OurInTurn {
public:
    OurInTurn() : m_Job(Variables()), m_Expression(m_Job.Set()) {}

    void Take(const StoredFormula& stored)
    {
        m_Expression.SetFromEncodedString(CString(stored.ours));
        unsigned int message = 0;
        if (!m_Expression.IsValid(message, CString(), 1))
            Require(false, "message " + std::to_string(message));
    }
    double Value() { return m_Expression.Calculate(nullptr) ? m_Expression.GetValue() : 0.0; }

private:
    OurJob m_Job;
    CFmlaExpression m_Expression;
};

// A parser compiles when it calculates for the first time.
class MuParserKept {
public:
    MuParserKept() : m_Job(Variables()) { m_Parsers.reserve(kFormulas); }

    void Take(const StoredFormula& stored)
    {
        auto parser = std::make_unique<mu::Parser>(m_Job.Prototype());
        for (const std::size_t variable : stored.variables)
            m_Job.Bind(*parser, variable);
        parser->SetExpr(stored.muParser);
        benchmark::DoNotOptimize(parser->Eval());
        m_Parsers.push_back(std::move(parser));
    }
    double Value() { return m_Parsers.back()->Eval(); }

private:
    MuParserJob m_Job;
    std::vector<std::unique_ptr<mu::Parser>> m_Parsers;
};

class MuParserInTurn {
public:
    MuParserInTurn() : m_Job(Variables()), m_Parser(m_Job.MakeParser()) {}

    void Take(const StoredFormula& stored)
    {
        m_Parser.SetExpr(stored.muParser);
        benchmark::DoNotOptimize(m_Parser.Eval());
    }
    double Value() { return m_Parser.Eval(); }

private:
    MuParserJob m_Job;
    mu::Parser m_Parser;
};

template <Engine engine>
class LuaKept {
public:
    LuaKept() : m_Job(MakeLuaJob(engine, Variables())) { m_Functions.reserve(kFormulas); }

    void Take(const StoredFormula& stored) { m_Functions.push_back(m_Job->Keep(stored.lua)); }
    double Value() { return m_Job->Call(m_Functions.back()); }

private:
    std::unique_ptr<LuaJob> m_Job;
    std::vector<int> m_Functions;
};

template <Engine engine>
class LuaInTurn {
public:
    LuaInTurn() : m_Job(MakeLuaJob(engine, Variables())) {}

    void Take(const StoredFormula& stored) { m_Job->Load(stored.lua); }
    double Value() { return m_Job->CallLoaded(); }

private:
    std::unique_ptr<LuaJob> m_Job;
};

// Requires of some formulas that they have the values that they have in muParser.
template <typename Loader, typename MuParser>
void RequireEqualValues(const StoredFormulas& formulas)
{
    Loader loader;
    MuParser muParser;
    for (const StoredFormula& stored : std::span(formulas).first(100)) {
        loader.Take(stored);
        muParser.Take(stored);
        RequireEqual(loader.Value(), muParser.Value(), stored.ours);
    }
}

template <typename Loader>
void LoadAll(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto loader = std::make_unique<Loader>();
        state.ResumeTiming();
        for (const StoredFormula& stored : ShortFormulas())
            loader->Take(stored);
        state.PauseTiming();
        loader.reset();
        state.ResumeTiming();
    }
    NoteParts(state, kFormulas);
}

template <typename Loader, typename MuParser>
void RegisterLoader(ResultTable& table, const char* row, Engine engine)
{
    RequireEqualValues<Loader, MuParser>(ShortFormulas());
    Register(table, kLoading, row, engine, LoadAll<Loader>);
}

template <typename Ours, typename MuParser, template <Engine> typename Lua>
void RegisterRow(ResultTable& table, const char* row)
{
    RegisterLoader<Ours, MuParser>(table, row, Engine::Ours);
    RegisterLoader<MuParser, MuParser>(table, row, Engine::MuParser);
    RegisterLoader<Lua<Engine::Lua>, MuParser>(table, row, Engine::Lua);
    RegisterLoader<Lua<Engine::LuaJit>, MuParser>(table, row, Engine::LuaJit);
}

double BytesInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

template <typename Loader>
void NoteMemory(ResultTable& table, const char* row, Engine engine, const StoredFormulas& formulas)
{
    RequireEqualValues<Loader, MuParserKept>(formulas);
    Loader loader;
    const double before = BytesInUse();
    for (const StoredFormula& stored : formulas)
        loader.Take(stored);
    table.Note(kMemory, row, engine, (BytesInUse() - before) / kFormulas);
}

// LuaJIT is not there, as it keeps its memory apart from the heap.
void NoteMemoryRow(ResultTable& table, const char* row, const StoredFormulas& formulas)
{
    NoteMemory<OurKept>(table, row, Engine::Ours, formulas);
    NoteMemory<MuParserKept>(table, row, Engine::MuParser, formulas);
    NoteMemory<LuaKept<Engine::Lua>>(table, row, Engine::Lua, formulas);
}

} // namespace

void RegisterLoading(ResultTable& table)
{
    RegisterRow<OurKept, MuParserKept, LuaKept>(table, "kept, an object for each");
    RegisterRow<OurInTurn, MuParserInTurn, LuaInTurn>(table, "one object for all in turn");
    NoteMemoryRow(table, "5 to 26 tokens", ShortFormulas());
    NoteMemoryRow(table, "40 tokens", MakeAllStored(kLongPatterns));
}

} // namespace bench
