#import "plugin/properties/single_value.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#import "plugin/vocabulary/property_names.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"

namespace {
Retained<NSObject> taken;
}

// A person that must not be changed, and one that fails.
@interface VelocardReadOnlyPerson : ABPerson
@end
@implementation VelocardReadOnlyPerson
- (BOOL)isReadOnly {
    return YES;
}
@end

@interface VelocardFailingPerson : ABPerson
@end
@implementation VelocardFailingPerson
- (id)valueForProperty:(NSString*)property {
    [NSException raise:NSInternalInconsistencyException format:@"cannot read %@", property];
    return nil;
}
- (BOOL)setValue:(id)value forProperty:(NSString*)property {
    (void)value;
    (void)property;
    return NO;
}
@end

// A person that takes any value, and shows the last.
@interface VelocardTakingPerson : ABPerson
@end
@implementation VelocardTakingPerson
- (BOOL)setValue:(id)value forProperty:(NSString*)property {
    (void)property;
    taken = Retained<NSObject>::retain(value);
    return YES;
}
@end

@interface VelocardReadOnlyGroup : ABGroup
@end
@implementation VelocardReadOnlyGroup
- (BOOL)isReadOnly {
    return YES;
}
@end

namespace {

class PropertyTest : public PluginTest {
  protected:
    // Makes a person current, and returns it.
    static ABPerson* openPerson(Class kind = [ABPerson class]) {
        auto person =
            Retained<ABPerson>::adopt([[kind alloc] initWithAddressBook:[ABAddressBook sharedAddressBook]]);
        state.g_person = person;
        state.g_currentRecordType = kPersonType;
        return person.get();
    }

    static ABGroup* openGroup() {
        state.g_group =
            Retained<ABGroup>::adopt([[ABGroup alloc] initWithAddressBook:[ABAddressBook sharedAddressBook]]);
        state.g_currentRecordType = kGroupType;
        return state.g_group.get();
    }

    static void addPhones(ABPerson* person, std::initializer_list<NSString*> numbers) {
        ABMutableMultiValue* phones = [[[ABMutableMultiValue alloc] init] autorelease];
        for (NSString* number : numbers) {
            [phones addValue:number withLabel:kABHomeLabel];
        }
        ASSERT_TRUE([person setValue:phones forProperty:kABPhoneProperty]);
    }

    static std::string get(const std::string& name) { return call(Do_KORU_GetValueForProperty, {name}); }
    static std::string set(const std::string& name, const std::string& value) {
        return call(Do_KORU_SetValueForProperty, {name, value});
    }
    static std::string remove(const std::string& name) {
        return call(Do_KORU_DeleteValueForProperty, {name});
    }
};

TEST_F(PropertyTest, OpeningASingleValueAnswersOne) {
    openPerson();
    state.gValues = Retained<ABMutableMultiValue>::adopt([[ABMutableMultiValue alloc] init]);
    EXPECT_EQ(OpenProperty(@"First Name"), 1);
    EXPECT_EQ(utf8(state.gCurrentProperty.get()), utf8(kABFirstNameProperty));
    EXPECT_FALSE(state.gValues);
}

TEST_F(PropertyTest, OpeningAListAnswersItsCountAndCopiesIt) {
    ABPerson* person = openPerson();
    EXPECT_EQ(OpenProperty(@"phone"), 0);
    EXPECT_FALSE(state.gValues);
    EXPECT_EQ(errors.g_llasterror, kSuccess);
    addPhones(person, {@"1", @"2", @"3"});
    EXPECT_EQ(OpenProperty(@"Phones"), 3);
    [state.gValues.get() removeValueAndLabelAtIndex:0];
    EXPECT_EQ([[person valueForProperty:kABPhoneProperty] count], 3U);
}

TEST_F(PropertyTest, AnUnknownNameChangesNothing) {
    ABPerson* person = openPerson();
    addPhones(person, {@"1"});
    OpenProperty(@"phone");
    EXPECT_EQ(OpenProperty(@"email"), -1);
    EXPECT_EQ(errors.g_llasterror, kInvalidPropertyName);
    EXPECT_EQ(utf8(state.gCurrentProperty.get()), utf8(kABPhoneProperty));
    EXPECT_TRUE(state.gValues);
}

TEST_F(PropertyTest, APropertyOfTheOtherClassIsOpenedAllTheSame) {
    ABPerson* person = openPerson();
    addPhones(person, {@"1"});
    OpenProperty(@"phone");
    EXPECT_EQ(OpenProperty(@"Name"), -1);
    EXPECT_EQ(errors.g_llasterror, kErrorInProperty);
    EXPECT_EQ(utf8(state.gCurrentProperty.get()), utf8(kABGroupNameProperty));
    EXPECT_FALSE(state.gValues);
}

TEST_F(PropertyTest, OpeningNeverThrows) {
    openPerson([VelocardFailingPerson class]);
    EXPECT_EQ(OpenProperty(@"phone"), -1);
    EXPECT_EQ(errors.g_llasterror, kExceptionCaught);
    EXPECT_EQ(utf8([errors.error getError]), "Exception caught in function cannot read Phone");
    EXPECT_EQ(utf8(errors.g_sExceptionTxt.get()), "cannot read Phone");
}

TEST_F(PropertyTest, ReadingNeedsAGroupButNoPerson) {
    EXPECT_EQ(get("firstname"), "");
    EXPECT_EQ(lastErrorText(), "Success");
    EXPECT_EQ(call(Do_KORU_GetValueForProperty, {"name", "group"}), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "No active record in context ");
    EXPECT_EQ(lastErrorNumber(), "-8003");
    EXPECT_EQ(get("name"), "!!ERROR!!") << "the record type stays a group's";
    EXPECT_EQ(call(Do_KORU_GetValueForProperty, {"firstname", "person"}), "");
}

TEST_F(PropertyTest, WritingWithoutAPersonIsRefusedByNobody) {
    EXPECT_EQ(set("firstname", "Anna"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Error setting property ");
    EXPECT_EQ(lastErrorNumber(), "-8012");
    EXPECT_EQ(set("firstname", ""), "0");
    EXPECT_EQ(remove("firstname"), "0");
    EXPECT_EQ(set("birthday", "not a date"), "0");
    EXPECT_EQ(call(Do_KORU_SetValueForProperty, {"name", "x", "group"}), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8003");
    EXPECT_EQ(call(Do_KORU_DeleteValueForProperty, {"name", "group"}), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8003");
}

TEST_F(PropertyTest, ReadingClosesTheProperty) {
    openPerson();
    set("firstname", "Anna");
    EXPECT_TRUE(state.gCurrentProperty) << "writing does not";
    EXPECT_EQ(get("firstname"), "Anna");
    EXPECT_FALSE(state.gCurrentProperty);
    EXPECT_EQ(get("nickname"), "");
    EXPECT_FALSE(state.gCurrentProperty);
    set("firstname", "Anna");
    EXPECT_EQ(remove("firstname"), "0");
    EXPECT_FALSE(state.gCurrentProperty);
    EXPECT_EQ(get("phone"), "!!ERROR!!");
    EXPECT_TRUE(state.gCurrentProperty) << "an error leaves it open";
}

TEST_F(PropertyTest, ARecordThatMayOnlyBeReadRefusesBeforeThePropertyIsLookedAt) {
    const auto expectReadOnly = [](const std::string& answer) {
        EXPECT_EQ(answer, "!!ERROR!!");
        EXPECT_EQ(lastErrorText(), "Record is read only ");
        EXPECT_EQ(lastErrorNumber(), "-8017");
        EXPECT_FALSE(state.gCurrentProperty);
    };
    openPerson([VelocardReadOnlyPerson class]);
    for (const char* name : {"shoe size", "name", "phone", "firstname", ""}) {
        expectReadOnly(set(name, "x"));
        expectReadOnly(set(name, ""));
        expectReadOnly(remove(name));
    }
    state.g_group = Retained<ABGroup>::adopt(
        [[VelocardReadOnlyGroup alloc] initWithAddressBook:[ABAddressBook sharedAddressBook]]);
    state.g_currentRecordType = kGroupType;
    expectReadOnly(set("shoe size", "x"));
    expectReadOnly(remove("shoe size"));
}

TEST_F(PropertyTest, ListsAreRefused) {
    openPerson();
    EXPECT_EQ(get("Phone"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Invalid property type This property may be a multi-value property.");
    EXPECT_EQ(set("Phone", "1"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Invalid property type ");
    EXPECT_EQ(remove("Phone"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Invalid property type ");
    EXPECT_EQ(lastErrorNumber(), "-8006");
}

TEST_F(PropertyTest, AnEmptyNameIsTheUniqueIdentifier) {
    ABPerson* person = openPerson();
    EXPECT_EQ(get(""), utf8([person uniqueId]));
    EXPECT_EQ(set("", "mine"), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8012");
}

TEST_F(PropertyTest, GroupsHaveNamesAndPersonsHaveNot) {
    openGroup();
    EXPECT_EQ(set("name", "Harbour"), "0");
    EXPECT_EQ(call(Do_KORU_GetValueForProperty, {"Name", "GROUP"}), "Harbour");
    openPerson();
    EXPECT_EQ(get("Name"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Error in property ");
    EXPECT_EQ(lastErrorNumber(), "-8011");
}

TEST_F(PropertyTest, FlagsAreWordsAndEachReplacesTheWholeNumber) {
    openPerson();
    const std::pair<const char*, const char*> words[] = {
        {"ShowAsCompany", "1"},  {"ShowAsPerson", "0"}, {"FirstNameFirst", "32"},
        {"LastNameFirst", "16"}, {"33", "0"},           {"showascompany", "0"}};
    for (const auto& [word, number] : words) {
        EXPECT_EQ(set("Person Flags", "ShowAsCompany"), "0");
        EXPECT_EQ(set("Person Flags", word), "0");
        EXPECT_EQ(get("personflags"), number) << word;
        EXPECT_EQ(get("Person flags"), number) << word;
        EXPECT_EQ(get("Person Flags"), *number == '1' && number[1] == 0 ? "ShowAsCompany" : "ShowAsPerson");
    }
}

TEST_F(PropertyTest, DatesAreReadAsTextsAndAnsweredAsTimeStamps) {
    openPerson();
    EXPECT_EQ(set("Birthday", "25 December 2010"), "0");
    const OwnedExprEnv environment;
    const OwnedData result;
    EXPECT_EQ(Do_KORU_GetValueForProperty(13, *environment, *vectorOf({"birthday"}), *result), 0);
    ASSERT_EQ(result->GetNativeType(), fmx::Data::kDTTimeStamp);
    const fmx::DateTime& stamp = result->GetAsTimeStamp();
    EXPECT_EQ(stamp.GetYear(), 2010);
    EXPECT_EQ(stamp.GetMonth(), 12);
    EXPECT_EQ(stamp.GetDay(), 25);
    EXPECT_EQ(set("Birthday", "not a date"), "0");
    EXPECT_EQ(lastErrorText(), "Success");
    EXPECT_NE([state.g_person.get() valueForProperty:kABBirthdayProperty], nil);
    EXPECT_EQ(set("Birthday", ""), "0");
    EXPECT_EQ([state.g_person.get() valueForProperty:kABBirthdayProperty], nil);
    EXPECT_EQ(get("Birthday"), "");
}

TEST_F(PropertyTest, AFailedReadOfADateIsText) {
    openPerson();
    EXPECT_EQ(set("Birthday", "25 December 2010"), "0");
    const OwnedExprEnv environment;
    const OwnedData result;
    const auto read = [&] {
        EXPECT_EQ(Do_KORU_GetValueForProperty(13, *environment, *vectorOf({"birthday"}), *result), 0);
        return result->GetNativeType();
    };
    EXPECT_EQ(read(), fmx::Data::kDTTimeStamp);
    openPerson([VelocardFailingPerson class]);
    EXPECT_EQ(read(), fmx::Data::kDTText);
    EXPECT_EQ(utf8(stringFromText(result->GetAsText())), "!!ERROR!!");
}

TEST_F(PropertyTest, NamesOpenPropertiesWhateverTheirCaseAndBlanks) {
    openPerson();
    for (NSString* name : {@"First Name", @"first name", @"FIRSTNAME"}) {
        EXPECT_EQ(OpenProperty(name), 1);
        EXPECT_EQ(utf8(state.gCurrentProperty.get()), utf8(kABFirstNameProperty)) << utf8(name);
        state.gCurrentProperty.reset();
    }
    for (NSString* name : {@"Home Page", @"Web Pages"}) {
        EXPECT_EQ(OpenProperty(name), 0);
        EXPECT_EQ(utf8(state.gCurrentProperty.get()), utf8(kABURLsProperty)) << utf8(name);
        state.gCurrentProperty.reset();
    }
    EXPECT_EQ(errors.g_llasterror, kSuccess);
}

TEST_F(PropertyTest, ARealNumberLosesItsFraction) {
    openPerson([VelocardTakingPerson class]);
    const auto realType = +[](id, SEL, NSString*) -> ABPropertyType { return kABRealProperty; };
    const ReplacedMethod type(object_getClass([ABPerson class]), @selector(typeOfProperty:), realType);
    // The last is the nearest number of single precision.
    const std::pair<const char*, const char*> numbers[] = {
        {"2.7", "2"}, {"-2.7", "-2"}, {"3.999", "3"}, {"many", "0"}, {"16777217", "16777216"}};
    for (const auto& [text, stored] : numbers) {
        EXPECT_EQ(set("note", text), "0");
        ASSERT_TRUE([taken.get() isKindOfClass:[NSNumber class]]);
        EXPECT_EQ(utf8([taken.get() description]), stored) << text;
    }
    taken.reset();
}

TEST_F(PropertyTest, OtherTypesCannotBeSet) {
    openPerson([VelocardTakingPerson class]);
    const auto dataType = +[](id, SEL, NSString*) -> ABPropertyType { return kABDataProperty; };
    const ReplacedMethod type(object_getClass([ABPerson class]), @selector(typeOfProperty:), dataType);
    EXPECT_EQ(set("note", "x"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Invalid property type ");
    EXPECT_EQ(lastErrorNumber(), "-8006");
    EXPECT_FALSE(taken);
    EXPECT_EQ(set("note", ""), "0") << "but removed";
}

TEST_F(PropertyTest, AnEmptyTextRemovesTheValue) {
    ABPerson* person = openPerson();
    set("note", "Measures twice");
    EXPECT_EQ(set("Note", ""), "0");
    EXPECT_EQ([person valueForProperty:kABNoteProperty], nil);
    EXPECT_EQ(remove("note"), "0");
}

TEST_F(PropertyTest, ReadOnlyRecordsCanBeReadOnly) {
    openPerson([VelocardReadOnlyPerson class]);
    EXPECT_EQ(get("firstname"), "");
    EXPECT_EQ(set("firstname", "x"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Record is read only ");
    EXPECT_EQ(lastErrorNumber(), "-8017");
    EXPECT_EQ(remove("no such property"), "!!ERROR!!") << "asked before the name";
    EXPECT_EQ(lastErrorNumber(), "-8017");
    openGroup();
    state.g_group = Retained<ABGroup>::adopt(
        [[VelocardReadOnlyGroup alloc] initWithAddressBook:[ABAddressBook sharedAddressBook]]);
    EXPECT_EQ(set("name", "x"), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8017");
}

TEST_F(PropertyTest, ARecordCanRefuseAndFail) {
    openPerson([VelocardFailingPerson class]);
    EXPECT_EQ(get("firstname"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Exception caught in function cannot read First");
    EXPECT_TRUE(state.gCurrentProperty);
    EXPECT_EQ(set("firstname", "Anna"), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Error setting property ");
}

TEST_F(PropertyTest, AnUnknownNameIsAnError) {
    openPerson();
    for (const char* name : {"email", "First-Name", "shoe size"}) {
        EXPECT_EQ(get(name), "!!ERROR!!") << name;
        EXPECT_EQ(lastErrorText(), "Invalid property name ");
        EXPECT_EQ(set(name, "x"), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber(), "-8010");
    }
}

TEST_F(PropertyTest, TheIdOfACustomRealOrDataPropertyCannotBeNamed) {
    openPerson();
    EXPECT_EQ(get("image"), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8010");
}

} // namespace
