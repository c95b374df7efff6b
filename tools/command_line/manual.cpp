#include "tools/command_line/manual.h"

#include "tools/command_line/footer.h"
#include "tools/command_line/options.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <stdexcept>

namespace command_line {

namespace {

// Returns a text in roff, with the signs that it would print otherwise as users must type them.
std::string escaped(const std::string& text) {
    std::string roff;
    bool atLineStart = true;
    for (const char sign : text) {
        if (atLineStart && (sign == '.' || sign == '\'')) {
            roff += "\\&";
        }
        atLineStart = sign == '\n';
        switch (sign) {
        case '\\':
            roff += "\\e";
            break;
        case '-':
            roff += "\\-";
            break;
        case '\'':
            roff += "\\(aq";
            break;
        case '`':
            roff += "\\(ga";
            break;
        case '^':
            roff += "\\(ha";
            break;
        case '~':
            roff += "\\(ti";
            break;
        default:
            roff += sign;
        }
    }
    return roff;
}

std::string bold(const std::string& text) {
    return "\\fB" + escaped(text) + "\\fP";
}

std::string italic(const std::string& text) {
    return "\\fI" + escaped(text) + "\\fP";
}

std::string verbatim(const std::string& lines) {
    return ".nf\n" + escaped(lines) + "\n.fi\n";
}

// Returns the names of the program and the command, and of what the command is one of, with [between] between them.
std::string fullName(const CLI::App& app, char between) {
    const CLI::App* parent = app.get_parent();
    return parent == nullptr ? app.get_name() : fullName(*parent, between) + between + app.get_name();
}

// Returns the name of the page: fmhost, fmhost-eval.
std::string pageName(const CLI::App& app) {
    return fullName(app, '-');
}

const CLI::App& programOf(const CLI::App& app) {
    return app.get_parent() == nullptr ? app : programOf(*app.get_parent());
}

std::string sentence(const std::string& text) {
    return text + (text.ends_with('.') ? "" : ".");
}

// Returns what --help says first, as the summary of a page has it: without a capital and a full stop.
std::string summary(const CLI::App& app) {
    std::string text = app.get_description();
    if (text.size() > 1 && std::islower(static_cast<unsigned char>(text[1])) != 0) {
        text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
    }
    if (text.ends_with('.')) {
        text.pop_back();
    }
    return text;
}

std::string argument(const CLI::Option& option) {
    const std::string name = italic(option.get_single_name()) + (takesMany(option) ? " ..." : "");
    return option.get_required() ? name : '[' + name + ']';
}

std::string synopsis(const CLI::App& app) {
    std::string text = bold(fullName(app, ' '));
    text += " [" + italic("OPTION") + " ...]";
    if (!commandsOf(app).empty()) {
        const std::string command = italic("COMMAND") + ' ' + italic("...");
        text += app.get_require_subcommand_min() > 0 ? ' ' + command : " [" + command + ']';
    }
    for (const CLI::Option* option : argumentsOf(app)) {
        text += ' ' + argument(*option);
    }
    return text + '\n';
}

std::string optionEntry(const CLI::Option& option) {
    std::string head;
    for (const std::string& name : namesOf(option)) {
        head += (head.empty() ? "" : ", ") + bold(name);
    }
    if (takesValue(option)) {
        head += ' ' + italic(valueName(option));
    }
    return ".TP\n" + head + '\n' + escaped(sentence(option.get_description())) + '\n';
}

// Returns the section of an app's own options. Of a program's in the page of a command, those that the command
// has as well, or that make no sense with one, are left out.
std::string optionSection(const std::string& heading, const CLI::App& app, bool inCommand = false) {
    std::string text;
    for (const CLI::Option* option : optionsOf(app)) {
        if (!inCommand || (option != app.get_help_ptr() && option != app.get_version_ptr())) {
            text += optionEntry(*option);
        }
    }
    return text.empty() ? text : ".SH " + heading + '\n' + text;
}

std::string argumentSection(const CLI::App& app) {
    std::string text;
    for (const CLI::Option* option : argumentsOf(app)) {
        text += ".TP\n" + argument(*option) + '\n' + escaped(sentence(option->get_description())) + '\n';
    }
    return text.empty() ? text : ".SH ARGUMENTS\n" + text;
}

std::string commandSection(const CLI::App& app) {
    std::string text;
    for (const CLI::App* command : commandsOf(app)) {
        text += ".TP\n" + bold(pageName(*command)) + "(1)\n" + escaped(sentence(command->get_description())) +
                '\n';
    }
    return text.empty() ? text : ".SH COMMANDS\n" + text;
}

std::string description(const CLI::App& app) {
    std::string text = ".SH DESCRIPTION\n" + escaped(sentence(app.get_description())) + '\n';
    for (const Block& block : blocksOf(app.get_footer())) {
        if (block.kind == Block::Kind::paragraph) {
            text += ".PP\n" + escaped(block.text) + '\n';
        } else if (block.kind == Block::Kind::table) {
            text += ".PP\n" + verbatim(block.text);
        }
    }
    return text;
}

// Returns the section of the blocks of a kind; empty when there are none.
std::string section(const std::string& heading, const CLI::App& app, Block::Kind kind) {
    std::string text;
    for (const Block& block : blocksOf(app.get_footer())) {
        if (block.kind == kind) {
            text +=
                kind == Block::Kind::example ? verbatim(block.text) : escaped(sentence(block.text)) + "\n";
        }
    }
    return text.empty() ? text : ".SH \"" + heading + "\"\n" + text;
}

std::string seeAlso(const CLI::App& app) {
    const CLI::App& parent = app.get_parent() == nullptr ? app : *app.get_parent();
    std::string text;
    const auto add = [&](const CLI::App& other) {
        if (&other != &app) {
            text += (text.empty() ? "" : ",\n") + bold(pageName(other)) + "(1)";
        }
    };
    if (parent.get_parent() != nullptr) {
        add(programOf(app));
    }
    add(parent);
    for (const CLI::App* command : commandsOf(parent)) {
        add(*command);
    }
    return ".SH \"SEE ALSO\"\n" + text + '\n';
}

} // namespace

std::string manualOf(const CLI::App& app, const std::string& version) {
    const CLI::App& program = programOf(app);
    const bool isCommand = &program != &app;
    std::string title = pageName(app);
    std::transform(title.begin(), title.end(), title.begin(),
                   [](unsigned char sign) { return static_cast<char>(std::toupper(sign)); });
    const std::string examples = section("EXAMPLES", app, Block::Kind::example);
    return ".TH \"" + title + "\" \"1\" \"\" \"Velocard " + version + "\" \"User Commands\"\n" +
           ".\\\" Made of the program's --help.\n.nh\n.ad l\n" +                            //
           ".SH NAME\n" + escaped(pageName(app)) + " \\- " + escaped(summary(app)) + '\n' + //
           ".SH SYNOPSIS\n" + synopsis(app) + description(app) + commandSection(app) + argumentSection(app) +
           optionSection("OPTIONS", app) +
           (isCommand ? optionSection("\"OPTIONS OF ALL COMMANDS\"", program, true) : "") +
           section("EXIT STATUS", program, Block::Kind::exitStatus) + examples + seeAlso(app);
}

void writeManuals(const CLI::App& program, const std::string& version, const std::filesystem::path& folder) {
    const std::filesystem::path file = folder / (pageName(program) + ".1");
    std::ofstream stream(file);
    stream << manualOf(program, version) << std::flush;
    if (!stream) {
        throw std::runtime_error(file.string() + " cannot be written");
    }
    for (const CLI::App* command : commandsOf(program)) {
        writeManuals(*command, version, folder);
    }
}

} // namespace command_line
