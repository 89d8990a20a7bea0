#include "Jobs.h"

#include "Measure.h"

namespace bench {

OurJob::OurJob(const std::vector<NamedValue>& variables, const ObjectKinds& kinds)
    : m_Kinds(kinds), m_Set(kinds.makeSet())
{
    for (const auto& [name, value] : variables) {
        m_Variables.push_back(m_Kinds.makeVariable(*m_Set, CString(name)));
        m_Variables.back()->SetValue(value);
    }
}

std::unique_ptr<FormulaImpl> OurJob::MakeFormula(const std::string& name,
                                                 const std::string& encoded)
{
    std::unique_ptr<FormulaImpl> formula = m_Kinds.makeFormula(*m_Set);
    CString named(name);
    formula->SetName(named);
    formula->SetFromEncodedString(CString(encoded));
    m_Set->AddFormula(formula.get());
    return formula;
}

double ValueOf(FormulaImpl& formula)
{
    unsigned int message = 0;
    if (!formula.Calculate(message, nullptr))
        Require(false, "message " + std::to_string(message));
    return formula.GetValue();
}

MuParserJob::MuParserJob(const std::vector<NamedValue>& variables)
{
    for (const auto& [name, value] : variables) {
        m_Names.push_back(name);
        m_Values.push_back(value);
    }
    m_Prototype.DefineFun("round", RoundedTo);
}

mu::Parser MuParserJob::MakeParser()
{
    mu::Parser parser(m_Prototype);
    for (std::size_t index = 0; index < m_Names.size(); ++index)
        Bind(parser, index);
    return parser;
}

void MuParserJob::Bind(mu::Parser& parser, std::size_t index)
{
    parser.DefineVar(m_Names[index], &m_Values[index]);
}

} // namespace bench
