#ifndef TOVO_PRESENTATION_LANGUAGE_H
#define TOVO_PRESENTATION_LANGUAGE_H

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <TovoPlatform/StringResources.h>
#include <TovoPlatform/WideString.h>

// How a user spells expressions: names for the words of the language, by token code, and the two
// separators. What is not here stays as it is in English.
struct Language {
    std::map<int, CString> words;
    CString decimal;
    CString list;
};

// Reads a language file. Throws a FileFault for one that is no such file, or with which a text
// could not be read back. Requires: no other language is in force, since the file names the words
// in English.
Language ReadLanguageFile(const std::string& path);

// What the command line of a program may say of the language; empty for nothing.
struct LanguageOptions {
    std::string file;
    std::string decimal; // goes before that of the file, as the next does
    std::string list;
};

// Reads the file, if there is one. Throws as ReadLanguageFile does.
Language LanguageOf(const LanguageOptions& options);

// Puts a language in force for the process. Throws std::invalid_argument for separators that
// cannot be told apart from each other or from the rest of an expression. There is one at a time,
// and it lives as long as expressions are used.
class LanguageInForce {
public:
    explicit LanguageInForce(const Language& language);

    LanguageInForce(const LanguageInForce&) = delete;
    LanguageInForce& operator=(const LanguageInForce&) = delete;

    // In UTF-8.
    const std::string& DecimalSeparator() const { return m_DecimalSeparator; }

private:
    std::string m_DecimalSeparator;
    std::map<int, CString> m_Words;           // the texts of the resources
    std::vector<AfxStringResource> m_Strings; // the table of the module
    AFX_EXTENSION_MODULE m_Module;
    std::optional<CDynLinkLibrary> m_OnChain; // goes before what it stands for
};

#endif
