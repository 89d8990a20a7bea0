#include "Measure.h"

#include <memory>

#include "ExpressionCases.h"

// Single expressions: from a text to its value, again after a variable changed, and how the cost
// grows with the length of the text.

namespace bench {
namespace {

// The table of the references in a text, as an editor holds it beside the characters.
CWordArray ReferencesOf(const CFmlaExpression& expression)
{
    CWordArray words;
    for (int index = 0; index < expression.NumVars(); ++index) {
        words.Add(static_cast<WORD>(expression.VarPos(index)));
        words.Add(static_cast<WORD>(expression.VarLength(index)));
        words.Add(static_cast<WORD>(expression.VarType(index)));
    }
    return words;
}

int TokensOf(CFmlaExpression& expression)
{
    CString token;
    int code = 0;
    int pos = 0;
    int count = 0;
    for (int more = expression.FindFirstToken(token, code, pos, 0, TL_LOCAL); more;
         more = expression.FindNextToken(token, code, pos, TL_LOCAL))
        ++count;
    return count;
}

// What a host does for each value: a formula checks everything before it calculates.
double ValueOf(FormulaImpl& formula)
{
    unsigned int message = 0;
    if (!formula.Calculate(message, nullptr))
        Require(false, "message " + std::to_string(message));
    return formula.GetValue();
}

// A text and the same with a blank behind it in turn, so that no engine is given the text that it
// has already.
template <typename Text>
class Alternating {
public:
    void Set(const Text& text)
    {
        m_Texts = {text, text};
        m_Texts[1] += ' ';
    }
    const Text& Next()
    {
        m_IsSecond = !m_IsSecond;
        return m_Texts[m_IsSecond ? 1 : 0];
    }

private:
    std::array<Text, 2> m_Texts;
    bool m_IsSecond = false;
};

// A case with all that its measurements use, in every engine.
class Fixture {
public:
    explicit Fixture(const ExpressionCase& expressionCase)
        : m_Case(expressionCase),
          m_Ours(StartingInputs()),
          m_MuParser(StartingInputs()),
          m_Lua(StartingInputs()),
          m_Typed(&m_Ours.Set()),
          m_Kept(&m_Ours.Set()),
          m_Parser(m_MuParser.MakeParser())
    {
        for (std::size_t index = 0; index < kInputCount; ++index)
            m_Inputs[index] = StartingInputs()[index].value;
        Add(m_Typed, u"Typed");
        Add(m_Kept, u"Kept");
        const CFmlaExpression& expression = m_Kept.GetExpression();
        m_Text.Set(WideText(expression.GetTextStr().View()));
        m_References = ReferencesOf(expression);
        m_Parser.SetExpr(m_Case.muParser);
        m_ForMuParser.Set(m_Case.muParser);
        const std::string chunk = std::string("return ") + m_Case.lua;
        m_Function = m_Lua.Keep(chunk);
        m_ForLua.Set(chunk);
    }

    std::string RowName()
    {
        return std::to_string(TokensOf(m_Kept.GetExpression())) + " tokens, " + m_Case.what;
    }

    void TextToValueOurs(benchmark::State& state)
    {
        for (auto _ : state)
            benchmark::DoNotOptimize(ValueOfTypedText());
    }
    void TextToValueMuParser(benchmark::State& state)
    {
        for (auto _ : state) {
            m_Parser.SetExpr(m_ForMuParser.Next());
            benchmark::DoNotOptimize(m_Parser.Eval());
        }
    }
    void TextToValueLua(benchmark::State& state)
    {
        for (auto _ : state) {
            luaL_loadstring(m_Lua.State(), m_ForLua.Next().c_str());
            benchmark::DoNotOptimize(m_Lua.CallTop());
        }
    }

    void AgainOurs(benchmark::State& state)
    {
        for (auto _ : state) {
            m_Ours.SetValue(LENGTH, NextLength());
            benchmark::DoNotOptimize(ValueOf(m_Kept));
        }
    }
    void AgainMuParser(benchmark::State& state)
    {
        for (auto _ : state) {
            m_MuParser.SetValue(LENGTH, NextLength());
            benchmark::DoNotOptimize(m_Parser.Eval());
        }
    }
    void AgainLua(benchmark::State& state)
    {
        for (auto _ : state) {
            m_Lua.SetValue(LENGTH, NextLength());
            benchmark::DoNotOptimize(m_Lua.Call(m_Function));
        }
    }
    void AgainByHand(benchmark::State& state)
    {
        for (auto _ : state) {
            m_Inputs[LENGTH] = NextLength();
            benchmark::DoNotOptimize(m_Case.byHand(m_Inputs));
        }
    }

    void RequireEqualValues()
    {
        for (const double length : kLengths) {
            m_Ours.SetValue(LENGTH, length);
            m_MuParser.SetValue(LENGTH, length);
            m_Lua.SetValue(LENGTH, length);
            m_Inputs[LENGTH] = length;
            const double expected = m_Case.byHand(m_Inputs);
            RequireEqual(ValueOfTypedText(), expected, m_Case.ours);
            RequireEqual(ValueOf(m_Kept), expected, m_Case.ours);
            RequireEqual(m_Parser.Eval(), expected, m_Case.muParser);
            RequireEqual(m_Lua.Call(m_Function), expected, m_Case.lua);
        }
    }

private:
    void Add(FormulaImpl& formula, CString name)
    {
        formula.SetName(name);
        formula.SetFromEncodedString(m_Case.ours);
        m_Ours.Set().AddFormula(&formula);
    }
    double ValueOfTypedText()
    {
        m_Typed.GetExpression().SetExpr(CString(WideView{m_Text.Next()}), m_References);
        return ValueOf(m_Typed);
    }
    double NextLength()
    {
        m_IsSecondLength = !m_IsSecondLength;
        return kLengths[m_IsSecondLength ? 1 : 0];
    }

    const ExpressionCase& m_Case;
    OurJob m_Ours;
    MuParserJob m_MuParser;
    LuaJob m_Lua;
    Inputs m_Inputs{};
    FormulaImpl m_Typed; // its text is set anew each time
    FormulaImpl m_Kept;
    CWordArray m_References;
    Alternating<WideText> m_Text;
    mu::Parser m_Parser;
    Alternating<std::string> m_ForMuParser;
    Alternating<std::string> m_ForLua;
    int m_Function = 0;
    bool m_IsSecondLength = false;
};

struct Measurement {
    const char* section;
    Engine engine;
    void (Fixture::*run)(benchmark::State&);
};
constexpr Measurement kMeasurements[] = {
    {kTextToValue, Engine::Ours, &Fixture::TextToValueOurs},
    {kTextToValue, Engine::MuParser, &Fixture::TextToValueMuParser},
    {kTextToValue, Engine::Lua, &Fixture::TextToValueLua},
    {kAgain, Engine::Ours, &Fixture::AgainOurs},
    {kAgain, Engine::MuParser, &Fixture::AgainMuParser},
    {kAgain, Engine::Lua, &Fixture::AgainLua},
    {kAgain, Engine::ByHand, &Fixture::AgainByHand},
};

WideText SumOf(int tokens)
{
    WideText sum = u"1";
    for (int count = 3; count <= tokens; count += 2)
        sum += u"+2";
    return sum;
}

void RegisterLongSum(ResultTable& table, const char* row, int tokens)
{
    Register(table, kLongSum, row, Engine::Ours, [tokens](benchmark::State& state) {
        OurJob job({});
        FormulaImpl formula(&job.Set());
        Alternating<WideText> text;
        text.Set(SumOf(tokens));
        for (auto _ : state) {
            formula.GetExpression().SetExpr(CString(WideView{text.Next()}));
            benchmark::DoNotOptimize(ValueOf(formula));
        }
        NoteParts(state, static_cast<std::size_t>(tokens));
    });
}

} // namespace

void RegisterExpressions(ResultTable& table)
{
    for (const ExpressionCase& expressionCase : ExpressionCases()) {
        const auto fixture = std::make_shared<Fixture>(expressionCase);
        fixture->RequireEqualValues();
        for (const Measurement& measurement : kMeasurements)
            Register(table, measurement.section, fixture->RowName(), measurement.engine,
                     [fixture, run = measurement.run](benchmark::State& state) {
                         (fixture.get()->*run)(state);
                     });
    }
    RegisterLongSum(table, "1,000 tokens", 1000);
    RegisterLongSum(table, "100,000 tokens", 100000);
}

} // namespace bench
