#include "Terminal.h"

#include <array>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <map>
#include <stdexcept>

#include <langinfo.h>
#include <poll.h>
#include <unistd.h>

#define NCURSES_NOMACROS
#include <curses.h>

#include "Glyphs.h"

namespace {

// How long a wait for a key is, in milliseconds.
constexpr int kMoment = 400;

// Behind the codes that the terminal library gives out itself.
constexpr int kWordLeftCode = KEY_MAX + 1;
constexpr int kWordRightCode = KEY_MAX + 2;

struct Sequence {
    const char* bytes;
    int code;
};

// What terminals send, whatever their description says: a multiplexer often shows another one.
constexpr Sequence kSequences[] = {
    {"\033[1;5D", kWordLeftCode}, {"\033[1;5C", kWordRightCode}, {"\033Od", kWordLeftCode},
    {"\033Oc", kWordRightCode},   {"\033[5D", kWordLeftCode},    {"\033[5C", kWordRightCode},
    {"\033[1~", KEY_HOME},        {"\033[4~", KEY_END},          {"\033[H", KEY_HOME},
    {"\033[F", KEY_END},          {"\033OH", KEY_HOME},          {"\033OF", KEY_END},
    {"\033[A", KEY_UP},           {"\033[B", KEY_DOWN},          {"\033[C", KEY_RIGHT},
    {"\033[D", KEY_LEFT},         {"\033[3~", KEY_DC},
};

struct Colours {
    Paint paint;
    short foreground; // with 8 colours
    short bright;     // with 256, where the dark ones can be avoided
    attr_t attributes;
};

constexpr Colours kColours[] = {
    {Paint::Variable, COLOR_BLUE, 33, A_UNDERLINE | A_BOLD},
    {Paint::Formula, COLOR_GREEN, 34, A_UNDERLINE | A_BOLD},
    {Paint::Table, COLOR_MAGENTA, 134, A_UNDERLINE | A_BOLD},
    {Paint::Fault, COLOR_RED, 203, A_BOLD},
    {Paint::FaultPlace, COLOR_RED, 203, A_UNDERLINE | A_BOLD},
    {Paint::Refused, COLOR_RED, 203, A_BOLD | A_REVERSE},
};

// Bars and the chosen line are reversed, which every terminal can show.
attr_t AttributesOf(Paint paint)
{
    for (const Colours& colours : kColours) {
        if (colours.paint == paint)
            return colours.attributes;
    }
    if (paint == Paint::Strong)
        return A_BOLD;
    return paint == Paint::Plain ? A_NORMAL : A_REVERSE;
}

short PairOf(Paint paint)
{
    short pair = 0;
    for (const Colours& colours : kColours) {
        ++pair;
        if (colours.paint == paint)
            return pair;
    }
    return 0;
}

// A terminal without colours still underlines. The background stays the user's own.
void StartColours()
{
    if (!has_colors() || start_color() == ERR)
        return;
    use_default_colors();
    for (const Colours& colours : kColours) {
        const short foreground = COLORS >= 256 ? colours.bright : colours.foreground;
        init_pair(PairOf(colours.paint), foreground, -1);
    }
}

// KEY_RESIZE comes without a key press, and only asks for a new drawing.
Key KeyOfCode(int code)
{
    static const std::map<int, Key> kKeys = {{KEY_ENTER, Key::Enter},
                                             {KEY_BACKSPACE, Key::Backspace},
                                             {KEY_DC, Key::Delete},
                                             {KEY_LEFT, Key::Left},
                                             {KEY_RIGHT, Key::Right},
                                             {KEY_UP, Key::Up},
                                             {KEY_DOWN, Key::Down},
                                             {KEY_PPAGE, Key::PageUp},
                                             {KEY_NPAGE, Key::PageDown},
                                             {KEY_HOME, Key::Home},
                                             {KEY_END, Key::End},
                                             {KEY_F(1), Key::F1},
                                             {KEY_F(2), Key::F2},
                                             {KEY_F(3), Key::F3},
                                             {KEY_F(4), Key::F4},
                                             {KEY_F(5), Key::F5},
                                             {KEY_F(6), Key::F6},
                                             {KEY_F(7), Key::F7},
                                             {KEY_F(8), Key::F8},
                                             {KEY_F(9), Key::F9},
                                             {kWordLeftCode, Key::WordLeft},
                                             {KEY_RESIZE, Key::Resize},
                                             {KEY_MOUSE, Key::Click},
                                             {kWordRightCode, Key::WordRight}};
    const auto found = kKeys.find(code);
    return found == kKeys.end() ? Key::Other : found->second;
}

// The character that a letter makes together with the Ctrl key.
constexpr wint_t Control(char letter)
{
    return static_cast<wint_t>(letter - 'A' + 1);
}

// Control characters reach us as such, since the terminal is in raw mode. Those that mean nothing
// here are not typed into a formula.
Key KeyOfCharacter(wint_t character)
{
    switch (character) {
    case L'\r':
    case L'\n':
        return Key::Enter;
    case L'\t':
        return Key::Tab;
    case 0x1B:
        return Key::Escape;
    case 0x7F:
    case Control('H'):
        return Key::Backspace;
    case Control('Z'):
        return Key::Undo;
    case Control('Y'):
        return Key::Redo;
    case Control('S'):
        return Key::Save;
    case Control('W'):
        return Key::SaveAs;
    case Control('C'):
    case Control('Q'):
        return Key::Quit;
    default:
        return character < 0x20 || (character >= 0x80 && character < 0xA0) ? Key::Other
                                                                           : Key::Character;
    }
}

// What lies beyond 16 bits becomes a pair of surrogates.
CString TextOf(wint_t character)
{
    if (character < 0x10000)
        return CString(static_cast<char16_t>(character));
    const wint_t rest = character - 0x10000;
    return CString(static_cast<char16_t>(0xD800 + (rest >> 10))) +
           static_cast<char16_t>(0xDC00 + (rest & 0x3FF));
}

// The wheel moves as the arrow keys do. A release means nothing here.
KeyPress MousePress()
{
    MEVENT event;
    if (getmouse(&event) != OK)
        return {};
    if (event.bstate & BUTTON4_PRESSED)
        return {Key::Up, {}, 0, 0};
    if (event.bstate & BUTTON5_PRESSED)
        return {Key::Down, {}, 0, 0};
    return {event.bstate & BUTTON1_PRESSED ? Key::Click : Key::Other, {}, event.y, event.x};
}

// The rest of a key's sequence that nothing above knows: typed into a formula it would be noise,
// and its Escape alone would leave the editor.
bool SkipSequence()
{
    wtimeout(stdscr, 0);
    wint_t next = 0;
    int kind = wget_wch(stdscr, &next);
    const bool isSequence = kind == OK && (next == L'[' || next == L'O');
    if (kind == OK && !isSequence)
        unget_wch(static_cast<wchar_t>(next));
    while (isSequence && (kind = wget_wch(stdscr, &next)) == OK && (next < 0x40 || next > 0x7E)) {
    }
    wtimeout(stdscr, kMoment);
    return isSequence;
}

// Reading also fails for a signal, and for bytes that are no character.
bool IsHungUp()
{
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) > 0 && (input.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

// Characters have widths only in a locale of UTF-8.
void StartLocale()
{
    if (!std::setlocale(LC_CTYPE, "") || std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0)
        std::setlocale(LC_CTYPE, "C.UTF-8");
}

} // namespace

Paint PaintOf(tovo::Kind kind)
{
    switch (kind) {
    case tovo::Kind::Variable:
        return Paint::Variable;
    case tovo::Kind::Formula:
        return Paint::Formula;
    case tovo::Kind::Table:
        return Paint::Table;
    case tovo::Kind::JobValue:
        break;
    }
    return Paint::Plain;
}

Terminal::Terminal()
{
    StartLocale();
    if (!isatty(STDIN_FILENO) || !isatty(STDOUT_FILENO))
        throw std::runtime_error("needs a terminal");
    // initscr would end the program on a terminal that it does not know.
    SCREEN* const screen = newterm(nullptr, stdout, stdin);
    if (!screen)
        throw std::runtime_error("the terminal that TERM names is not known");
    m_Screen = screen;
    raw(); // Ctrl-S, Ctrl-Q and Ctrl-Z are keys of the editor.
    noecho();
    nonl();
    set_escdelay(50); // Milliseconds: a key's sequence comes in one piece.
    keypad(stdscr, true);
    for (const Sequence& sequence : kSequences)
        define_key(sequence.bytes, sequence.code);
    mousemask(BUTTON1_PRESSED | BUTTON4_PRESSED | BUTTON5_PRESSED, nullptr);
    mouseinterval(0); // Else a press waits until it is known to be no double click.
    wtimeout(stdscr, kMoment);
    StartColours();
}

Terminal::~Terminal()
{
    endwin();
    delscreen(static_cast<SCREEN*>(m_Screen));
}

int Terminal::Rows() const
{
    return getmaxy(stdscr);
}

int Terminal::Columns() const
{
    return getmaxx(stdscr);
}

void Terminal::Clear()
{
    werase(stdscr);
}

void Terminal::Write(int row, int column, const CString& text, Paint paint)
{
    if (row < 0 || row >= Rows())
        return;
    for (const Glyph& glyph : GlyphsOf(text)) {
        if (column + glyph.width > Columns())
            return;
        cchar_t cell;
        // A cell holds only so many marks on one character.
        const std::wstring shown = glyph.characters.substr(0, CCHARW_MAX);
        if (setcchar(&cell, shown.c_str(), AttributesOf(paint), PairOf(paint), nullptr) == OK)
            mvwadd_wch(stdscr, row, column, &cell);
        column += glyph.width;
    }
}

void Terminal::WriteBar(int row, const CString& text, Paint paint)
{
    Write(row, 0, Padded(text, Columns()), paint);
}

void Terminal::ShowCursor(int row, int column)
{
    curs_set(1);
    wmove(stdscr, row, column);
}

void Terminal::HideCursor()
{
    curs_set(0);
}

void Terminal::Beep()
{
    beep();
}

KeyPress Terminal::Read()
{
    if (m_OnWait)
        m_OnWait();
    wint_t character = 0;
    const int kind = wget_wch(stdscr, &character);
    if (kind == ERR)
        return {IsHungUp() ? Key::HangUp : Key::Idle, {}, 0, 0};
    if (kind == KEY_CODE_YES) {
        const Key key = KeyOfCode(static_cast<int>(character));
        return key == Key::Click ? MousePress() : KeyPress{key, {}, 0, 0};
    }
    const Key key = KeyOfCharacter(character);
    if (key == Key::Escape && SkipSequence())
        return {};
    return {key, key == Key::Character ? TextOf(character) : CString(), 0, 0};
}
