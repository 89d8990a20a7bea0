#include "Measure.h"

#include <deque>
#include <numeric>
#include <span>

#include "Alternating.h"
#include "Jobs.h"

// A thousand formulas in layers. Each names two or three of the layer below and an input. After an
// input has changed, a host asks for the value of the top formula, which adds up the last layer, or
// for each formula of the last layer. The other engines have no formulas that name formulas: theirs
// are calculated in an order that is given to them, each result into a variable.

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

// What the first input changes between.
Alternating<double> FirstInputs()
{
    return {1.5, 2.75};
}

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

std::size_t FirstOfLastLayer(const Shape& shape)
{
    return kFormulas - shape.width;
}

template <typename FormulaName>
std::string SumOfLastLayer(const Shape& shape, FormulaName formula)
{
    std::string sum;
    for (std::size_t number = FirstOfLastLayer(shape); number < kFormulas; ++number)
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
        inputs.push_back({InputName(input), 1.5 + 0.25 * static_cast<double>(input)});
    return inputs;
}

// A net in each engine. A step changes the first input; it returns the value of the top formula, or
// the sum of the values of the last layer.

class OurNet {
public:
    explicit OurNet(const Shape& shape, const ObjectKinds& kinds = kStockObjects)
        : m_Job(NetInputs(), kinds)
    {
        const auto input = [](std::size_t index) { return "V(" + InputName(index) + ")"; };
        const auto formula = [](std::size_t number) { return "F(" + NameOf(number) + ")"; };
        for (std::size_t number = 0; number < kFormulas; ++number)
            m_Formulas.push_back(
                m_Job.MakeFormula(NameOf(number), TextOf(PlaceOf(shape, number), formula, input)));
        m_Top = m_Job.MakeFormula("Top", SumOfLastLayer(shape, formula));
        m_LastLayer = std::span(m_Formulas).last(shape.width);
    }

    double Top()
    {
        ChangeInput();
        return ValueOf(*m_Top);
    }
    double LastLayer()
    {
        ChangeInput();
        return AddLastLayer();
    }
    double LastLayerInPass()
    {
        ChangeInput();
        const CalculationPass pass;
        return AddLastLayer();
    }

private:
    static std::string NameOf(std::size_t number) { return "Formula " + std::to_string(number); }

    void ChangeInput() { m_Job.SetValue(0, m_FirstInputs.Next()); }
    double AddLastLayer()
    {
        double sum = 0;
        for (const auto& formula : m_LastLayer)
            sum += ValueOf(*formula);
        return sum;
    }

    OurJob m_Job;
    std::vector<std::unique_ptr<FormulaImpl>> m_Formulas;
    std::span<const std::unique_ptr<FormulaImpl>> m_LastLayer;
    std::unique_ptr<FormulaImpl> m_Top;
    Alternating<double> m_FirstInputs = FirstInputs();
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
            m_Top.DefineVar(result(number), &m_Results[number]);
        m_Top.SetExpr(SumOfLastLayer(shape, result));
        m_LastLayer = std::span(m_Results).last(shape.width);
    }

    double Top()
    {
        CalculateLayers();
        return m_Top.Eval();
    }
    double LastLayer()
    {
        CalculateLayers();
        return std::accumulate(m_LastLayer.begin(), m_LastLayer.end(), 0.0);
    }

private:
    void CalculateLayers()
    {
        m_Job.SetValue(0, m_FirstInputs.Next());
        for (std::size_t number = 0; number < kFormulas; ++number)
            m_Results[number] = m_Parsers[number].Eval();
    }

    MuParserJob m_Job;
    std::vector<double> m_Results;
    std::span<const double> m_LastLayer;
    std::deque<mu::Parser> m_Parsers;
    mu::Parser m_Top;
    Alternating<double> m_FirstInputs = FirstInputs();
};

class LuaNet {
public:
    LuaNet(Engine engine, const Shape& shape) : m_Job(MakeLuaJob(engine, NetInputs()))
    {
        const auto result = [](std::size_t number) {
            return "f[" + std::to_string(number + 1) + "]";
        };
        m_Job->Call(m_Job->Keep("f={}"));
        for (std::size_t number = 0; number < kFormulas; ++number)
            m_Functions.push_back(m_Job->Keep(result(number) + "=" +
                                              TextOf(PlaceOf(shape, number), result, InputName)));
        m_Top = m_Job->Keep("return " + SumOfLastLayer(shape, result));
    }

    double Top()
    {
        m_Job->SetValue(0, m_FirstInputs.Next());
        for (const int function : m_Functions)
            m_Job->Call(function);
        return m_Job->Call(m_Top);
    }

private:
    std::unique_ptr<LuaJob> m_Job;
    std::vector<int> m_Functions;
    int m_Top = 0;
    Alternating<double> m_FirstInputs = FirstInputs();
};

class NetByHand {
public:
    explicit NetByHand(const Shape& shape) : m_Results(kFormulas)
    {
        for (std::size_t number = 0; number < kFormulas; ++number)
            m_Places.push_back(PlaceOf(shape, number));
        for (const NamedValue& input : NetInputs())
            m_Inputs.push_back(input.value);
        m_LastLayer = std::span(m_Results).last(shape.width);
    }

    double Top()
    {
        m_Inputs[0] = m_FirstInputs.Next();
        for (std::size_t number = 0; number < kFormulas; ++number)
            m_Results[number] = ValueAt(m_Places[number]);
        return std::accumulate(m_LastLayer.begin(), m_LastLayer.end(), 0.0);
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

    std::vector<Place> m_Places;
    std::vector<double> m_Inputs;
    std::vector<double> m_Results;
    std::span<const double> m_LastLayer;
    Alternating<double> m_FirstInputs = FirstInputs();
};

// What a host derives, and the section of the net that is made with it.
struct HostNet {
    const char* section;
    const ObjectKinds& kinds;
};
constexpr HostNet kHostNets[] = {
    {kNetHostSet, kWithHostSet},
    {kNetHostVariables, kWithHostVariables},
    {kNetHostFormulas, kWithHostFormulas},
    {kNetCounting, kWithCountingFormulas},
};

void RegisterNet(ResultTable& table, const Shape& shape)
{
    const auto ours = std::make_shared<OurNet>(shape);
    const auto muParser = std::make_shared<MuParserNet>(shape);
    const auto lua = std::make_shared<LuaNet>(Engine::Lua, shape);
    const auto luaJit = std::make_shared<LuaNet>(Engine::LuaJit, shape);
    const auto byHand = std::make_shared<NetByHand>(shape);
    const double second = byHand->Top();
    const std::array<double, 2> values = {second, byHand->Top()};

    RegisterStep<&OurNet::Top>(table, kNet, shape.row, Engine::Ours, ours, values);
    RegisterStep<&MuParserNet::Top>(table, kNet, shape.row, Engine::MuParser, muParser, values);
    RegisterStep<&LuaNet::Top>(table, kNet, shape.row, Engine::Lua, lua, values);
    RegisterStep<&LuaNet::Top>(table, kNet, shape.row, Engine::LuaJit, luaJit, values);
    RegisterStep<&NetByHand::Top>(table, kNet, shape.row, Engine::ByHand, byHand, values);

    RegisterStep<&OurNet::LastLayerInPass>(table, kLastLayerInPass, shape.row, Engine::Ours, ours,
                                           values);
    RegisterStep<&MuParserNet::LastLayer>(table, kLastLayerInPass, shape.row, Engine::MuParser,
                                          muParser, values);
    RegisterStep<&OurNet::LastLayer>(table, kLastLayer, shape.row, Engine::Ours, ours, values);

    for (const auto& [section, kinds] : kHostNets) {
        const auto host = std::make_shared<OurNet>(shape, kinds);
        RegisterStep<&OurNet::Top>(table, section, shape.row, Engine::Ours, host, values);
    }
}

} // namespace

void RegisterNets(ResultTable& table)
{
    for (const Shape& shape : kShapes)
        RegisterNet(table, shape);
}

} // namespace bench
