#include "host/console/prompt.h"

#include "host/calc/parser.h"
#include "host/console/host.h"
#include "host/console/line_editor.h"
#include "host/console/prompt_commands.h"
#include "host/console/prompt_output.h"
#include "host/console/show.h"
#include "host/editor/highlight.h"
#include "host/values/text.h"

#include <algorithm>
#include <atomic>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>

namespace host {

namespace fs = std::filesystem;

namespace {

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

// Returns what the plug-in's own function for its version answers, one that is called SOMETHING_Version; empty
// without.
std::string versionOf(Host& host) {
    for (const FunctionInfo& function : host.functions()) {
        if (function.minArguments == 0 && function.name.ends_with(u"_Version")) {
            try {
                return oneLine(host.session().evaluate(function.name));
            } catch (const CalcError&) {
                return "";
            }
        }
    }
    return "";
}

// Greets with what is loaded, and with the address book when it is not the user's own.
void greet(Host& host, const PromptOutput& out) {
    std::string loaded = ", no plug-in";
    if (const PluginInfo* const plugin = host.plugin()) {
        const size_t count = host.functions().size();
        const std::string version = versionOf(host);
        loaded = " with " + toUtf8(plugin->name) + (version.empty() ? "" : " " + version) + ", " +
                 std::to_string(count) + (count == 1 ? " function" : " functions");
    }
    out.line(out.palette().paint("fmhost" + loaded, Palette::kStrong));
    const char* const book = std::getenv("ADDRESSBOOK_HOME");
    if (book != nullptr && *book != '\0') {
        out.line("Address book: " + std::string(book) + " ($ADDRESSBOOK_HOME)");
    }
    out.line(out.palette().paint("Type a calculation, or :help. Ctrl-D leaves.", Palette::kDim));
}

class Prompt : private LineAssistant {
  public:
    explicit Prompt(Host& host) : host_(host), editor_(*this, historyFile(), gInterrupted) {}

    void run() {
        greet(host_, out_);
        std::string text;
        while (true) {
            gInterrupted = 0;
            host_.session().interruptFlag() = false; // Ctrl-C stops what was running, not the next script
            const LineEditor::Ending ending = editor_.read(text);
            if (ending == LineEditor::Ending::closed ||
                (ending == LineEditor::Ending::entered && !take(text))) {
                return;
            }
        }
    }

  private:
    bool isComplete(const std::string& text) override {
        const auto argument = PromptCommands::argumentOf(text);
        if (PromptCommands::isCommand(text) &&
            (!argument || argument->kind != PromptCommands::Argument::calculation)) {
            return true;
        }
        const auto source =
            std::make_shared<Source>("", fromUtf8(text.substr(argument ? argument->begin : 0)));
        try {
            parseCalculation(source, host_.session().functions());
            return true;
        } catch (const CalcError& error) {
            return error.kind() != ErrorKind::incomplete || isBlank(source);
        }
    }

    static bool isBlank(const SourcePtr& source) {
        try {
            return isBlankCalculation(source);
        } catch (const CalcError&) {
            return false; // a comment or a text without its end
        }
    }

    Vocabulary known() { return {host_.session().functions(), host_.stepRegistry()}; }

    // The calculation in a text: all of it, or a command's argument; nothing when that is none.
    static std::optional<size_t> calculationIn(const std::u16string& text) {
        const std::string line = toUtf8(text);
        if (!PromptCommands::isCommand(line)) {
            return 0;
        }
        const auto argument = PromptCommands::argumentOf(line);
        return argument && argument->kind == PromptCommands::Argument::calculation
                   ? std::optional(argument->begin)
                   : std::nullopt;
    }

    CompletionList complete(const std::u16string& text) override {
        const std::string line = toUtf8(text);
        const auto argument = PromptCommands::argumentOf(line);
        if (PromptCommands::isCommand(line) && !argument) {
            return commandNames(text);
        }
        if (argument && argument->kind != PromptCommands::Argument::calculation) {
            return argumentsFor(*argument, text);
        }
        CompletionList found = completions(Document("", text), text.size(), known());
        const std::u16string word = text.substr(found.begin);
        for (const auto& [name, value] : host_.session().variables()) {
            const auto isThere = [&](const Completion& item) {
                return foldCase(fromUtf8(item.name)) == name;
            };
            if (!word.empty() && name.starts_with(foldCase(word)) &&
                std::none_of(found.items.begin(), found.items.end(), isThere)) {
                found.items.push_back({CompletionKind::variable, toUtf8(name), "", ""});
            }
        }
        return found;
    }

    // Keeps those of the names that begin with what stands from [begin] to the end of the text.
    static CompletionList beginningWith(const std::u16string& text, size_t begin,
                                        const std::vector<std::string>& names) {
        CompletionList found{begin, {}};
        for (const std::string& name : names) {
            if (foldCase(fromUtf8(name)).starts_with(foldCase(text.substr(begin)))) {
                found.items.push_back({CompletionKind::keyword, name, "", ""});
            }
        }
        return found;
    }

    static CompletionList commandNames(const std::u16string& text) {
        return beginningWith(text, std::min(text.find_first_not_of(u" \t:"), text.size()),
                             PromptCommands::names());
    }

    // Commands are ASCII, so that offsets in UTF-8 are those in UTF-16 up to the argument.
    CompletionList argumentsFor(const PromptCommands::ArgumentAt& argument, const std::u16string& text) {
        std::vector<std::string> names;
        size_t begin = argument.begin;
        if (argument.kind == PromptCommands::Argument::name) {
            for (const Sheet& sheet : allSheets(known())) {
                names.push_back(sheet.name);
            }
        } else if (argument.kind == PromptCommands::Argument::script) {
            for (const std::u16string& name : host_.session().environment().scriptNames()) {
                names.push_back(toUtf8(name));
            }
        } else if (argument.kind == PromptCommands::Argument::file) {
            const fs::path typed = toUtf8(text.substr(begin));
            begin = text.size() - fromUtf8(typed.filename().string()).size();
            std::error_code unreadable;
            const fs::path folder = typed.has_parent_path() ? typed.parent_path() : ".";
            for (const auto& entry : fs::directory_iterator(folder, unreadable)) {
                names.push_back(entry.path().filename().string() +
                                (entry.is_directory(unreadable) ? "/" : ""));
            }
            std::sort(names.begin(), names.end());
        }
        return beginningWith(text, begin, names);
    }

    std::vector<std::string_view> attributes(const std::u16string& text) override {
        std::vector<std::string_view> result(text.size());
        const auto paint = [&](size_t begin, size_t end, std::string_view attribute) {
            std::fill(result.begin() + static_cast<ptrdiff_t>(begin),
                      result.begin() + static_cast<ptrdiff_t>(end), attribute);
        };
        const std::optional<size_t> begin = calculationIn(text);
        if (!out_.palette().isOn) {
            return result;
        }
        if (begin != 0) {
            const size_t name = std::min(text.find_first_not_of(u" \t"), text.size());
            paint(name, std::min(text.find_first_of(u" \t", name), text.size()), Palette::kStrong);
        }
        if (begin) {
            for (const Highlight& part : highlights(Document("", text.substr(*begin)), known())) {
                paint(*begin + part.begin, *begin + part.end, attributeOf(part.role));
            }
        }
        return result;
    }

    // The prototype of the function whose name or arguments the cursor stands in, with its argument there.
    std::string hint(const std::u16string& text, size_t cursor, size_t columns) override {
        const std::optional<size_t> begin = calculationIn(text);
        if (!begin || cursor < *begin) {
            return "";
        }
        const Document document("", text.substr(*begin));
        const size_t offset = cursor - *begin;
        std::optional<CallAt> call = callAt(document, offset, known());
        if (const auto sheet = sheetAt(document, offset, known());
            sheet && sheet->kind == SheetKind::function) {
            call = CallAt{*sheet, SIZE_MAX};
        }
        if (!call || call->sheet.prototypes[0].find('(') == std::string::npos) {
            return "";
        }
        return paintedHint(*call, columns);
    }

    std::string paintedHint(const CallAt& call, size_t columns) const {
        std::u16string prototype = fromUtf8(call.sheet.prototypes[0]);
        if (prototype.size() > columns) {
            prototype = prototype.substr(0, columns - 1) + u'\u2026';
        }
        const auto places = parameterPlaces(prototype);
        const Palette& palette = out_.palette();
        if (call.argument >= places.size()) {
            return palette.paint(toUtf8(prototype), Palette::kDim);
        }
        const auto [begin, end] = places[call.argument];
        return palette.paint(toUtf8(prototype.substr(0, begin)), Palette::kDim) +
               palette.paint(toUtf8(prototype.substr(begin, end - begin)), Palette::kStrong) +
               palette.paint(toUtf8(prototype.substr(end)), Palette::kDim);
    }

    bool idle(const std::function<void()>& beforeOutput) override { return host_.idle(beforeOutput); }

    // Handles what was entered; returns false to leave the prompt.
    bool take(const std::string& text) {
        if (text.find_first_not_of(" \t\n") == std::string::npos) {
            return true;
        }
        if (text != "quit" && text != "exit") { // not worth remembering
            editor_.remember(text);
        }
        if (PromptCommands::isCommand(text)) {
            const bool goesOn = commands_.run(text);
            if (goesOn) {
                commands_.showWatched();
            }
            return goesOn;
        }
        evaluate(text);
        commands_.showWatched();
        return true;
    }

    void evaluate(const std::string& text) {
        const auto source = std::make_shared<Source>("", fromUtf8(text));
        try {
            if (!isBlank(source)) {
                out_.result(host_.session().evaluate(parseCalculation(source, host_.session().functions())));
                host_.idle();
            }
        } catch (const CalcError& error) {
            out_.error(error);
        }
    }

    Host& host_;
    PromptOutput out_;
    PromptCommands commands_{host_, out_};
    LineEditor editor_;
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
