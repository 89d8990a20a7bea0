#include <calculation/RandomNet.h>

#include <charconv>
#include <cmath>
#include <memory>
#include <optional>
#include <random>
#include <utility>

#include <TovoPlatform/LocaleSettings.h>
#include <calculation/NetObjects.h>

#include "../../src/expression_core/Pass.h"

namespace tovo::test {
namespace {

using detail::Pass;

CString Wide(const std::string& text)
{
    return CString(std::string_view(text));
}

// Picks by one seed, the same on every platform.
class Dice {
public:
    explicit Dice(unsigned int seed) : m_Random(seed) {}

    int Below(int count) { return static_cast<int>(m_Random() % static_cast<unsigned int>(count)); }
    bool OneIn(int count) { return Below(count) == 0; }
    template <typename Items>
    auto& Of(Items& items)
    {
        return items[static_cast<std::size_t>(Below(static_cast<int>(items.size())))];
    }
    const char* Of(std::initializer_list<const char*> texts)
    {
        return texts.begin()[Below(static_cast<int>(texts.size()))];
    }

private:
    std::mt19937 m_Random;
};

// Keeps what a tracker says. It holds one entry at least.
class TrackerKeeper {
public:
    explicit TrackerKeeper(CCalcErrorTracker& tracker)
        : m_Tracker(tracker), m_Error(tracker.GetError())
    {
        for (int index = 0; index < tracker.NumObjs(); ++index)
            m_Texts.push_back(tracker.GetStr(index));
    }
    ~TrackerKeeper()
    {
        m_Tracker.SetError(m_Error, nullptr, m_Texts.front());
        for (std::size_t index = 1; index < m_Texts.size(); ++index)
            m_Tracker.AddObj(nullptr, m_Texts[index]);
    }

    TrackerKeeper(const TrackerKeeper&) = delete;
    TrackerKeeper& operator=(const TrackerKeeper&) = delete;

private:
    CCalcErrorTracker& m_Tracker;
    unsigned int m_Error;
    std::vector<CString> m_Texts;
};

// What a host's object does follows from the turn alone, or is done when it is first asked in a
// turn: how often it is asked makes no difference. A turn ends with the pass, or with a note of
// the host's.
class Net {
public:
    Net(unsigned int flags, unsigned int seed);
    ~Net();
    std::string Live(int actions);

private:
    struct Deed {
        const char* name;
        unsigned int flags; // 0, or what the net must have
        int weight;
        int (Net::*go)();
    };
    static const Deed kDeeds[];

    bool Has(unsigned int flags) const { return (m_Flags & flags) != 0; }

    // Texts. What stands on a level refers to lower levels, but for an accident.
    std::string Nested(int level);
    std::string Fault(int depth, int level);
    std::string Number(int depth, int level);
    std::string Condition(int depth, int level);
    std::string Text(const CString& name, int level);
    std::string Element(int level);

    template <typename Set>
    void AddSets();
    void AddVariables();
    void AddFormula(const CString& name, bool isInSet);
    std::unique_ptr<FormulaImpl> NewFormula(const CString& name, int level, bool isInSet);
    void AddTable(int index);
    void FillTable(FormulaTableImpl& table, int index);
    void AddHostObjects();
    void AddBareObjects();
    void FillBare(CFmlaExpression& bare);
    template <typename Visit>
    void ForEachSet(Visit visit)
    {
        for (std::size_t index = 0; index < m_Sets.size(); index += 2) // a copy shares its maps
            visit(*m_Sets[index]);
    }

    // What host's objects do.
    void NewTurn();
    void ThrowIf(int thrower) const;
    void Disturb(CScannedVariables* list);
    void DisturbOnce();
    void ComeBack(CScannedVariables* list);

    // Deeds: what they answer is seen.
    int SetValue();
    int SetText();
    int SetJob();
    int Replace();
    int Check();
    int Calculate();
    int Scan();
    int Walk();
    int CalculateTree();
    int CheckExpression();
    int EditText();
    int ForgetFlags();
    int CheckTable();
    int CalculateTable();
    int WalkTable();
    int ChangeTable();
    int StartNewPass();
    int Report();
    int RenameFormula();
    int RenameVariable();
    int AskHost();
    int ChangeHost();
    int OpenPass();
    int ClosePass();
    int NoteHostChange();
    int CheckBare();
    int CalculateBare();
    int ScanBare();
    int EditBare();
    int Separators();
    int LoadOperand();
    int CheckOperand();
    int CalculateOperand();
    int ScanOperand();

    CScannedVariables& List() { return m_Dice.OneIn(2) ? *m_Kept : *m_Fresh; }
    void Act();
    void TidyUp();
    void See(const std::string& name, CFmlaExpression& expression);
    void See(const CScannedVariables& list);
    void Look();
    void LookAtExpressions();

    void Put(const std::string& text) { m_Seen += text; }
    void Put(int number) { m_Seen += ' ' + std::to_string(number); }
    void Put(double value)
    {
        char text[32];
        m_Seen += ' ';
        m_Seen.append(text, std::isnan(value) ? text : std::to_chars(text, text + 32, value).ptr);
    }
    void Define(const CString& name, const std::string& text)
    {
        Put("\n" + name.ToUtf8() + " := " + text);
    }

    unsigned int m_Flags;
    Dice m_Dice;
    std::vector<const Deed*> m_Deeds;
    std::vector<const char*> m_VariableTexts{"V(x)", "V(y)", "V(z)", "V(made up)"};
    std::vector<std::unique_ptr<CalcSetImpl>> m_Sets;
    std::vector<std::unique_ptr<VariableImpl>> m_Variables;
    std::unique_ptr<VariableImpl> m_Swapped[2]; // of one name
    std::vector<std::unique_ptr<FormulaImpl>> m_Formulas;
    std::vector<std::unique_ptr<FormulaTableImpl>> m_Tables;
    std::unique_ptr<FormulaImpl> m_Edited; // never fails, and refers to stock variables only
    HostVariable m_Own{u"own", 2.0};
    HostVariable m_Deep{u"deep", 0.0}; // calculates a formula when it is read
    HostFormula m_Constant{u"k", 0.0};
    std::unique_ptr<OwnFormula> m_HostFormula;
    std::unique_ptr<OwnTable> m_HostTable;
    std::vector<std::unique_ptr<CFmlaExpression>> m_Bare;
    std::vector<std::unique_ptr<CalculationOperand>> m_Operands;
    std::vector<std::unique_ptr<CalculationPass>> m_Passes;

    int m_Turn = 0;
    int m_DisturbedIn = 0;
    int m_Thrower = 0;            // of the turn, 0 for none
    FormulaImpl* m_Top = nullptr; // what the present action checks or calculates
    unsigned int m_Message = 0;
    std::unique_ptr<CScannedVariables> m_Kept;
    std::optional<CScannedVariables> m_Fresh; // another one at one place for each action
    std::string m_Seen;
};

Net::Net(unsigned int flags, unsigned int seed) : m_Flags(flags), m_Dice(seed)
{
    if (Has(NET_HOSTS))
        AddSets<HostJobSet>();
    else if (Has(NET_LOOKUP))
        AddSets<LookupSet>();
    else
        AddSets<CalcSetImpl>();
    AddVariables();
    const int formulas = 3 + m_Dice.Below(3);
    for (int index = 0; index < formulas; ++index)
        AddFormula(Wide("f" + std::to_string(index) + (m_Dice.OneIn(5) ? "?" : "")), true);
    if (Has(NET_NAMES)) {
        AddFormula(CString(), true);
        AddFormula(m_Dice.Of(m_Formulas)->GetName(), false);
    }
    for (int index = 0; index < 2; ++index)
        AddTable(index);
    if (Has(NET_HOSTS))
        AddHostObjects();
    AddBareObjects();
    for (const Deed* deed = kDeeds; deed->name; ++deed)
        if (deed->flags == 0 || Has(deed->flags))
            m_Deeds.insert(m_Deeds.end(), static_cast<std::size_t>(deed->weight), deed);
    m_Kept = std::make_unique<CScannedVariables>();
}

Net::~Net()
{
    while (!m_Passes.empty())
        m_Passes.pop_back();
    if (Has(NET_BARE)) {
        SetLocaleSetting(LOCALE_SDECIMAL, u"");
        CFmlaExprBase::ReInitExprNames();
    }
}

std::string Net::Live(int actions)
{
    for (int count = 0; count < actions; ++count)
        Act();
    return std::move(m_Seen);
}

std::string Net::Nested(int level)
{
    if (m_Dice.OneIn(30))
        return m_Dice.Of({"F(none)", "T(none)", "F()", "F(f0)", "F(f1)", "T(t1)"});
    if (level == 0)
        return m_Dice.Of(m_VariableTexts);
    if (m_Dice.OneIn(Has(NET_TABLES) ? 2 : 6))
        return "T(t" + std::to_string(m_Dice.Below(std::min(level, 2))) + ")";
    if (Has(NET_HOSTS) && level > 2 && m_Dice.OneIn(2))
        return m_Dice.Of({"F(h)", "F(h)", "T(ht)", "F(k)"});
    const auto count = std::min<std::size_t>(static_cast<std::size_t>(level), m_Formulas.size());
    const std::string name = m_Formulas[std::size_t(m_Dice.Below(int(count)))]->GetName().ToUtf8();
    return name.ends_with('?') ? "IF(F(" + name + "),1,2)" : "F(" + name + ")";
}

std::string Net::Fault(int depth, int level)
{
    if (m_Dice.OneIn(Has(NET_FAULTS) ? 2 : 6))
        return m_Dice.Of({"COSH(1000)", "POWER(0,-1)", "SQRT(-1)", "1/0"});
    if (m_Dice.OneIn(12))
        return m_Dice.Of({"1+", "(2", "3 4", "1.2.3", "MOD(1)", "YES"});
    return Number(depth - 1, level);
}

std::string Net::Number(int depth, int level)
{
    const auto part = [&] { return Number(depth - 1, level); };
    switch (m_Dice.Below(depth == 0 ? 4 : 13)) {
    case 0:
        return m_Dice.Of({"0", "1", "2.5", "-1", "PI", "QUANTITY", "DURATION", "JOBSIZE"});
    case 1:
        return m_Dice.Of(m_VariableTexts);
    case 2:
    case 3:
        return Nested(level);
    case 4:
    case 5:
        return "IF(" + Condition(depth - 1, level) + "," + part() + "," + part() + ")";
    case 6:
        return m_Dice.Of({"SQRT(", "ABS(", "ASIN(", "COSH("}) + part() + ")";
    case 7:
        return m_Dice.Of({"SUM(", "MAX("}) + part() + "," + part() + ")";
    case 8:
        return Fault(depth, level);
    default:
        return part() + m_Dice.Of({"+", "-", "*", "/"}) + part();
    }
}

std::string Net::Condition(int depth, int level)
{
    if (m_Dice.OneIn(5))
        return m_Dice.Of({"V(b?)", "NOT V(b?)", "YES", "V(b?) AND NO"});
    return Number(depth > 0 ? depth - 1 : 0, level) + m_Dice.Of({">", "=", " LE "}) +
           (m_Dice.OneIn(3) ? Nested(level) : m_Dice.Of(m_VariableTexts));
}

std::string Net::Text(const CString& name, int level)
{
    const bool isYesNo = !name.IsEmpty() && name[name.GetLength() - 1] == u'?';
    if (isYesNo || (Has(NET_SCANS) && m_Dice.OneIn(2)))
        return isYesNo ? Condition(2, level)
                       : "IF(" + Condition(1, level) + "," + Number(1, level) + "," +
                             Number(1, level) + ")";
    return Number(1 + m_Dice.Below(2), level);
}

std::string Net::Element(int level)
{
    if (m_Dice.OneIn(3))
        return m_Dice.Of({"1000", "2500", "", "Vx", "Vb?", "Vy"});
    if (m_Dice.OneIn(20))
        return m_Dice.Of({"Fnone", "Tt1", "Ff1"});
    if (level > 0 && m_Dice.OneIn(3))
        return "Tt0";
    if (Has(NET_HOSTS) && level > 0 && m_Dice.OneIn(3))
        return m_Dice.Of({"Fh", "Fk", "Vown"});
    return "F" + m_Formulas[std::size_t(m_Dice.Below(level + 1))]->GetName().ToUtf8();
}

template <typename Set>
void Net::AddSets()
{
    auto first = std::make_unique<Set>();
    auto copy = std::make_unique<Set>(*first);
    m_Sets.push_back(std::move(first));
    if (Has(NET_COPIES)) {
        m_Sets.push_back(std::move(copy));
        m_Sets.push_back(std::make_unique<Set>());
    }
    for (const auto& set : m_Sets) {
        set->SetHasDatabase(1);
        set->ErrorTracker().SetError(0, nullptr, u"none");
        if (Has(NET_FAULTS) && m_Dice.OneIn(2))
            set->SetReportFcnDomainErrors(1);
    }
}

void Net::AddVariables()
{
    const auto add = [this](auto variable, CString name) {
        variable->SetName(name);
        variable->VariableImpl::SetValue(m_Dice.Below(4) - 1);
        ForEachSet([&](CalcSetImpl& set) { set.AddVariable(variable.get()); });
        return variable;
    };
    const auto stock = [this] { return std::make_unique<VariableImpl>(m_Sets[0].get()); };
    for (const char* const name : {"x", "y", "z", "b?"})
        m_Variables.push_back(add(stock(), name));
    if (Has(NET_NAMES))
        m_Variables.push_back(add(stock(), ""));
    if (Has(NET_DERIVED)) {
        auto derived = std::make_unique<ReadVariable>(m_Sets[0].get());
        derived->m_OnRead = [this] { ThrowIf(4); };
        m_Variables.push_back(add(std::move(derived), "d"));
        m_VariableTexts.push_back("V(d)");
    }
    for (auto& swapped : m_Swapped)
        swapped = add(stock(), "swapped");
    if (Has(NET_CHANGES))
        m_VariableTexts.insert(m_VariableTexts.end(), {"V(swapped)", "V(deep)"});
    if (Has(NET_HOSTS))
        m_VariableTexts.push_back("V(own)");
}

void Net::AddFormula(const CString& name, bool isInSet)
{
    const auto level = static_cast<int>(m_Formulas.size());
    m_Formulas.push_back(NewFormula(name, level, isInSet));
}

std::unique_ptr<FormulaImpl> Net::NewFormula(const CString& name, int level, bool isInSet)
{
    CalcSetImpl* const set = m_Dice.Of(m_Sets).get();
    std::unique_ptr<FormulaImpl> formula;
    switch (Has(NET_DERIVED) ? m_Dice.Below(3) : 0) {
    case 0:
        formula = std::make_unique<FormulaImpl>(set);
        break;
    case 1:
        formula = std::make_unique<PlainFormula>(set);
        break;
    default:
        formula = std::make_unique<PassingFormula>(set);
    }
    CString own = name;
    formula->SetName(own);
    const std::string text = Text(name, level);
    Define(name, text);
    formula->SetFromEncodedString(Wide(text));
    if (isInSet)
        ForEachSet([&](CalcSetImpl& each) { each.AddFormula(formula.get()); });
    return formula;
}

void Net::AddTable(int index)
{
    const int columns = 1 + m_Dice.Below(2);
    CalcSetImpl* const set = m_Dice.Of(m_Sets).get();
    auto table = Has(NET_DERIVED) && m_Dice.OneIn(2)
                     ? std::make_unique<PassingTable>(set, 2, columns)
                     : std::make_unique<FormulaTableImpl>(set, 2, columns);
    CString name = Wide("t" + std::to_string(index));
    table->SetName(name);
    for (int row = 0; row < 2; ++row)
        table->SetRowLimit(row, row);
    FillTable(*table, index);
    ForEachSet([&](CalcSetImpl& each) { each.AddFormulaTable(table.get()); });
    m_Tables.push_back(std::move(table));
}

void Net::FillTable(FormulaTableImpl& table, int index)
{
    table.GetRowSelector().init(Wide(Element(index)));
    table.GetColumnSelector().init(Wide(Element(index)));
    std::string cells = table.GetRowSelector().GetCombinedString().ToUtf8() + '/' +
                        table.GetColumnSelector().GetCombinedString().ToUtf8();
    for (int cell = 0; cell < 2 * table.GetColumnCount(); ++cell) {
        const std::string text = Element(index);
        const std::unique_ptr<CFormtblElem> former(table.GetCell(cell % 2, cell / 2));
        table.SetCell(cell % 2, cell / 2, new CFormtblElem(Wide(text), *m_Sets[0]));
        cells += ' ' + text;
    }
    Define(table.GetName(), cells);
}

void Net::AddHostObjects()
{
    CalcSetImpl& set = *m_Dice.Of(m_Sets);
    m_HostFormula = std::make_unique<OwnFormula>(u"h", set);
    m_HostTable = std::make_unique<OwnTable>(u"ht", set);
    ChangeHost();
    m_HostFormula->m_OnCheck = [this] { ThrowIf(3); };
    m_HostFormula->m_OnCalculate = [this](CScannedVariables* list) { Disturb(list); };
    m_Own.m_OnRead = [this] { ThrowIf(1); };
    m_Edited = std::make_unique<FormulaImpl>(m_Sets[0].get());
    m_Edited->SetFromEncodedString(u"V(x)+V(y)");
    m_Deep.m_OnRead = [this] {
        unsigned int message = 0;
        m_Edited->Calculate(message, nullptr);
        m_Deep.m_Value = m_Edited->GetValue();
    };
    for (const auto& each : m_Sets) {
        auto& job = static_cast<HostJobSet&>(*each);
        job.m_HostVariables = {{u"own", &m_Own}, {u"deep", &m_Deep}};
        job.m_HostFormulas = {{u"k", &m_Constant}, {u"h", m_HostFormula.get()}};
        job.m_HostTables = {{u"ht", m_HostTable.get()}};
    }
    m_Constant.m_Message = 6611;
}

void Net::AddBareObjects()
{
    for (int index = 0; Has(NET_BARE) && index < 3; ++index) {
        CalcSetImpl& set = *m_Dice.Of(m_Sets);
        m_Bare.push_back(index == 0 ? std::make_unique<PassingExpression>(set)
                                    : std::make_unique<CFmlaExpression>(set));
        FillBare(*m_Bare.back());
    }
    for (int index = 0; Has(NET_OPERANDS) && index < 2; ++index) {
        m_Operands.push_back(std::make_unique<CalculationOperand>(*m_Dice.Of(m_Sets)));
        CString name = m_Dice.Of(m_Formulas)->GetName();
        m_Operands.back()->LoadFormula(name);
    }
}

void Net::FillBare(CFmlaExpression& bare)
{
    const std::string text = Number(2, static_cast<int>(m_Formulas.size()));
    Define(u"bare", text);
    bare.SetFromEncodedString(Wide(text));
}

void Net::NewTurn()
{
    ++m_Turn;
    m_Thrower = Has(NET_THROWS) && m_Dice.OneIn(3) ? 1 + m_Dice.Below(4) : 0;
    m_Own.m_Value = m_Dice.Below(4) - 1;
    m_Constant.m_Value = m_Turn % 3;
    m_Constant.m_Succeeds = m_Turn % 7 != 0;
    if (Has(NET_HOSTS))
        for (const auto& set : m_Sets)
            static_cast<HostJobSet&>(*set).m_HostQuantity = m_Turn % 4;
}

void Net::ThrowIf(int thrower) const
{
    if (m_Thrower == thrower)
        throw HostTrouble();
}

void Net::Disturb(CScannedVariables* list)
{
    ThrowIf(2);
    if (!Has(NET_CHANGES))
        return;
    m_Variables[0]->SetValue(m_Turn % 3);
    if (std::exchange(m_DisturbedIn, m_Turn) != m_Turn)
        DisturbOnce();
    CScannedVariables own;
    m_Formulas[std::size_t(m_Turn) % m_Formulas.size()]->GetVariables(own, 1, 0);
    ComeBack(list);
}

void Net::DisturbOnce()
{
    CalcSetImpl& set = *m_Sets[0];
    switch (m_Turn % 7) {
    case 0:
        m_Edited->SetFromEncodedString(Wide("V(y)*" + std::to_string(m_Turn)));
        break;
    case 1:
        set.AddVariable(m_Swapped[m_Turn % 2].get());
        break;
    case 2:
        set.SetDuration(m_Turn % 3);
        break;
    case 3:
        set.StartNewPass();
        break;
    case 4:
        m_Tables[0]->SetRowLimit(0, m_Turn % 2 - 1.0);
        break;
    case 5:
        m_Tables[1]->SetCalculated(0);
        break;
    default:
        set.SetReportFcnDomainErrors(m_Turn % 2);
    }
}

// Who is under way refuses to be checked and calculated again. What that writes is put back, since
// it would tell how often it was tried.
void Net::ComeBack(CScannedVariables* list)
{
    if (!m_Top)
        return;
    CFmlaExpression& expression = m_Top->GetExpression();
    const TrackerKeeper keeper(expression.CalcSet().ErrorTracker());
    const auto found = static_cast<unsigned int>(expression.GetMessageNum());
    unsigned int message = 0;
    const int answer =
        m_Turn % 2 ? m_Top->Calculate(message, list) : m_Top->IsValid(message, m_Turn % 4 / 2);
    if (answer != 0 || message != MSG_FORMULA_INSIDE_ITSELF)
        Put("\nanswered while it was under way");
    expression.TrackError(found);
}

const Net::Deed Net::kDeeds[] = {
    {"SetValue", 0, 6, &Net::SetValue},
    {"SetText", 0, 3, &Net::SetText},
    {"SetJob", 0, 2, &Net::SetJob},
    {"Replace", 0, 1, &Net::Replace},
    {"Check", 0, 4, &Net::Check},
    {"Calculate", 0, 12, &Net::Calculate},
    {"Scan", 0, 4, &Net::Scan},
    {"Scan", NET_SCANS, 12, &Net::Scan},
    {"Walk", 0, 3, &Net::Walk},
    {"Walk", NET_SCANS, 6, &Net::Walk},
    {"CalculateTree", 0, 2, &Net::CalculateTree},
    {"CheckExpression", 0, 2, &Net::CheckExpression},
    {"EditText", 0, 1, &Net::EditText},
    {"ForgetFlags", 0, 1, &Net::ForgetFlags},
    {"CheckTable", 0, 2, &Net::CheckTable},
    {"CalculateTable", 0, 3, &Net::CalculateTable},
    {"WalkTable", 0, 2, &Net::WalkTable},
    {"ChangeTable", NET_TABLES, 3, &Net::ChangeTable},
    {"StartNewPass", 0, 4, &Net::StartNewPass},
    {"Report", NET_FAULTS, 2, &Net::Report},
    {"RenameFormula", NET_NAMES, 3, &Net::RenameFormula},
    {"RenameVariable", NET_NAMES, 3, &Net::RenameVariable},
    {"AskHost", NET_HOSTS, 3, &Net::AskHost},
    {"ChangeHost", NET_HOSTS, 1, &Net::ChangeHost},
    {"OpenPass", NET_HELD, 8, &Net::OpenPass},
    {"ClosePass", NET_HELD, 3, &Net::ClosePass},
    {"NoteHostChange", NET_HELD, 3, &Net::NoteHostChange},
    {"CheckBare", NET_BARE, 8, &Net::CheckBare},
    {"CalculateBare", NET_BARE, 6, &Net::CalculateBare},
    {"ScanBare", NET_BARE, 3, &Net::ScanBare},
    {"EditBare", NET_BARE, 4, &Net::EditBare},
    {"Separators", NET_BARE, 1, &Net::Separators},
    {"LoadOperand", NET_OPERANDS, 3, &Net::LoadOperand},
    {"CheckOperand", NET_OPERANDS, 3, &Net::CheckOperand},
    {"CalculateOperand", NET_OPERANDS, 6, &Net::CalculateOperand},
    {"ScanOperand", NET_OPERANDS, 3, &Net::ScanOperand},
    {nullptr, 0, 0, nullptr},
};

int Net::SetValue()
{
    m_Dice.Of(m_Variables)->SetValue(m_Dice.Below(4) - 1);
    return 1;
}

int Net::SetText()
{
    const auto level = m_Dice.Below(static_cast<int>(m_Formulas.size()));
    FormulaImpl& formula = *m_Formulas[std::size_t(level)];
    const std::string text = Text(formula.GetName(), level);
    Define(formula.GetName(), text);
    formula.SetFromEncodedString(Wide(text));
    return level;
}

int Net::SetJob()
{
    CalcSetImpl& set = *m_Dice.Of(m_Sets);
    set.SetDuration(m_Dice.Below(3));
    set.SetJobSize(m_Dice.Below(3));
    set.SetQuantity(m_Dice.Below(3));
    return 1;
}

// Under a name that was changed, the set would keep the one that goes.
int Net::Replace()
{
    const auto level = m_Dice.Below(static_cast<int>(m_Formulas.size()));
    if (!Has(NET_NAMES)) {
        auto& formula = m_Formulas[std::size_t(level)];
        formula = NewFormula(formula->GetName(), level, true);
    }
    return level;
}

int Net::Check()
{
    m_Top = m_Dice.Of(m_Formulas).get();
    return m_Top->IsValid(m_Message, m_Dice.Below(2));
}

int Net::Calculate()
{
    m_Top = m_Dice.Of(m_Formulas).get();
    return m_Top->Calculate(m_Message, nullptr);
}

int Net::Scan()
{
    m_Top = m_Dice.Of(m_Formulas).get();
    return m_Top->Calculate(m_Message, &List());
}

int Net::Walk()
{
    m_Dice.Of(m_Formulas)->GetVariables(List(), m_Dice.Below(2), m_Dice.Below(2));
    return 1;
}

int Net::CalculateTree()
{
    CScannedVariables* const list = m_Dice.OneIn(2) ? &List() : nullptr;
    return m_Dice.Of(m_Formulas)->GetExpression().Calculate(list);
}

int Net::CheckExpression()
{
    CFmlaExpression& expression = m_Dice.Of(m_Formulas)->GetExpression();
    switch (m_Dice.Below(4)) {
    case 0:
        return expression.NestedFormulasOK();
    case 1:
        return expression.CheckNestedFormula(m_Dice.Of(m_Formulas)->GetName());
    case 2:
        return expression.LoadExpressionTree(m_Dice.Below(2));
    default:
        return expression.IsValid(m_Message, m_Dice.Of(m_Formulas)->GetName(), 1);
    }
}

int Net::EditText()
{
    CFmlaExpression& expression = m_Dice.Of(m_Formulas)->GetExpression();
    return expression.InsertString(m_Dice.Of({"1", "+1", " ", "2*"}), 0);
}

int Net::ForgetFlags()
{
    for (const auto& variable : m_Variables)
        variable->SetInCond(m_Dice.Below(2));
    for (const auto& set : m_Sets) {
        set->SetDURATIONInCondition(0);
        set->SetJOBSIZEInCondition(0);
        set->SetQuantityInCondition(0);
        set->SetQuantityInCalculations(0);
        set->ClearMissingVariables();
    }
    m_Kept = std::make_unique<CScannedVariables>();
    return 1;
}

int Net::CheckTable()
{
    FormulaTableImpl& table = *m_Dice.Of(m_Tables);
    table.SetValidated(0);
    return table.IsValid(m_Message, m_Dice.Below(2));
}

int Net::CalculateTable()
{
    CScannedVariables* const list = m_Dice.OneIn(2) ? &List() : nullptr;
    return m_Dice.Of(m_Tables)->Calculate(m_Message, list);
}

int Net::WalkTable()
{
    m_Dice.Of(m_Tables)->GetVariables(List(), m_Dice.Below(2), m_Dice.Below(2));
    return 1;
}

int Net::ChangeTable()
{
    const int index = m_Dice.Below(2);
    FormulaTableImpl& table = *m_Tables[std::size_t(index)];
    switch (m_Dice.Below(3)) {
    case 0:
        FillTable(table, index);
        break;
    case 1:
        table.SetRowLimit(0, m_Dice.Below(2) - 1.0);
        break;
    default:
        table.SetScanned(m_Dice.Below(2));
        table.SetScannedInCondition(m_Dice.Below(2));
        table.SetCalculated(m_Dice.Below(2));
    }
    return index;
}

int Net::StartNewPass()
{
    if (!Has(NET_TABLES) || m_Dice.OneIn(3))
        m_Dice.Of(m_Sets)->StartNewPass();
    return 1;
}

int Net::Report()
{
    m_Dice.Of(m_Sets)->SetReportFcnDomainErrors(m_Dice.Below(2));
    return 1;
}

int Net::RenameFormula()
{
    CString name = m_Dice.Of(m_Formulas)->GetName();
    FormulaImpl& formula = *m_Dice.Of(m_Formulas);
    formula.SetName(name);
    if (m_Dice.OneIn(3))
        m_Sets[0]->AddFormula(&formula);
    return 1;
}

int Net::RenameVariable()
{
    CString name = m_Dice.Of({"x", "y", "z", "b?", "", "other"});
    VariableImpl& variable = *m_Dice.Of(m_Variables);
    variable.SetName(name);
    if (!m_Dice.OneIn(3))
        m_Sets[0]->AddVariable(&variable);
    return 1;
}

int Net::AskHost()
{
    switch (m_Dice.Below(4)) {
    case 0:
        return m_HostFormula->IsValid(m_Message, 1);
    case 1:
        return m_HostFormula->Calculate(m_Message, m_Dice.OneIn(2) ? &List() : nullptr);
    case 2:
        return m_HostTable->Calculate(m_Message, m_Dice.OneIn(2) ? &List() : nullptr);
    default:
        m_HostFormula->GetVariables(List(), m_Dice.Below(2), m_Dice.Below(2));
        return 1;
    }
}

int Net::ChangeHost()
{
    const auto fill = [this](auto& host) {
        const std::string text = Number(2, 2);
        Define(host.m_Name, text);
        host.m_Expression.SetFromEncodedString(Wide(text));
    };
    fill(*m_HostFormula);
    fill(*m_HostTable);
    return 1;
}

int Net::OpenPass()
{
    if (m_Passes.size() < 3)
        m_Passes.push_back(std::make_unique<CalculationPass>());
    return static_cast<int>(m_Passes.size());
}

int Net::ClosePass()
{
    if (!m_Passes.empty())
        m_Passes.pop_back();
    return static_cast<int>(m_Passes.size());
}

int Net::NoteHostChange()
{
    NewTurn();
    if (!m_Passes.empty())
        m_Passes.back()->NoteHostChange();
    return 1;
}

int Net::CheckBare()
{
    CFmlaExpression& bare = *m_Dice.Of(m_Bare);
    switch (m_Dice.Below(3)) {
    case 0:
        return bare.IsValid();
    case 1:
        return bare.LoadExpressionTree(m_Dice.Below(2));
    default:
        return bare.IsValid(m_Message, m_Dice.Of({"", "f0", "bare", "bare?"}), m_Dice.Below(2));
    }
}

int Net::CalculateBare()
{
    return m_Dice.Of(m_Bare)->Calculate(m_Dice.OneIn(3) ? &List() : nullptr);
}

int Net::ScanBare()
{
    m_Dice.Of(m_Bare)->GetVariables(List(), m_Dice.Below(2), m_Dice.Below(2));
    return 1;
}

int Net::EditBare()
{
    CFmlaExpression& bare = *m_Dice.Of(m_Bare);
    int isWhole = 0;
    switch (m_Dice.Below(12)) {
    case 0:
        return bare.InsertString(m_Dice.Of({"-", "1+", " ", "(", "2.5*"}), 0);
    case 1:
        return bare.InsertVariable(u"x", 0, TOK_VARIABLE);
    case 2:
        return bare.DeleteChars(0, 1 + m_Dice.Below(2), &isWhole);
    case 3:
        bare = *m_Dice.Of(m_Bare);
        return bare.NumVars();
    default:
        FillBare(bare);
        return bare.NumVars();
    }
}

int Net::Separators()
{
    SetLocaleSetting(LOCALE_SDECIMAL, m_Dice.Of({"", ",", ";"}));
    CFmlaExprBase::ReInitExprNames();
    return 1;
}

int Net::LoadOperand()
{
    CalculationOperand& operand = *m_Dice.Of(m_Operands);
    CString name = m_Dice.Of(m_Formulas)->GetName();
    CString table = m_Dice.Of({"t0", "t1", "t1", "ht"});
    CString variable = m_Dice.Of({"x", "d", "own"});
    for (const auto& formula : m_Formulas)
        formula->SetCalculated(m_Dice.Below(2));
    switch (m_Dice.Below(5)) {
    case 0:
        return operand.LoadFormula(name);
    case 1:
        return operand.LoadFormulaTable(table);
    case 2:
        return operand.LoadVariable(variable);
    default:
        return operand.LoadEncodedExpression(Wide(Number(2, static_cast<int>(m_Formulas.size()))));
    }
}

int Net::CheckOperand()
{
    return m_Dice.Of(m_Operands)->IsValid(m_Dice.OneIn(2));
}

int Net::CalculateOperand()
{
    CalculationOperand& operand = *m_Dice.Of(m_Operands);
    const bool isCalculated = operand.Calculate();
    Put(isCalculated);
    Put(operand.GetValue());
    return isCalculated;
}

int Net::ScanOperand()
{
    return m_Dice.Of(m_Operands)->GetVariables(List(), m_Dice.OneIn(2), m_Dice.OneIn(2));
}

void Net::Act()
{
    if (m_Passes.empty())
        NewTurn();
    const Deed& deed = *m_Dice.Of(m_Deeds);
    Put(std::string("\n> ") + deed.name);
    m_Fresh.emplace();
    m_Message = 77;
    m_Top = nullptr;
    try {
        Put((this->*deed.go)());
        Put(static_cast<int>(m_Message));
        Look();
    } catch (const HostTrouble&) {
        Put(" thrown");
        TidyUp();
    }
    m_Top = nullptr;
    LookAtExpressions();
}

// How far anything but the expressions got, is open.
void Net::TidyUp()
{
    ForgetFlags();
    m_Own.m_InCond = m_Deep.m_InCond = 0;
    m_Variables[0]->SetValue(0);
    for (const auto& table : m_Tables)
        table->SetValidated(0);
    for (const auto& set : m_Sets) {
        set->StartNewPass();
        set->SetStrError(CString());
        set->ErrorTracker().SetError(0, nullptr, u"none");
    }
}

void Net::See(const std::string& name, CFmlaExpression& expression)
{
    Put("\n" + name);
    Put(expression.GetValue());
    Put(expression.GetMessageNum());
    Put(expression.GetInvalidPos());
    Put(expression.IsLoaded() * 1000 + expression.IsCalculated() * 100 +
        expression.IsBoolean() * 10 + expression.IsNumeric());
}

void Net::See(const CScannedVariables& list)
{
    Put("\nlist " + Names(list));
    Put(list.DURATIONScanned() * 100 + list.JOBSIZEScanned() * 10 + list.QuantityScanned());
}

void Net::Look()
{
    See(*m_Kept);
    See(*m_Fresh);
    for (const auto& table : m_Tables) {
        Put("\n" + table->GetName().ToUtf8());
        Put(table->GetValue());
        Put(table->GetCalculated() * 100 + table->GetScanned() * 10 +
            table->GetScannedInCondition());
    }
    for (const auto& variable : m_Variables) {
        Put("\n" + variable->GetName().ToUtf8());
        Put(variable->VariableImpl::GetValue());
        Put(variable->InCond());
    }
    Put("\nhost's");
    Put(m_Own.m_InCond * 10 + m_Deep.m_InCond);
    for (const auto& set : m_Sets) {
        Put("\nset " + Dump(set->ErrorTracker()) + set->GetStrError().ToUtf8());
        Put(set->GetDURATIONInCondition() * 1000 + set->GetJOBSIZEInCondition() * 100 +
            set->GetQuantityInCondition() * 10 + set->GetQuantityInCalculations());
    }
    for (const auto& operand : m_Operands) {
        Put("\noperand");
        Put(static_cast<int>(operand->GetMsgId()));
        Put(operand->GetInvalidPos());
    }
}

void Net::LookAtExpressions()
{
    for (const auto& formula : m_Formulas)
        See(formula->GetName().ToUtf8(), formula->GetExpression());
    if (Has(NET_HOSTS)) {
        See("h", m_HostFormula->m_Expression);
        See("ht", m_HostTable->m_Expression);
        See("edited", m_Edited->GetExpression());
    }
    for (const auto& bare : m_Bare)
        See("bare", *bare);
    for (const auto& operand : m_Operands)
        if (operand->IsExpression())
            See("operand", operand->GetFmlaExpression());
    Put("\nbetween calls" + Names(NestedNames::m_NestedFmlaNames));
    Put(CExprTree::InIfCondition());
}

} // namespace

std::string LiveOfNet(unsigned int flags, unsigned int seed, bool isRemembering)
{
    Pass::SetRemembering(isRemembering);
    std::string seen = Net(flags, seed).Live(50);
    Pass::SetRemembering(true);
    return seen;
}

} // namespace tovo::test
