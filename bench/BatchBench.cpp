#include "Measure.h"

#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <TovoJob/Batch.h>
#include <TovoJob/JobFile.h>

#include "LuaJob.h"

// A million rows of the example job: each sets all 22 variables and asks for two formulas, which
// take 17 of the others and all tables. Lua has the same formulas as its authors would type them,
// each a function of its own that is compiled from its text and reads and writes global variables;
// one loop, in Lua, goes over the rows and calls them in an order that is given to it.

namespace bench {
namespace {

constexpr std::size_t kDifferentRows = 100000;
constexpr std::size_t kRounds = 10;
constexpr std::size_t kRows = kDifferentRows * kRounds;

// The input of a column in a row, as C++ and as Lua: the value in the job times something from 0.8
// to 1.2, or a choice of yes and no.
double InputAt(std::size_t row, std::size_t column, double base, bool isYesNo)
{
    const double part = static_cast<double>(row * (column + 7) % 1009);
    return isYesNo ? (part < 500 ? 0.0 : 1.0) : base * (0.8 + 0.4 * part / 1009);
}
constexpr const char* kMakeInputs = R"(
rows = {}
for row = 0, different - 1 do
  for column = 0, #bases - 1 do
    local part = row * (column + 7) % 1009
    local base = bases[column + 1]
    if base < 0 then part = part < 500 and 0 or 1
    else part = base * (0.8 + 0.4 * part / 1009) end
    rows[row * #bases + column + 1] = part
  end
end)";

// In the order of the variables of the job.
constexpr const char* kLuaInputs[] = {
    "length",         "width",          "thickness",    "edge_width",     "edge_depth",
    "gravel_depth",   "waste",          "overlap",      "sheet_area",     "sheet_price",
    "concrete_price", "concrete_class", "gravel_price", "formwork_price", "hours",
    "crew",           "distance",       "pump_rental",  "pump_limit",     "margin",
    "heated",         "winter"};

constexpr const char* kLuaFunctions = R"(
local floor, ceil, abs = math.floor, math.ceil, math.abs
function up(value, step)
  local parts = value / step
  local nearest = floor(parts + 0.5)
  if abs(parts - nearest) < 1e-9 then return nearest * step end
  return ceil(parts) * step
end
function places(value, scale) return floor(value * scale + 0.5) / scale end
function lookup(limits, value)
  for at = 1, #limits - 1 do if value <= limits[at] then return at end end
  return #limits
end
quantity, duration = 2, 6
delivery_limits, delivery_cells = {10, 25, 50, 100}, {2.5, 5, 8.5, 14}
class_limits, class_cells = {25, 30, 37}, {133, 139.5, 151}
winter_limits, crew_limits = {0, 1}, {2, 4, 8}
wage_cells = {{52, 48, 46}, {58, 54, 51.5}}
volume_limits, heated_limits = {6, 12, 60}, {0, 1})";

constexpr const char* kLuaFormulas[] = {
    "area = length * width",
    "perimeter = 2 * (length + width)",
    "small = concrete_price * 1.15",
    "bulk = concrete_price * 0.94",
    "discount = quantity >= 5 and 0.06 or (quantity > 1 and 0.03 or 0)",
    "volume = up((area * thickness + perimeter * edge_width * (edge_depth - thickness))"
    " * (1 + waste / 100), 0.25)",
    "gravel_volume = up(area * gravel_depth, 0.5)",
    "sheets = up(area * (1 + overlap / 100) / sheet_area, 1)",
    "formwork_cost = perimeter * formwork_price",
    "labour_hours = area * hours * (winter ~= 0 and 1.25 or 1)",
    "delivery = delivery_cells[lookup(delivery_limits, distance)]",
    "mix = class_cells[lookup(class_limits, concrete_class)]",
    "wage = wage_cells[lookup(winter_limits, winter)][lookup(crew_limits, crew)]",
    "local row = lookup(volume_limits, volume)"
    " if lookup(heated_limits, heated) == 2 then rate = mix"
    " else rate = row == 1 and small or row == 2 and concrete_price or bulk end",
    "concrete_cost = volume * (rate + delivery)",
    "gravel_cost = gravel_volume * gravel_price",
    "mesh_cost = sheets * sheet_price",
    "labour_cost = labour_hours * wage",
    "pump_cost = volume > pump_limit and pump_rental or 0",
    "crew_days = up(labour_hours / (crew * 8), 0.5)",
    "on_time = quantity * crew_days <= duration and 1 or 0",
    "price = quantity * places((concrete_cost + gravel_cost + mesh_cost + formwork_cost"
    " + labour_cost + pump_cost) * (1 + margin / 100) * (1 - discount), 100)",
};

constexpr const char* kLuaLoop = R"(
local sum, columns, count = 0, #inputs, #formulas
for round = 1, rounds do
  for row = 0, different - 1 do
    for column = 1, columns do _G[inputs[column]] = rows[row * columns + column] end
    for at = 1, count do formulas[at]() end
    sum = sum + price + on_time
  end
end
return sum)";

tovo::Job ExampleJob()
{
    std::ifstream file(TOVO_BENCH_JOB);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    return tovo::ReadJob(text, TOVO_BENCH_JOB).Value();
}

// The sum of both outputs over all rows.
class OurRows {
public:
    explicit OurRows(const tovo::Job& job) : m_Batch(MakeBatch(job))
    {
        for (std::size_t row = 0; row < kDifferentRows; ++row) {
            for (std::size_t column = 0; column < job.Variables().size(); ++column) {
                const tovo::Variable& variable = job.Variables()[column];
                m_Rows.push_back(
                    InputAt(row, column, variable.value, tovo::IsYesNoName(variable.name)));
            }
        }
        m_Results.resize(kDifferentRows * m_Batch.Outputs().size());
    }

    double Run(unsigned int threads)
    {
        tovo::BatchOptions options;
        options.threads = threads;
        double sum = 0;
        for (std::size_t round = 0; round < kRounds; ++round) {
            Require(m_Batch.Run(m_Rows, m_Results, options).Value().faults.empty(),
                    "a row of the batch fails");
            for (const double result : m_Results)
                sum += result;
        }
        return sum;
    }

private:
    static tovo::Batch MakeBatch(const tovo::Job& job)
    {
        std::vector<tovo::ObjectName> inputs;
        for (const tovo::Variable& variable : job.Variables())
            inputs.push_back(tovo::VariableNamed(variable.name));
        const tovo::ObjectName outputs[] = {tovo::FormulaNamed("Job price"),
                                            tovo::FormulaNamed("On time?")};
        return tovo::Batch::Make(job, inputs, outputs).Value();
    }

    tovo::Batch m_Batch;
    std::vector<double> m_Rows;
    std::vector<double> m_Results;
};

class LuaRows {
public:
    LuaRows(Engine engine, const tovo::Job& job)
        : m_Job(MakeLuaJob(engine, {{"different", static_cast<double>(kDifferentRows)},
                                    {"rounds", static_cast<double>(kRounds)}}))
    {
        std::string lists = "bases, inputs, formulas = {}, {}, {}\n";
        for (std::size_t column = 0; column < std::size(kLuaInputs); ++column) {
            const tovo::Variable& variable = job.Variables()[column];
            const double base = tovo::IsYesNoName(variable.name) ? -1 : variable.value;
            lists += "bases[#bases + 1] = " + std::to_string(base) + "\n";
            lists += "inputs[#inputs + 1] = '" + std::string(kLuaInputs[column]) + "'\n";
        }
        for (const char* const formula : kLuaFormulas)
            lists += "formulas[#formulas + 1] = function() " + std::string(formula) + " end\n";
        for (const std::string& chunk :
             {lists, std::string(kMakeInputs), std::string(kLuaFunctions)})
            m_Job->Call(m_Job->Keep(chunk));
        m_Loop = m_Job->Keep(kLuaLoop);
    }

    double Run() { return m_Job->Call(m_Loop); }

private:
    std::unique_ptr<LuaJob> m_Job;
    int m_Loop = 0;
};

template <typename Run>
auto RowsOf(Run run)
{
    return [run](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(run());
        NoteParts(state, kRows);
    };
}

} // namespace

void RegisterBatches(ResultTable& table)
{
    constexpr const char* row = "all variables, two outputs";
    const tovo::Job job = ExampleJob();
    const auto ours = std::make_shared<OurRows>(job);
    const double sum = ours->Run(1);
    Register(table, kBatch, row, Engine::Ours, RowsOf([ours] { return ours->Run(1); }));
    for (const Engine engine : {Engine::Lua, Engine::LuaJit}) {
        const auto lua = std::make_shared<LuaRows>(engine, job);
        RequireEqual(lua->Run(), sum, std::string("batch, ") + NameOf(engine));
        Register(table, kBatch, row, engine, RowsOf([lua] { return lua->Run(); }));
    }
    for (const unsigned int threads : {1u, 2u})
        Register(table, kBatchThreads, threads == 1 ? "one thread" : "two threads", Engine::Ours,
                 RowsOf([ours, threads] { return ours->Run(threads); }))
            ->UseRealTime();
}

} // namespace bench
