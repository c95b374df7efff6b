#include "bench/generate/store_book.h"

#include "bench/generate/people.h"

#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/values/property.h"

#include <algorithm>

namespace bench {
namespace {

using namespace addressbook;

constexpr std::size_t kPeopleInASave = 50'000;

// The creation date of all records, in seconds since 2001.
constexpr Date kMade{788'918'400};

MultiValue list(const std::vector<LabelledText>& entries) {
    MultiValue values;
    for (const LabelledText& entry : entries) {
        values.entries.push_back({newUuid(), entry.label, entry.value});
    }
    return values;
}

RecordChange changeOf(Person person) {
    RecordChange change{.uid = std::move(person.uid), .kind = Kind::person, .insert = true, .values = {}};
    const auto set = [&change](std::string_view property, Value value) {
        change.values.emplace(property, std::move(value));
    };
    set(property::kFirst, std::move(person.first));
    set(property::kLast, std::move(person.last));
    set(property::kOrganization, std::move(person.organization));
    set(property::kJobTitle, std::move(person.jobTitle));
    set(property::kNote, std::move(person.note));
    set(property::kPhone, list(person.phones));
    set(property::kEmail, list({person.email}));
    const Address& address = person.address;
    set(property::kAddress, MultiValue{{{newUuid(), address.label,
                                         Dictionary{{"Street", address.street},
                                                    {"City", address.city},
                                                    {"ZIP", address.zip},
                                                    {"Country", address.country},
                                                    {"CountryCode", address.countryCode}}}},
                                       {}});
    set(property::kBirthday, FloatingDate{person.birthday});
    if (!person.picture.empty()) {
        set(property::kImage, std::move(person.picture));
    }
    return change;
}

ChangeSet groupsOf(std::size_t people) {
    ChangeSet set;
    set.time = kMade;
    for (std::size_t group = 0; group <= kEverybody; ++group) {
        set.records.push_back({.uid = groupUid(group),
                               .kind = Kind::group,
                               .insert = true,
                               .values = {{std::string(property::kGroupName), groupName(group)}}});
        for (const std::size_t place : membersOf(group, people)) {
            set.memberships.push_back({groupUid(group), personUid(place), true});
        }
    }
    return set;
}

} // namespace

void makeStoreBook(const std::filesystem::path& folder, std::size_t people) {
    Store store(folder);
    for (std::size_t begin = 0; begin < people; begin += kPeopleInASave) {
        ChangeSet set;
        set.time = kMade;
        for (std::size_t place = begin; place < std::min(people, begin + kPeopleInASave); ++place) {
            set.records.push_back(changeOf(person(place)));
        }
        store.save(set);
    }
    store.save(groupsOf(people));
}

void indexEndings(const std::filesystem::path& folder, bool wanted) {
    Store store(folder);
    ChangeSet set;
    (wanted ? set.endings : set.removedEndings) = {{Kind::person, std::string(property::kLast)}};
    store.save(set);
}

} // namespace bench
