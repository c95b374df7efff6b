#include "bench/framework/framework_book.h"

#include "frameworks/AddressBook/values/calendar.h"

#import <AddressBook/AddressBook.h>
#include <cstdlib>
#include <stdexcept>

namespace bench {
namespace {

// The number of people that are read before the autorelease pool is drained.
constexpr NSUInteger kPeopleInAPool = 256;

class Pool {
  public:
    Pool() : pool_([[NSAutoreleasePool alloc] init]) {}
    ~Pool() { [pool_ release]; }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

  private:
    NSAutoreleasePool* pool_;
};

NSString* stringFrom(std::string_view text) {
    return [[[NSString alloc] initWithBytes:text.data() length:text.size()
                                   encoding:NSUTF8StringEncoding] autorelease];
}

std::string textFrom(NSString* string) {
    return string != nil ? std::string([string UTF8String]) : std::string();
}

ABMultiValue* listOf(const std::vector<LabelledText>& entries) {
    ABMutableMultiValue* list = [[[ABMutableMultiValue alloc] init] autorelease];
    for (const LabelledText& entry : entries) {
        [list addValue:stringFrom(entry.value) withLabel:stringFrom(entry.label)];
    }
    return list;
}

NSDictionary* fieldsOf(const Address& address) {
    return [NSDictionary
        dictionaryWithObjectsAndKeys:stringFrom(address.street), kABAddressStreetKey,
                                     stringFrom(address.city), kABAddressCityKey, stringFrom(address.zip),
                                     kABAddressZIPKey, stringFrom(address.country), kABAddressCountryKey,
                                     stringFrom(address.countryCode), kABAddressCountryCodeKey, nil];
}

ABSearchElement* condition(NSString* property, std::string_view value, ABSearchComparison comparison,
                           NSString* label = nil, NSString* key = nil) {
    return [ABPerson searchElementForProperty:property
                                        label:label
                                          key:key
                                        value:stringFrom(value)
                                   comparison:comparison];
}

ABSearchElement* elementFor(Search search) {
    switch (search) {
    case Search::lastEqual:
        return condition(kABLastNameProperty, wanted::kLast, kABEqual);
    case Search::lastContains:
        return condition(kABLastNameProperty, wanted::kLastPart, kABContainsSubStringCaseInsensitive);
    case Search::phoneContains:
        return condition(kABPhoneProperty, wanted::kPhonePart, kABContainsSubStringCaseInsensitive);
    case Search::noteContains:
        return condition(kABNoteProperty, wanted::kNotePart, kABContainsSubStringCaseInsensitive);
    case Search::lastPrefix:
        return condition(kABLastNameProperty, wanted::kLastPrefix, kABPrefixMatchCaseInsensitive);
    case Search::lastSuffix:
        return condition(kABLastNameProperty, wanted::kLastSuffix, kABSuffixMatchCaseInsensitive);
    case Search::cityEqual:
        return condition(kABAddressProperty, wanted::kCity, kABEqual, nil, kABAddressCityKey);
    case Search::mobilePrefix:
        return condition(kABPhoneProperty, wanted::kMobilePrefix, kABPrefixMatchCaseInsensitive,
                         kABPhoneMobileLabel);
    case Search::compound:
        return [ABSearchElement
            searchElementForConjunction:kABSearchAnd
                               children:[NSArray
                                            arrayWithObjects:elementFor(Search::lastPrefix),
                                                             elementFor(Search::cityEqual),
                                                             condition(kABNoteProperty, wanted::kNoteWord,
                                                                       kABContainsSubStringCaseInsensitive),
                                                             condition(kABEmailProperty, wanted::kMailPart,
                                                                       kABContainsSubStringCaseInsensitive),
                                                             nil]];
    }
    return nil;
}

// Calls [visit] with each text that a walk reads.
template <typename Visit>
void visitTexts(ABAddressBook* book, Visit visit) {
    Pool outer;
    NSArray* people = [book people];
    const NSUInteger count = [people count];
    for (NSUInteger i = 0; i < count;) {
        Pool inner;
        for (const NSUInteger end = std::min(count, i + kPeopleInAPool); i < end; ++i) {
            ABPerson* person = [people objectAtIndex:i];
            visit((NSString*)[person valueForProperty:kABFirstNameProperty]);
            visit((NSString*)[person valueForProperty:kABLastNameProperty]);
            visit((NSString*)[person valueForProperty:kABOrganizationProperty]);
            ABMultiValue* phones = [person valueForProperty:kABPhoneProperty];
            for (NSUInteger phone = 0, phoneCount = [phones count]; phone < phoneCount; ++phone) {
                visit((NSString*)[phones valueAtIndex:phone]);
            }
        }
    }
}

} // namespace

struct FrameworkBook::Objects {
    ABAddressBook* book = nil;
    ABRecord* held = nil;
    NSString* phone = nil; // identifier of the held person's first phone

    ~Objects() {
        Pool pool;
        [phone release];
        [held release];
        [book release];
    }
};

FrameworkBook::FrameworkBook(const std::filesystem::path& folder) : objects_(std::make_unique<Objects>()) {
    Pool pool;
    setenv("ADDRESSBOOK_HOME", folder.c_str(), 1);
    objects_->book = [[ABAddressBook addressBook] retain];
    if (objects_->book == nil) {
        throw std::runtime_error("the address book in " + folder.string() + " can not be opened");
    }
}

FrameworkBook::~FrameworkBook() = default;

void FrameworkBook::add(std::size_t people) {
    for (std::size_t place = 0; place < people; ++place) {
        Pool pool;
        const Person source = person(place);
        ABPerson* person = [[[ABPerson alloc] initWithAddressBook:objects_->book] autorelease];
        [person setValue:stringFrom(source.first) forProperty:kABFirstNameProperty];
        [person setValue:stringFrom(source.last) forProperty:kABLastNameProperty];
        [person setValue:stringFrom(source.organization) forProperty:kABOrganizationProperty];
        [person setValue:stringFrom(source.jobTitle) forProperty:kABJobTitleProperty];
        [person setValue:stringFrom(source.note) forProperty:kABNoteProperty];
        [person setValue:listOf(source.phones) forProperty:kABPhoneProperty];
        [person setValue:listOf({source.email}) forProperty:kABEmailProperty];
        ABMutableMultiValue* addresses = [[[ABMutableMultiValue alloc] init] autorelease];
        [addresses addValue:fieldsOf(source.address) withLabel:stringFrom(source.address.label)];
        [person setValue:addresses forProperty:kABAddressProperty];
        const double noon = addressbook::momentOf(addressbook::FloatingDate{source.birthday}).seconds;
        [person setValue:[NSDate dateWithTimeIntervalSinceReferenceDate:noon]
             forProperty:kABBirthdayProperty];
        if (!source.picture.empty()) {
            [person setImageData:[NSData dataWithBytes:source.picture.data() length:source.picture.size()]];
        }
        if (![objects_->book addRecord:person]) {
            throw std::runtime_error("a person can not be added");
        }
    }
}

void FrameworkBook::save() {
    Pool pool;
    NSError* error = nil;
    if (![objects_->book saveAndReturnError:&error]) {
        throw std::runtime_error("the address book can not be saved: " +
                                 textFrom([error localizedDescription]));
    }
}

std::size_t FrameworkBook::search(Search search) {
    Pool pool;
    return [[objects_->book recordsMatchingSearchElement:elementFor(search)] count];
}

std::vector<std::string> FrameworkBook::found(Search search) {
    Pool outer;
    std::vector<std::string> uids;
    NSArray* records = [objects_->book recordsMatchingSearchElement:elementFor(search)];
    for (NSUInteger i = 0, count = [records count]; i < count; ++i) {
        Pool inner;
        uids.push_back(textFrom([(ABRecord*)[records objectAtIndex:i] uniqueId]));
    }
    return uids;
}

std::size_t FrameworkBook::walkedBytes() {
    std::size_t bytes = 0;
    visitTexts(objects_->book, [&](NSString* text) { bytes += textFrom(text).size(); });
    return bytes;
}

std::size_t FrameworkBook::walk() {
    std::size_t texts = 0;
    visitTexts(objects_->book, [&](NSString* text) { texts += text != nil ? 1 : 0; });
    return texts;
}

std::string FrameworkBook::lastName(const std::string& uid) {
    Pool pool;
    return textFrom(
        [[objects_->book recordForUniqueId:stringFrom(uid)] valueForProperty:kABLastNameProperty]);
}

void FrameworkBook::readLastName(const std::string& uid) {
    Pool pool;
    if ([[objects_->book recordForUniqueId:stringFrom(uid)] valueForProperty:kABLastNameProperty] == nil) {
        throw std::runtime_error("there is no person " + uid);
    }
}

void FrameworkBook::changeJob(const std::string& uid, const std::string& job) {
    Pool pool;
    ABRecord* person = [objects_->book recordForUniqueId:stringFrom(uid)];
    if (person == nil || ![person setValue:stringFrom(job) forProperty:kABJobTitleProperty]) {
        throw std::runtime_error("the job of " + uid + " can not be set");
    }
    save();
}

void FrameworkBook::hold(const std::string& uid) {
    Pool pool;
    objects_->held = [[objects_->book recordForUniqueId:stringFrom(uid)] retain];
    ABMultiValue* phones = [objects_->held valueForProperty:kABPhoneProperty];
    if ([phones count] == 0) {
        throw std::runtime_error("there is no phone of " + uid);
    }
    objects_->phone = [[phones identifierAtIndex:0] retain];
}

void FrameworkBook::read(Read what) {
    Pool pool;
    ABRecord* person = objects_->held;
    id value = nil;
    switch (what) {
    case Read::text:
        value = [person valueForProperty:kABFirstNameProperty];
        break;
    case Read::date:
        value = [person valueForProperty:kABBirthdayProperty];
        break;
    case Read::phone:
        value = [[person valueForProperty:kABPhoneProperty] valueForIdentifier:objects_->phone];
        break;
    case Read::phoneLabel:
        value = [[person valueForProperty:kABPhoneProperty] labelForIdentifier:objects_->phone];
        break;
    }
    if (value == nil) {
        throw std::runtime_error("a value of the person held is missing");
    }
}

std::string FrameworkBook::firstPhone() {
    Pool pool;
    return textFrom(objects_->phone);
}

} // namespace bench
