#import "plugin/records/plugin_state.h"

#import "plugin/records/shared_book.h"
#include "plugin/shell/error_state.h"
#include "plugin/support/immortal.h"

namespace koru {
namespace {
constinit Immortal<PluginState> storage;
}

constinit PluginState& state = storage.value;

ABRecord* currentRecord() {
    return state.g_currentRecordType == kPersonType ? static_cast<ABRecord*>(state.g_person.get())
                                                    : static_cast<ABRecord*>(state.g_group.get());
}

Class currentRecordClass() {
    static Class const person = [ABPerson class]; // GNUstep looks a class up by its name each time
    static Class const group = [ABGroup class];
    return state.g_currentRecordType == kPersonType ? person : group;
}

ABPropertyType typeOfCurrentProperty(NSString* property) {
    return [currentRecordClass() typeOfProperty:property];
}

bool isPersonId(NSString* uniqueId) {
    ABAddressBook* book = sharedBook();
    NSString* recordClass = uniqueId != nil ? [book recordClassFromUniqueId:uniqueId] : nil;
    return recordClass == nil || [recordClass isEqualToString:@"ABPerson"];
}

bool requireActiveRecord() {
    if (state.g_currentRecordType == kGroupType && !state.g_group) {
        setError(kNoActiveRecord);
        return false;
    }
    return true;
}

bool requireWritableRecord() {
    if ([currentRecord() isReadOnly]) {
        setError(kRecordReadOnly);
        return false;
    }
    return true;
}

void resetStateForTests() {
    state = PluginState{};
}

} // namespace koru
