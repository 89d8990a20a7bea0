#ifndef TOVOFORMULA_BENCH_ALTERNATING_H
#define TOVOFORMULA_BENCH_ALTERNATING_H

#include <array>
#include <utility>

namespace bench {

// Two values in turn, so that no step of a measurement is given what it has already.
template <typename Value>
class Alternating {
public:
    Alternating(Value first, Value second) : m_Values{std::move(first), std::move(second)} {}

    // The second at the first call.
    const Value& Next()
    {
        m_IsSecond = !m_IsSecond;
        return m_Values[m_IsSecond ? 1 : 0];
    }

private:
    std::array<Value, 2> m_Values;
    bool m_IsSecond = false;
};

} // namespace bench

#endif
