#include <TovoFormula/FmlaExprBase.h>

#include "ReferenceTable.h"

using namespace tovo::detail;

namespace {

constexpr const WCHAR* kHead = u"{\\rtf1\\ansi";
constexpr const WCHAR* kFontTable = u"{\\fonttbl{\\f0\\fformula %s;}}";
// Black, blue, green, purple: the colour of literal text, then one for each kind of reference.
constexpr const WCHAR* kColourTable =
    u"{\\colortbl\\red0\\green0\\blue0;\\red0\\green0\\blue255;\\red0\\green128\\blue0;"
    u"\\red128\\green0\\blue128;}";
constexpr const WCHAR* kFont = u"\\f0";
constexpr const WCHAR* kSize = u"\\f0\\fs%d";
constexpr const WCHAR* kRunStart = u"\\plain";
constexpr const WCHAR* kTail = u" \\par}";

constexpr const WCHAR* kLiteralStyle = u"\\cf0\\b ";
constexpr const WCHAR* kReferenceStyles[] = {
    // indexed by the kind word
    u"\\cf1\\b\\ul ",
    u"\\cf2\\b\\ul ",
    u"\\cf3\\b\\ul ",
};

CString Size(int halfPoints)
{
    CString size;
    size.Format(kSize, halfPoints);
    return size;
}

// Writes the runs of one document.
class RunWriter {
public:
    RunWriter(CString head, CString size) : m_Document(std::move(head)), m_Size(std::move(size)) {}

    void Append(const WCHAR* style, const CString& text)
    {
        m_Document += kRunStart;
        m_Document += m_Size;
        m_Document += style;
        m_Document += text;
    }

    CString End() { return m_Document + kTail; }

private:
    CString m_Document;
    CString m_Size; // every run repeats it
};

} // namespace

CString CFmlaExprBase::GetRTFString(const CString& fontName, int fontSize) const
{
    CString head = kHead;
    if (!fontName.IsEmpty()) {
        CString fontTable;
        fontTable.Format(kFontTable, fontName);
        head += fontTable;
    }
    const CString size = Size(fontSize);
    RunWriter writer(head + kColourTable + kFont + size, size);

    int written = 0;
    const std::vector<Reference> references = ReferencesOf(m_VarPtrs);
    const int length = m_ExprText.GetLength();
    for (std::size_t next = NextEffective(references, 0, 0, length); next < references.size();
         next = NextEffective(references, next, written, length)) {
        const Reference& reference = references[next];
        if (written < reference.position)
            writer.Append(kLiteralStyle, m_ExprText.Mid(written, reference.position - written));
        CString stretch = m_ExprText.Mid(reference.position, reference.length);
        stretch.Replace(u"\\", u"\\\\");
        writer.Append(kReferenceStyles[reference.EffectiveKind()], stretch);
        written = reference.End();
    }
    if (written < length)
        writer.Append(kLiteralStyle, m_ExprText.Mid(written));
    return writer.End();
}
