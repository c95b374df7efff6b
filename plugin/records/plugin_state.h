#pragma once

#include "plugin/support/retained.h"
#import <AddressBook/AddressBook.h>
#include <cstdint>

namespace koru {

// The record types of g_currentRecordType and g_lastSearchType.
inline constexpr std::uint32_t kPersonType = 0;
inline constexpr std::uint32_t kGroupType = 1;

// The state that lasts from one call to the next. Persons and groups each have their own current record,
// result list and cursor, and never disturb each other's. A failing call leaves the state as it was at the
// moment of the failure; nothing is undone. Used only on the thread on which the host calls. KORU_Reload also
// clears every variable that holds an object.
struct PluginState {
    // --- The record context.

    // The record type that the next call works on: kPersonType or kGroupType. Set by a type word (SetType),
    // and by the functions that search, open and create records; never cleared.
    std::uint32_t g_currentRecordType = kPersonType;

    // The type of the last search, of the record last opened by its id, or last saved. Set to 0 at start-up.
    std::uint32_t g_lastSearchType = kPersonType;

    // The current person and group: opened (cursor.h), or new (lifecycle.h). Released before another one is
    // opened or made, and when a new one has been saved; g_group also by KORU_ClearAll with a group's id.
    Retained<ABPerson> g_person;
    Retained<ABGroup> g_group;

    // Whether the current record is new and not yet in the address book. Set by KORU_New, cleared by
    // KORU_Save.
    bool gNewRecord = false;

    // --- Search results and their cursors.

    // The condition of the last search, which the next one can widen or narrow. Replaced by each search.
    Retained<ABSearchElement> g_searchelement;

    // What the last search of each type found; empty before the first. Replaced by a search that succeeds.
    Retained<NSArray> g_personSearchResults;
    Retained<NSArray> g_groupSearchResults;

    // The place in each result list of the record last opened there. Set to 0 by KORU_OpenFirstRecord, grown
    // by KORU_OpenNextRecord, also beyond the end; a search leaves it alone.
    std::uint32_t gCurrentPersonIndex = 0;
    std::uint32_t gCurrentGroupIndex = 0;

    // --- The open property.

    // The framework's name of the open property; empty when none is open. Set by OpenProperty; cleared when a
    // record is opened and by the functions that read and delete a property.
    Retained<NSString> gCurrentProperty;

    // A copy of the open property's entries when it has several values; empty otherwise. Replaced by
    // OpenProperty.
    Retained<ABMutableMultiValue> gValues;

    // The next entry of gValues to hand out.
    std::uint32_t gCurrentValuesIndex = 0;

    // --- Cursors over groups: the list, the element last handed out, the place of the next.

    Retained<NSArray> gParentGroups;
    Retained<NSObject> gCurrentGroupParentID;
    std::uint32_t gCurrentGroupParentIDIndex = 0;

    Retained<NSArray> gGroupMembers;
    Retained<NSObject> gCurrentMember;
    std::uint32_t gCurrentMemberIndex = 0;

    Retained<NSArray> gGroupSubgroups;
    Retained<NSObject> gCurrentSubgroup;
    std::uint32_t gCurrentSubgroupIndex = 0;

    // --- Others.

    // The Address Book framework's bundle, set by KORU_Reload only. Not retained.
    NSBundle* g_abframework = nil;

    // How often KORU_Save has succeeded.
    std::uint32_t savedCount = 0;

    // Whether the system is older than Mac OS X 10.7. Nothing reads it.
    bool preLion = true;
};

// The one state. Lives as long as the process: nothing in it is released, neither at shut-down nor at exit.
extern PluginState& state;

// Returns the current record of the current type; nil when there is none.
[[nodiscard]] ABRecord* currentRecord();

// Returns the framework's class of the current record type: ABPerson or ABGroup.
[[nodiscard]] Class currentRecordClass();

// Returns the type of a property of the current record type; 0 when its records have no such property.
[[nodiscard]] ABPropertyType typeOfCurrentProperty(NSString* property);

// Whether the id is a person's. An id that the address book does not know counts as a person's.
[[nodiscard]] bool isPersonId(NSString* uniqueId);

// Fails the call with kNoActiveRecord, and returns false, when groups are current and no group is open.
// Returns true without a current person, on purpose: reading then yields empty text, and writing fails later.
[[nodiscard]] bool requireActiveRecord();

// Fails the call with kRecordReadOnly, and returns false, when the current record is read-only.
[[nodiscard]] bool requireWritableRecord();

// Resets the state to what it is when the plug-in is loaded. For tests.
void resetStateForTests();

} // namespace koru
