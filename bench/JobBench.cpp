#include "Measure.h"

#include <memory>
#include <string>
#include <vector>

#include <TovoFormula/CalculationPass.h>
#include <TovoJob/JobFile.h>

#include "Jobs.h"

// Jobs of formulas in layers, each of which reads two of the layer below and a variable. The job
// library reads the text of a file and calculates everything; the engine is handed the names and
// the expressions, and calculates each formula in one pass, from the lowest layer up. Then one
// variable changes of which everything depends.

namespace bench {
namespace {

constexpr std::size_t kWidth = 100;

std::string FormulaName(std::size_t number)
{
    return "Formula " + std::to_string(number);
}

std::string TextOf(std::size_t number)
{
    if (number < kWidth)
        return "V(X)*1.5+" + std::to_string(number);
    const std::size_t below = (number / kWidth - 1) * kWidth;
    const std::size_t column = number % kWidth;
    return "F(" + FormulaName(below + column) + ")*0.5+F(" +
           FormulaName(below + (column + 1) % kWidth) + ")*0.25+V(X)";
}

double ValueIn(const tovo::Job& job, std::size_t number)
{
    return job.ValueOf(tovo::FormulaNamed(FormulaName(number))).value();
}

std::string FileOf(std::size_t count)
{
    tovo::Job job;
    job.AddVariable("X", 1.5).Value();
    for (std::size_t number = 0; number < count; ++number)
        job.AddFormula(FormulaName(number), TextOf(number)).Value();
    return tovo::WriteJob(job);
}

class EngineNet {
public:
    explicit EngineNet(std::size_t count) : m_Job({{"X", 1.5}})
    {
        for (std::size_t number = 0; number < count; ++number)
            m_Formulas.push_back(m_Job.MakeFormula(FormulaName(number), TextOf(number)));
    }

    // Of the last formula.
    double Calculate()
    {
        const CalculationPass pass;
        double value = 0;
        for (const auto& formula : m_Formulas)
            value = ValueOf(*formula);
        return value;
    }
    void SetValue(double value) { m_Job.SetValue(0, value); }

private:
    OurJob m_Job;
    std::vector<std::unique_ptr<FormulaImpl>> m_Formulas;
};

template <typename Step>
void RegisterPart(ResultTable& table, const char* section, const std::string& row, Engine engine,
                  std::size_t count, Step step)
{
    Register(table, section, row, engine, [step, count](benchmark::State& state) mutable {
        for (auto _ : state)
            benchmark::DoNotOptimize(step());
        NoteParts(state, count);
    });
}

void RegisterReading(ResultTable& table, const std::string& row, std::size_t count)
{
    const auto readAndCalculate = [file = FileOf(count), count] {
        tovo::Job job = tovo::ReadJob(file, "job").Value();
        Require(job.Calculate().faults.empty(), "a formula of the job fails");
        return ValueIn(job, count - 1);
    };
    const auto load = [count] { return EngineNet(count).Calculate(); };
    RequireEqual(readAndCalculate(), load(), "the job of " + row);
    RegisterPart(table, kJob, row, Engine::Ours, count, readAndCalculate);
    RegisterPart(table, kJob, row, Engine::Stock, count, load);
}

void RegisterCalculating(ResultTable& table, const std::string& row, std::size_t count)
{
    Register(table, kJobFirst, row, Engine::Ours,
             [file = FileOf(count), count](benchmark::State& state) {
                 for (auto _ : state) {
                     state.PauseTiming();
                     auto fresh = std::make_unique<tovo::Job>(tovo::ReadJob(file, "job").Value());
                     state.ResumeTiming();
                     fresh->Update();
                     state.PauseTiming();
                     fresh.reset();
                     state.ResumeTiming();
                 }
                 NoteParts(state, count);
             });

    const auto job = std::make_shared<tovo::Job>(tovo::ReadJob(FileOf(count), "job").Value());
    const auto net = std::make_shared<EngineNet>(count);
    const auto changeJob = [job, value = 0.0]() mutable {
        job->SetValue("X", value = 4 - value).Value();
        return job->Update().calculated;
    };
    const auto changeNet = [net, value = 0.0]() mutable {
        net->SetValue(value = 4 - value);
        return net->Calculate();
    };
    RegisterPart(table, kJobAgain, row, Engine::Ours, count, changeJob);
    RegisterPart(table, kJobAgain, row, Engine::Stock, count, changeNet);
}

} // namespace

void RegisterJobs(ResultTable& table)
{
    RegisterReading(table, "1,000, 10 deep", 1000);
    RegisterReading(table, "20,000, 200 deep", 20000);
    RegisterCalculating(table, "1,000, 10 deep", 1000);
    RegisterCalculating(table, "100,000, 1,000 deep", 100000);
}

} // namespace bench
