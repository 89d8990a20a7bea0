#ifndef TOVOFORMULA_SRC_RESTOREONTHROW_H
#define TOVOFORMULA_SRC_RESTOREONTHROW_H

#include <tuple>
#include <type_traits>
#include <utility>

namespace tovo::detail {

// Gives fields the values again that they had, unless it is told that all went well. For what must
// change before something that may throw, most often a call of a host's object.
template <typename... Fields>
class RestoreOnThrow {
    static_assert((std::is_nothrow_move_assignable_v<Fields> && ...));

public:
    explicit RestoreOnThrow(Fields&... fields) : m_Fields(fields...), m_Found(fields...) {}
    ~RestoreOnThrow()
    {
        if (!m_HasEnded)
            m_Fields = std::move(m_Found);
    }

    RestoreOnThrow(const RestoreOnThrow&) = delete;
    RestoreOnThrow& operator=(const RestoreOnThrow&) = delete;

    void End() noexcept { m_HasEnded = true; }

private:
    std::tuple<Fields&...> m_Fields;
    std::tuple<Fields...> m_Found;
    bool m_HasEnded = false;
};

} // namespace tovo::detail

#endif
