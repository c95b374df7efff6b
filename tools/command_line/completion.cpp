#include "tools/command_line/completion.h"

#include "tools/command_line/options.h"
#include "tools/command_line/shell_words.h"

#include <algorithm>
#include <cctype>

namespace command_line {

namespace {

const CLI::Option* findOption(const CLI::App& app, const std::string& name) {
    for (const CLI::App* at = &app; at != nullptr; at = at->get_parent()) {
        for (const CLI::Option* option : optionsOf(*at)) {
            if (std::ranges::count(namesOf(*option), name) > 0) {
                return option;
            }
        }
    }
    return nullptr;
}

// Walks over the words before the last one as the program would.
class Walk {
  public:
    Walk(const CLI::App& program, const std::vector<std::string>& words) : app_(&program) {
        for (std::size_t at = 1; at + 1 < words.size(); ++at) {
            take(words[at]);
        }
        typed_.word = words.back();
        const std::size_t equals = typed_.word.find('=');
        if (pending_ == nullptr && mayBeOption(typed_.word) && equals != std::string::npos) {
            pending_ = findOption(*app_, typed_.word.substr(0, equals));
            before_ = typed_.word.substr(0, equals + 1);
            typed_.word.erase(0, equals + 1);
        }
    }

    const CLI::App& app() const { return *app_; }
    const Typed& typed() const { return typed_; }
    // Returns the option whose value the last word is; null when it is none's.
    const CLI::Option* pending() const { return pending_; }
    // Returns what stands in the last word before the value: "--option=".
    const std::string& before() const { return before_; }
    bool mayBeOption(const std::string& word) const { return !onlyArguments_ && word.starts_with('-'); }

  private:
    void take(const std::string& word) {
        if (pending_ != nullptr) {
            typed_.options["--" + pending_->get_single_name()] = word;
            pending_ = nullptr;
        } else if (word == "--") {
            onlyArguments_ = true;
        } else if (mayBeOption(word) && word != "-") {
            const std::size_t equals = std::min(word.find('='), word.size());
            const CLI::Option* option = findOption(*app_, word.substr(0, equals));
            typed_.options[word.substr(0, equals)] = word.substr(std::min(equals + 1, word.size()));
            pending_ = option != nullptr && takesValue(*option) && equals == word.size() ? option : nullptr;
        } else if (const CLI::App* command = commandNamed(word)) {
            app_ = command;
            typed_.command = word;
        } else {
            typed_.arguments.push_back(word);
        }
    }

    const CLI::App* commandNamed(const std::string& word) const {
        for (const CLI::App* command : commandsOf(*app_)) {
            if (command->get_name() == word && !onlyArguments_) {
                return command;
            }
        }
        return nullptr;
    }

    const CLI::App* app_;
    const CLI::Option* pending_ = nullptr;
    bool onlyArguments_ = false;
    std::string before_;
    Typed typed_;
};

// Returns the values that an option allows; none when it allows any.
std::vector<Candidate> membersOf(const CLI::Option& option) {
    const std::string type = option.get_type_name(); // "a|b:{a,b}", by CLI::IsMember
    const std::size_t open = type.find('{');
    std::vector<Candidate> members;
    if (open == std::string::npos || !type.ends_with('}')) {
        return members;
    }
    std::string word;
    for (const char sign : type.substr(open + 1)) {
        if (sign == ',' || sign == '}') {
            members.push_back({word, ""});
            word.clear();
        } else {
            word += sign;
        }
    }
    return members;
}

Completion valueOf(const CLI::Option& option, const Completers& completers, const Typed& typed) {
    const std::string name = option.get_name(option.get_positional());
    if (const auto known = completers.find(name); known != completers.end()) {
        return known->second(typed);
    }
    Completion completion;
    completion.candidates = membersOf(option);
    const std::string kind = option.get_positional() ? name : valueName(option);
    if (kind == "FILE" || kind == "PATH") {
        completion.paths = Completion::Paths::files;
    } else if (kind == "FOLDER" || kind == "DIR") {
        completion.paths = Completion::Paths::folders;
    }
    return completion;
}

// Returns the beginning of a description that fits into a line beside others.
std::string brief(const std::string& text) {
    const std::size_t end = std::min({text.find(';'), text.find(" ["), text.find(": "), text.size()});
    return text.substr(0, end);
}

void addOptions(const CLI::App& app, std::vector<Candidate>& candidates) {
    for (const CLI::App* at = &app; at != nullptr; at = at->get_parent()) {
        for (const CLI::Option* option : optionsOf(*at)) {
            const std::string name = namesOf(*option).back();
            const bool known = std::ranges::any_of(
                candidates, [&](const Candidate& candidate) { return candidate.word == name; });
            if (!known) {
                candidates.push_back({name, brief(option->get_description())});
            }
        }
    }
}

// Returns the argument that stands next; null when there is none.
const CLI::Option* nextArgument(const CLI::App& app, std::size_t given) {
    for (const CLI::Option* option : argumentsOf(app)) {
        if (takesMany(*option) || given == 0) {
            return option;
        }
        --given;
    }
    return nullptr;
}

bool beginsWith(const std::string& word, const std::string& beginning) {
    return word.size() >= beginning.size() &&
           std::equal(beginning.begin(), beginning.end(), word.begin(),
                      [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

Completion unfiltered(const Walk& walk, const Completers& completers) {
    if (walk.pending() != nullptr) {
        return valueOf(*walk.pending(), completers, walk.typed());
    }
    Completion completion;
    if (walk.mayBeOption(walk.typed().word)) {
        addOptions(walk.app(), completion.candidates);
        return completion;
    }
    for (const CLI::App* command : commandsOf(walk.app())) {
        completion.candidates.push_back({command->get_name(), brief(command->get_description())});
    }
    if (!completion.candidates.empty()) {
        return completion;
    }
    if (const CLI::Option* argument = nextArgument(walk.app(), walk.typed().arguments.size())) {
        return valueOf(*argument, completers, walk.typed());
    }
    addOptions(walk.app(), completion.candidates);
    return completion;
}

} // namespace

std::string Typed::value(const std::string& option) const {
    const auto found = options.find(option);
    return found == options.end() ? "" : found->second;
}

Completion complete(const CLI::App& program, const Completers& completers, std::string_view line) {
    const Walk walk(program, shellWords(line));
    Completion completion = unfiltered(walk, completers);
    std::erase_if(completion.candidates,
                  [&](const Candidate& candidate) { return !beginsWith(candidate.word, walk.typed().word); });
    for (Candidate& candidate : completion.candidates) {
        candidate.word.insert(0, walk.before());
    }
    return completion;
}

} // namespace command_line
