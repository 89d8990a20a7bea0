#include <TovoJob/Solve.h>

#include <algorithm>
#include <boost/math/tools/toms748_solve.hpp>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <TovoJob/Batch.h>
#include <TovoJob/Job.h>

namespace tovo {

namespace {

// A bracket shrinks to neighbouring numbers in fewer, unless the formula is odd.
constexpr std::uintmax_t kMostIterations = 200;

struct Sample {
    double input;
    double value; // NaN where the formula fails
};

std::string Text(double value)
{
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

std::string Text(const Sample& sample)
{
    return Text(sample.value) + " for " + Text(sample.input);
}

Result<void> CheckQuestion(double target, const ObjectName& variable, Range range,
                           const SolveOptions& options)
{
    const auto bad = [&](std::string text) {
        return Refusal{RefusalKind::BadValue, std::move(text), variable.name};
    };
    if (!std::isfinite(target))
        return bad("the value wanted is not finite");
    if (!std::isfinite(range.low) || !std::isfinite(range.high) || range.low > range.high)
        return bad("the range does not lead from one number up to another");
    if (options.steps == 0)
        return bad("the range is cut into no steps");
    if (variable.kind == Kind::Variable && IsYesNoName(variable.name))
        return bad("a yes/no value has no range");
    return {};
}

// The search for an input. It looks at steps of the range from its low end, and closes in where the
// value passes the target.
class Search {
public:
    Search(const Batch& batch, double target, Range range, const SolveOptions& options)
        : m_Batch(batch), m_Target(target), m_Range(range), m_Options(options)
    {}

    Result<Solution> Go()
    {
        TakeSamples();
        for (std::size_t at = 0; at < m_Samples.size(); ++at) {
            if (m_Samples[at].value == m_Target)
                return Found(m_Samples[at]);
            if (at + 1 < m_Samples.size() && Passes(m_Samples[at], m_Samples[at + 1])) {
                const Sample best = CloseIn(m_Samples[at], m_Samples[at + 1]);
                if (IsNear(best.value))
                    return Found(best);
            }
        }
        for (const Sample& sample : m_Samples) {
            if (IsNear(sample.value))
                return Found(sample);
        }
        return Refusal{RefusalKind::NoSolution, WhyNot(), m_Batch.Outputs().front().name};
    }

private:
    void TakeSamples()
    {
        std::vector<double> inputs;
        for (std::size_t step = 0; step <= m_Options.steps; ++step) {
            const double part = static_cast<double>(step) / static_cast<double>(m_Options.steps);
            // No product of the width, which may be infinite.
            inputs.push_back(m_Range.low * (1.0 - part) + m_Range.high * part);
        }
        std::vector<double> values(inputs.size());
        const BatchReport report = m_Batch.Run(inputs, values).Value();
        m_Calculations += inputs.size();
        if (!report.causes.empty())
            m_Failure = report.causes.front().failure.text;
        for (std::size_t at = 0; at < inputs.size(); ++at)
            m_Samples.push_back({inputs[at], values[at]});
        NoteVariation();
    }
    void NoteVariation()
    {
        for (const Sample& sample : m_Samples) {
            if (std::isnan(sample.value)) {
                ++m_Failing;
                continue;
            }
            if (!m_Lowest || sample.value < m_Lowest->value)
                m_Lowest = sample;
            if (!m_Highest || sample.value > m_Highest->value)
                m_Highest = sample;
        }
        m_Tolerance = std::abs(m_Target);
        if (m_Lowest)
            m_Tolerance = std::max(m_Tolerance, m_Highest->value - m_Lowest->value);
        m_Tolerance *= m_Options.tolerance;
    }

    bool Passes(const Sample& a, const Sample& b) const
    {
        return (a.value < m_Target && b.value > m_Target) ||
               (a.value > m_Target && b.value < m_Target);
    }
    bool IsNear(double value) const { return std::abs(value - m_Target) <= m_Tolerance; }

    double ValueFor(double input)
    {
        double value = 0.0;
        static_cast<void>(
            m_Batch.Run(std::span<const double>(&input, 1), std::span<double>(&value, 1)).Value());
        ++m_Calculations;
        return value;
    }

    // The best of the inputs to which the bracket shrinks; one without a value if the formula fails
    // on the way.
    Sample CloseIn(const Sample& a, const Sample& b)
    {
        struct Failed {
            double input;
        };
        const auto distance = [&](double input) {
            const double value = ValueFor(input);
            if (std::isnan(value))
                throw Failed{input};
            return value - m_Target;
        };
        const boost::math::tools::eps_tolerance<double> toTheLastBits(
            std::numeric_limits<double>::digits);
        std::uintmax_t iterations = kMostIterations;
        try {
            const auto [low, high] =
                boost::math::tools::toms748_solve(distance, a.input, b.input, a.value - m_Target,
                                                  b.value - m_Target, toTheLastBits, iterations);
            const Sample below{low, ValueFor(low)};
            const Sample above{high, ValueFor(high)};
            const bool isBelow =
                std::abs(below.value - m_Target) <= std::abs(above.value - m_Target);
            const Sample best = isBelow ? below : above;
            if (!m_Jump && !IsNear(best.value))
                m_Jump = std::pair(below, above);
            return best;
        } catch (const Failed& failed) {
            m_FailedAt = failed.input;
            return {failed.input, std::numeric_limits<double>::quiet_NaN()};
        }
    }

    Solution Found(const Sample& sample) const
    {
        return {sample.input, sample.value, m_Calculations};
    }

    std::string WhyNot() const
    {
        const std::string range = "from " + Text(m_Range.low) + " to " + Text(m_Range.high);
        if (!m_Lowest)
            return "it has no value anywhere " + range + ": " + m_Failure;
        std::string text;
        if (m_Jump)
            text = "the value jumps over " + Text(m_Target) + ": it is " + Text(m_Jump->first) +
                   " and " + Text(m_Jump->second);
        else if (m_FailedAt)
            text = "the value passes " + Text(m_Target) + " where it cannot be calculated, near " +
                   Text(*m_FailedAt);
        else
            text = "the value does not come to " + Text(m_Target) + " " + range +
                   ": it lies between " + Text(*m_Lowest) + " and " + Text(*m_Highest);
        if (m_Failing > 0)
            text += "; " + std::to_string(m_Failing) + " of " + std::to_string(m_Samples.size()) +
                    " inputs that were tried have no value: " + m_Failure;
        return text;
    }

    const Batch& m_Batch;
    const double m_Target;
    const Range m_Range;
    const SolveOptions& m_Options;
    std::vector<Sample> m_Samples;
    std::size_t m_Calculations = 0;
    double m_Tolerance = 0.0;
    std::optional<Sample> m_Lowest; // of the samples
    std::optional<Sample> m_Highest;
    std::size_t m_Failing = 0;
    std::string m_Failure;                           // of the first sample that fails
    std::optional<std::pair<Sample, Sample>> m_Jump; // the first one met, from side to side
    std::optional<double> m_FailedAt;
};

} // namespace

Result<Solution> Solve(const Job& job, const ObjectName& formula, double target,
                       const ObjectName& variable, Range range, const SolveOptions& options)
{
    if (const Result<void> isSound = CheckQuestion(target, variable, range, options); !isSound)
        return isSound.Why();
    const Result<Batch> batch = Batch::Make(job, {&variable, 1}, {&formula, 1});
    if (!batch)
        return batch.Why();
    return Search(batch.Value(), target, range, options).Go();
}

} // namespace tovo
