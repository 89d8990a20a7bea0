#ifndef TOVOFORMULA_SRC_TEXTEXCHANGE_H
#define TOVOFORMULA_SRC_TEXTEXCHANGE_H

class CFmlaExprBase;

namespace tovo::detail {

// Exchanges the texts of two expressions with their tables, as a change of both. Cannot fail.
struct TextExchange {
    static void Swap(CFmlaExprBase& a, CFmlaExprBase& b) noexcept;
};

} // namespace tovo::detail

#endif
