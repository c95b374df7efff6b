// The program addressbook: an address book from the command line. Data goes to standard output, everything
// else to standard error.

#include "condition.h"
#include "explain.h"
#include "export.h"
#include "fields.h"
#include "import.h"
#include "output.h"
#include "show.h"

#include "frameworks/AddressBook/store/backup.h"
#include "frameworks/AddressBook/store/repair.h"
#include "frameworks/AddressBook/store/store.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace addressbook::tool {
namespace {

struct Options {
    std::string book; // folder; empty: the user's own
    struct {
        std::vector<std::string> files;
        bool dryRun = false, progress = false;
    } import;
    struct {
        std::string group, file;
    } write;
    struct {
        std::string fields = "name,organization,phones,emails";
        bool json = false;
    } list;
    struct {
        std::string id;
        bool json = false;
    } show;
    struct {
        std::string id;
        bool clear = false;
    } me;
    bool groupsJson = false;
    std::vector<std::string> searches; // to explain
    struct {
        std::string file;
        bool force = false;
    } backup;
};

std::string counted(std::size_t count, const std::string& singular, const std::string& plural) {
    return std::to_string(count) + ' ' + (count == 1 ? singular : plural);
}

std::string contents(std::int64_t people, std::int64_t groups) {
    return counted(static_cast<std::size_t>(people), "person", "people") + " and " +
           counted(static_cast<std::size_t>(groups), "group", "groups");
}

std::filesystem::path folder(const Options& options) {
    return options.book.empty() ? Store::defaultFolder() : std::filesystem::path(options.book);
}

Store open(const Options& options, Store::Access access) {
    return Store(folder(options), access);
}

// The line that tells how far an import is: rewritten in place on a terminal, else a new line now and then.
class ProgressLine {
  public:
    explicit ProgressLine(bool asked) : terminal_(isatty(STDERR_FILENO) != 0), shown_(terminal_ || asked) {}

    void start(const std::string& name, std::uintmax_t size) {
        name_ = name;
        size_ = size;
        last_ = Clock::now();
    }

    void update(std::size_t bytes, const ImportSummary& summary, bool always = false) {
        if (!shown_ || (!always && (summary.read % 64 != 0 || Clock::now() - last_ < interval())))
            return;
        last_ = Clock::now();
        std::string line = name_ + ": " + counted(summary.read, "card", "cards");
        if (size_ > 0)
            line += ", " + std::to_string(std::min<std::uintmax_t>(100, bytes * 100 / size_)) + " %";
        std::cerr << (terminal_ ? "\r\x1B[K" : "") << line << (terminal_ ? "" : "\n") << std::flush;
        dirty_ = terminal_;
    }

    // Makes room for another line on a terminal.
    void clear() {
        if (dirty_)
            std::cerr << "\r\x1B[K";
        dirty_ = false;
    }

  private:
    using Clock = std::chrono::steady_clock;
    Clock::duration interval() const { return std::chrono::milliseconds(terminal_ ? 100 : 1000); }

    bool terminal_, shown_, dirty_ = false;
    std::string name_;
    std::uintmax_t size_ = 0;
    Clock::time_point last_;
};

std::string summaryText(const ImportSummary& summary, bool dryRun) {
    std::string text = counted(summary.read, "card", "cards") + " read";
    if (summary.groups > 0)
        text += " (" + counted(summary.groups, "group", "groups") + ')';
    text += ": " + std::to_string(summary.added) + " added, " + std::to_string(summary.updated) +
            " updated, " + std::to_string(summary.unchanged) + " unchanged, " +
            std::to_string(summary.refused) + " refused";
    if (summary.namedGroups > 0)
        text += "; " + counted(summary.namedGroups, "group", "groups") + " made from categories";
    if (summary.skippedLines > 0)
        text += "; " + counted(summary.skippedLines, "line", "lines") + " left out";
    if (summary.unknownMembers > 0)
        text += "; " + counted(summary.unknownMembers, "group member", "group members") +
                " not in the address book";
    if (summary.circular > 0)
        text +=
            "; " + counted(summary.circular, "group", "groups") + " not put into another that it contains";
    if (summary.missing > 0)
        text += "; " + counted(summary.missing, "record", "records") +
                " deleted by another program meanwhile, not changed";
    return text + (dryRun ? " (dry run, nothing saved)" : "");
}

// The address book of an import; none when a dry run finds that there is none yet.
std::optional<Store> openForImport(const Options& options) {
    if (!options.import.dryRun)
        return std::optional<Store>(std::in_place, folder(options));
    try {
        return std::optional<Store>(std::in_place, folder(options), Store::Access::readOnly);
    } catch (const StoreError& error) {
        if (error.reason() != StoreError::Reason::missingFolder)
            throw;
        return std::nullopt;
    }
}

int runImport(const Options& options) {
    std::optional<Store> store = openForImport(options);
    ProgressLine progress(options.import.progress);
    Importer importer(
        store ? &*store : nullptr, options.import.dryRun,
        [&](const std::string& file, const vcard::Problem& problem) {
            progress.clear();
            const std::string line = file + ": card " + std::to_string(problem.number) + ", line " +
                                     std::to_string(problem.line) + ": " + problem.reason + '\n';
            std::fwrite(line.data(), 1, line.size(), stderr);
        },
        [&](std::size_t bytes, const ImportSummary& soFar) { progress.update(bytes, soFar); });
    bool unread = false;
    std::size_t before = 0;
    for (const std::string& file : options.import.files) {
        const bool standardInput = file == "-";
        std::error_code error;
        const std::uintmax_t size = standardInput ? 0 : std::filesystem::file_size(file, error);
        std::ifstream stream;
        if (!standardInput) {
            if (std::filesystem::is_directory(file, error))
                errno = EISDIR;
            else
                stream.open(file, std::ios::binary);
            if (!stream.is_open()) {
                progress.clear();
                complain(file + ": " + std::strerror(errno));
                unread = true;
                continue;
            }
        }
        const std::string name = standardInput ? "standard input" : file;
        progress.start(name, error ? 0 : size);
        const ImportSummary& soFar = importer.read(standardInput ? std::cin : stream, name);
        progress.update(error ? 0 : size, soFar, true);
        progress.clear();
        if (soFar.read == before)
            complain(name + ": no vCard in it");
        unread = unread || soFar.read == before;
        before = soFar.read;
    }
    const ImportSummary summary = importer.finish();
    progress.clear();
    std::cerr << summaryText(summary, options.import.dryRun) << '\n';
    return unread || summary.refused + summary.missing > 0 ? kIncomplete : kDone;
}

int runExport(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    const bool standardOutput = options.write.file.empty() || options.write.file == "-";
    std::optional<Output> output;
    if (standardOutput)
        output.emplace();
    else
        output.emplace(options.write.file);
    const ExportSummary summary = exportCards(store, options.write.group, *output);
    std::cerr << counted(summary.people, "person", "people") << " and "
              << counted(summary.groups, "group", "groups") << " exported\n";
    return kDone;
}

int runList(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    const std::vector<Field> fields = parseFields(options.list.fields, store);
    Output output;
    if (options.list.json)
        listPeopleAsJson(store, fields, output);
    else
        listPeople(store, fields, output);
    return kDone;
}

int runShow(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    Output output;
    showRecord(store, findRecord(store, options.show.id), options.show.json, output);
    return kDone;
}

int runGroups(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    Output output;
    listGroups(store, options.groupsJson, output);
    return kDone;
}

int runMe(const Options& options) {
    if (options.me.id.empty() && !options.me.clear) {
        const Store store = open(options, Store::Access::readOnly);
        const auto uid = store.me();
        const auto record = uid ? store.find(*uid) : std::nullopt;
        if (!record)
            throw Failure("no person is marked as the user's own card; addressbook me ID marks one");
        Output output;
        output.write(record->uid + '\t' + escaped(displayName(store, *record)) + '\n');
        output.finish();
        return kDone;
    }
    Store store = open(options, Store::Access::readWrite);
    ChangeSet changes;
    changes.me = "";
    if (!options.me.clear) {
        const RecordRef record = findRecord(store, options.me.id);
        if (record.kind != Kind::person)
            throw Failure(record.uid + " is a group; the user's own card is a person");
        changes.me = record.uid;
    }
    if (!store.save(changes).missing.empty())
        throw Failure(options.me.id + " was deleted by another program just now");
    return kDone;
}

Date now() {
    constexpr std::chrono::sys_days kReference = std::chrono::year(2001) / 1 / 1;
    return Date{std::chrono::duration<double>(std::chrono::system_clock::now() - kReference).count()};
}

int runExplain(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    std::vector<Query> queries;
    for (const std::string& text : options.searches) {
        try {
            queries.push_back(parseSearch(text, store));
        } catch (const std::invalid_argument& error) {
            throw std::invalid_argument("--explain " + escaped(text) + ": " + error.what());
        }
    }
    Output output;
    for (const Query& query : queries)
        explainSearch(store, query, now(), output);
    output.finish();
    return kDone;
}

int runCheck(const Options& options) {
    if (!options.searches.empty())
        return runExplain(options);
    const Store store = open(options, Store::Access::readOnly);
    const std::vector<std::string> problems = store.check();
    Output output;
    for (const std::string& problem : problems)
        output.write(problem + '\n');
    output.finish();
    if (!problems.empty()) {
        complain(store.file().string() + ": " + counted(problems.size(), "problem", "problems"));
        return kIncomplete;
    }
    std::cerr << store.file().string() << ": sound, "
              << contents(store.count(Kind::person), store.count(Kind::group)) << '\n';
    return kDone;
}

int runBackup(const Options& options) {
    const CopySummary summary = backUp(folder(options), options.backup.file, options.backup.force);
    std::cerr << options.backup.file << ": " << contents(summary.people, summary.groups) << " backed up\n";
    return kDone;
}

// Tells where the book is that another one has taken the place of.
void tellKept(const std::filesystem::path& kept) {
    if (!kept.empty())
        std::cerr << "the address book that was there is kept as " << kept.string() << '\n';
}

int runRestore(const Options& options) {
    const CopySummary summary = restore(folder(options), options.backup.file);
    std::cerr << options.backup.file << ": " << contents(summary.people, summary.groups) << " restored\n";
    tellKept(summary.kept);
    return kDone;
}

int runRepair(const Options& options) {
    const RepairReport report = repair(folder(options));
    if (!report.needed) {
        std::cerr << (folder(options) / "AddressBook.db").string() << ": sound, nothing to repair\n";
        return kDone;
    }
    Output output;
    for (const std::string& lost : report.lost)
        output.write(lost + '\n');
    output.finish();
    std::cerr << contents(report.people, report.groups) << " rescued\n";
    tellKept(report.kept);
    return report.lost.empty() ? kDone : kIncomplete;
}

constexpr const char* kExitCodes =
    "Exit status: 0 done; 1 some cards refused, something not found, a file not read or "
    "written; 2 wrong usage; 3 the address book cannot be opened or written.";

// Declares the command line; each command's work is put into [work] when the user asks for it.
void declare(CLI::App& app, Options& options, int (*&work)(const Options&)) {
    app.require_subcommand(1);
    app.fallthrough(); // --book may stand behind the command
    app.option_defaults()->always_capture_default(false);
    app.add_option("--book", options.book,
                   "The folder of the address book; without it $ADDRESSBOOK_HOME, else "
                   "$XDG_DATA_HOME/AddressBook, else ~/.local/share/AddressBook")
        ->type_name("FOLDER");
    const auto command = [&](const char* name, const char* about, const char* examples,
                             int (*run)(const Options&)) {
        CLI::App* sub = app.add_subcommand(name, about);
        sub->footer(std::string("Examples:\n") + examples);
        sub->callback([&work, run] { work = run; });
        return sub;
    };
    app.footer(std::string("Examples:\n"
                           "  addressbook import contacts.vcf\n"
                           "  addressbook list --fields lastname,firstname,phones\n"
                           "  addressbook export --group Friends friends.vcf\n"
                           "addressbook COMMAND --help tells more about a command.\n") +
               kExitCodes);

    CLI::App* sub =
        command("import", "Add the people and groups of vCard files; a card that is there already is updated",
                "  addressbook import contacts.vcf more.vcf\n"
                "  addressbook import --dry-run contacts.vcf\n"
                "  curl https://example.org/team.vcf | addressbook import -\n"
                "A bad card is reported as \"FILE: card N, line M: reason\"; the others are imported.",
                runImport);
    sub->add_option("FILE", options.import.files, "vCard files of any version; - is standard input")
        ->required();
    sub->add_flag("--dry-run", options.import.dryRun, "Read and report, but save nothing");
    sub->add_flag("--progress", options.import.progress, "Tell how far it is even when that is no terminal");

    sub = command("export", "Write people and groups as vCards (version 3.0)",
                  "  addressbook export backup.vcf\n"
                  "  addressbook export --group Friends | gzip > friends.vcf.gz",
                  runExport);
    sub->add_option("--group", options.write.group, "Only this group, its subgroups and their members")
        ->type_name("NAME");
    sub->add_option("FILE", options.write.file,
                    "Where to; replaced only when all is written. Without it, or with -, standard output");

    sub = command("list", "List people, one a line: unique id, then the fields, separated by tabs",
                  "  addressbook list\n"
                  "  addressbook list --fields lastname,firstname,birthday\n"
                  "  addressbook list --fields name,emails --json\n"
                  "Tabs, line ends and backslashes in a value are written \\t, \\n and \\\\.",
                  runList);
    sub->add_option("--fields", options.list.fields,
                    "What to show of each person; a wrong name is answered with all of them [" +
                        options.list.fields + "]")
        ->type_name("a,b,...");
    sub->add_flag("--json", options.list.json, "A JSON array with one object a line");

    sub = command("show", "Show everything about one person or group",
                  "  addressbook show 6F9619FF-8B86-D011-B42D-00CF4FC964FF:ABPerson\n"
                  "  addressbook show 6F9619FF-8B86-D011-B42D-00CF4FC964FF --json",
                  runShow);
    sub->add_option("ID", options.show.id, "The unique id, with or without what follows the colon")
        ->required();
    sub->add_flag("--json", options.show.json, "A JSON object");

    sub = command("me", "Tell which person is the user's own card, or say which one it is",
                  "  addressbook me\n"
                  "  addressbook me 6F9619FF-8B86-D011-B42D-00CF4FC964FF:ABPerson\n"
                  "  addressbook me --clear",
                  runMe);
    CLI::Option* id = sub->add_option("ID", options.me.id, "The person who is the user from now on");
    sub->add_flag("--clear", options.me.clear, "Nobody is the user")->excludes(id);

    sub = command("groups", "List groups: unique id, name, number of members, number of subgroups",
                  "  addressbook groups\n  addressbook groups --json", runGroups);
    sub->add_flag("--json", options.groupsJson, "A JSON array with one object a line");

    const std::string searches =
        "  addressbook check --book /srv/contacts\n"
        "  addressbook check --explain 'Last contains \"mei\"'\n"
        "  addressbook check --explain 'Address key City label Home is \"zürich\" or Phone label Mobile "
        "beginsWith \"+41 79\"'\n"
        "  addressbook check --explain 'Birthday WithinIntervalFromTodayYearless 7 days and (Note contains "
        "\"piano\" or Note != nil)'\n"
        "A SEARCH is: PROPERTY [key FIELD] [label LABEL] COMPARISON VALUE; several with and, or and ( ).\n"
        "  PROPERTY    by the framework's name (Last, Phone) or as in addressbook list (lastname, phones)\n"
        "  COMPARISON  by the framework's name without kAB, as PrefixMatch, or a short one:\n              " +
        shortComparisons() +
        "\n"
        "  VALUE       text in quotes, a number, a number of days, a date as 2026-01-31, or nil (= nil: it "
        "is set)\n"
        "Each condition is told in the order in which they ran: how it was looked up, index rows looked at, "
        "records "
        "read, hits, time.";
    sub = command("check", "Look for damage in the address book, or tell how searches are answered",
                  searches.c_str(), runCheck);
    sub->add_option("--explain", options.searches, "Tell which index serves a search, and look for no damage")
        ->type_name("SEARCH");

    sub = command("backup", "Copy the whole address book into one file, while it may be in use",
                  "  addressbook backup contacts.backup\n"
                  "  addressbook backup --force contacts.backup",
                  runBackup);
    sub->add_option("FILE", options.backup.file, "Where to; it appears only when it is whole and sound")
        ->required();
    sub->add_flag("--force", options.backup.force, "Replace the file when there is one");

    sub = command("restore", "Put a backup in the place of the address book",
                  "  addressbook restore contacts.backup\n"
                  "The book that was there is kept beside it, under a name with the date and time.",
                  runRestore);
    sub->add_option("FILE", options.backup.file, "A file that addressbook backup wrote")->required();

    command("repair", "Make a new address book of what can be read in a damaged one",
            "  addressbook repair\n"
            "What is lost or doubtful is told, a line each; the damaged book is kept beside the new one.",
            runRepair);
}

int run(int argc, char** argv) {
    CLI::App app("An address book from the command line: bring vCards in and out, list, show and check.",
                 "addressbook");
    Options options;
    int (*work)(const Options&) = nullptr;
    declare(app, options, work);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        complain(std::string(error.what()) + "; addressbook --help tells more");
        return kUsage;
    }
    try {
        return work(options);
    } catch (const OutputClosed&) {
        return kDone;
    } catch (const StoreError& error) {
        complain(error.what());
        return kNoBook;
    } catch (const std::invalid_argument& error) {
        complain(error.what());
        return kUsage;
    } catch (const std::exception& error) {
        complain(error.what());
        return kIncomplete;
    }
}

} // namespace
} // namespace addressbook::tool

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN); // a reader that has seen enough is no reason to die
    try {
        return addressbook::tool::run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "addressbook: %s\n", error.what());
        return addressbook::tool::kIncomplete;
    }
}
