#include "tools/addressbook/commands.h"

#include "tools/addressbook/condition.h"
#include "tools/addressbook/explain.h"
#include "tools/addressbook/export.h"
#include "tools/addressbook/fields.h"
#include "tools/addressbook/import.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/show.h"

#include "frameworks/AddressBook/store/file/backup.h"
#include "frameworks/AddressBook/store/file/repair.h"
#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/values/calendar.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <unistd.h>

namespace addressbook::tool {
namespace {

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
        if (!shown_ || (!always && (summary.read % 64 != 0 || Clock::now() - last_ < interval()))) {
            return;
        }
        last_ = Clock::now();
        std::string line = name_ + ": " + counted(summary.read, "card", "cards");
        if (size_ > 0) {
            line += ", " + std::to_string(std::min<std::uintmax_t>(100, bytes * 100 / size_)) + " %";
        }
        std::cerr << (terminal_ ? "\r\x1B[K" : "") << line << (terminal_ ? "" : "\n") << std::flush;
        dirty_ = terminal_;
    }

    // Makes room for another line on a terminal.
    void clear() {
        if (dirty_) {
            std::cerr << "\r\x1B[K";
        }
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
    if (summary.groups > 0) {
        text += " (" + counted(summary.groups, "group", "groups") + ')';
    }
    text += ": " + std::to_string(summary.added) + " added, " + std::to_string(summary.updated) +
            " updated, " + std::to_string(summary.unchanged) + " unchanged, " +
            std::to_string(summary.refused) + " refused";
    if (summary.namedGroups > 0) {
        text += "; " + counted(summary.namedGroups, "group", "groups") + " made from categories";
    }
    if (summary.skippedLines > 0) {
        text += "; " + counted(summary.skippedLines, "line", "lines") + " left out";
    }
    if (summary.unknownMembers > 0) {
        text += "; " + counted(summary.unknownMembers, "group member", "group members") +
                " not in the address book";
    }
    if (summary.circular > 0) {
        text +=
            "; " + counted(summary.circular, "group", "groups") + " not put into another that it contains";
    }
    if (summary.missing > 0) {
        text += "; " + counted(summary.missing, "record", "records") +
                " deleted by another program meanwhile, not changed";
    }
    return text + (dryRun ? " (dry run, nothing saved)" : "");
}

// The address book of an import; none when a dry run finds that there is none yet.
std::optional<Store> openForImport(const Options& options) {
    if (!options.import.dryRun) {
        return std::optional<Store>(std::in_place, folder(options));
    }
    try {
        return std::optional<Store>(std::in_place, folder(options), Store::Access::readOnly);
    } catch (const StoreError& error) {
        if (error.reason() != StoreError::Reason::missingFolder) {
            throw;
        }
        return std::nullopt;
    }
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
    for (const Query& query : queries) {
        explainSearch(store, query, currentTime(), output);
    }
    output.finish();
    return kDone;
}

// Tells where the book is that another one has taken the place of.
void tellKept(const std::filesystem::path& kept) {
    if (!kept.empty()) {
        std::cerr << "the address book that was there is kept as " << kept.string() << '\n';
    }
}

} // namespace

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
            if (std::filesystem::is_directory(file, error)) {
                errno = EISDIR;
            } else {
                stream.open(file, std::ios::binary);
            }
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
        if (soFar.read == before) {
            complain(name + ": no vCard in it");
        }
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
    if (standardOutput) {
        output.emplace();
    } else {
        output.emplace(options.write.file);
    }
    const ExportSummary summary = exportCards(store, options.write.group, *output);
    std::cerr << counted(summary.people, "person", "people") << " and "
              << counted(summary.groups, "group", "groups") << " exported\n";
    return kDone;
}

int runList(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    const std::vector<Field> fields = parseFields(options.list.fields, store);
    Output output;
    if (options.list.json) {
        listPeopleAsJson(store, fields, output);
    } else {
        listPeople(store, fields, output);
    }
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
        if (!record) {
            throw Failure("no person is marked as the user's own card; addressbook me ID marks one");
        }
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
        if (record.kind != Kind::person) {
            throw Failure(record.uid + " is a group; the user's own card is a person");
        }
        changes.me = record.uid;
    }
    if (!store.save(changes).missing.empty()) {
        throw Failure(options.me.id + " was deleted by another program just now");
    }
    return kDone;
}

int runCheck(const Options& options) {
    if (!options.searches.empty()) {
        return runExplain(options);
    }
    const Store store = open(options, Store::Access::readOnly);
    const std::vector<std::string> problems = store.check();
    Output output;
    for (const std::string& problem : problems) {
        output.write(problem + '\n');
    }
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
    const CopySummary summary = backUp(folder(options), options.backup.file,
                                       options.backup.force ? Existing::replace : Existing::refuse);
    std::cerr << options.backup.file << ": " << contents(summary.people, summary.groups) << " backed up\n";
    return kDone;
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
    for (const std::string& lost : report.lost) {
        output.write(lost + '\n');
    }
    output.finish();
    std::cerr << contents(report.people, report.groups) << " rescued\n";
    tellKept(report.kept);
    return report.lost.empty() ? kDone : kIncomplete;
}

} // namespace addressbook::tool
