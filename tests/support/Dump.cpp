#include <support/Dump.h>

#include <TovoFormula/ExprToken.h>

namespace tovo::test {

namespace {

// Reaches the root of any tree, also of one that the library made.
class RootAccess : public CExprTree {
public:
    static const CETree* RootOf(const CExprTree& tree) { return tree.*(&RootAccess::m_Root); }
};

bool IsPunctuation(const CETree& node)
{
    return node.GetData() && node.GetData()->IsPunctuation();
}

std::string DumpChildren(const CETree& node)
{
    std::string text;
    for (int i = 0; i < node.NumChildren(); ++i) {
        const CETree& child = *node.GetChild(i);
        if (IsPunctuation(child))
            continue;
        if (!text.empty())
            text += ' ';
        text += Dump(child);
    }
    return text;
}

} // namespace

std::string Dump(const CExprToken& token)
{
    switch (token.GetCode()) {
    case TOK_GROUP:
        return "group";
    case TOK_VARIABLE:
        return "V:" + token.GetName().ToUtf8();
    case TOK_FORMULA:
        return "F:" + token.GetName().ToUtf8();
    case TOK_FORMTBL:
        return "T:" + token.GetName().ToUtf8();
    default:
        return token.GetText().ToUtf8();
    }
}

std::string Dump(const CETree& node)
{
    const std::string name = node.GetData() ? Dump(*node.GetData()) : "(no token)";
    if (node.NumChildren() == 0)
        return name;
    return name + '(' + DumpChildren(node) + ')';
}

std::string Dump(const CExprTree& tree)
{
    const CETree* const root = RootAccess::RootOf(tree);
    return root ? Dump(*root) : "(empty)";
}

std::string Dump(const CCalcErrorTracker& tracker)
{
    std::string text = std::to_string(tracker.GetError()) + " [";
    for (int i = 0; i < tracker.NumObjs(); ++i) {
        if (i > 0)
            text += " | ";
        text += tracker.GetStr(i).ToUtf8();
    }
    return text + ']';
}

} // namespace tovo::test
