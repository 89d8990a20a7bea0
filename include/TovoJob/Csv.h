#ifndef TOVOJOB_CSV_H
#define TOVOJOB_CSV_H

#include <cstddef>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <TovoJob/Export.h>
#include <TovoJob/Result.h>

// Text of comma-separated values, as RFC 4180 describes it, read and written to the byte.

namespace tovo {

// Reads one record after the other. Fields are separated by commas, records by LF or CR LF; the
// last record may lack its line end. A field in double quotes may hold commas, line ends, and
// quotes that are doubled. A byte order mark in front of everything is passed over. Nothing else is
// interpreted: blanks belong to their field.
class TOVO_JOB_API CsvReader {
public:
    // The stream must outlive the reader. The name serves for messages.
    explicit CsvReader(std::istream& in, std::string name = "CSV");

    // False at the end. Refused as BadFile, with name:line:column, for a quote within a field that
    // is not quoted, a text behind a closing quote, a quote that is never closed, and a stream that
    // fails; after that there is nothing more to read.
    Result<bool> Next(std::vector<std::string>& fields);

    // The line, from 1, on which the last record began.
    std::size_t Line() const { return m_RecordLine; }
    // name:line of the last record, for messages about its content.
    std::string Place() const;
    // How many bytes were read.
    std::size_t BytesRead() const { return m_BytesRead; }

private:
    Result<bool> TakeRecord(std::vector<std::string>& fields);
    int Get();
    int Peek();
    void SkipByteOrderMark();
    bool TakesLineEnd(int next);
    Result<bool> TakeField(std::string& field);
    Result<bool> TakeQuoted(std::string& field);
    Result<bool> EndField();
    Refusal Bad(std::string text);

    std::istream& m_In;
    std::string m_Name;
    std::size_t m_BytesRead = 0;
    std::size_t m_Line = 1;
    std::size_t m_Column = 0; // of the byte read last, from 1
    std::size_t m_RecordLine = 1;
    bool m_IsEnded = false;
};

// Appends a record with LF as its line end. A field is put in quotes if it needs them.
TOVO_JOB_API void AppendCsvRecord(std::string& text, std::span<const std::string> fields);

} // namespace tovo

#endif
