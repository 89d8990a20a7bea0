#include <TovoJob/Csv.h>

#include <istream>
#include <utility>

namespace tovo {

namespace {

constexpr int kEnd = std::char_traits<char>::eof();
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

} // namespace

CsvReader::CsvReader(std::istream& in, std::string name) : m_In(in), m_Name(std::move(name))
{}

Result<bool> CsvReader::Next(std::vector<std::string>& fields)
{
    fields.clear();
    if (m_IsEnded)
        return false;
    if (!m_In)
        return Bad("the text cannot be read");
    try {
        return TakeRecord(fields);
    } catch (const std::ios_base::failure&) {
        return Bad("the text cannot be read");
    }
}

// field *("," field) line end
Result<bool> CsvReader::TakeRecord(std::vector<std::string>& fields)
{
    if (m_BytesRead == 0)
        SkipByteOrderMark();
    m_RecordLine = m_Line;
    m_IsEnded = Peek() == kEnd;
    if (m_IsEnded)
        return false;
    for (bool isLast = false; !isLast;) {
        const Result<bool> field = TakeField(fields.emplace_back());
        if (!field)
            return field.Why();
        isLast = field.Value();
    }
    return true;
}

std::string CsvReader::Place() const
{
    return m_Name + ":" + std::to_string(m_RecordLine);
}

int CsvReader::Get()
{
    const int next = m_In.rdbuf()->sbumpc();
    if (next == kEnd)
        return kEnd;
    ++m_BytesRead;
    ++m_Column;
    if (next == '\n') {
        ++m_Line;
        m_Column = 0;
    }
    return next;
}

int CsvReader::Peek()
{
    return m_In.rdbuf()->sgetc();
}

// A file that begins with a part of the mark alone has that part as text, which no name of a column
// will be found to have.
void CsvReader::SkipByteOrderMark()
{
    for (const char byte : kByteOrderMark) {
        if (Peek() != static_cast<unsigned char>(byte))
            return;
        Get();
    }
    m_Column = 0;
}

// Whether a line ends with the byte that was read, whose CR may be followed by its LF.
bool CsvReader::TakesLineEnd(int next)
{
    if (next == '\r' && Peek() == '\n')
        next = Get();
    return next == '\n';
}

// True if it is the last one of its record.
Result<bool> CsvReader::TakeField(std::string& field)
{
    if (Peek() == '"')
        return TakeQuoted(field);
    for (;;) {
        const int next = Get();
        if (next == ',')
            return false;
        if (next == kEnd || TakesLineEnd(next))
            return true;
        if (next == '"')
            return Bad("a quote stands in a field that is not quoted");
        field += static_cast<char>(next);
    }
}

Result<bool> CsvReader::TakeQuoted(std::string& field)
{
    const std::string opened =
        m_Name + ":" + std::to_string(m_Line) + ":" + std::to_string(m_Column + 1);
    Get();
    for (;;) {
        const int next = Get();
        if (next == kEnd) {
            m_IsEnded = true;
            return Refusal{RefusalKind::BadFile, "the quote is never closed", opened};
        }
        if (next == '"') {
            if (Peek() != '"')
                return EndField();
            Get();
        }
        field += static_cast<char>(next);
    }
}

Result<bool> CsvReader::EndField()
{
    const int next = Get();
    if (next == ',')
        return false;
    if (next == kEnd || TakesLineEnd(next))
        return true;
    return Bad("a text follows the closing quote of a field");
}

Refusal CsvReader::Bad(std::string text)
{
    m_IsEnded = true;
    return {RefusalKind::BadFile, std::move(text),
            m_Name + ":" + std::to_string(m_Line) + ":" + std::to_string(m_Column)};
}

void AppendCsvRecord(std::string& text, std::span<const std::string> fields)
{
    bool isFirst = true;
    for (const std::string& field : fields) {
        if (!std::exchange(isFirst, false))
            text += ',';
        // A record of one empty field would else be an empty line.
        const bool isLone = field.empty() && fields.size() == 1;
        if (!isLone && field.find_first_of(",\"\r\n") == field.npos) {
            text += field;
            continue;
        }
        text += '"';
        for (const char byte : field) {
            if (byte == '"')
                text += '"';
            text += byte;
        }
        text += '"';
    }
    text += '\n';
}

} // namespace tovo
