#import "plugin/records/plugin_state.h"

#import "plugin/records/shared_book.h"
#include "plugin/shell/error_state.h"
#include "plugin/support/immortal.h"

namespace {
constinit Immortal<PluginState> storage;
}

constinit PluginState& state = storage.value;

ABRecord* currentRecord() {
    return state.g_currentRecordType == kPersonType ? static_cast<ABRecord*>(state.g_person.get())
                                                    : static_cast<ABRecord*>(state.g_group.get());
}

Class currentRecordClass() {
    return state.g_currentRecordType == kPersonType ? [ABPerson class] : [ABGroup class];
}

ABPropertyType typeOfCurrentProperty(NSString* property) {
    return state.g_currentRecordType == kPersonType ? [ABPerson typeOfProperty:property]
                                                    : [ABGroup typeOfProperty:property];
}

bool isPersonId(NSString* uniqueId) {
    NSString* recordClass = [sharedBook() recordClassFromUniqueId:uniqueId];
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
