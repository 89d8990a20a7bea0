#include <TovoJob/Batch.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_set>
#include <utility>

#include <TovoFormula/LanguageScope.h>

#include <TovoJob/Job.h>

#include "BatchFaults.h"
#include "BatchWorker.h"
#include "Inputs.h"
#include "Pool.h"
#include "Validation.h"

namespace tovo {

namespace {

// Rows are handed out in portions that take some milliseconds, so that no thread waits long for
// another at the end, and the progress callback is asked often enough.
constexpr std::size_t kStepsInPortion = 100000;
constexpr std::size_t kMostRowsInPortion = 4096;
// Between two calls of the callback while failing rows are looked into.
constexpr std::size_t kRowsExplained = 256;

Result<void> CheckNames(const Job& job, std::span<const ObjectName> inputs,
                        std::span<const ObjectName> outputs)
{
    std::unordered_set<ObjectName> named;
    JobValues values;
    for (const ObjectName& input : inputs) {
        const bool isThere = input.kind == Kind::JobValue
                                 ? job::JobValueNamed(values, input) != nullptr
                                 : input.kind == Kind::Variable && job.Has(input);
        if (!isThere)
            return job::NoInput(input);
        if (!named.insert(input).second)
            return Refusal{RefusalKind::NameTaken, "the input is named twice", input.name};
    }
    for (const ObjectName& output : outputs) {
        const bool isThere = output.kind == Kind::JobValue
                                 ? job::JobValueNamed(values, output) != nullptr
                                 : job.Has(output);
        if (!isThere)
            return job::UnknownName(output);
    }
    if (outputs.empty())
        return Refusal{RefusalKind::UnknownName, "a batch needs an output", {}};
    return {};
}

} // namespace

struct Batch::State {
    State(const Job& job, std::span<const ObjectName> inputs, std::span<const ObjectName> outputs)
        : frozen(job),
          plan(frozen, {inputs.begin(), inputs.end()}, {outputs.begin(), outputs.end()})
    {}

    job::FrozenJob frozen;
    job::BatchPlan plan;
    job::Pool<job::StepRunner> runners;
};

namespace {

// One run: rows are taken portion by portion by as many threads as there are. The caller's thread
// is one of them, and the one that asks for leave to go on. Rows that fail are left for the end,
// when the caller's thread finds out why, in the language that is in force there.
class BatchRun {
public:
    BatchRun(const job::BatchPlan& plan, job::Pool<job::StepRunner>& runners,
             std::span<const double> rows, std::span<double> results, const BatchOptions& options)
        : m_Plan(plan),
          m_Runners(runners),
          m_Rows(rows),
          m_Results(results),
          m_Progress(options.progress),
          m_RowCount(results.size() / plan.OutputNames().size()),
          m_PortionSize(std::clamp<std::size_t>(kStepsInPortion / (plan.Steps().size() + 1), 1,
                                                kMostRowsInPortion)),
          m_Portions((m_RowCount + m_PortionSize - 1) / m_PortionSize),
          m_Threads(options.threads ? options.threads : std::thread::hardware_concurrency())
    {}

    BatchReport Go()
    {
        m_IsEnded = !MayGoOn();
        if (!m_IsEnded) {
            std::vector<std::jthread> helpers;
            while (helpers.size() + 1 < std::min<std::size_t>(m_Threads, m_Portions.size()))
                helpers.emplace_back([this] { Work(false); });
            Work(true);
        }
        if (m_Exception)
            std::rethrow_exception(m_Exception);
        return Explain();
    }

private:
    struct Portion {
        bool isDone = false;
        std::vector<std::size_t> leftRows;
    };

    void Work(bool isCaller)
    {
        try {
            auto runner =
                m_Runners.Take([this] { return std::make_unique<job::StepRunner>(m_Plan); });
            std::size_t portion = 0;
            while (!m_IsEnded && (portion = m_Next++) < m_Portions.size()) {
                Calculate(*runner, portion);
                if (isCaller && !MayGoOn())
                    m_IsEnded = true;
            }
            m_Runners.GiveBack(std::move(runner));
        } catch (...) {
            const std::lock_guard lock(m_Mutex);
            m_Exception = std::current_exception();
            m_IsEnded = true;
        }
    }
    bool MayGoOn() { return !m_Progress || m_Progress(m_RowsDone, m_RowCount); }

    void Calculate(job::StepRunner& runner, std::size_t number)
    {
        const LanguageScope english{FormulaLanguage()};
        Portion& portion = m_Portions[number];
        const std::size_t end = EndOf(number);
        for (std::size_t row = BeginOf(number); row < end; ++row) {
            if (!m_Plan.HasSteps() || !runner.Run(InputsOf(row), OutputsOf(row)))
                portion.leftRows.push_back(row);
        }
        portion.isDone = true;
        m_RowsDone += end - BeginOf(number) - portion.leftRows.size();
    }

    BatchReport Explain()
    {
        job::RowExplainer explainer(m_Plan);
        for (std::size_t number = 0; number < m_Portions.size(); ++number) {
            const Portion& portion = m_Portions[number];
            auto left = portion.leftRows.begin();
            for (std::size_t row = BeginOf(number); portion.isDone && row < EndOf(number); ++row) {
                const auto note = [&](BatchCause cause) { m_Faults.Add(row, std::move(cause)); };
                if (left == portion.leftRows.end() || *left != row) {
                    m_Plan.NoteFailing(note);
                    continue;
                }
                ++left;
                m_IsEnded = m_IsEnded || (++m_Explained % kRowsExplained == 0 && !MayGoOn());
                if (m_IsEnded)
                    continue;
                explainer.Run(InputsOf(row), OutputsOf(row), note);
                ++m_RowsDone;
            }
        }
        BatchReport report = std::move(m_Faults).Take();
        report.rows = m_RowsDone;
        report.isComplete = m_RowsDone == m_RowCount;
        if (report.isComplete)
            MayGoOn();
        return report;
    }

    std::size_t BeginOf(std::size_t portion) const { return portion * m_PortionSize; }
    std::size_t EndOf(std::size_t portion) const
    {
        return std::min(BeginOf(portion + 1), m_RowCount);
    }
    std::span<const double> InputsOf(std::size_t row) const
    {
        const std::size_t count = m_Plan.InputNames().size();
        return m_Rows.subspan(row * count, count);
    }
    std::span<double> OutputsOf(std::size_t row) const
    {
        const std::size_t count = m_Plan.OutputNames().size();
        return m_Results.subspan(row * count, count);
    }

    const job::BatchPlan& m_Plan;
    job::Pool<job::StepRunner>& m_Runners;
    const std::span<const double> m_Rows;
    const std::span<double> m_Results;
    const Progress& m_Progress;
    const std::size_t m_RowCount;
    const std::size_t m_PortionSize;
    std::vector<Portion> m_Portions;
    const unsigned int m_Threads;
    std::atomic<std::size_t> m_Next = 0;
    std::atomic<std::size_t> m_RowsDone = 0;
    std::atomic<bool> m_IsEnded = false;
    std::mutex m_Mutex;
    std::exception_ptr m_Exception;
    std::size_t m_Explained = 0;
    job::BatchFaults m_Faults;
};

} // namespace

Batch::Batch(std::shared_ptr<State> state) : m_State(std::move(state))
{}

Result<Batch> Batch::Make(const Job& job, std::span<const ObjectName> inputs,
                          std::span<const ObjectName> outputs)
{
    if (const Result<void> areThere = CheckNames(job, inputs, outputs); !areThere)
        return areThere.Why();
    return Batch(std::make_shared<State>(job, inputs, outputs));
}

const std::vector<ObjectName>& Batch::Inputs() const
{
    return m_State->plan.InputNames();
}

const std::vector<ObjectName>& Batch::Outputs() const
{
    return m_State->plan.OutputNames();
}

Result<BatchReport> Batch::Run(std::span<const double> rows, std::span<double> results,
                               const BatchOptions& options) const
{
    const std::size_t count = results.size() / Outputs().size();
    if (count * Outputs().size() != results.size() || count * Inputs().size() != rows.size())
        return Refusal{
            RefusalKind::BadValue,
            std::to_string(rows.size()) + " values for " + std::to_string(Inputs().size()) +
                " inputs and " + std::to_string(results.size()) + " results for " +
                std::to_string(Outputs().size()) + " outputs are not the same number of rows",
            {}};
    return BatchRun(m_State->plan, m_State->runners, rows, results, options).Go();
}

} // namespace tovo
