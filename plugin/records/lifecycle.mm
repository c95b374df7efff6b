#import "plugin/records/lifecycle.h"

#import "plugin/records/plugin_state.h"
#import "plugin/records/shared_book.h"
#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"

namespace koru {
namespace {

// Makes a new record and makes it the current one of its type. Returns its unique id.
template <typename Record>
NSString* makeCurrent(Retained<Record>& current) {
    current.reset();
    ABAddressBook* book = sharedBook(); // asked before there is a record that an exception would lose
    current = Retained<Record>::adopt([[Record alloc] initWithAddressBook:book]);
    state.gNewRecord = true;
    return [current.get() valueForProperty:kABUIDProperty];
}

// Adds the current record of one type, if there is one, to the address book. It is no longer current then,
// and can be opened by its id.
template <typename Record>
void addCurrent(Retained<Record>& current) {
    ABAddressBook* book = sharedBook();
    if (current) {
        [book addRecord:current.get()];
    }
    current.reset();
    state.gNewRecord = false;
}

// The work of KORU_ClearAll on a group or, when that is nil, the whole address book.
class Clearing {
  public:
    Clearing(ABGroup* group, ABPerson* ownCard) : group_(group), ownCard_(ownCard) {}

    // Chooses what to remove. Everything is listed before anything is removed.
    void choose(NSString* what) {
        if (what == nil || [what caseInsensitiveCompare:@"members"] == NSOrderedSame) {
            people_ = group_ != nil ? [group_ members] : [sharedBook() people];
        }
        if (what == nil || [what caseInsensitiveCompare:@"groups"] == NSOrderedSame) {
            groups_ = group_ != nil ? [group_ subgroups] : [sharedBook() groups];
        }
    }

    // Removes people from the address book, not only from the group. The own card is spared only when the
    // whole address book is cleared.
    void removePeople() const {
        for (NSUInteger i = 0; i < [people_ count]; ++i) {
            ABPerson* person = [people_ objectAtIndex:i];
            if (group_ != nil || ownCard_ == nil || ![person isEqual:ownCard_]) {
                [sharedBook() removeRecord:person];
            }
        }
    }

    // Removes groups: a group's subgroups, unlike its members, only from the group.
    void removeGroups() const {
        for (NSUInteger i = 0; i < [groups_ count]; ++i) {
            ABGroup* each = [groups_ objectAtIndex:i];
            if (group_ != nil) {
                [group_ removeSubgroup:each];
            } else {
                [sharedBook() removeRecord:each];
            }
        }
    }

  private:
    ABGroup* group_;
    ABPerson* ownCard_;
    NSArray* people_ = nil;
    NSArray* groups_ = nil;
};

// Makes the group with the id the current one. Returns false when it fails the call.
bool openGroup(NSString* groupId) {
    if (isPersonId(groupId)) {
        setError(kInvalidRecordType);
        return false;
    }
    state.g_group.reset();
    state.g_group = Retained<ABGroup>::retain(static_cast<ABGroup*>(recordWithId(groupId)));
    if (!state.g_group) {
        setError(kRecordDoesNotExist);
        return false;
    }
    return true;
}

void keepExceptionText(NSError* error) {
    errors.g_sExceptionTxt = Retained<NSString>::retain([error localizedDescription]);
}

} // namespace

NSString* newRecord(NSString* type, NSString* name) {
    if (type == nil) {
        setErrorCodeOnly(kInvalidParameterValue);
        return nil;
    }
    NSString* word = [type lowercaseString];
    if ([word isEqualToString:@"person"] || [word isEqualToString:@"contact"]) {
        state.g_currentRecordType = kPersonType;
        return makeCurrent(state.g_person);
    }
    if ([word isEqualToString:@"group"]) {
        state.g_currentRecordType = kGroupType;
        NSString* uniqueId = makeCurrent(state.g_group);
        if (name != nil) {
            [state.g_group.get() setValue:name forProperty:kABGroupNameProperty];
        }
        return uniqueId;
    }
    setError(kInvalidParameterValue);
    return nil;
}

NSString* saveRecords() {
    if (state.gNewRecord) {
        // Adds the current record, which need not be the new one: the type may have changed since.
        if (state.g_currentRecordType == kGroupType) {
            addCurrent(state.g_group);
        } else {
            addCurrent(state.g_person);
        }
    }
    NSError* error = nil;
    if (![sharedBook() saveAndReturnError:&error]) {
        setError(kSaveFailed);
        if (error != nil) {
            keepExceptionText(error);
        }
        return nil;
    }
    if (error != nil) {
        keepExceptionText(error);
        setError(kSaveFailed, errors.g_sExceptionTxt.get());
    }
    ++state.savedCount;
    state.g_lastSearchType = state.g_currentRecordType;
    return @"0";
}

NSString* deleteRecord(NSString* uniqueId) {
    ABRecord* record = recordWithId(uniqueId);
    if (record == nil || ![sharedBook() removeRecord:record]) {
        setError(kRecordDoesNotExist);
        return nil;
    }
    if (![sharedBook() save]) {
        setError(kDeleteFailed);
        return nil;
    }
    return @"0";
}

NSString* clearAll(NSString* groupId, NSString* what, bool keepOwnCard) {
    ABPerson* ownCard = keepOwnCard ? [sharedBook() me] : nil;
    if (groupId != nil && !openGroup(groupId)) {
        return nil;
    }
    Clearing clearing(groupId != nil ? state.g_group.get() : nil, ownCard);
    clearing.choose(what);
    clearing.removePeople();
    clearing.removeGroups();
    NSError* error = nil;
    [sharedBook() saveAndReturnError:&error];
    if (error != nil) {
        keepExceptionText(error);
        setError(kSaveFailed);
        return nil;
    }
    return @"0";
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_New(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                         fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return newRecord(textArgument(arguments, 0), textArgument(arguments, 1));
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_Save(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                          fmx::Data& result) {
    return runHandler(function, arguments, result, []() -> Answer { return saveRecords(); });
}

fmx::errcode Do_KORU_Delete(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                            fmx::Data& result) {
    const auto work = [&]() -> Answer { return deleteRecord(textArgument(arguments, 0)); };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_ClearAll(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                              fmx::Data& result) {
    const auto work = [&]() -> Answer {
        return clearAll(textArgument(arguments, 0), textArgument(arguments, 1), arguments.AtAsBoolean(2));
    };
    return runHandler(function, arguments, result, work);
}
