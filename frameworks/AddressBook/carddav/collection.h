#pragma once

// One address book on a server, as a program sees it that keeps a copy in step: what changed, cards, saves. An abstract
// class, so that tests can put another in its place; openCollection() in server_collection.h gives the real one.
//
// All of it is for one thread, and throws Error for what concerns the server or the address book as a whole; what
// concerns one card is told with that card, and the others go on. A callback that throws ends the call, and what it
// threw leaves it.
//
// Hrefs are paths in the form of normalHref(), so that equal ones are the same text; they are what a copy stores.
// Etags are as the server wrote them: sameEtag() in etag.h compares them.

#include "frameworks/AddressBook/carddav/error.h"

#include <functional>
#include <optional>
#include <string>

namespace addressbook::carddav {

// A card that was added, changed or removed.
struct Change {
    std::string href;
    std::string etag; // empty: not told, the card must be fetched to know
    bool removed = false;
};

enum class Progress {
    complete,  // nothing more changed
    more,      // there is more: ask again with the new state
    beginAnew, // nothing was told: ask with an empty state, which tells everything
};

struct Changes {
    Progress progress = Progress::complete;
    // What to ask with the next time, of the reader's choosing: store it once what was told is stored. Unchanged when
    // nothing changed; empty with beginAnew.
    std::string state;
};

// A card that was asked for.
struct Fetched {
    std::string href;           // as it was asked for
    std::string etag;           // empty: not told
    std::string card;           // lines end with CR LF, the last one, too; empty with an error
    std::optional<Error> error; // notFound: it is gone
};

struct Write {
    enum class Kind {
        create, // fails with preconditionFailed when [href] is there, uidConflict when another card has its UID
        change, // fails with preconditionFailed when the card is not the one of [etag] any more; notFound or
                // preconditionFailed when it is gone
        remove, // succeeds when it is gone; fails with preconditionFailed when it is not the one of [etag]
    };
    Kind kind = Kind::create;
    std::string href; // Collection::hrefFor() for a new one
    std::string etag; // for change and remove; empty: whatever is there, which may lose another's change
    std::string card; // for create and change
};

// What became of a write.
struct Written {
    std::string href; // where the card is: another one if the server put a new card elsewhere
    std::string
        etag; // of what was sent; empty: the server may have changed it, or did not tell: fetch it again
    std::optional<Error> error;
};

class Collection {
  public:
    virtual ~Collection() = default;

    // Tells [each] what changed since [state], which an earlier call gave; empty: all cards that are there, with as many
    // further calls as the progress asks for. What none of these told is not there any more. A card may be told twice;
    // the later counts. What an earlier call told may be told once more. When it throws, ask again with the same [state].
    virtual Changes changes(const std::string& state, const std::function<void(Change&&)>& each) = 0;

    // Fetches the cards that [next] gives until it gives nothing; [each] is told of every one, in any order, as they
    // come. Memory holds the hrefs of a few batches, and a few cards.
    virtual void fetch(const std::function<std::optional<std::string>()>& next,
                       const std::function<void(Fetched&&)>& each) = 0;

    // Makes the writes that [next] gives until it gives nothing, several at once and in no certain order; [done] is told
    // of every one. A write that [done] was not told of when this throws, or was told of with the error network, may or
    // may not have been made: look before it is made again.
    virtual void write(const std::function<std::optional<Write>()>& next,
                       const std::function<void(const Write&, Written&&)>& done) = 0;

    // Returns the href of a new card of this UID: always the same, so that a repeated create finds the first.
    [[nodiscard]] virtual std::string hrefFor(const std::string& uid) const = 0;
};

} // namespace addressbook::carddav
