#include <TovoPlatform/WideString.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

#include <TovoPlatform/InvalidArgument.h>

#include "ModuleChain.h"
#include "WhiteSpace.h"

namespace {

// Lengths and positions are handed out as int.
constexpr std::size_t kMaxLength = std::numeric_limits<int>::max();

// Stands for what cannot be carried over the border between the two encodings.
constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstSurrogate = 0xD800;
constexpr char32_t kFirstLowSurrogate = 0xDC00;
constexpr char32_t kLastSurrogate = 0xDFFF;
constexpr char32_t kFirstSupplementary = 0x10000;
constexpr char32_t kLastCodePoint = 0x10FFFF;

constexpr int kSurrogateBits = 10; // of a supplementary code point, in each half of its pair
constexpr char32_t kSurrogateMask = 0x3FF;

// The bytes that follow the lead of a sequence are 10xxxxxx.
constexpr unsigned kTrailMark = 0x80;
constexpr unsigned kTrailMarkMask = 0xC0;
constexpr int kTrailBits = 6;
constexpr char32_t kTrailMask = 0x3F;

// One shape of a UTF-8 sequence, which both directions read.
struct SequenceForm {
    unsigned leadMask;
    unsigned leadMark;
    std::size_t length;
    char32_t smallest; // a lower code point in this form is overlong
};

constexpr SequenceForm kSequenceForms[] = {
    {0x80, 0x00, 1, 0x0},
    {0xE0, 0xC0, 2, 0x80},
    {0xF0, 0xE0, 3, 0x800},
    {0xF8, 0xF0, 4, kFirstSupplementary},
};

struct Decoded {
    char32_t codePoint;
    std::size_t length; // what it takes of the text
};

constexpr unsigned ByteAt(std::string_view text, std::size_t at)
{
    return static_cast<unsigned char>(text[at]);
}

bool IsSurrogate(char32_t codePoint)
{
    return codePoint >= kFirstSurrogate && codePoint <= kLastSurrogate;
}

// Nothing for a sequence that is cut short, overlong, or stands for no code point of its own.
std::optional<Decoded> DecodeForm(std::string_view rest, const SequenceForm& form)
{
    if (rest.size() < form.length)
        return std::nullopt;
    char32_t codePoint = ByteAt(rest, 0) & ~form.leadMask;
    for (std::size_t i = 1; i < form.length; ++i) {
        if ((ByteAt(rest, i) & kTrailMarkMask) != kTrailMark)
            return std::nullopt;
        codePoint = (codePoint << kTrailBits) | (ByteAt(rest, i) & kTrailMask);
    }
    if (codePoint < form.smallest || codePoint > kLastCodePoint || IsSurrogate(codePoint))
        return std::nullopt;
    return Decoded{codePoint, form.length};
}

// A byte that begins no sequence is passed over alone: the next one may begin a good one again.
// Requires: a text that is not empty.
Decoded DecodeUtf8(std::string_view rest)
{
    for (const SequenceForm& form : kSequenceForms) {
        if ((ByteAt(rest, 0) & form.leadMask) == form.leadMark)
            return DecodeForm(rest, form).value_or(Decoded{kReplacement, 1});
    }
    return {kReplacement, 1};
}

void AppendWide(WideText& text, char32_t codePoint)
{
    if (codePoint < kFirstSupplementary) {
        text += static_cast<char16_t>(codePoint);
        return;
    }
    const char32_t offset = codePoint - kFirstSupplementary;
    text += static_cast<char16_t>(kFirstSurrogate + (offset >> kSurrogateBits));
    text += static_cast<char16_t>(kFirstLowSurrogate + (offset & kSurrogateMask));
}

WideText FromUtf8(std::string_view utf8)
{
    WideText text;
    // No sequence has fewer bytes than it has characters of 16 bits.
    text.reserve(utf8.size());
    while (!utf8.empty()) {
        const Decoded next = DecodeUtf8(utf8);
        AppendWide(text, next.codePoint);
        utf8.remove_prefix(next.length);
    }
    return text;
}

// Requires: a text that is not empty.
Decoded DecodeWide(WideView rest)
{
    const char32_t unit = rest[0];
    if (!IsSurrogate(unit))
        return {unit, 1};
    const char32_t next = rest.size() > 1 ? rest[1] : 0;
    const bool isPair =
        unit < kFirstLowSurrogate && next >= kFirstLowSurrogate && IsSurrogate(next);
    if (!isPair)
        return {kReplacement, 1};
    const char32_t high = unit - kFirstSurrogate;
    return {kFirstSupplementary + (high << kSurrogateBits) + (next - kFirstLowSurrogate), 2};
}

// The only form in which the code point is not overlong.
const SequenceForm& ShortestForm(char32_t codePoint)
{
    const SequenceForm* form = std::end(kSequenceForms) - 1;
    while (codePoint < form->smallest)
        --form;
    return *form;
}

void AppendUtf8(std::string& utf8, char32_t codePoint)
{
    const SequenceForm& form = ShortestForm(codePoint);
    int shift = kTrailBits * static_cast<int>(form.length - 1);
    utf8 += static_cast<char>(form.leadMark | (codePoint >> shift));
    while (shift > 0) {
        shift -= kTrailBits;
        utf8 += static_cast<char>(kTrailMark | ((codePoint >> shift) & kTrailMask));
    }
}

// Callers pass null for a text that they do not have.
template <typename CHARACTER>
std::basic_string_view<CHARACTER> OrEmpty(const CHARACTER* text)
{
    return text ? std::basic_string_view<CHARACTER>(text) : std::basic_string_view<CHARACTER>();
}

// Ends in the exception with which the standard strings refuse the same.
void RequireLength(std::size_t length)
{
    if (length > kMaxLength)
        throw std::length_error("A string cannot hold that many characters.");
}

// For the operations that clip nothing: reading or writing outside would be a fault of the caller
// that must not go unseen.
std::size_t RequireIndex(int index, int end)
{
    if (index < 0 || index >= end)
        AfxThrowInvalidArgException();
    return static_cast<std::size_t>(index);
}

// How most operations take an index or a count: what lies outside is moved to the nearer end.
std::size_t Clip(int value, std::size_t limit)
{
    return value < 0 ? 0 : std::min(static_cast<std::size_t>(value), limit);
}

int PositionOrNone(std::size_t found)
{
    return found == WideView::npos ? -1 : static_cast<int>(found);
}

} // namespace

// Digits and a minus only, whatever the locale of the process: no grouping.
CFormatArgument::CFormatArgument(int number) : CFormatArgument(CString(std::to_string(number)))
{}

CFormatArgument::CFormatArgument(const char16_t* text) : m_Text(OrEmpty(text))
{}

CFormatArgument::CFormatArgument(const CString& text) : m_Text(text.View())
{}

CString::CString(const char16_t* text) : CString(OrEmpty(text))
{}

CString::CString(char16_t character, int count)
    : CString(WideText(Clip(count, kMaxLength), character))
{}

CString::CString(WideView text) : CString(WideText(text))
{}

// Every other constructor with characters ends here, so the limit and the empty string are seen to
// in one place.
CString::CString(WideText text)
{
    RequireLength(text.size());
    if (!text.empty())
        m_Text = std::make_shared<WideText>(std::move(text));
}

CString::CString(const char* utf8) : CString(OrEmpty(utf8))
{}

CString::CString(std::string_view utf8) : CString(FromUtf8(utf8))
{}

std::string CString::ToUtf8() const
{
    std::string utf8;
    utf8.reserve(View().size());
    for (WideView rest = View(); !rest.empty();) {
        const Decoded next = DecodeWide(rest);
        AppendUtf8(utf8, next.codePoint);
        rest.remove_prefix(next.length);
    }
    return utf8;
}

const char16_t* CString::GetString() const noexcept
{
    // An empty string owns nothing that could be pointed to.
    static constexpr char16_t kNoCharacters = 0;
    return m_Text ? m_Text->c_str() : &kNoCharacters;
}

char16_t CString::operator[](int index) const
{
    return GetString()[RequireIndex(index, GetLength() + 1)];
}

void CString::SetAt(int index, char16_t character)
{
    const std::size_t at = RequireIndex(index, GetLength());
    Unshared()[at] = character;
}

CString CString::Left(int count) const
{
    return Mid(0, count);
}

CString CString::Right(int count) const
{
    return Mid(GetLength() - static_cast<int>(Clip(count, View().size())));
}

CString CString::Mid(int start) const
{
    return Mid(start, GetLength());
}

CString CString::Mid(int start, int count) const
{
    const std::size_t from = Clip(start, View().size());
    const WideView part = View().substr(from, Clip(count, kMaxLength));
    // The whole string is shared instead of copied.
    return part.size() == View().size() ? *this : CString(part);
}

void CString::TrimRight()
{
    const WideView rest = tovo::TrimmedRight(View());
    // Most strings end in no blank, and stay shared then.
    if (rest.size() != View().size())
        Unshared().resize(rest.size());
}

int CString::Find(const CString& text, int start) const
{
    return PositionOrNone(View().find(text.View(), Clip(start, kMaxLength)));
}

int CString::Find(char16_t character, int start) const
{
    return PositionOrNone(View().find(character, Clip(start, kMaxLength)));
}

int CString::Replace(const CString& text, const CString& replacement)
{
    if (text.IsEmpty())
        return 0;
    // Built apart, because either argument may be this string, or share its characters.
    WideText result;
    int count = 0;
    std::size_t taken = 0;
    for (std::size_t found = View().find(text.View()); found != WideView::npos;
         found = View().find(text.View(), taken)) {
        result.append(View(), taken, found - taken).append(replacement.View());
        taken = found + text.View().size();
        ++count;
    }
    if (count > 0)
        *this = CString(std::move(result.append(View(), taken)));
    return count;
}

int CString::Insert(int index, const CString& text)
{
    if (text.IsEmpty())
        return GetLength();
    RequireLength(View().size() + text.View().size());
    // The text may be this string itself; then its characters are looked up after the unsharing.
    WideText& own = Unshared();
    own.insert(Clip(index, own.size()), *text.m_Text);
    return GetLength();
}

int CString::Delete(int index, int count)
{
    const std::size_t from = Clip(index, View().size());
    const std::size_t taken = Clip(count, View().size() - from);
    if (taken > 0)
        Unshared().erase(from, taken);
    return GetLength();
}

BOOL CString::LoadString(UINT id)
{
    // The text outlives its module's presence, so it is copied without a lock.
    const char16_t* const text = tovo::FindStringResource(id);
    if (!text)
        return 0;
    *this = CString(text);
    return 1;
}

CString& CString::operator+=(const CString& text)
{
    // Appending to an empty string is the usual beginning of a loop and costs no copy.
    if (IsEmpty())
        return *this = text;
    if (text.IsEmpty())
        return *this;
    RequireLength(View().size() + text.View().size());
    Unshared().append(*text.m_Text);
    return *this;
}

CString& CString::operator+=(char16_t character)
{
    RequireLength(View().size() + 1);
    Unshared() += character;
    return *this;
}

void CString::FormatList(const char16_t* format, std::initializer_list<CFormatArgument> arguments)
{
    // Built apart, because the format may point into this string.
    WideText result;
    auto argument = arguments.begin();
    for (WideView rest = OrEmpty(format); !rest.empty();) {
        // A percent sign before anything else, or at the end, stands for itself.
        const char16_t place = rest.size() > 1 && rest[0] == '%' ? rest[1] : char16_t();
        const bool isArgument = place == 's' || place == 'd';
        if (isArgument && argument != arguments.end())
            result += (argument++)->Text();
        else if (!isArgument)
            result += rest[0];
        rest.remove_prefix(isArgument || place == '%' ? 2 : 1);
    }
    *this = CString(std::move(result));
}

WideText& CString::Unshared()
{
    if (!m_Text) {
        m_Text = std::make_shared<WideText>();
    } else if (m_Text.use_count() == 1) {
        // The last other share may have ended on another thread just now. Taking and dropping one
        // more orders what that thread still read before the change that follows.
        const std::shared_ptr<WideText> share = m_Text;
    } else {
        m_Text = std::make_shared<WideText>(*m_Text);
    }
    return *m_Text;
}

CString operator+(const CString& a, const CString& b)
{
    if (a.IsEmpty())
        return b;
    if (b.IsEmpty())
        return a;
    // One allocation instead of a copy that grows.
    WideText text;
    text.reserve(a.View().size() + b.View().size());
    return CString(std::move(text.append(a.View()).append(b.View())));
}

CString operator+(const CString& a, char16_t b)
{
    return a + CString(b);
}

CString operator+(char16_t a, const CString& b)
{
    return CString(a) + b;
}

WideView tovo::TrimmedRight(WideView text)
{
    while (!text.empty() && IsWhiteSpace(text.back()))
        text.remove_suffix(1);
    return text;
}
