#include "tests/model/plugin_runner.h"

#import "plugin/records/plugin_state.h"
#include "plugin/shell/entry.h"
#import "plugin/shell/error_state.h"
#include "plugin/shell/function_table.h"
#include "plugin/support/guard.h"
#include "tests/model/units.h"
#include "tests/plugin/support.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace model {
namespace {

using Plugin = koru::PluginState;
Plugin& plugin() {
    return koru::state;
}

// Every unit of a string, well-formed or not.
std::string exact(NSString* string) {
    std::u16string units([string length], u'\0');
    [string getCharacters:reinterpret_cast<unichar*>(units.data()) range:NSMakeRange(0, units.size())];
    return string == nil ? "(nil)" : bytesOf(units);
}

// An argument of a call, likewise.
OwnedData argumentOf(const std::string& bytes) {
    const std::u16string units = unitsOf(bytes);
    OwnedText text;
    text->AssignUnicodeWithLength(reinterpret_cast<const fmx::uint16*>(units.data()),
                                  static_cast<fmx::uint32>(units.size()));
    OwnedData data;
    data->SetAsText(*text, data->GetLocale());
    return data;
}

const ExternalFunction* rowOf(short id) {
    for (const ExternalFunction& row : externalFunctions()) {
        if (row.id == id) {
            return &row;
        }
    }
    return nullptr;
}

std::string idOf(id record) {
    return record == nil ? "none" : exact([record uniqueId]);
}

std::string idOf(const RecordPtr& record) {
    return record ? record->id : "none";
}

// Collects what differs.
class Differences {
  public:
    template <typename T>
    void compare(const char* what, const T& actual, const T& expected) {
        if (!(actual == expected)) {
            text_ << what << " is " << actual << " but should be " << expected << "; ";
        }
    }
    [[nodiscard]] std::string text() const { return text_.str(); }

  private:
    std::ostringstream text_;
};

// How many there are; -1 for no list at all.
long countOf(NSArray* list) {
    return list == nil ? -1 : static_cast<long>([list count]);
}

template <typename List>
long countOf(const std::optional<List>& list) {
    return list ? static_cast<long>(list->size()) : -1;
}

void compareWalk(Differences& differences, const char* what, NSArray* list, id current, std::uint32_t index,
                 const Walk& walk) {
    differences.compare(what, countOf(list), countOf(walk.list));
    differences.compare(what, static_cast<unsigned>(index), walk.index);
    differences.compare(what, idOf(current), idOf(walk.current));
}

Value valueOf(id object) {
    if (object == nil) {
        return {};
    }
    if ([object isKindOfClass:[NSString class]]) {
        return exact(object);
    }
    if ([object isKindOfClass:[NSNumber class]]) {
        return [object longLongValue];
    }
    if ([object isKindOfClass:[NSDate class]]) {
        NSCalendar* calendar =
            [[[NSCalendar alloc] initWithCalendarIdentifier:NSGregorianCalendar] autorelease];
        [calendar setTimeZone:[NSTimeZone timeZoneForSecondsFromGMT:0]];
        NSDateComponents* parts = [calendar components:static_cast<NSCalendarUnit>(252) fromDate:object];
        return Civil{static_cast<int>([parts year]),   static_cast<int>([parts month]),
                     static_cast<int>([parts day]),    static_cast<int>([parts hour]),
                     static_cast<int>([parts minute]), static_cast<int>([parts second])};
    }
    if ([object isKindOfClass:[NSDictionary class]]) {
        Address address;
        NSArray* keys = [object allKeys];
        for (NSUInteger i = 0; i < [keys count]; ++i) {
            address[exact([keys objectAtIndex:i])] = exact([object objectForKey:[keys objectAtIndex:i]]);
        }
        return address;
    }
    ABMultiValue* list = object;
    Entries entries;
    for (NSUInteger i = 0; i < [list count]; ++i) {
        entries.push_back({exact([list identifierAtIndex:i]), exact([list labelAtIndex:i]),
                           valueOf([list valueAtIndex:i])});
    }
    return entries;
}

// A record as the model saves it; times that the address book keeps count as such.
Book::Saved contentsOf(ABRecord* record) {
    Book::Saved contents;
    contents.isGroup = [record isKindOfClass:[ABGroup class]];
    NSArray* names = contents.isGroup ? [ABGroup properties] : [ABPerson properties];
    for (NSUInteger i = 0; i < [names count]; ++i) {
        NSString* name = [names objectAtIndex:i];
        // Date components are told from the dates, which are looked at themselves.
        const int type = [[record class] typeOfProperty:name] & ~kABMultiValueMask;
        if ([name isEqualToString:kABUIDProperty] || type == kABDateComponentsProperty) {
            continue;
        }
        const bool kept = [name isEqualToString:kABCreationDateProperty] ||
                          [name isEqualToString:kABModificationDateProperty];
        if (Value value = valueOf([record valueForProperty:name]); !value.empty()) {
            contents.values[exact(name)] = kept ? Value(Clock{}) : std::move(value);
        }
    }
    if (contents.isGroup) {
        ABGroup* group = static_cast<ABGroup*>(record);
        for (NSArray* list : {[group members], [group subgroups]}) {
            for (NSUInteger i = 0; i < [list count]; ++i) {
                contents.members.push_back(exact([[list objectAtIndex:i] uniqueId]));
            }
        }
    }
    return contents;
}

std::map<std::string, Book::Saved> contentsOf(ABAddressBook* book) {
    std::map<std::string, Book::Saved> all;
    for (NSArray* list : {[book people], [book groups]}) {
        for (NSUInteger i = 0; i < [list count]; ++i) {
            ABRecord* record = [list objectAtIndex:i];
            all[exact([record uniqueId])] = contentsOf(record);
        }
    }
    return all;
}

// People before groups, as they are read.
std::map<std::string, Book::Saved> ordered(std::map<std::string, Book::Saved> all) {
    for (auto& [id, contents] : all) {
        std::stable_partition(contents.members.begin(), contents.members.end(),
                              [&](const std::string& member) { return member.ends_with(":ABPerson"); });
    }
    return all;
}

std::string differenceOf(const char* where, const std::map<std::string, Book::Saved>& actual,
                         const std::map<std::string, Book::Saved>& expected) {
    std::ostringstream text;
    if (actual.size() != expected.size()) {
        text << where << " has " << actual.size() << " records instead of " << expected.size() << "; ";
    }
    for (const auto& [id, contents] : expected) {
        const auto found = actual.find(id);
        if (found == actual.end()) {
            text << where << " misses " << id << "; ";
        } else if (!(found->second == contents)) {
            text << where << " has other contents in " << id << ": ";
            for (const auto& [property, value] : contents.values) {
                const auto held = found->second.values.find(property);
                if (held == found->second.values.end() || !(held->second == value)) {
                    text << property << ' ';
                }
            }
            for (const auto& [property, value] : found->second.values) {
                if (!contents.values.contains(property)) {
                    text << "also " << property << ' ';
                }
            }
            if (found->second.members != contents.members) {
                text << "members";
            }
            text << "; ";
        }
    }
    return text.str();
}

} // namespace

Answered callPlugin(const Function& function, const Arguments& arguments) {
    const Pool pool;
    const OwnedExprEnv environment;
    OwnedDataVect vector;
    for (const std::string& argument : arguments) {
        vector->PushBack(*argumentOf(argument));
    }
    const OwnedData result;
    Answered answered;
    const ExternalFunction* row = rowOf(function.id);
    guarded([&] { row->handler(function.id, *environment, *vector, *result); },
            [&](NSException*) { answered.escaped = true; });
    if (answered.escaped) {
        return answered;
    }
    if (result->GetNativeType() == fmx::Data::kDTTimeStamp) {
        const fmx::DateTime& stamp = result->GetAsTimeStamp();
        answered.date = true;
        answered.stamp = {stamp.GetYear(),   stamp.GetMonth(),
                          stamp.GetDay(),    static_cast<int>(stamp.GetHour()),
                          stamp.GetMinute(), stamp.GetSec()};
        return answered;
    }
    NSString* text = stringFromText(result->GetAsText());
    answered.text = text == nil ? "" : exact(text);
    return answered;
}

void resetPlugin() {
    resetStateForTests();
    resetErrorsForTests();
    Do_Init();
    const Pool pool;
    ABAddressBook* book = [ABAddressBook sharedAddressBook];
    for (NSArray* list : {[book people], [book groups]}) {
        for (NSUInteger i = 0; i < [list count]; ++i) {
            [book removeRecord:[list objectAtIndex:i]];
        }
    }
    [ABPerson removeProperties:[ABPerson properties]];
    [ABGroup removeProperties:[ABGroup properties]];
    if (![book save]) {
        throw std::runtime_error("the address book cannot be cleared");
    }
}

std::string differenceOfStates(const State& expected) {
    const Pool pool;
    const Plugin& actual = plugin();
    Differences differences;
    const auto number = [&](const char* what, std::uint32_t is, unsigned should) {
        differences.compare(what, static_cast<unsigned>(is), should);
    };
    number("g_currentRecordType", actual.g_currentRecordType, expected.currentRecordType);
    number("g_lastSearchType", actual.g_lastSearchType, expected.lastSearchType);
    differences.compare("g_person", idOf(actual.g_person.get()), idOf(expected.person));
    differences.compare("g_group", idOf(actual.g_group.get()), idOf(expected.group));
    differences.compare("gNewRecord", actual.gNewRecord, expected.newRecord);
    differences.compare("g_searchelement", static_cast<bool>(actual.g_searchelement),
                        static_cast<bool>(expected.search));
    differences.compare("g_personSearchResults", countOf(actual.g_personSearchResults.get()),
                        countOf(expected.personResults));
    differences.compare("g_groupSearchResults", countOf(actual.g_groupSearchResults.get()),
                        countOf(expected.groupResults));
    number("gCurrentPersonIndex", actual.gCurrentPersonIndex, expected.personIndex);
    number("gCurrentGroupIndex", actual.gCurrentGroupIndex, expected.groupIndex);
    differences.compare("gCurrentProperty", exact(actual.gCurrentProperty.get()),
                        expected.property.value_or("(nil)"));
    differences.compare("gValues", actual.gValues ? static_cast<long>([actual.gValues.get() count]) : -1L,
                        countOf(expected.values));
    number("gCurrentValuesIndex", actual.gCurrentValuesIndex, expected.valuesIndex);
    compareWalk(differences, "the walk of parents", actual.gParentGroups.get(),
                actual.gCurrentGroupParentID.get(), actual.gCurrentGroupParentIDIndex, expected.parents);
    compareWalk(differences, "the walk of members", actual.gGroupMembers.get(), actual.gCurrentMember.get(),
                actual.gCurrentMemberIndex, expected.members);
    compareWalk(differences, "the walk of subgroups", actual.gGroupSubgroups.get(),
                actual.gCurrentSubgroup.get(), actual.gCurrentSubgroupIndex, expected.subgroups);
    number("savedCount", actual.savedCount, expected.savedCount);
    return differences.text();
}

std::string differenceOfBooks(const Model& model) {
    const Pool pool;
    std::map<std::string, Book::Saved> memory;
    for (const RecordPtr& record : model.book.records()) {
        memory[record->id] = Book::contentsOf(*record);
    }
    return differenceOf("the address book", contentsOf([ABAddressBook sharedAddressBook]), ordered(memory));
}

std::string differenceOfDatabases(const Model& model) {
    const Pool pool;
    return differenceOf("the database", contentsOf([ABAddressBook addressBook]), ordered(model.book.saved()));
}

std::pair<std::string, std::string> recordsElsewhere() {
    const Pool pool;
    const support::TemporaryFolder folder;
    const std::string home = std::getenv("ADDRESSBOOK_HOME");
    setenv("ADDRESSBOOK_HOME", folder.path().c_str(), 1);
    ABAddressBook* book = [ABAddressBook addressBook];
    setenv("ADDRESSBOOK_HOME", home.c_str(), 1);
    ABPerson* person = [[[ABPerson alloc] initWithAddressBook:book] autorelease];
    ABGroup* group = [[[ABGroup alloc] initWithAddressBook:book] autorelease];
    [book addRecord:person];
    [book addRecord:group];
    if (![book save]) {
        throw std::runtime_error("another address book cannot be made");
    }
    return {exact([person uniqueId]), exact([group uniqueId])};
}

std::string differenceOfTables() {
    std::ostringstream text;
    for (const ExternalFunction& row : externalFunctions()) {
        // Images, display and reload meet the world outside the address book and have tests of their own.
        if (row.id == 39 || row.id == 40 || row.id == 43 || row.id == 45) {
            continue;
        }
        const auto table = functions();
        const auto found =
            std::find_if(table.begin(), table.end(), [&](const Function& one) { return one.id == row.id; });
        if (found == table.end()) {
            text << "the model has no function " << row.id << "; ";
        } else if (found->minArguments != row.minArguments || found->maxArguments != row.maxArguments) {
            text << found->name << " takes other numbers of arguments; ";
        }
    }
    for (const Function& function : functions()) {
        if (rowOf(function.id) == nullptr) {
            text << "the plug-in has no " << function.name << "; ";
        }
    }
    return text.str();
}

} // namespace model
