#include "tools/addressbook/commands.h"

#include "tools/addressbook/condition.h"
#include "tools/addressbook/explain.h"
#include "tools/addressbook/export.h"
#include "tools/addressbook/fields.h"
#include "tools/addressbook/interrupt.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/progress.h"
#include "tools/addressbook/show.h"
#include "tools/addressbook/table_export.h"

#include "frameworks/AddressBook/store/file/backup.h"
#include "frameworks/AddressBook/store/file/repair.h"
#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/values/calendar.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <span>

namespace addressbook::tool {
namespace {

std::string contents(std::int64_t people, std::int64_t groups) {
    return counted(static_cast<std::size_t>(people), "person", "people") + " and " +
           counted(static_cast<std::size_t>(groups), "group", "groups");
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

// Returns the first [limit] lines at most.
std::span<const std::string> firstOf(const std::vector<std::string>& lines, std::size_t limit) {
    return std::span(lines).first(std::min(lines.size(), limit));
}

// Prints where the address book that was replaced is kept, if there was one.
void tellKept(const std::filesystem::path& kept) {
    if (!kept.empty()) {
        std::cerr << "the address book that was there is kept as " << kept.string() << '\n';
    }
}

} // namespace

std::string counted(std::size_t count, const std::string& singular, const std::string& plural) {
    return std::to_string(count) + ' ' + (count == 1 ? singular : plural);
}

std::filesystem::path folder(const Options& options) {
    return options.book.empty() ? Store::defaultFolder() : std::filesystem::path(options.book);
}

Store open(const Options& options, Store::Access access) {
    return Store(folder(options), access);
}

bool isFirstRun(const Options& options, const StoreError& error) {
    return error.reason() == StoreError::Reason::missingFolder && options.book.empty() &&
           std::getenv("ADDRESSBOOK_HOME") == nullptr;
}

std::string firstSteps() {
    return "there is no address book yet; it would be " +
           (Store::defaultFolder() / "AddressBook.db").string() +
           ". To make and fill it, import vCards or CSV from any program: addressbook import contacts.vcf";
}

int runOverview(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    Output output;
    output.write(store.file().string() + ": " +
                 contents(store.count(Kind::person), store.count(Kind::group)) +
                 "\n\nTo look into it:\n  addressbook list\n  addressbook find WORD\n" +
                 "addressbook --help tells what else can be done.\n");
    output.finish();
    return kDone;
}

int runExport(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    const bool standardOutput = options.write.file.empty() || options.write.file == "-";
    std::optional<Output> output;
    if (standardOutput) {
        output.emplace();
    } else {
        noteSignals();
        output.emplace(options.write.file);
    }
    const ExportForm form{.groupCards = options.write.groups != "categories",
                          .categories = options.write.groups != "cards",
                          .version = options.write.version == "4.0" ? vcard::WrittenVersion::v4
                                                                    : vcard::WrittenVersion::v3};
    ProgressLine progress("export");
    const auto tell = [&](double part) { progress.update(part); };
    const ExportSummary summary = options.write.format == "csv"
                                      ? exportTable(store, options.write.group, *output, tell)
                                      : exportCards(store, options.write.group, form, *output, tell);
    progress.clear();
    std::cerr << counted(summary.people, "person", "people");
    if (options.write.format != "csv") {
        std::cerr << " and " << counted(summary.groups, "group", "groups");
    }
    std::cerr << " exported\n";
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
    ProgressLine progress("check");
    const std::vector<std::string> problems =
        store.check(Store::Depth::everything, [&](double part) { progress.update(part); });
    progress.clear();
    Output output;
    for (const std::string& problem : firstOf(problems, options.narrow.limit)) {
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
    noteSignals();
    ProgressLine progress("backup");
    const CopySummary summary = backUp(folder(options), options.backup.file,
                                       options.backup.force ? Existing::replace : Existing::refuse,
                                       [&](double part) { progress.update(part); });
    progress.clear();
    std::cerr << options.backup.file << ": " << contents(summary.people, summary.groups) << " backed up\n";
    return kDone;
}

int runRestore(const Options& options) {
    noteSignals();
    ProgressLine progress("restore");
    const CopySummary summary =
        restore(folder(options), options.backup.file, [&](double part) { progress.update(part); });
    progress.clear();
    std::cerr << options.backup.file << ": " << contents(summary.people, summary.groups) << " restored\n";
    tellKept(summary.kept);
    return kDone;
}

int runRepair(const Options& options) {
    noteSignals();
    ProgressLine progress("repair");
    const RepairReport report = repair(folder(options), [&](double part) { progress.update(part); });
    progress.clear();
    if (!report.needed) {
        std::cerr << (folder(options) / "AddressBook.db").string() << ": sound, nothing to repair\n";
        return kDone;
    }
    Output output;
    for (const std::string& lost : firstOf(report.lost, options.narrow.limit)) {
        output.write(lost + '\n');
    }
    output.finish();
    std::cerr << contents(report.people, report.groups) << " rescued\n";
    tellKept(report.kept);
    return report.lost.empty() ? kDone : kIncomplete;
}

} // namespace addressbook::tool
