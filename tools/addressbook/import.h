#pragma once

// The command `import`: reading vCards into an address book.

#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include "tools/addressbook/known_records.h"
#include "tools/addressbook/seen_records.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <istream>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace addressbook::tool {

// What an import did, in numbers of cards.
struct ImportSummary {
    std::size_t read = 0, added = 0, updated = 0, unchanged = 0, refused = 0;
    std::size_t groups = 0;         // cards of groups among those read
    std::size_t namedGroups = 0;    // groups made because a person's card names one
    std::size_t unknownMembers = 0; // members of groups without a card; kept for a later import
    std::size_t lateMembers = 0;    // members kept by an earlier import that joined their group now
    std::size_t skippedLines = 0;
    std::size_t circular = 0; // memberships left out, as a group would contain itself
    std::size_t saved = 0;    // people whose changes have been written
    std::size_t missing = 0;  // records that another program deleted meanwhile; their changes are dropped
};

// Imports the cards of one or several files. Not thread-safe.
class Importer {
  public:
    // Called with a file's name and a problem with a card or a line in it.
    using Report = std::function<void(const std::string& file, const vcard::Problem& problem)>;
    // Called often, with the number of bytes of the file read so far.
    using Progress = std::function<void(std::size_t bytes, const ImportSummary& soFar)>;

    // [store] may be null, for an address book that does not exist yet; then, or with [dryRun], nothing is
    // written.
    Importer(Store* store, bool dryRun, Report report, Progress progress);

    // Reads the cards of a file; returns what was done so far. The cards are saved by finish(), or earlier
    // when there are very many.
    // What names no character set is in [charset].
    const ImportSummary& read(std::istream& input, const std::string& file, vcard::Charset charset = {});

    // For files of a form that has no place for unknown lines of cards, which stay: begins a file, takes a card of it or counts one that is refused. [bytes] are
    // read so far.
    void begin() {
        ++files_;
        tellsUnknownLines_ = false;
    }
    void add(vcard::Card& card, const std::string& file, std::size_t bytes);
    void refuse(const vcard::Problem& problem, const std::string& file, std::size_t bytes);
    // Returns what was done so far.
    const ImportSummary& soFar() const { return summary_; }

    // Adds members to groups, and saves everything that is not saved yet. No group is saved before.
    ImportSummary finish();

  private:
    // A person that is to be compared with the address book and saved.
    struct PendingPerson {
        std::string uid;
        std::string card; // the values, encoded (encodeValues), as they then take a tenth of the memory
        Value picture;
        bool again = false;            // an earlier file had this person, too
        bool tellsUnknownLines = true; // see tellsUnknownLines_
    };
    // The members that a group's card lists.
    struct GroupMembers {
        std::string uid;
        std::vector<std::string> members; // as the card names them
    };

    void take(vcard::Card& card, const std::string& file);
    void advance(std::size_t bytes);
    void addGroup(const std::string& uid, vcard::Card& card, SeenRecord& seen);
    void addPerson(const std::string& uid, vcard::Card& card, SeenRecord& seen, bool again);
    void comparePeople();
    bool takeDifference(RecordChange& change, bool tellsUnknownLines) const;
    std::string idFor(const vcard::Card& card);
    std::string resolve(const std::string& member);
    void joinGroup(const GroupMembers& group);
    void joinLateMembers();
    void joinNamedGroups();
    std::map<std::string, std::vector<std::string>> groupsByName() const;
    bool wouldCycle(const std::string& group, const std::string& subgroup) const;
    bool exists(const std::string& uid) const;
    void flush();

    Store* store_;
    KnownRecords known_;
    bool dryRun_;
    Report report_;
    Progress progress_;
    ImportSummary summary_;
    std::uint32_t files_ = 0;
    bool tellsUnknownLines_ = true; // a card of this file without unknown lines has none
    SeenRecords seen_;
    std::vector<PendingPerson> people_;
    std::unordered_map<std::string, std::string> aliases_;  // UUID of a UID -> unique id
    std::map<std::string, std::vector<std::string>> named_; // group's name -> people's unique ids
    std::vector<GroupMembers> members_;
    std::map<std::string, std::vector<std::string>> subgroups_; // added by this import
    std::vector<RecordChange> groups_;                          // held back until all members are known
    ChangeSet changes_;
    std::size_t pendingBytes_ = 0; // of people_
};

} // namespace addressbook::tool
