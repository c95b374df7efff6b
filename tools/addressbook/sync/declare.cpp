#include "tools/addressbook/sync/declare.h"

#include <string>

namespace addressbook::tool {
namespace {

// Adds commands to [app] and to one another.
class Declaration {
  public:
    Declaration(CLI::App& app, Options& options, int (*&work)(const Options&))
        : app_(app), options_(options), work_(work) {}

    void account() {
        CLI::App* all =
            command(app_, "account", "Name the servers that the address book is kept in step with",
                    "  addressbook account add ida@example.com\n"
                    "  addressbook account list\n"
                    "addressbook account COMMAND --help tells more about each.",
                    nullptr);
        all->require_subcommand(1);
        accountAdd(*all);
        CLI::App* sub =
            command(*all, "list",
                    "List the address books on servers: name, address, user, where the password comes "
                    "from, number of records, default",
                    "  addressbook account list\n  addressbook account list --json", runAccountList);
        sub->add_flag("--json", options_.json, "A JSON array with one account a line");
        sub = command(*all, "remove", "Keep the book in step with a server no more",
                      "  addressbook account remove ida@example.com\n"
                      "The people stay here unless you say otherwise; on the server nothing changes.",
                      runAccountRemove);
        sub->add_option("ACCOUNT", options_.removeAccount.name, "The account's name")->required();
        sub->add_flag("--delete-people", options_.removeAccount.deletePeople,
                      "Delete its people and groups here as well; without it, a terminal is asked");
        sub = command(*all, "default", "Say where new people and groups go",
                      "  addressbook account default ida@example.com/Friends\n"
                      "  addressbook account default local\n"
                      "Those that are there already stay where they are; addressbook move moves them.",
                      runAccountDefault);
        sub->add_option("PLACE", options_.place,
                        "ACCOUNT or ACCOUNT/BOOK; or local: they stay on this machine")
            ->required();
    }

    void sync() {
        CLI::App* sub = command(app_, "sync", "Bring the address book and its servers in step",
                                "  addressbook sync\n"
                                "  addressbook sync ida@example.com --dry-run\n"
                                "  addressbook sync --watch 300\n"
                                "What was changed here goes to the server and what was changed there comes "
                                "here, value by value; where "
                                "both sides changed the same, the later save counts, and addressbook "
                                "conflicts has the other value. As "
                                "a service of systemd: systemctl --user enable --now addressbook-sync",
                                runSync);
        sub->add_option("ACCOUNT", options_.sync.accounts,
                        "Only these, as ACCOUNT or ACCOUNT/BOOK; else all");
        CLI::Option* dryRun = sub->add_flag("--dry-run", options_.sync.dryRun,
                                            "Tell what would be done, but change nothing here or there");
        sub->add_flag(
            "--force", options_.sync.force,
            "Go on when more than half of the people are gone on one side; without it, a terminal is asked");
        sub->add_option("--watch", options_.sync.watch,
                        "Stay: send at once what is saved here, and ask the servers every so many seconds")
            ->type_name("SECONDS")
            ->check(CLI::Range(1U, 86'400U))
            ->excludes(dryRun);
    }

    void conflicts() {
        CLI::App* all = command(app_, "conflicts",
                                "List the values that had to yield to the other side's: id, who, property, "
                                "value, whose it is, when",
                                "  addressbook conflicts\n"
                                "  addressbook conflicts take 7\n"
                                "  addressbook conflicts drop 7 8",
                                runConflicts);
        all->require_subcommand(0, 1);
        all->add_flag("--json", options_.json, "A JSON array with one object a line");
        CLI::App* sub =
            command(*all, "take", "Put a value that had to yield back, as a change made here",
                    "  addressbook conflicts take 7\n"
                    "An entry of a list takes the place of the only one with its label; else it is added.",
                    runConflictsTake);
        sub->add_option("NUMBER", options_.conflicts, "The conflict's id, as addressbook conflicts lists it")
            ->required();
        sub = command(*all, "drop", "Forget values that had to yield", "  addressbook conflicts drop 7 8",
                      runConflictsDrop);
        sub->add_option("NUMBER", options_.conflicts, "The ids, as addressbook conflicts lists them")
            ->required();
    }

    void move() {
        CLI::App* sub = command(
            app_, "move", "Move people and groups to an address book on a server, or away from it",
            "  addressbook move 6F9619FF-8B86-D011-B42D-00CF4FC964FF --to ida@example.com/Friends\n"
            "  addressbook move --from local --to ida@example.com\n"
            "  addressbook move 6F9619FF-8B86-D011-B42D-00CF4FC964FF --to local\n"
            "Here nothing changes but where they belong; the next addressbook sync deletes them on the "
            "server that "
            "they leave, and makes them on the other.",
            runMove);
        CLI::Option* ids =
            sub->add_option("ID", options_.move.ids, "Unique ids, with or without what follows the colon");
        sub->add_option(
               "--from", options_.move.from,
               "Instead of ids: all people and groups of an account, of one of its address books, or "
               "local")
            ->type_name("ACCOUNT[/BOOK]")
            ->excludes(ids);
        sub->add_option("--to", options_.move.to, "Where to: an account, one of its address books, or local")
            ->type_name("ACCOUNT[/BOOK]")
            ->required();
    }

  private:
    CLI::App* command(CLI::App& parent, const char* name, const char* about, const char* examples,
                      int (*run)(const Options&)) {
        CLI::App* sub = parent.add_subcommand(name, about);
        sub->footer(std::string("Examples:\n") + examples);
        if (run != nullptr) {
            sub->callback([sub, run, &work = work_] { // a command's own commands are parsed before it
                if (sub->get_subcommands().empty()) {
                    work = run;
                }
            });
        }
        return sub;
    }

    void accountAdd(CLI::App& all) {
        auto& add = options_.addAccount;
        CLI::App* sub = command(
            all, "add", "Find the address books of a server, and keep one in step with the book here",
            "  addressbook account add ida@example.com\n"
            "  addressbook account add https://dav.example.com --user ida --password-command 'pass show "
            "dav'\n"
            "  addressbook account add https://dav.example.com/ida/friends/ --user ida --keyring --default\n"
            "  addressbook account add dav.example.com --user ida --create Friends --name work\n"
            "The password is asked for on the terminal, now and at each sync, unless an option says where it "
            "comes "
            "from. It is never kept in the address book. A command is: write none that has the password in "
            "it.\n"
            "Lists the address books that were found: name, address, \"read only\", \"chosen\". A further "
            "one of the "
            "same account is added in the same way.",
            runAccountAdd);
        sub->add_option(
               "URL|MAIL", add.address,
               "A mail address, a server, or the address of one address book, as the server's maker gives it")
            ->required();
        sub->add_option("--user", add.user,
                        "Who asks; without it the mail address, and what stands before its @")
            ->type_name("NAME");
        CLI::Option* byCommand =
            sub->add_option("--password-command", add.passwordCommand,
                            "The password is the first line that this command of the shell prints")
                ->type_name("COMMAND");
        CLI::Option* byFile =
            sub->add_option("--password-file", add.passwordFile,
                            "The password is the first line of this file, which nobody but its "
                            "owner may read")
                ->type_name("FILE")
                ->excludes(byCommand);
        sub->add_flag(
               "--keyring", add.keyring,
               "The password is in the desktop's keyring; it is asked for and put there when it is not yet")
            ->excludes(byCommand)
            ->excludes(byFile);
        CLI::Option* book =
            sub->add_option("--book", add.books,
                            "The name of the address book on the server; may be repeated. (The folder of the "
                            "book here "
                            "stands before the command: addressbook --book FOLDER account add)")
                ->type_name("NAME")
                ->allow_extra_args(false);
        sub->add_option("--create", add.create, "Make a new address book of this name on the server")
            ->type_name("NAME")
            ->excludes(book);
        sub->add_option("--name", add.name, "What the account is called here; else as its user on the server")
            ->type_name("NAME");
        sub->add_flag("--default", add.isDefault, "New people and groups belong to it from now on");
        sub->add_option("--ca-file", add.caFile,
                        "A file of certificates (PEM) to trust for this server besides the system's")
            ->type_name("FILE");
        sub->add_flag("--allow-http", add.allowHttp,
                      "Speak to it without encryption, password and all; without it only on this machine");
    }

    CLI::App& app_;
    Options& options_;
    int (*&work_)(const Options&);
};

} // namespace

void declareSyncCommands(CLI::App& app, Options& options, int (*&work)(const Options&)) {
    Declaration declaration(app, options, work);
    declaration.account();
    declaration.sync();
    declaration.conflicts();
    declaration.move();
}

} // namespace addressbook::tool
