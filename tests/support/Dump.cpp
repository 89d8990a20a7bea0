#include <support/Dump.h>

#include <TovoFormula/ExprToken.h>

namespace tovo::test {

namespace {

// Reaches the root of any tree, also of one that the library made.
class RootAccess : public CExprTree {
public:
    static const CETree* RootOf(const CExprTree& tree) { return tree.*(&RootAccess::m_Root); }
};

} // namespace

std::string Dump(const CExprToken& token)
{
    const int code = token.GetCode();
    if (code == TOK_GROUP)
        return "group";
    if (code > TOK_FORMTBL)
        return token.GetText().ToUtf8();
    return std::string(1, "VFT"[code]) + ':' + token.GetName().ToUtf8();
}

std::string Dump(const CETree& node)
{
    std::string text = node.GetData() ? Dump(*node.GetData()) : "(no token)";
    if (node.NumChildren() == 0)
        return text;
    char before = '(';
    for (int i = 0; i < node.NumChildren(); ++i) {
        const CETree& child = *node.GetChild(i);
        if (child.GetData() && child.GetData()->IsPunctuation())
            continue;
        text += before + Dump(child);
        before = ' ';
    }
    return text + (before == '(' ? "()" : ")");
}

std::string Dump(const CExprTree& tree)
{
    const CETree* const root = RootAccess::RootOf(tree);
    return root ? Dump(*root) : "(empty)";
}

std::string Dump(const CCalcErrorTracker& tracker)
{
    std::string text = std::to_string(tracker.GetError()) + " [";
    for (int i = 0; i < tracker.NumObjs(); ++i)
        text += (i > 0 ? " | " : "") + tracker.GetStr(i).ToUtf8();
    return text + ']';
}

} // namespace tovo::test
