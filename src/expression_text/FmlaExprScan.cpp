#include <TovoFormula/FmlaExprBase.h>

#include <algorithm>
#include <atomic>
#include <utility>

#include <TovoPlatform/ProcessState.h>
#include <TovoPlatform/ThreadTexts.h>

#include "../expression_core/Pass.h"
#include "../expression_core/RestoreOnThrow.h"
#include "../expression_core/UserLanguage.h"
#include "TokenScanner.h"

using namespace tovo::detail;

namespace {

// Every expression asks on its construction, so asking takes no lock.
std::atomic_ref<int> IsLoaded(int& flag)
{
    return std::atomic_ref<int>(flag);
}

} // namespace

constinit CExpressionNames CFmlaExprBase::m_ExprNames;
constinit int CFmlaExprBase::m_ExpressionNamesInitialized = 0;

void CFmlaExprBase::InitExprNames()
{
    if (IsLoaded(m_ExpressionNamesInitialized).load(std::memory_order_acquire))
        return;
    const std::lock_guard lock(tovo::LoadingLock());
    if (m_ExpressionNamesInitialized)
        return;
    LoadNames();
    IsLoaded(m_ExpressionNamesInitialized).store(1, std::memory_order_release);
}

void CFmlaExprBase::ReInitExprNames()
{
    const std::lock_guard lock(tovo::LoadingLock());
    Pass::NoteChange();
    LoadNames();
    IsLoaded(m_ExpressionNamesInitialized).store(1, std::memory_order_release);
}

// Those of the process, also where the thread has a language of its own.
void CFmlaExprBase::LoadNames()
{
    const tovo::ThreadTextsInForce none(nullptr);
    // Has room for all names, so that nothing can go wrong once they are loaded.
    auto present = std::make_shared<CExpressionNames>();
    present->SetSize(std::max(m_ExprNames.GetSize(), static_cast<int>(kTokenCount)));
    m_ExprNames.Init();
    *present = m_ExprNames;
    processLanguage = UserLanguage(std::move(present));
}

const std::shared_ptr<const CExpressionNames>& CFmlaExprBase::PresentNames()
{
    return languageInForce->names;
}

int CFmlaExprBase::GetTokenString(int code, CString& text)
{
    InitExprNames();
    if (code < 0 || code >= kTokenCount)
        return 0;
    text = SpellingOf(TL_LOCAL).TextOf(code);
    return 1;
}

int CFmlaExprBase::FindFirstToken(CString& token, int& tokenCode, int& tokenPos, int startPos,
                                  TEXT_LANGUAGE language)
{
    RestoreOnThrow former(m_ScanPos);
    m_ScanPos = startPos;
    const int isFound = FindNextToken(token, tokenCode, tokenPos, language);
    former.End();
    return isFound;
}

int CFmlaExprBase::FindNextToken(CString& token, int& tokenCode, int& tokenPos,
                                 TEXT_LANGUAGE language)
{
    NoteTouched();
    const Reference next = NextVar();
    TokenScanner scanner(m_ExprText, {&next, 1}, SpellingOf(language), m_ScanPos);
    return DeliverToken(scanner, token, tokenCode, tokenPos);
}

// The first reference that the scan has not passed, an empty one if there is none. One token meets
// no more than that.
Reference CFmlaExprBase::NextVar()
{
    if (m_ScanPos < m_PassedAt)
        m_PassedVars = 0;
    m_PassedAt = m_ScanPos;
    for (; m_PassedVars < NumVars(); ++m_PassedVars) {
        const Reference reference = ReferenceAt(m_VarPtrs, m_PassedVars);
        if (NextEffective({&reference, 1}, 0, m_ScanPos, m_ExprText.GetLength()) == 0)
            return reference;
    }
    return Reference();
}

int CFmlaExprBase::DeliverToken(TokenScanner& scanner, CString& token, int& tokenCode,
                                int& tokenPos)
{
    const TokenScanner::Outcome outcome = scanner.Next();
    CString text = outcome == TokenScanner::Outcome::End ? token : scanner.TokenString();
    RestoreOnThrow former(m_ScanPos);
    m_ScanPos = scanner.ScanPos();
    if (outcome == TokenScanner::Outcome::Fault)
        ReportFault(scanner.FaultMessage());
    former.End();
    token = std::move(text);
    tokenPos = scanner.TokenPos();
    if (outcome != TokenScanner::Outcome::Token)
        return 0;
    tokenCode = scanner.TokenCode();
    return 1;
}

void CFmlaExprBase::ReportFault(unsigned int message)
{
    NoteTouched();
    RestoreOnThrow former(m_MessageNum);
    m_MessageNum = static_cast<int>(message);
    TrackError(message);
    former.End();
}

Spelling CFmlaExprBase::SpellingOf(TEXT_LANGUAGE language)
{
    if (language != TL_LOCAL)
        return Spelling();
    return Spelling(HasOwnLanguage() ? *NamesInForce() : m_ExprNames);
}

int CFmlaExprBase::IsValidFunctionCharacter(char16_t character) const
{
    return IsWordLetter(character) ? 1 : 0;
}

int CFmlaExprBase::IsDelm(char16_t character) const
{
    const Spelling spelling = SpellingOf(TL_LOCAL);
    for (const int code : {TOK_COMMA, TOK_PLUS, TOK_MINUS, TOK_TIMES, TOK_DIVIDE})
        if (spelling.NameOf(code) == WideView(&character, 1))
            return 1;
    return 0;
}

int CFmlaExprBase::IsDelmOrSpace(char16_t character) const
{
    return character == u' ' || IsDelm(character) ? 1 : 0;
}
