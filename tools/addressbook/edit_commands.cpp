// The commands `set` and `delete`.

#include "tools/addressbook/commands.h"

#include "tools/addressbook/assignment.h"
#include "tools/addressbook/fields.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/show.h"

#include "frameworks/AddressBook/model/book.h"

#include <iostream>
#include <memory>

namespace addressbook::tool {
namespace {

std::shared_ptr<Book> openBook(const Options& options) {
    auto book = std::make_shared<Book>(std::make_unique<Store>(folder(options)));
    if (book->readOnly()) {
        throw readOnlyError(book->file());
    }
    return book;
}

void save(Book& book) {
    const SaveResult result = book.save(currentTime());
    if (!result.missing.empty()) {
        throw Failure(result.missing.front() + " was deleted by another program just now");
    }
}

} // namespace

int runSet(const Options& options) {
    const std::shared_ptr<Book> book = openBook(options);
    const std::shared_ptr<const Store> store = book->store();
    const LiveRecordPtr record = book->find(findRecord(*store, options.set.id).uid);
    for (const std::string& text : options.set.assignments) {
        const Assignment assignment = parseAssignment(text, record->kind, *store);
        const std::string& property = assignment.path.property;
        book->set(record, property, assigned(assignment, book->value(*record, property)));
    }
    if (!book->changed()) {
        std::cerr << escaped(book->displayName(*record)) << ": nothing to change\n";
    } else {
        save(*book);
    }
    if (options.json) {
        Output output;
        showRecord(*store, findRecord(*store, record->uid()), true, output);
    }
    return kDone;
}

int runDelete(const Options& options) {
    const std::shared_ptr<Book> book = openBook(options);
    std::vector<RecordRef> deleted;
    for (const std::string& id : options.remove.ids) { // all are looked up before any is removed
        RecordRef record = findRecord(*book->store(), id);
        if (book->remove(book->find(record.uid))) {
            deleted.push_back(std::move(record));
        }
    }
    Output output;
    writeNames(*book->store(), deleted, options.json, output);
    if (!options.remove.dryRun) {
        save(*book);
    }
    output.finish();
    std::cerr << counted(deleted.size(), "record", "records") << " deleted"
              << (options.remove.dryRun ? " (dry run, nothing saved)" : "") << '\n';
    return kDone;
}

} // namespace addressbook::tool
