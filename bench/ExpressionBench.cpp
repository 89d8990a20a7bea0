#include "Measure.h"

#include "Alternating.h"
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

Alternating<double> Lengths()
{
    return {kLengths[0], kLengths[1]};
}

// A text, and the same with a blank after it.
template <typename Text>
Alternating<Text> TwoTexts(const Text& text)
{
    return {text, text + Text(1, ' ')};
}

// A case in each engine. A step changes the length and calculates again, or takes a new text and
// calculates it.

class OurCase {
public:
    explicit OurCase(const ExpressionCase& expressionCase, const ObjectKinds& kinds = kStockObjects)
        : m_Job(StartingInputs(), kinds),
          m_Kept(m_Job.MakeFormula("Kept", expressionCase.ours)),
          m_Typed(m_Job.MakeFormula("Typed", expressionCase.ours)),
          m_Text(TwoTexts(WideText(m_Kept->GetExpression().GetTextStr().View()))),
          m_References(ReferencesOf(m_Kept->GetExpression())),
          m_Stored(m_Job.MakeFormula("Stored", expressionCase.ours)),
          m_Encoded(TwoTexts(std::string(expressionCase.ours)))
    {}

    double Again()
    {
        m_Job.SetValue(LENGTH, m_Lengths.Next());
        return ValueOf(*m_Kept);
    }
    double FromTyped()
    {
        m_Typed->GetExpression().SetExpr(CString(WideView{m_Text.Next()}), m_References);
        return ValueOf(*m_Typed);
    }
    double FromStored()
    {
        m_Stored->SetFromEncodedString(CString(m_Encoded.Next()));
        return ValueOf(*m_Stored);
    }

private:
    OurJob m_Job;
    std::unique_ptr<FormulaImpl> m_Kept;
    std::unique_ptr<FormulaImpl> m_Typed; // its text is set anew each time
    Alternating<WideText> m_Text;
    CWordArray m_References;
    std::unique_ptr<FormulaImpl> m_Stored; // likewise
    Alternating<std::string> m_Encoded;
    Alternating<double> m_Lengths = Lengths();
};

class MuParserCase {
public:
    explicit MuParserCase(const ExpressionCase& expressionCase)
        : m_Job(StartingInputs()),
          m_Parser(m_Job.MakeParser()),
          m_Text(TwoTexts(std::string(expressionCase.muParser)))
    {
        m_Parser.SetExpr(expressionCase.muParser);
    }

    double Again()
    {
        m_Job.SetValue(LENGTH, m_Lengths.Next());
        return m_Parser.Eval();
    }
    double FromText()
    {
        m_Parser.SetExpr(m_Text.Next());
        return m_Parser.Eval();
    }

private:
    MuParserJob m_Job;
    mu::Parser m_Parser;
    Alternating<std::string> m_Text;
    Alternating<double> m_Lengths = Lengths();
};

class LuaCase {
public:
    LuaCase(Engine engine, const ExpressionCase& expressionCase)
        : m_Job(MakeLuaJob(engine, StartingInputs())),
          m_Text(TwoTexts(std::string("return ") + expressionCase.lua)),
          m_Function(m_Job->Keep(m_Text.Next()))
    {}

    double Again()
    {
        m_Job->SetValue(LENGTH, m_Lengths.Next());
        return m_Job->Call(m_Function);
    }
    double FromText()
    {
        m_Job->Load(m_Text.Next());
        return m_Job->CallLoaded();
    }

private:
    std::unique_ptr<LuaJob> m_Job;
    Alternating<std::string> m_Text;
    int m_Function;
    Alternating<double> m_Lengths = Lengths();
};

class CaseByHand {
public:
    explicit CaseByHand(const ExpressionCase& expressionCase) : m_Function(expressionCase.byHand)
    {
        for (std::size_t index = 0; index < kInputCount; ++index)
            m_Inputs[index] = StartingInputs()[index].value;
    }

    double AtTheStart() const { return m_Function(m_Inputs); }
    double Again()
    {
        m_Inputs[LENGTH] = m_Lengths.Next();
        return m_Function(m_Inputs);
    }

private:
    double (*m_Function)(const Inputs&);
    Inputs m_Inputs{};
    Alternating<double> m_Lengths = Lengths();
};

std::string RowName(const ExpressionCase& expressionCase)
{
    OurJob job(StartingInputs());
    const auto formula = job.MakeFormula("Formula", expressionCase.ours);
    return std::to_string(TokensOf(formula->GetExpression())) + " tokens, " + expressionCase.what;
}

// What a host derives, and the section of calculating again with it.
struct HostCase {
    const char* section;
    const ObjectKinds& kinds;
};
constexpr HostCase kHostCases[] = {
    {kAgainStockLookup, kWithStockLookup},
    {kAgainHostSet, kWithHostSet},
    {kAgainHostVariables, kWithHostVariables},
};

void RegisterCase(ResultTable& table, const ExpressionCase& expressionCase)
{
    const std::string row = RowName(expressionCase);
    const auto ours = std::make_shared<OurCase>(expressionCase);
    const auto muParser = std::make_shared<MuParserCase>(expressionCase);
    const auto lua = std::make_shared<LuaCase>(Engine::Lua, expressionCase);
    const auto luaJit = std::make_shared<LuaCase>(Engine::LuaJit, expressionCase);
    const auto byHand = std::make_shared<CaseByHand>(expressionCase);

    const double value = byHand->AtTheStart();
    const std::array<double, 2> same = {value, value};
    RegisterStep<&OurCase::FromTyped>(table, kTextToValue, row, Engine::Ours, ours, same);
    RegisterStep<&OurCase::FromStored>(table, kStoredToValue, row, Engine::Ours, ours, same);
    RegisterStep<&MuParserCase::FromText>(table, kTextToValue, row, Engine::MuParser, muParser,
                                          same);
    RegisterStep<&LuaCase::FromText>(table, kTextToValue, row, Engine::Lua, lua, same);
    RegisterStep<&LuaCase::FromText>(table, kTextToValue, row, Engine::LuaJit, luaJit, same);

    const double second = byHand->Again();
    const std::array<double, 2> changing = {second, byHand->Again()};
    RegisterStep<&OurCase::Again>(table, kAgain, row, Engine::Ours, ours, changing);
    RegisterStep<&MuParserCase::Again>(table, kAgain, row, Engine::MuParser, muParser, changing);
    RegisterStep<&LuaCase::Again>(table, kAgain, row, Engine::Lua, lua, changing);
    RegisterStep<&LuaCase::Again>(table, kAgain, row, Engine::LuaJit, luaJit, changing);
    RegisterStep<&CaseByHand::Again>(table, kAgain, row, Engine::ByHand, byHand, changing);
    for (const auto& [section, kinds] : kHostCases) {
        const auto host = std::make_shared<OurCase>(expressionCase, kinds);
        RegisterStep<&OurCase::Again>(table, section, row, Engine::Ours, host, changing);
    }
}

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
        Alternating<WideText> text = TwoTexts(SumOf(tokens));
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
    for (const ExpressionCase& expressionCase : ExpressionCases())
        RegisterCase(table, expressionCase);
    RegisterLongSum(table, "1,000 tokens", 1000);
    RegisterLongSum(table, "100,000 tokens", 100000);
}

} // namespace bench
