#include "host/console/line_editor.h"

#include "host/console/palette.h"
#include "host/values/text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <iostream>
#include <numeric>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace host {

namespace {

constexpr int kHistorySize = 1000;
constexpr int kIdleMilliseconds = 100;
constexpr size_t kPromptWidth = 2;
constexpr size_t kMaxListed = 200;
constexpr std::wstring_view kPasteEnd = L"\x1b[201~";

// Sequences that no key sends. The functions up() and down() type them to use libedit's own functions.
constexpr const char* kHistoryBack = "\x1b[9001~";
constexpr const char* kHistoryOn = "\x1b[9002~";

// Asks the terminal to put pasted text between two sequences, so that its tabs and line ends are no keys.
constexpr std::string_view kPasteMarksOn = "\x1b[?2004h";
constexpr std::string_view kPasteMarksOff = "\x1b[?2004l";

// Set when the program goes on after it was stopped (Ctrl-Z); the shell has changed the terminal's modes then.
volatile std::sig_atomic_t gContinued = 0;

void onContinue(int /*signal*/) {
    gContinued = 1;
}

void write(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

std::wstring wide(const std::u16string& text) {
    std::wstring result;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool isPair = (text[i] & 0xFC00) == 0xD800 && i + 1 < text.size();
        result += isPair ? static_cast<wchar_t>(0x10000 + ((text[i] & 0x3FF) << 10) + (text[i + 1] & 0x3FF))
                         : static_cast<wchar_t>(text[i]);
        i += isPair ? 1 : 0;
    }
    return result;
}

std::u16string units(std::wstring_view text) {
    std::u16string result;
    for (const wchar_t c : text) {
        if (c < 0x10000) {
            result += static_cast<char16_t>(c);
        } else {
            result += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            result += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        }
    }
    return result;
}

// Returns the blanks that a line after [text] begins with: four for each bracket that is open, where "( [" counts
// once. In a text none: they would belong to it.
std::wstring indentation(std::wstring_view text) {
    std::vector<size_t> levels; // of the brackets that are open: 0 for a "[" after a "("
    wchar_t inside = 0;         // the quote or * of a text or comment
    for (size_t i = 0; i < text.size(); ++i) {
        const wchar_t c = text[i];
        const wchar_t next = i + 1 < text.size() ? text[i + 1] : 0;
        if (inside == L'"') {
            i += c == L'\\' ? 1 : 0;
            inside = c == L'"' ? 0 : inside;
        } else if (inside == L'*') {
            inside = c == L'*' && next == L'/' ? 0 : inside;
        } else if (c == L'/' && next == L'/') {
            i = std::min(text.find(L'\n', i), text.size() - 1);
        } else if (c == L'"' || (c == L'/' && next == L'*')) {
            inside = c == L'"' ? L'"' : L'*';
            i += c == L'"' ? 0 : 1;
        } else if (c == L'(' || c == L'[') {
            const size_t before = i == 0 ? std::wstring_view::npos : text.find_last_not_of(L' ', i - 1);
            levels.push_back(c == L'[' && before != std::wstring_view::npos && text[before] == L'(' ? 0 : 1);
        } else if ((c == L')' || c == L']') && !levels.empty()) {
            levels.pop_back();
        }
    }
    const size_t depth = std::accumulate(levels.begin(), levels.end(), size_t{0});
    return inside != 0 ? L"" : std::wstring(4 * depth, L' ');
}

} // namespace

std::span<const Key> keyTable() {
    static constexpr std::array kKeys = {
        Key{"Enter", "evaluates; what is not complete goes on in the next line"},
        Key{"Alt-Enter", "begins a new line anywhere"},
        Key{"Tab", "completes names, or lists them"},
        Key{"Up, Down", "the line above or below, and what was entered before"},
        Key{"Ctrl-R", "searches what was entered"},
        Key{"Home, End", "to the beginning, to the end"},
        Key{"Ctrl-W, Ctrl-K", "cuts the word before, or the rest; Ctrl-Y puts it back"},
        Key{"Ctrl-C", "ends what runs; else drops what is typed"},
        Key{"Ctrl-D", "leaves"},
    };
    return kKeys;
}

LineEditor::LineEditor(LineAssistant& assistant, std::filesystem::path history,
                       const volatile std::sig_atomic_t& interrupted)
    : assistant_(assistant), file_(std::move(history)), interrupted_(interrupted),
      history_(history_init(), history_end), line_(el_init("fmhost", stdin, stdout, stderr), el_end),
      paints_(hasCursor()) {
    HistEvent event;
    ::history(history_.get(), &event, H_SETSIZE, kHistorySize);
    ::history(history_.get(), &event, H_SETUNIQUE, 1);
    if (!file_.empty()) {
        const int loaded = ::history(history_.get(), &event, H_LOAD, file_.c_str());
        if (loaded > 2 * kHistorySize) {
            ::history(history_.get(), &event, H_SAVE, file_.c_str()); // without those that are too many
        }
    }
    el_set(line_.get(), EL_CLIENTDATA, this);
    el_set(line_.get(), EL_EDITOR, "emacs");
    el_set(line_.get(), EL_HIST, ::history, history_.get());
    el_set(line_.get(), EL_PROMPT, prompt);
    el_set(line_.get(), EL_GETCFN, readCharacter);
    bindKeys();
    struct sigaction action{};
    action.sa_handler = onContinue; // without SA_RESTART, so that waiting ends
    sigaction(SIGCONT, &action, nullptr);
    el_source(line_.get(), nullptr);
}

void LineEditor::bindKeys() {
    struct Function {
        const wchar_t* name;
        unsigned char (*function)(EditLine*, wint_t);
        std::vector<const wchar_t*> keys;
    };
    const std::array functions = {
        Function{L"fm-enter", enter, {L"^M", L"^J"}},
        Function{L"fm-break-line", breakLine, {L"\x1b^M", L"\x1b^J"}},
        Function{L"fm-complete", complete, {L"^I"}},
        Function{L"fm-up", up, {L"\x1b[A", L"\x1bOA", L"^P"}},
        Function{L"fm-down", down, {L"\x1b[B", L"\x1bOB", L"^N"}},
        Function{L"fm-paste", paste, {L"\x1b[200~"}},
    };
    // Of names that are not wide, libedit makes wide ones that it never frees.
    for (const Function& one : functions) {
        el_wset(line_.get(), EL_ADDFN, one.name, one.name, one.function);
        for (const wchar_t* const key : one.keys) {
            el_wset(line_.get(), EL_BIND, key, one.name, nullptr);
        }
    }
    struct Binding {
        const char* key;
        const char* function; // of libedit
    };
    constexpr std::array kBindings = {
        Binding{kHistoryBack, "ed-prev-history"}, Binding{kHistoryOn, "ed-next-history"},
        Binding{"^R", "em-inc-search-prev"},      Binding{"\x1b[3~", "ed-delete-next-char"},
        Binding{"\x1b[1~", "ed-move-to-beg"},     Binding{"\x1b[H", "ed-move-to-beg"},
        Binding{"\x1bOH", "ed-move-to-beg"},      Binding{"\x1b[4~", "ed-move-to-end"},
        Binding{"\x1b[F", "ed-move-to-end"},      Binding{"\x1bOF", "ed-move-to-end"},
        Binding{"\x1b[1;5D", "ed-prev-word"},     Binding{"\x1b[1;5C", "em-next-word"},
    };
    for (const Binding& binding : kBindings) {
        el_set(line_.get(), EL_BIND, binding.key, binding.function, nullptr);
    }
}

LineEditor::Ending LineEditor::read(std::string& text) {
    // Sets raw mode before the prompt shows; otherwise the terminal would swallow a Ctrl-D typed at once.
    el_set(line_.get(), EL_PREP_TERM, 1);
    if (paints_) {
        write(kPasteMarksOn);
    }
    int size = 0;
    const wchar_t* const typed = el_wgets(line_.get(), &size);
    const bool isInterrupted = interrupted_ != 0;
    if (isInterrupted) {
        if (paints_) {
            painter_.leave(view());
        } else {
            std::cout << std::endl;
        }
        el_reset(line_.get());
    }
    if (paints_) {
        write(kPasteMarksOff);
    }
    if (isInterrupted) {
        return Ending::interrupted;
    }
    if (typed == nullptr || size < 0) {
        std::cout << std::endl;
        return Ending::closed;
    }
    text = toUtf8(units({typed, static_cast<size_t>(size)}));
    return Ending::entered;
}

// Appends to the file, so that prompts at the same time keep each other's entries, and a plug-in that crashes
// costs none.
void LineEditor::remember(const std::string& text) {
    HistEvent event;
    ::history(history_.get(), &event, H_ENTER, text.c_str());
    if (file_.empty()) {
        return;
    }
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(file_.c_str(), "a"), std::fclose);
    const std::unique_ptr<History, decltype(&history_end)> entry(history_init(), history_end);
    if (file != nullptr && std::fseek(file.get(), 0, SEEK_END) == 0) {
        ::history(entry.get(), &event, H_SETSIZE, 1);
        ::history(entry.get(), &event, H_ENTER, text.c_str());
        ::history(entry.get(), &event, H_SAVE_FP, file.get());
    }
}

LineEditor& LineEditor::of(EditLine* line) {
    void* self = nullptr;
    el_get(line, EL_CLIENTDATA, &self);
    return *static_cast<LineEditor*>(self);
}

char* LineEditor::prompt(EditLine* /*line*/) {
    static char text[] = "> ";
    return text;
}

EditorView LineEditor::view() {
    const LineInfoW* const info = el_wline(line_.get());
    int columns = 0;
    int rows = 0;
    el_get(line_.get(), EL_GETTC, "co", &columns);
    el_get(line_.get(), EL_GETTC, "li", &rows);
    return {{info->buffer, static_cast<size_t>(info->lastchar - info->buffer)},
            static_cast<size_t>(info->cursor - info->buffer),
            kPromptWidth,
            static_cast<size_t>(std::max(columns, 1)),
            static_cast<size_t>(std::max(rows, 1))};
}

void LineEditor::paint() {
    if (!paints_) {
        return;
    }
    const EditorView shown = view();
    const std::u16string text = units(shown.text);
    const std::vector<std::string_view> ofUnits = assistant_.attributes(text);
    std::vector<std::string_view> attributes;
    size_t unit = 0;
    for (const wchar_t c : shown.text) {
        attributes.push_back(ofUnits[unit]);
        unit += c < 0x10000 ? 1 : 2;
    }
    const size_t cursor = units(shown.text.substr(0, shown.cursor)).size();
    painter_.draw(shown, attributes, assistant_.hint(text, cursor, shown.columns - 1));
}

// Sets the terminal's modes again and shows the line anew.
void LineEditor::takeTerminal() {
    gContinued = 0;
    el_set(line_.get(), EL_PREP_TERM, 0); // without it, libedit believes that its modes are set
    el_set(line_.get(), EL_PREP_TERM, 1);
    if (paints_) {
        write("\r\x1b[J");
        write(kPasteMarksOn);
    }
    el_set(line_.get(), EL_REFRESH);
}

int LineEditor::readCharacter(EditLine* line, wchar_t* result) {
    return of(line).waitForCharacter(*result);
}

// Waits for a character in the locale's encoding; meanwhile the line shows its colours, and the host does its idle
// work.
int LineEditor::waitForCharacter(wchar_t& result) {
    std::mbstate_t state{};
    bool isPainted = false;
    while (true) {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        const int ready = poll(&input, 1, isPainted ? kIdleMilliseconds : 0);
        if (interrupted_ != 0 || (ready < 0 && errno != EINTR)) {
            return -1;
        }
        if (gContinued != 0) {
            takeTerminal();
            isPainted = false;
        }
        winsize size{};
        ioctl(STDOUT_FILENO, TIOCGWINSZ, &size);
        if (size.ws_col != size_.first || size.ws_row != size_.second) {
            size_ = {size.ws_col, size.ws_row};
            el_resize(line_.get());
            isPainted = false;
        }
        if (ready <= 0 && !isPainted) {
            paint();
            isPainted = true;
            continue;
        }
        if (ready <= 0) {
            const auto clear = [this] {
                if (paints_) {
                    painter_.erase(view());
                } else {
                    std::cout << std::endl;
                }
            };
            if (assistant_.idle(clear)) {
                el_set(line_.get(), EL_REFRESH);
                isPainted = false;
            }
            continue;
        }
        char byte = 0;
        if (::read(STDIN_FILENO, &byte, 1) != 1) {
            return 0;
        }
        const size_t used = std::mbrtowc(&result, &byte, 1, &state);
        if (used == static_cast<size_t>(-1)) {
            state = {}; // bytes that are no character in the locale are ignored
        } else if (used != static_cast<size_t>(-2)) {
            painter_.clearHint();
            return 1;
        }
    }
}

void LineEditor::insert(const std::wstring& text) {
    el_winsertstr(line_.get(), text.c_str());
}

unsigned char LineEditor::enter(EditLine* line, wint_t key) {
    LineEditor& self = of(line);
    const EditorView shown = self.view();
    if (!self.assistant_.isComplete(toUtf8(units(shown.text)))) {
        return breakLine(line, key);
    }
    if (self.paints_) {
        self.painter_.leave(shown);
    } else {
        std::cout << std::endl;
    }
    return CC_NEWLINE;
}

unsigned char LineEditor::breakLine(EditLine* line, wint_t /*key*/) {
    LineEditor& self = of(line);
    const EditorView shown = self.view();
    self.insert(L"\n" + indentation(shown.text.substr(0, shown.cursor)));
    return CC_REFRESH;
}

// Moves by a line inside a text of several; beyond the first and the last through the history.
unsigned char LineEditor::up(EditLine* line, wint_t /*key*/) {
    const EditorView shown = of(line).view();
    const std::wstring_view before = shown.text.substr(0, shown.cursor);
    const size_t end = before.rfind(L'\n');
    if (end == std::wstring_view::npos) {
        el_push(line, kHistoryBack);
        return CC_NORM;
    }
    const size_t column = before.size() - end - 1;
    const size_t begin = before.substr(0, end).rfind(L'\n') + 1; // 0 when there is none
    const size_t target = begin + std::min(column, end - begin);
    el_cursor(line, static_cast<int>(target) - static_cast<int>(shown.cursor));
    return CC_CURSOR;
}

unsigned char LineEditor::down(EditLine* line, wint_t /*key*/) {
    const EditorView shown = of(line).view();
    const size_t end = shown.text.find(L'\n', shown.cursor);
    if (end == std::wstring_view::npos) {
        el_push(line, kHistoryOn);
        return CC_NORM;
    }
    const size_t column = shown.cursor - (shown.text.substr(0, shown.cursor).rfind(L'\n') + 1);
    const size_t next = std::min(shown.text.find(L'\n', end + 1), shown.text.size());
    const size_t target = end + 1 + std::min(column, next - end - 1);
    el_cursor(line, static_cast<int>(target) - static_cast<int>(shown.cursor));
    return CC_CURSOR;
}

// Inserts what the terminal pastes, with its tabs and line ends.
unsigned char LineEditor::paste(EditLine* line, wint_t /*key*/) {
    std::wstring text;
    wchar_t c = 0;
    while (!text.ends_with(kPasteEnd)) {
        if (el_wgetc(line, &c) != 1) {
            return CC_ERROR;
        }
        text += c == L'\r' ? L'\n' : c;
    }
    text.resize(text.size() - kPasteEnd.size());
    while (text.ends_with(L'\n')) {
        text.pop_back();
    }
    of(line).insert(text);
    return CC_REFRESH;
}

// Inserts what all names that may stand at the cursor begin with; lists them when that is nothing more.
unsigned char LineEditor::complete(EditLine* line, wint_t /*key*/) {
    LineEditor& self = of(line);
    const EditorView shown = self.view();
    const std::u16string typed = units(shown.text.substr(0, shown.cursor));
    const CompletionList found = self.assistant_.complete(typed);
    if (found.items.empty()) {
        return CC_REFRESH_BEEP;
    }
    const std::u16string word = typed.substr(found.begin);
    std::u16string common = fromUtf8(found.items.front().name);
    for (const Completion& item : found.items) {
        const std::u16string name = foldCase(fromUtf8(item.name));
        while (!name.starts_with(foldCase(common))) {
            common.pop_back();
        }
    }
    if (found.items.size() > 1 && common.size() <= word.size()) {
        self.list(found.items);
        el_set(line, EL_REFRESH);
        return CC_NORM;
    }
    el_deletestr(line, static_cast<int>(wide(word).size()));
    self.insert(wide(common));
    return CC_REFRESH;
}

void LineEditor::list(const std::vector<Completion>& items) {
    if (paints_) {
        painter_.leave(view());
    } else {
        std::cout << '\n';
    }
    if (items.size() > kMaxListed) {
        std::cout << items.size() << " names begin so\n" << std::flush;
        return;
    }
    for (const Completion& item : items) {
        std::cout << (item.prototype.empty() ? item.name : item.prototype) << '\n';
    }
    std::cout << std::flush;
}

} // namespace host
