// The program addressbook: an address book from the command line. Data goes to standard output, everything
// else to standard error.

#include "tools/addressbook/commands.h"
#include "tools/addressbook/completers.h"
#include "tools/addressbook/condition.h"
#include "tools/addressbook/interrupt.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/sync/declare.h"
#include "tools/command_line/questions.h"

#include "frameworks/AddressBook/carddav/error.h"
#include "frameworks/AddressBook/store/store.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace addressbook::tool {
namespace {

constexpr const char* kExitCodes =
    "Exit status: 0 done; 1 some cards refused, something not found, a file not read or "
    "written; 2 wrong usage; 3 the address book cannot be opened or written; 4 a server cannot be reached, "
    "or "
    "does not let the account in; 5 held back, as more than half of the people would vanish; 129, 130, 143 "
    "ended by SIGHUP, Ctrl-C, SIGTERM.";

// Declares the command line. Parsing it sets [work] to the function of the command that the user gives.
void declare(CLI::App& app, Options& options, int (*&work)(const Options&)) {
    app.require_subcommand(0, 1);
    command_line::addVersion(app);
    app.fallthrough(); // --book may follow the command
    app.option_defaults()->always_capture_default(false);
    app.add_option("--book", options.book,
                   "The folder of the address book; without it $ADDRESSBOOK_HOME, else "
                   "$XDG_DATA_HOME/AddressBook, else ~/.local/share/AddressBook")
        ->type_name("FOLDER");
    const auto command = [&app, &work](const char* name, const char* about, const char* examples,
                                       int (*run)(const Options&), CLI::App* parent = nullptr) {
        CLI::App* sub = (parent != nullptr ? parent : &app)->add_subcommand(name, about);
        sub->footer(std::string("Examples:\n") + examples);
        sub->callback([&work, sub, run] { // a command's own commands are parsed before it
            if (sub->get_subcommands().empty()) {
                work = run;
            }
        });
        return sub;
    };
    app.footer(
        std::string("Examples:\n"
                    "  addressbook import contacts.vcf\n"
                    "  addressbook list --fields lastname,firstname,phones\n"
                    "  addressbook find berg\n"
                    "  addressbook export --group Friends friends.vcf\n"
                    "Without a command: where the address book is, and how many are in it. addressbook "
                    "COMMAND --help tells more about a command.\n") +
        kExitCodes);

    CLI::App* sub =
        command("import", "Add the people and groups of vCard and CSV files; who is there already is updated",
                "  addressbook import contacts.vcf more.vcf\n"
                "  addressbook import --dry-run contacts.vcf\n"
                "  addressbook import --dry-run people.csv --map \"Mobil=phones/mobile\"\n"
                "  curl https://example.org/team.vcf | addressbook import -\n"
                "A bad card is reported as \"FILE: card N, line M: reason\"; the others are imported. The "
                "columns of CSV from Google, Outlook and Apple\n"
                "are known, and those of addressbook export; a dry run shows what the first rows become.",
                runImport);
    sub->add_option("FILE", options.import.files,
                    "vCard files of any version, or CSV files with a line of headers; - is standard input")
        ->required();
    sub->add_flag("--dry-run", options.import.dryRun, "Read and report, but save nothing");
    sub->add_option("--format", options.import.format, "What the files are; without it their beginning tells")
        ->check(CLI::IsMember({"vcard", "csv"}))
        ->type_name("vcard|csv");
    sub->add_option(
           "--map", options.import.maps,
           "Of CSV: what a column is, as \"Mobil=phones/mobile\"; \"Column=\" leaves it out. May be repeated")
        ->type_name("COLUMN=PROPERTY")
        ->allow_extra_args(false);
    sub->add_option("--dates", options.import.dates,
                    "Of CSV: whether 3/4/1980 is March 4th (mdy), as without it, or April 3rd (dmy)")
        ->check(CLI::IsMember({"mdy", "dmy"}))
        ->type_name("mdy|dmy");
    sub->add_option("--charset", options.import.charset,
                    "The character set of what names none, as windows-1252; else it is guessed")
        ->type_name("NAME");
    sub->add_flag("--quiet", options.import.quiet, "Tell how many cards and lines are left out, not which");
    sub->add_flag("--progress", options.import.progress, "Tell how far it is even when that is no terminal");

    sub = command("export", "Write people and groups as vCards",
                  "  addressbook export backup.vcf\n"
                  "  addressbook export --group Friends | gzip > friends.vcf.gz\n"
                  "  addressbook export --version 4.0 --groups categories phone.vcf\n"
                  "  addressbook export --format csv people.csv",
                  runExport);
    sub->add_option("--format", options.write.format,
                    "What to write: vcard, which is the default, or csv (people alone)")
        ->check(CLI::IsMember({"vcard", "csv"}))
        ->type_name("vcard|csv");
    sub->add_option("--group", options.write.group, "Only this group, its subgroups and their members")
        ->type_name("NAME");
    sub->add_option("--version", options.write.version,
                    "The version of vCard: 3.0, which is the default, or 4.0")
        ->check(CLI::IsMember({"3.0", "4.0"}))
        ->type_name("N");
    sub->add_option(
           "--groups", options.write.groups,
           "How a card says the groups: group cards, categories of people, or both, which is the default")
        ->check(CLI::IsMember({"cards", "categories", "both"}))
        ->type_name("cards|categories|both");
    sub->add_option("FILE", options.write.file,
                    "Where to; replaced only when all is written. Without it, or with -, standard output");

    const auto addJson = [&](const char* about) { sub->add_flag("--json", options.json, about); };
    const auto addLimit = [&](const char* about) {
        sub->add_option("--limit", options.narrow.limit, about)->type_name("N")->check(CLI::PositiveNumber);
    };
    const auto addFields = [&] {
        sub->add_option("--fields", options.fields,
                        "What to show of each; a wrong name is answered with all of them [" + options.fields +
                            "]")
            ->type_name("a,b,...");
    };
    const auto addNarrowing = [&](const char* group) {
        sub->add_option("--group", options.narrow.group, group)->type_name("NAME");
        sub->add_option("--account", options.narrow.account,
                        "Only what belongs to this account, or to one of its address books; local is what "
                        "belongs to none")
            ->type_name("ACCOUNT[/BOOK]");
        sub->add_option("--where", options.narrow.where,
                        "Only what this search finds; addressbook check --help tells how to write it")
            ->type_name("SEARCH");
        addLimit("Only the first N");
    };

    sub = command(
        "list", "List people, one a line: unique id, then the fields, separated by tabs",
        "  addressbook list\n"
        "  addressbook list --fields lastname,firstname,birthday\n"
        "  addressbook list --fields name,emails --json\n"
        "  addressbook list --group Friends --where 'Birthday WithinIntervalFromTodayYearless 7 days'\n"
        "Tabs, line ends and backslashes in a value are written \\t, \\n and \\\\.",
        runList);
    addFields();
    addNarrowing("Only the members of this group and its subgroups");
    addJson("A JSON array with one object a line");

    sub = command("find", "List the people and groups about whom something is written",
                  "  addressbook find berg\n"
                  "  addressbook find ida oslo\n"
                  "  addressbook find 555-0133 --fields name,phones\n"
                  "Every word must be found, in any text and any letter case; a number also inside a phone "
                  "number, whatever\n"
                  "stands between its digits. Exit status 1 when nothing is found.",
                  runFind);
    sub->add_option("TEXT", options.words, "Words, or parts of words")->required();
    addFields();
    addLimit("Only the first N");
    addJson("A JSON array with one object a line");

    sub = command("show", "Show everything about one person or group",
                  "  addressbook show 6F9619FF-8B86-D011-B42D-00CF4FC964FF:ABPerson\n"
                  "  addressbook show 6F9619FF-8B86-D011-B42D-00CF4FC964FF --json",
                  runShow);
    sub->add_option("ID", options.id, "The unique id, with or without what follows the colon")->required();
    addLimit("Of a group's members only the first N");
    addJson("A JSON object");

    sub = command("set", "Change a person or a group",
                  "  addressbook set 6F9619FF-8B86-D011-B42D-00CF4FC964FF lastname=Berg birthday=1980-03-22\n"
                  "  addressbook set 6F9619FF-8B86-D011-B42D-00CF4FC964FF phones/mobile='555 0133' "
                  "emails/work+=ida@example.org\n"
                  "  addressbook set 6F9619FF-8B86-D011-B42D-00CF4FC964FF addresses/home/city=Oslo note=\n"
                  "All that is asked for is saved, or nothing. PROPERTY is a name as in addressbook list; of "
                  "properties with several\n"
                  "values PROPERTY/LABEL is the entry with this label, or a new one; += adds a further one. "
                  "An empty value takes\n"
                  "away what was there. A wrong name is answered with all that are possible.",
                  runSet);
    sub->add_option("ID", options.set.id, "The unique id, with or without what follows the colon")
        ->required();
    sub->add_option("PROPERTY=VALUE", options.set.assignments, "What to change")->required();
    addJson("Show the record as it is then, as a JSON object");

    sub =
        command("delete", "Delete people and groups; the members of a group stay",
                "  addressbook delete 6F9619FF-8B86-D011-B42D-00CF4FC964FF:ABPerson\n"
                "  addressbook list --where 'Organization = \"Mill\"' | cut -f 1 | xargs addressbook delete\n"
                "All of them are deleted, or none when there is one that does not exist.",
                runDelete);
    sub->add_option("ID", options.remove.ids, "Unique ids, with or without what follows the colon")
        ->required();
    sub->add_flag("--dry-run", options.remove.dryRun, "Tell what would be deleted, but delete nothing");
    addJson("Tell what is deleted as a JSON array");

    sub = command("me", "Tell which person is the user's own card, or say which one it is",
                  "  addressbook me\n"
                  "  addressbook me 6F9619FF-8B86-D011-B42D-00CF4FC964FF:ABPerson\n"
                  "  addressbook me --clear",
                  runMe);
    CLI::Option* id = sub->add_option("ID", options.me.id, "The person who is the user from now on");
    sub->add_flag("--clear", options.me.clear, "Nobody is the user")->excludes(id);

    sub = command("groups", "List groups: unique id, name, number of members, number of subgroups",
                  "  addressbook groups\n"
                  "  addressbook groups --where 'GroupName contains \"club\"'\n"
                  "  addressbook groups --json",
                  runGroups);
    addNarrowing("Only this group and its subgroups");
    addJson("A JSON array with one object a line");

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
    addLimit("Tell only the first N problems");

    sub =
        command("endings", "List the properties whose texts are looked up quickly by their endings, too",
                "  addressbook endings\n"
                "  addressbook endings add lastname emails\n"
                "  addressbook endings remove emails\n"
                "A search for an ending, as Last endsWith \"son\", is then as quick as one for a beginning; "
                "the book gets larger,\n"
                "and saving such texts takes a little longer. What is found is the same with and without.",
                runEndings);
    sub->require_subcommand(0, 1);
    const auto addProperties = [&options](CLI::App* one) {
        one->add_option("PROPERTY", options.endings.properties,
                        "Properties as in addressbook list; a wrong name is answered with all of them")
            ->required();
        one->add_flag("--groups", options.endings.ofGroups, "Properties of groups, as name, not of people");
    };
    addProperties(command("add", "Index the endings of properties",
                          "  addressbook endings add lastname emails", runEndingsAdd, sub));
    addProperties(command("remove", "Index them no more", "  addressbook endings remove emails",
                          runEndingsRemove, sub));

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

    sub =
        command("repair", "Make a new address book of what can be read in a damaged one",
                "  addressbook repair\n"
                "What is lost or doubtful is told, a line each; the damaged book is kept beside the new one.",
                runRepair);
    addLimit("Tell only the first N losses");
    declareSyncCommands(app, options, work);
}

int run(int argc, char** argv) {
    CLI::App app("An address book from the command line: bring contacts in and out, find and change them, "
                 "keep them safe.",
                 "addressbook");
    Options options;
    int (*work)(const Options&) = runOverview;
    declare(app, options, work);
    if (const auto status = command_line::answerQuestion(argc, argv, app, completers())) {
        return *status;
    }
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
    } catch (const Interrupted& end) {
        return end.status();
    } catch (const StoreError& error) {
        complain(isFirstRun(options, error) ? firstSteps() : error.what());
        return kNoBook;
    } catch (const carddav::Error& error) {
        complain(error.what());
        return kNoServer;
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
    std::signal(SIGPIPE, SIG_IGN); // a closed pipe is reported by the write (OutputClosed)
    try {
        return addressbook::tool::run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "addressbook: %s\n", error.what());
        return addressbook::tool::kIncomplete;
    }
}
