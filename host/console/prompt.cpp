#include "host/console/prompt.h"

#include "host/console/commands.h"
#include "host/console/host.h"
#include "host/console/input_reader.h"
#include "host/console/prompt_commands.h"
#include "host/console/show.h"
#include "host/editor/assistance.h"
#include "host/values/text.h"

#include <atomic>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <histedit.h>
#include <iostream>
#include <memory>
#include <poll.h>
#include <unistd.h>

namespace host {

namespace fs = std::filesystem;

namespace {

constexpr int kHistorySize = 1000;
constexpr int kIdleMilliseconds = 100;
volatile std::sig_atomic_t gInterrupted = 0;
std::atomic<bool>* gStop = nullptr;

void onInterrupt(int /*signal*/) {
    gInterrupted = 1;
    if (gStop != nullptr) {
        gStop->store(true);
    }
}

// Returns the file of the history, and makes its folder when it is missing; an empty path when that fails,
// and the history is then not kept.
fs::path historyFile() {
    const char* state = std::getenv("XDG_STATE_HOME");
    const char* home = std::getenv("HOME");
    fs::path folder;
    if (state != nullptr && *state == '/') {
        folder = state;
    } else if (home != nullptr && *home == '/') {
        folder = fs::path(home) / ".local" / "state";
    } else {
        return {};
    }
    folder /= "fmhost";
    std::error_code error;
    fs::create_directories(folder, error);
    return error ? fs::path() : folder / "history";
}

class Prompt {
  public:
    explicit Prompt(Host& host)
        : host_(host), reader_(host.session().functions(), ""), history_(history_init(), history_end),
          line_(el_init("fmhost", stdin, stdout, stderr), el_end), file_(historyFile()) {
        HistEvent event;
        history(history_.get(), &event, H_SETSIZE, kHistorySize);
        history(history_.get(), &event, H_SETUNIQUE, 1);
        if (!file_.empty()) {
            history(history_.get(), &event, H_LOAD, file_.c_str());
        }
        el_set(line_.get(), EL_CLIENTDATA, this);
        el_set(line_.get(), EL_EDITOR, "emacs");
        el_set(line_.get(), EL_HIST, history, history_.get());
        el_set(line_.get(), EL_PROMPT, prompt);
        el_set(line_.get(), EL_GETCFN, readCharacter);
        el_set(line_.get(), EL_ADDFN, "fm-complete", "Complete a name", complete);
        el_set(line_.get(), EL_BIND, "^I", "fm-complete", nullptr);
        el_source(line_.get(), nullptr);
    }

    ~Prompt() {
        if (!file_.empty()) {
            HistEvent event;
            history(history_.get(), &event, H_SAVE, file_.c_str());
        }
    }
    Prompt(const Prompt&) = delete;
    Prompt& operator=(const Prompt&) = delete;

    void run() {
        std::cout << "fmhost: type a calculation, or help." << std::endl;
        while (true) {
            int size = 0;
            gInterrupted = 0;
            host_.session().interruptFlag() = false; // Ctrl-C stops what was running, not the next script
            // Sets raw mode before the prompt shows; otherwise the terminal would swallow a Ctrl-D typed at
            // once.
            el_set(line_.get(), EL_PREP_TERM, 1);
            const char* text = el_gets(line_.get(), &size);
            if (gInterrupted != 0) {
                std::cout << std::endl;
                reader_.clear();
                el_reset(line_.get());
            } else if (text == nullptr || size <= 0) {
                std::cout << std::endl;
                return;
            } else if (!take(std::string(text, static_cast<size_t>(size)))) {
                return;
            }
        }
    }

  private:
    static char* prompt(EditLine* line) {
        static char ready[] = "> ";
        static char open[] = ". ";
        void* self = nullptr;
        el_get(line, EL_CLIENTDATA, &self);
        return static_cast<Prompt*>(self)->reader_.isOpen() ? open : ready;
    }

    // Inserts what all names that may stand at the cursor begin with; lists them when that is nothing more.
    static unsigned char complete(EditLine* line, int /*key*/) {
        void* self = nullptr;
        el_get(line, EL_CLIENTDATA, &self);
        Host& host = static_cast<Prompt*>(self)->host_;
        const LineInfo* info = el_line(line);
        const std::u16string typed = fromUtf8(std::string(info->buffer, info->cursor));
        const Document document("", typed);
        CompletionList found =
            completions(document, typed.size(), {host.session().functions(), host.stepRegistry()});
        const std::u16string word = typed.substr(found.begin);
        for (const auto& [name, value] : host.session().variables()) {
            if (!word.empty() && name.starts_with(foldCase(word))) {
                found.items.push_back({CompletionKind::variable, toUtf8(name), "", ""});
            }
        }
        if (found.items.empty()) {
            return CC_REFRESH_BEEP;
        }
        std::u16string common = fromUtf8(found.items.front().name);
        for (const Completion& item : found.items) {
            const std::u16string name = foldCase(fromUtf8(item.name));
            while (!name.starts_with(foldCase(common))) {
                common.pop_back();
            }
        }
        if (found.items.size() > 1 && common.size() <= word.size()) {
            std::cout << '\n';
            for (const Completion& item : found.items) {
                std::cout << (item.prototype.empty() ? item.name : item.prototype) << '\n';
            }
            std::cout << std::flush;
            return CC_REDISPLAY;
        }
        el_deletestr(line, static_cast<int>(word.size()));
        el_insertstr(line, toUtf8(common).c_str());
        return CC_REFRESH;
    }

    // Waits for a character in the locale's encoding; meanwhile runs the host's idle work.
    static int readCharacter(EditLine* line, wchar_t* result) {
        void* self = nullptr;
        el_get(line, EL_CLIENTDATA, &self);
        std::mbstate_t state{};
        while (true) {
            pollfd input{STDIN_FILENO, POLLIN, 0};
            const int ready = poll(&input, 1, kIdleMilliseconds);
            if (gInterrupted != 0 || (ready < 0 && errno != EINTR)) {
                return -1;
            }
            if (ready <= 0) {
                if (static_cast<Prompt*>(self)->host_.idle()) {
                    el_set(line, EL_REFRESH); // a script may have overwritten the line
                }
                continue;
            }
            char byte = 0;
            if (read(STDIN_FILENO, &byte, 1) != 1) {
                return 0;
            }
            const size_t used = std::mbrtowc(result, &byte, 1, &state);
            if (used == static_cast<size_t>(-1)) {
                state = {}; // bytes that are no character in the locale are ignored
            } else if (used != static_cast<size_t>(-2)) {
                return 1;
            }
        }
    }

    // Handles one line of input; returns false to leave the prompt.
    bool take(std::string text) {
        while (text.ends_with('\n') || text.ends_with('\r')) {
            text.pop_back();
        }
        if (!reader_.isOpen() && (text == "quit" || text == "exit")) {
            return false; // not worth remembering
        }
        if (text.find_first_not_of(" \t") != std::string::npos) {
            HistEvent event;
            history(history_.get(), &event, H_ENTER, text.c_str());
        }
        if (!reader_.isOpen() && PromptCommands::isCommand(text)) {
            const bool goesOn = commands_.run(text);
            commands_.showWatched();
            return goesOn;
        }
        evaluate(text);
        if (!reader_.isOpen()) {
            commands_.showWatched();
        }
        return true;
    }

    void evaluate(const std::string& text) {
        try {
            if (const auto calculation = reader_.addLine(text)) {
                std::cout << severalLines(host_.session().evaluate(*calculation)) << std::endl;
                host_.idle();
            }
        } catch (const CalcError& error) {
            std::cout << error.report() << std::endl;
        }
    }

    Host& host_;
    InputReader reader_;
    PromptCommands commands_{host_, std::cout};
    std::unique_ptr<History, decltype(&history_end)> history_;
    std::unique_ptr<EditLine, decltype(&el_end)> line_;
    fs::path file_;
};

} // namespace

ExitCode runPrompt(Host& host) {
    if (std::setlocale(LC_CTYPE, "") == nullptr || MB_CUR_MAX == 1) {
        std::setlocale(LC_CTYPE, "C.UTF-8"); // calculations are Unicode, whatever the environment's locale
    }
    gStop = &host.session().interruptFlag();
    struct sigaction action{};
    action.sa_handler = onInterrupt; // without SA_RESTART, so that a blocked read returns
    sigaction(SIGINT, &action, nullptr);
    Prompt(host).run();
    return ExitCode::ok;
}

} // namespace host
