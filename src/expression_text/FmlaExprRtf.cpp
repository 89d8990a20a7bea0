#include <TovoFormula/FmlaExprBase.h>

#include "RtfRuns.h"

using namespace tovo::detail;

namespace {

constexpr const char16_t* kHead = u"{\\rtf1\\ansi";
constexpr const char16_t* kFontTable = u"{\\fonttbl{\\f0\\fformula %s;}}";
constexpr const char16_t* kFont = u"\\f0";
constexpr const char16_t* kSize = u"\\f0\\fs%d";
constexpr const char16_t* kRunStart = u"\\plain";
constexpr const char16_t* kTail = u" \\par}";

CString Size(int halfPoints)
{
    CString size;
    size.Format(kSize, halfPoints);
    return size;
}

} // namespace

CString CFmlaExprBase::GetRTFString(const CString& fontName, int fontSize) const
{
    CString document = kHead;
    if (!fontName.IsEmpty()) {
        CString fontTable;
        fontTable.Format(kFontTable, fontName);
        document += fontTable;
    }
    const CString size = Size(fontSize);
    document += kRtfColourTable;
    document += kFont + size;
    ForEachRtfRun(m_ExprText.View(), ReferencesOf(m_VarPtrs), [&](int kind, WideView run) {
        CString text(run);
        if (kind != kNoKind)
            text.Replace(u"\\", u"\\\\");
        document += kRunStart;
        document += size;
        document += RtfStyleOf(kind);
        document += text;
    });
    return document + kTail;
}
