#include "tests/plugin/good_calls.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "plugin/shell/function_table.h"
#include "tests/plugin/image_support.h"
#include "tests/plugin/pictures.h"
#include "tests/plugin/replaced_method.h"
#include <sstream>

// Foundation's count of objects, which NSDebug.h declares for debug builds alone.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" BOOL GSDebugAllocationActive(BOOL active);
extern "C" Class* GSDebugAllocationClassList();
extern "C" int GSDebugAllocationCount(Class type);
// NOLINTEND(readability-identifier-naming)

// In the place of a framework's bundle, as the framework itself must stay loaded. KORU_Reload releases a bundle that it has
// not retained; this one counts no references, of which Foundation has no more than 16 million for an object.
@interface VelocardLoadedBundle : NSObject
@end
@implementation VelocardLoadedBundle
- (id)retain {
    return self;
}
- (oneway void)release {
}
- (BOOL)load {
    return YES;
}
- (BOOL)unload {
    return YES;
}
@end

namespace {

// The argument that stands for a container with a picture.
const std::string kPicture = "<picture>";

NSBundle* loadedBundle() {
    static VelocardLoadedBundle* const bundle = [[VelocardLoadedBundle alloc] init];
    return static_cast<NSBundle*>(static_cast<id>(bundle));
}

id bundleWithIdentifier(id /*self*/, SEL /*selector*/, NSString* /*identifier*/) {
    return loadedBundle();
}

} // namespace

short GoodCall::id() const {
    for (const ExternalFunction& function : externalFunctions()) {
        if (function.handler == handler) {
            return function.id;
        }
    }
    ADD_FAILURE() << "the function is not in the table";
    return -1;
}

void GoodCallsTest::SetUp() {
    PluginTest::SetUp();
    static const ReplacedMethod fetches(object_getClass([NSBundle class]), @selector(bundleWithIdentifier:),
                                        bundleWithIdentifier);
    fillBook();
    GSDebugAllocationActive(YES);
}

std::vector<GoodCall> GoodCallsTest::calls() {
    const GoodCall search{Do_KORU_Search, {"person", "lastname", "", "", "Smith", "Equal"}};
    const GoodCall first{Do_KORU_OpenFirstRecord, {"person"}};
    return {
        {Do_KORU_Version, {"long"}},
        {Do_KORU_GetLastError, {"NUM"}},
        search,
        {Do_KORU_Search, {"person", "phone", "home", "", "1", "Equal", "expand"}, {search}},
        {Do_KORU_Search, {"person", "dates", "", "", "25 December 2010", "Equal", "constrain"}, {search}},
        {Do_KORU_Search, {"group", "name", "", "", "Harbour", "Equal"}},
        {Do_KORU_OpenFirstRecord, {"person"}, {search}},
        {Do_KORU_OpenNextRecord, {"person"}, {search, first}},
        {Do_KORU_Open, {"<person>"}},
        {Do_KORU_Open, {"<group>"}},
        {Do_KORU_New, {"group", "Harbour"}},
        {Do_KORU_New, {"person"}},
        {Do_KORU_Save, {}},
        {Do_KORU_Save, {}, {{Do_KORU_New, {"group", "Harbour"}}}},
        {Do_KORU_Delete, {"<victim>"}},
        {Do_KORU_ClearAll, {"<emptied>", "members", "1"}},
        {Do_KORU_ClearAll, {"", "nothing", "1"}},
        {Do_KORU_GetValueForProperty, {"birthday", "person"}},
        {Do_KORU_GetValueForProperty, {"firstname", "person"}},
        {Do_KORU_GetValueForProperty, {"person flags", "person"}},
        {Do_KORU_SetValueForProperty, {"note", "x", "person"}},
        {Do_KORU_SetValueForProperty, {"birthday", "25 December 2010", "person"}},
        {Do_KORU_DeleteValueForProperty, {"note", "person"}},
        {Do_KORU_OpenFirstMVProperty, {"phone", "person"}},
        {Do_KORU_OpenNextMVProperty, {}, {{Do_KORU_OpenFirstMVProperty, {"phone", "person"}}}},
        {Do_KORU_GetValueForUID, {"phone", "<phone>"}},
        {Do_KORU_GetValueForUID, {"dates", "<date>"}},
        {Do_KORU_GetValueForUID, {"address", "<address>", "City"}},
        {Do_KORU_SetValueForUID, {"phone", "<phone>", "2", ""}},
        {Do_KORU_SetValueForUID, {"address", "<address>", "us", "CountryCode"}},
        {Do_KORU_GetLabelForUID, {"phone", "<phone>"}},
        {Do_KORU_SetLabelForUID, {"phone", "<phone>", "work"}},
        {Do_KORU_DeleteValueForUID, {"phone", "<phone>", ""}},
        {Do_KORU_DeleteValueForUID, {"address", "<address>", "City"}},
        {Do_KORU_AddMV, {"phone", "3", "home"}},
        {Do_KORU_AddAddress, {"home", "", "Bristol", "", "", "", "gb"}},
        {Do_KORU_CompareProperty, {"phone", "1", "<phone>", ""}},
        {Do_KORU_CompareProperty, {"birthday", "25 December 2010"}},
        {Do_KORU_GetListOfValues, {"person", "groups", "UID"}},
        {Do_KORU_GetListOfValues, {"group", "members", "UID"}},
        {Do_KORU_GetFirstParentID, {}, {{Do_KORU_Open, {"<person>"}}}},
        {Do_KORU_GetNextParentID, {}, {{Do_KORU_GetFirstParentID, {}}}},
        {Do_KORU_GetFirstMemberID, {}},
        {Do_KORU_GetNextMemberID, {}, {{Do_KORU_GetFirstMemberID, {}}}},
        {Do_KORU_GetFirstSubgroupID, {}},
        {Do_KORU_GetNextSubgroupID,
         {},
         {{Do_KORU_GetFirstSubgroupID, {}}}}, // with a second one; else it raises
        {Do_KORU_AddPerson, {"<other>"}},
        {Do_KORU_RemovePerson, {"<member>"}},
        {Do_KORU_AddSubgroup, {"<lonely>"}},
        {Do_KORU_RemoveSubgroup, {"<subgroup>"}},
        {Do_KORU_Display, {"<person>"}},
        {Do_KORU_GetImage, {}},
        {Do_KORU_SetImage, {kPicture}},
        {Do_KORU_AddCustomField, {"person", "Rating"}},
        {Do_KORU_RemoveCustomField, {"person", "Customer"}},
        {Do_KORU_SetCustomField, {"person", "Customer", "1"}},
        {Do_KORU_GetCustomField, {"person", "Customer"}},
        {Do_KORU_Reload, {}},
    };
}

void GoodCallsTest::fillBook() {
    const Pool pool;
    resetStateForTests();
    emptyBook();
    const std::pair<const char*, NSString*> people[] = {
        {"<person>", @"Anna"}, {"<member>", @"Ben"}, {"<other>", @"Cleo"}, {"<victim>", @"Dan"}};
    for (const auto& [name, first] : people) {
        identifiers_[name] = utf8([addPerson(first, @"Smith") uniqueId]);
    }
    const std::pair<const char*, NSString*> groups[] = {{"<group>", @"Friends"},
                                                        {"<subgroup>", @"Close friends"},
                                                        {"<second>", @"Old friends"},
                                                        {"<lonely>", @"Others"},
                                                        {"<emptied>", @"Strangers"}};
    for (const auto& [name, title] : groups) {
        identifiers_[name] = utf8([addGroup(title) uniqueId]);
    }
    call(Do_KORU_Open, {identifiers_["<person>"]});
    identifiers_["<phone>"] = call(Do_KORU_AddMV, {"phone", "1", "home"});
    call(Do_KORU_AddMV, {"phone", "2", "work"});
    identifiers_["<date>"] = call(Do_KORU_AddMV, {"dates", "25 December 2010", "anniversary"});
    identifiers_["<address>"] = call(Do_KORU_AddAddress, {"home", "1 Main St", "Bristol", "", "", "", "gb"});
    ABRecord* person = record("<person>");
    phones_ = Retained<ABMultiValue>::retain([person valueForProperty:kABPhoneProperty]);
    dates_ = Retained<ABMultiValue>::retain([person valueForProperty:kABOtherDatesProperty]);
    addresses_ = Retained<ABMultiValue>::retain([person valueForProperty:kABAddressProperty]);
    for (const char* member : {"<person>", "<member>"}) {
        [static_cast<ABGroup*>(record("<group>")) addMember:static_cast<ABPerson*>(record(member))];
    }
    for (const char* subgroup : {"<subgroup>", "<second>"}) {
        [static_cast<ABGroup*>(record("<group>")) addSubgroup:static_cast<ABGroup*>(record(subgroup))];
    }
    [static_cast<ABGroup*>(record("<emptied>")) addMember:static_cast<ABPerson*>(record("<victim>"))];
    ASSERT_TRUE([[ABAddressBook sharedAddressBook] save]);
}

ABRecord* GoodCallsTest::record(const std::string& name) const {
    return [[ABAddressBook sharedAddressBook] recordForUniqueId:string(identifiers_.at(name))];
}

bool GoodCallsTest::isFilled() const {
    ABAddressBook* book = [ABAddressBook sharedAddressBook];
    return [[book people] count] == 4 && [[book groups] count] == 5 && record("<victim>") != nil;
}

void GoodCallsTest::prepare(const GoodCall& good) {
    const Pool pool;
    if (!isFilled()) {
        fillBook();
    }
    resetStateForTests();
    auto* person = static_cast<ABPerson*>(record("<person>"));
    auto* group = static_cast<ABGroup*>(record("<group>"));
    [person setValue:phones_.get() forProperty:kABPhoneProperty];
    [person setValue:dates_.get() forProperty:kABOtherDatesProperty];
    [person setValue:addresses_.get() forProperty:kABAddressProperty];
    [person setValue:@"x" forProperty:kABNoteProperty];
    [person setImageData:dataOf(bmp(3, 2))];
    [ABPerson removeProperties:[NSArray arrayWithObject:@"Rating"]];
    [ABPerson addPropertiesAndTypes:[NSDictionary dictionaryWithObject:[NSNumber numberWithInt:1]
                                                                forKey:@"Customer"]];
    [person setValue:@"7" forProperty:@"Customer"];
    [group removeMember:static_cast<ABPerson*>(record("<other>"))];
    [group addMember:static_cast<ABPerson*>(record("<member>"))];
    [group removeSubgroup:static_cast<ABGroup*>(record("<lonely>"))];
    [group addSubgroup:static_cast<ABGroup*>(record("<subgroup>"))];
    state.g_abframework = loadedBundle();
    call(Do_KORU_Open, {identifiers_["<group>"]});
    call(Do_KORU_Open, {identifiers_["<person>"]});
    call(Do_KORU_SetValueForProperty, {"birthday", "25 December 2010"});
    for (const GoodCall& one : good.before) {
        const OwnedExprEnv environment;
        const OwnedData result;
        one.handler(one.id(), *environment, *argumentsOf(one), *result);
        EXPECT_EQ(errors.g_llasterror, kSuccess) << "function " << one.id();
    }
}

OwnedDataVect GoodCallsTest::argumentsOf(const GoodCall& good) const {
    OwnedDataVect arguments;
    for (const std::string& argument : good.arguments) {
        if (argument == kPicture) {
            OwnedData data;
            data->SetBinaryData(*containerOf({{"BMPf", bmp(3, 2)}}), true);
            arguments->PushBack(*data);
        } else {
            const auto known = identifiers_.find(argument);
            arguments->PushBack(*textData(known != identifiers_.end() ? known->second : argument));
        }
    }
    return arguments;
}

std::string GoodCallsTest::kept() {
    std::ostringstream text;
    for (const void* object :
         {static_cast<const void*>(state.g_person.get()), static_cast<const void*>(state.g_group.get()),
          static_cast<const void*>(state.g_searchelement.get()),
          static_cast<const void*>(state.g_personSearchResults.get()),
          static_cast<const void*>(state.g_groupSearchResults.get()),
          static_cast<const void*>(state.gCurrentProperty.get()),
          static_cast<const void*>(state.gValues.get()), static_cast<const void*>(state.gParentGroups.get()),
          static_cast<const void*>(state.gCurrentGroupParentID.get()),
          static_cast<const void*>(state.gGroupMembers.get()),
          static_cast<const void*>(state.gCurrentMember.get()),
          static_cast<const void*>(state.gGroupSubgroups.get()),
          static_cast<const void*>(state.gCurrentSubgroup.get()),
          static_cast<const void*>(state.g_abframework)}) {
        text << object << ' ';
    }
    for (const std::uint32_t number :
         {state.g_currentRecordType, state.g_lastSearchType, static_cast<std::uint32_t>(state.gNewRecord),
          state.gCurrentPersonIndex, state.gCurrentGroupIndex, state.gCurrentValuesIndex,
          state.gCurrentGroupParentIDIndex, state.gCurrentMemberIndex, state.gCurrentSubgroupIndex,
          state.savedCount}) {
        text << number << ' ';
    }
    return text.str();
}

GoodCallsTest::Objects GoodCallsTest::livingObjects() {
    resetStateForTests();
    forgetStringsForTests();
    errors.g_sExceptionTxt.reset();
    Objects objects;
    const Class* classes = GSDebugAllocationClassList();
    for (const Class* one = classes; *one != Nil; ++one) {
        const int count = GSDebugAllocationCount(*one);
        // An error object is made at each start-up and never released; pools are used again.
        if (count != 0 && *one != [koru_PluginError class] && *one != [NSAutoreleasePool class]) {
            objects[class_getName(*one)] = count;
        }
    }
    std::free(const_cast<Class*>(classes));
    return objects;
}
