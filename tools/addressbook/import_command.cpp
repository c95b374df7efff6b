// The command `import`: opens the files, shows the progress, and prints what was done.

#include "tools/addressbook/commands.h"

#include "tools/addressbook/import.h"
#include "tools/addressbook/input.h"
#include "tools/addressbook/interrupt.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/progress.h"
#include "tools/addressbook/show.h"
#include "tools/addressbook/table_import.h"

#include "frameworks/AddressBook/store/file/open_file.h"
#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/vcard/charset.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>

namespace addressbook::tool {
namespace {

constexpr std::size_t kPreviewRows = 3;

// What was done with the cards, behind their number.
std::string summaryText(const ImportSummary& summary, bool dryRun) {
    std::string text = " read";
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
    if (summary.lateMembers > 0) {
        text += "; " + counted(summary.lateMembers, "member", "members") + " joined a group that waited";
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

// Opens the address book for an import; null for a dry run when there is none yet. A dry run fails where the
// import would.
std::unique_ptr<Store> openForImport(const Options& options) {
    const std::filesystem::path place = folder(options);
    if (std::error_code error; options.import.dryRun && !std::filesystem::exists(place / kFileName, error)) {
        requirePlaceForBook(place);
        return nullptr;
    }
    auto store = std::make_unique<Store>(place);
    if (store->readOnly()) {
        throw readOnlyError(store->file());
    }
    return store;
}

// What the options say of CSV.
TableForm tableForm(const Options& options) {
    TableForm form;
    form.maps = options.import.maps;
    form.charset = options.import.charset;
    form.datesAreGiven = !options.import.dates.empty();
    form.dates = options.import.dates == "dmy" ? csv::DateOrder::dayFirst : csv::DateOrder::monthFirst;
    return form;
}

std::string interruptedText(const ImportSummary& summary, bool dryRun) {
    if (dryRun) {
        return "interrupted; a dry run saves nothing";
    }
    return "interrupted: " +
           (summary.saved == 0 ? std::string("nothing is saved")
                               : counted(summary.saved, "person is", "people are") +
                                     " saved, the others and all groups are not") +
           "; running it again completes it";
}

// The character set of what names none in a file: what the user says, else a guess from the whole file.
// Standard input cannot be read twice: the reader guesses from what it has at hand.
vcard::Charset charsetOf(const std::string& file, const Options& options) {
    if (!options.import.charset.empty()) {
        return {options.import.charset, false};
    }
    std::error_code error;
    if (file == "-" || !std::filesystem::is_regular_file(file, error)) {
        return {};
    }
    std::ifstream stream(file, std::ios::binary);
    return {vcard::guessCharset(stream), true};
}

} // namespace

int runImport(const Options& options) {
    if (!options.import.charset.empty() && !vcard::isKnownCharset(options.import.charset)) {
        throw std::invalid_argument("--charset: no character set is named \"" +
                                    escaped(options.import.charset) + "\"; iconv --list shows names");
    }
    noteSignals();
    const std::unique_ptr<Store> store = openForImport(options);
    ProgressLine progress("import", options.import.progress);
    std::uintmax_t size = 0;
    bool table = false, cards = false; // this file is CSV; there was one of vCards
    Output output;                     // what a dry run shows of rows
    ImportSummary soFar;
    Importer importer(
        store.get(), options.import.dryRun,
        [&](const std::string& file, const vcard::Problem& problem) {
            if (options.import.quiet) {
                return;
            }
            progress.clear();
            const std::string line = file + (table ? ": row " : ": card ") + std::to_string(problem.number) +
                                     ", line " + std::to_string(problem.line) + ": " + problem.reason + '\n';
            std::fwrite(line.data(), 1, line.size(), stderr);
        },
        [&](std::size_t bytes, const ImportSummary& now) {
            soFar = now;
            progress.update(size == 0 ? -1 : static_cast<double>(bytes) / static_cast<double>(size),
                            table ? counted(now.read, "row", "rows") : counted(now.read, "card", "cards"));
        });
    const std::vector<PropertyDefinition> own =
        store ? store->definitions() : std::vector<PropertyDefinition>();
    const auto readTable = [&](Input& input) {
        const std::size_t before = importer.soFar().read;
        importTable(
            input, tableForm(options), own, importer,
            [&](const std::string& note) {
                progress.clear();
                std::cerr << input.name() << ": " << note << '\n';
            },
            [&](std::size_t line, const vcard::Card& card) {
                if (options.import.dryRun && importer.soFar().read - before < kPreviewRows) {
                    progress.clear();
                    output.write(input.name() + ", line " + std::to_string(line) + '\n');
                    showValues(card.values, allFields(own), output);
                    showGroupNames(card.categories, output);
                    output.write("\n");
                }
            });
        if (importer.soFar().read == before) {
            throw Failure(input.name() + ": nobody in it: there are no rows behind the headers");
        }
    };
    const auto readCards = [&](Input& input, const std::string& file, bool looksLikeCsv) {
        if (looksLikeCsv) {
            throw Failure(input.name() + ": this is CSV and has no vCard in it; --format csv reads it");
        }
        const std::size_t before = importer.soFar().read;
        importer.read(input, input.name(), charsetOf(file, options));
        if (importer.soFar().read == before) {
            throw Failure(input.name() + ": no vCard in it");
        }
    };
    bool unread = false;
    try {
        for (const std::string& file : options.import.files) {
            try {
                Input input(file);
                size = input.size();
                progress.start(input.name());
                const bool looksLikeCsv = looksLikeTable(input.beginning());
                table = options.import.format.empty() ? looksLikeCsv : options.import.format == "csv";
                cards = cards || !table;
                table ? readTable(input) : readCards(input, file, looksLikeCsv);
                progress.update(
                    size == 0 ? -1 : 1,
                    table ? counted(soFar.read, "row", "rows") : counted(soFar.read, "card", "cards"), true);
                progress.clear();
            } catch (const Failure& failure) { // continues with the other files
                progress.clear();
                complain(failure.what());
                unread = true;
            }
        }
    } catch (const Interrupted&) {
        progress.clear();
        complain(interruptedText(soFar, options.import.dryRun));
        throw;
    }
    const ImportSummary summary = importer.finish();
    progress.clear();
    output.finish();
    if (unread && summary.read == 0) {
        return kIncomplete; // what is wrong has been told
    }
    std::cerr << (table && !cards ? counted(summary.read, "row", "rows")
                                  : counted(summary.read, "card", "cards"))
              << summaryText(summary, options.import.dryRun) << '\n';
    return unread || summary.refused + summary.missing > 0 ? kIncomplete : kDone;
}

} // namespace addressbook::tool
