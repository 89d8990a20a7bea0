#ifndef TOVOJOB_SRC_ENGINEOBJECTS_H
#define TOVOJOB_SRC_ENGINEOBJECTS_H

#include <memory>
#include <optional>
#include <string>

#include <TovoFormula/CalcSetImpl.h>
#include <TovoFormula/FormulaImpl.h>
#include <TovoFormula/FormulaTableImpl.h>
#include <TovoFormula/VariableImpl.h>

#include <TovoJob/Objects.h>

namespace tovo::job {

// What one evaluation came to.
struct Evaluation {
    bool isDone = false;
    double value = 0.0;
    unsigned int message = 0; // of a failure; the set's tracker has the chain until the next call
};

// A formula or a table that the job calculates in its turn. To whoever else asks, it returns the
// value that it has: all that an object reads is calculated before it, so no evaluation goes into
// another one.
template <typename Stock>
class InItsTurn : public Stock {
public:
    using Stock::Stock;

    double GetValue() override { return m_IsInTurn ? Stock::GetValue() : m_Value; }
    int Calculate(unsigned int& message, CScannedVariables* list) override
    {
        return m_IsInTurn ? Stock::Calculate(message, list) : 1;
    }
    int IsValid(unsigned int& message, int nested) override
    {
        return m_IsInTurn ? Stock::IsValid(message, nested) : 1;
    }

    // The value that others are told from now on.
    void SetKnownValue(double value) { m_Value = value; }

protected:
    // Makes the object calculate itself, for as long as this lives.
    class Turn {
    public:
        explicit Turn(InItsTurn& object) : m_Object(object) { m_Object.m_IsInTurn = true; }
        ~Turn() { m_Object.m_IsInTurn = false; }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

    private:
        InItsTurn& m_Object;
    };

private:
    bool m_IsInTurn = false;
    double m_Value = 0.0;
};

class EngineFormula : public InItsTurn<FormulaImpl> {
public:
    EngineFormula(CalcSetImpl& set, const Formula& formula);

    // Requires: everything that the text refers to is there and has a value.
    Evaluation Evaluate();
    // What is wrong with the text alone, wherever its references lead; 0 if nothing is.
    unsigned int CheckAlone();

private:
    IFormulaObj* m_Linked;
};

class EngineTable : public InItsTurn<FormulaTableImpl> {
public:
    EngineTable(CalcSetImpl& set, std::shared_ptr<const Table> table);

    // As that of a formula. A lookup that ends at an empty cell fails.
    Evaluation Evaluate();
    unsigned int CheckAlone();
    // The cell that the last evaluation has reached, both from 0.
    std::size_t Row() const { return static_cast<std::size_t>(GetRowIndex()); }
    std::size_t Column() const { return static_cast<std::size_t>(GetColIndex()); }

private:
    std::shared_ptr<const Table> m_Record;
};

// Gives a stock table the limits, selectors and cells. Requires: a stock table of the same size.
void Fill(FormulaTableImpl& stock, ICalculationSet& set, const Table& table);
// What stands in the cell that the last lookup has reached, a constant to the bit; nothing if the
// cell is empty, which the engine takes for 0. Requires: a stock table filled from this one.
std::optional<double> ReachedValue(const FormulaTableImpl& stock, const Table& table);
// How many rows and columns the engine's table has.
int RowsOf(const Table& table);
int ColumnsOf(const Table& table);

std::unique_ptr<VariableImpl> MakeEngineVariable(CalcSetImpl& set, const Variable& variable);

} // namespace tovo::job

#endif
