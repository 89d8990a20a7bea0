#include <benchmark/benchmark.h>

#include <TovoFormula/TovoFormula.h>

// What an expression costs: from its text to its value, again from the tree that was built, and how
// both grow with the length of the text.

namespace {

constexpr const char* kFiveTokens = "V(Length)*V(Width)+1";
constexpr const char* kSixtyTokens =
    "IF(V(Length)>V(Width),ROUND(V(Length)*V(Width)*1.15,2),0)"
    "+SUM(V(Length)/2,V(Width)*3,MAX(V(Height),2.5),MIN(V(Height),4))"
    "-POWER(V(Width),2)*(V(Height)-0.25)/12+ABS(V(Length)-40)";

class Job {
public:
    Job()
    {
        Add(m_Length, u"Length", 12.5);
        Add(m_Width, u"Width", 8.25);
        Add(m_Height, u"Height", 2.75);
    }

    ICalculationSet& Set() { return m_Set; }
    void Lengthen() { m_Length.SetValue(m_Length.GetValue() + 0.5); }

private:
    void Add(VariableImpl& variable, const WCHAR* text, double value)
    {
        CString name(text);
        variable.SetName(name);
        variable.SetValue(value);
        m_Set.AddVariable(&variable);
    }

    CalcSetImpl m_Set;
    VariableImpl m_Length{&m_Set};
    VariableImpl m_Width{&m_Set};
    VariableImpl m_Height{&m_Set};
};

void Load(CFmlaExpression& expression, const CString& encoded)
{
    expression.SetFromEncodedString(encoded);
    unsigned int message = 0;
    if (!expression.IsValid(message, CString(), 1))
        std::abort();
}

void BM_TextToValue(benchmark::State& state, const char* encoded)
{
    Job job;
    CFmlaExpression expression(job.Set());
    const CString text(encoded);
    for (auto _ : state) {
        Load(expression, text);
        expression.Calculate(nullptr);
        benchmark::DoNotOptimize(expression.GetValue());
    }
}
BENCHMARK_CAPTURE(BM_TextToValue, five_tokens, kFiveTokens);
BENCHMARK_CAPTURE(BM_TextToValue, sixty_tokens, kSixtyTokens);

void BM_CalculateAgain(benchmark::State& state, const char* encoded)
{
    Job job;
    CFmlaExpression expression(job.Set());
    Load(expression, CString(encoded));
    for (auto _ : state) {
        job.Lengthen();
        expression.Calculate(nullptr);
        benchmark::DoNotOptimize(expression.GetValue());
    }
}
BENCHMARK_CAPTURE(BM_CalculateAgain, five_tokens, kFiveTokens);
BENCHMARK_CAPTURE(BM_CalculateAgain, sixty_tokens, kSixtyTokens);

// The time for each token stays the same if the cost is linear.
void BM_TimeAgainstTokens(benchmark::State& state)
{
    Job job;
    CFmlaExpression expression(job.Set());
    WideText sum = u"1";
    for (std::int64_t tokens = 3; tokens <= state.range(0); tokens += 2)
        sum += u"+2";
    const CString text(std::move(sum));
    for (auto _ : state) {
        Load(expression, text);
        expression.Calculate(nullptr);
        benchmark::DoNotOptimize(expression.GetValue());
    }
    state.counters["per_token"] = benchmark::Counter(static_cast<double>(state.range(0)),
                                                     benchmark::Counter::kIsIterationInvariantRate |
                                                         benchmark::Counter::kInvert);
}
BENCHMARK(BM_TimeAgainstTokens)->RangeMultiplier(10)->Range(1000, 100000);

} // namespace
