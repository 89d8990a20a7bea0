#include "Measure.h"

#include <deque>
#include <memory>

#include "Jobs.h"

// A thousand formulas in layers. Each names two or three of the layer below and an input, and a
// last formula adds up the uppermost layer. The other engines have no formulas that name formulas:
// theirs are calculated in an order that is given to them, each result into a variable.

namespace bench {
namespace {

constexpr std::size_t kFormulas = 1000;
constexpr std::size_t kInputs = 10;

struct Shape {
    const char* row;
    std::size_t depth;
    std::size_t width;
};
constexpr Shape kShapes[] = {{"10 deep, 100 wide", 10, 100}, {"100 deep, 10 wide", 100, 10}};

// The two values that the first input changes between.
constexpr double kFirstInput[] = {1.5, 2.75};

// What the formula at a place in the net reads.
struct Place {
    std::size_t layer;
    std::size_t column;
    std::array<std::size_t, 3> below; // numbers of formulas, counted layer by layer
    std::size_t input;
    bool isWide; // reads all three
};

Place PlaceOf(const Shape& shape, std::size_t number)
{
    const std::size_t layer = number / shape.width;
    const std::size_t column = number % shape.width;
    const std::size_t first = layer == 0 ? 0 : (layer - 1) * shape.width;
    return {
        layer,
        column,
        {first + column, first + (column + 1) % shape.width, first + (column + 3) % shape.width},
        column % kInputs,
        column % 2 == 1};
}

// The formula of a place, where an engine spells a formula and an input in its own way.
template <typename FormulaName, typename InputName>
std::string TextOf(const Place& place, FormulaName formula, InputName input)
{
    const std::string x = input(place.input);
    if (place.layer == 0)
        return x + "*1.5+" + input((place.input + 1) % kInputs);
    const auto& [a, b, c] = place.below;
    if (place.isWide)
        return "(" + formula(a) + "+" + formula(b) + ")*0.3+" + formula(c) + "*0.2+" + x + "/2";
    return formula(a) + "*0.5+" + formula(b) + "*0.25+" + x;
}

template <typename FormulaName>
std::string SumOfLastLayer(const Shape& shape, FormulaName formula)
{
    std::string sum;
    for (std::size_t number = kFormulas - shape.width; number < kFormulas; ++number)
        sum += (sum.empty() ? "" : "+") + formula(number);
    return sum;
}

std::string InputName(std::size_t input)
{
    return "X" + std::to_string(input);
}

std::vector<NamedValue> NetInputs()
{
    std::vector<NamedValue> inputs;
    for (std::size_t input = 0; input < kInputs; ++input)
        inputs.push_back({InputName(input), kFirstInput[0] + 0.25 * static_cast<double>(input)});
    return inputs;
}

class OurNet {
public:
    explicit OurNet(const Shape& shape) : m_Job(NetInputs()), m_Sum(&m_Job.Set())
    {
        const auto encodedInput = [](std::size_t input) { return "V(" + InputName(input) + ")"; };
        const auto encodedFormula = [](std::size_t number) { return "F(" + NameOf(number) + ")"; };
        for (std::size_t number = 0; number < kFormulas; ++number)
            Add(m_Formulas.emplace_back(&m_Job.Set()), NameOf(number),
                TextOf(PlaceOf(shape, number), encodedFormula, encodedInput));
        Add(m_Sum, "Sum", SumOfLastLayer(shape, encodedFormula));
    }

    double Calculate(double firstInput)
    {
        m_Job.SetValue(0, firstInput);
        unsigned int message = 0;
        if (!m_Sum.Calculate(message, nullptr))
            Require(false, "message " + std::to_string(message));
        return m_Sum.GetValue();
    }

private:
    static std::string NameOf(std::size_t number) { return "Formula " + std::to_string(number); }

    void Add(FormulaImpl& formula, const std::string& text, const std::string& encoded)
    {
        CString name(text);
        formula.SetName(name);
        formula.SetFromEncodedString(CString(encoded));
        m_Job.Set().AddFormula(&formula);
    }

    OurJob m_Job;
    std::deque<FormulaImpl> m_Formulas;
    FormulaImpl m_Sum;
};

class MuParserNet {
public:
    explicit MuParserNet(const Shape& shape) : m_Job(NetInputs()), m_Results(kFormulas)
    {
        const auto result = [](std::size_t number) { return "f" + std::to_string(number); };
        for (std::size_t number = 0; number < kFormulas; ++number) {
            const Place place = PlaceOf(shape, number);
            mu::Parser& parser = m_Parsers.emplace_back(m_Job.MakeParser());
            for (const std::size_t below : place.below)
                parser.DefineVar(result(below), &m_Results[below]);
            parser.SetExpr(TextOf(place, result, InputName));
        }
        for (std::size_t number = 0; number < kFormulas; ++number)
            m_Sum.DefineVar(result(number), &m_Results[number]);
        m_Sum.SetExpr(SumOfLastLayer(shape, result));
    }

    double Calculate(double firstInput)
    {
        m_Job.SetValue(0, firstInput);
        for (std::size_t number = 0; number < kFormulas; ++number)
            m_Results[number] = m_Parsers[number].Eval();
        return m_Sum.Eval();
    }

private:
    MuParserJob m_Job;
    std::vector<double> m_Results;
    std::deque<mu::Parser> m_Parsers;
    mu::Parser m_Sum;
};

template <Engine engine>
class LuaNet {
public:
    explicit LuaNet(const Shape& shape) : m_Job(MakeLuaJob(engine, NetInputs()))
    {
        const auto result = [](std::size_t number) {
            return "f[" + std::to_string(number + 1) + "]";
        };
        m_Job->Call(m_Job->Keep("f={}"));
        for (std::size_t number = 0; number < kFormulas; ++number)
            m_Functions.push_back(m_Job->Keep(result(number) + "=" +
                                              TextOf(PlaceOf(shape, number), result, InputName)));
        m_Sum = m_Job->Keep("return " + SumOfLastLayer(shape, result));
    }

    double Calculate(double firstInput)
    {
        m_Job->SetValue(0, firstInput);
        for (const int function : m_Functions)
            m_Job->Call(function);
        return m_Job->Call(m_Sum);
    }

private:
    std::unique_ptr<LuaJob> m_Job;
    std::vector<int> m_Functions;
    int m_Sum = 0;
};

class NetByHand {
public:
    explicit NetByHand(const Shape& shape) : m_Width(shape.width), m_Results(kFormulas)
    {
        for (std::size_t number = 0; number < kFormulas; ++number)
            m_Places.push_back(PlaceOf(shape, number));
        for (const NamedValue& input : NetInputs())
            m_Inputs.push_back(input.value);
    }

    double Calculate(double firstInput)
    {
        m_Inputs[0] = firstInput;
        for (std::size_t number = 0; number < kFormulas; ++number)
            m_Results[number] = ValueAt(m_Places[number]);
        double sum = 0;
        for (std::size_t number = kFormulas - m_Width; number < kFormulas; ++number)
            sum += m_Results[number];
        return sum;
    }

private:
    double ValueAt(const Place& place) const
    {
        const double x = m_Inputs[place.input];
        if (place.layer == 0)
            return x * 1.5 + m_Inputs[(place.input + 1) % kInputs];
        const double a = m_Results[place.below[0]];
        const double b = m_Results[place.below[1]];
        return place.isWide ? (a + b) * 0.3 + m_Results[place.below[2]] * 0.2 + x / 2
                            : a * 0.5 + b * 0.25 + x;
    }

    std::size_t m_Width;
    std::vector<Place> m_Places;
    std::vector<double> m_Inputs;
    std::vector<double> m_Results;
};

template <typename Net>
void RegisterNet(ResultTable& table, const Shape& shape, Engine engine)
{
    const auto net = std::make_shared<Net>(shape);
    NetByHand expected(shape);
    for (const double input : kFirstInput)
        RequireEqual(net->Calculate(input), expected.Calculate(input), shape.row);
    Register(table, kNet, shape.row, engine, [net](benchmark::State& state) {
        bool isSecond = false;
        for (auto _ : state) {
            isSecond = !isSecond;
            benchmark::DoNotOptimize(net->Calculate(kFirstInput[isSecond ? 1 : 0]));
        }
    });
}

} // namespace

void RegisterNets(ResultTable& table)
{
    for (const Shape& shape : kShapes) {
        RegisterNet<OurNet>(table, shape, Engine::Ours);
        RegisterNet<MuParserNet>(table, shape, Engine::MuParser);
        RegisterNet<LuaNet<Engine::Lua>>(table, shape, Engine::Lua);
        RegisterNet<LuaNet<Engine::LuaJit>>(table, shape, Engine::LuaJit);
        RegisterNet<NetByHand>(table, shape, Engine::ByHand);
    }
}

} // namespace bench
