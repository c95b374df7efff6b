#import "plugin/custom/custom_properties.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "tests/plugin/host_double.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"
#include "tests/plugin/thrown_object.h"

namespace {

// Outside the function table no number of arguments is refused.
constexpr short kNoFunction = 1000;

// The arguments and results of the framework's replaced methods.
Retained<NSObject> given;
Class asked = Nil;
NSInteger count = 0;

NSInteger change(id self, SEL, id properties) {
    asked = self;
    given = Retained<NSObject>::retain(properties);
    return count;
}

NSInteger raiseChanging(id, SEL, id) {
    [NSException raise:NSGenericException format:@"no more properties"];
    return 1;
}

BOOL refuseValue(id, SEL, id value, NSString* property) {
    given = Retained<NSObject>::adopt([[NSArray alloc] initWithObjects:value, property, nil]);
    return NO;
}

BOOL refuseRemoval(id, SEL, NSString* property) {
    given = Retained<NSObject>::retain(property);
    return NO;
}

id raiseReading(id, SEL, NSString*) {
    [NSException raise:NSGenericException format:@"cannot be read"];
    return nil;
}

class CustomPropertyTest : public PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        removeAll();
        given.reset();
        asked = Nil;
        count = 0;
    }
    void TearDown() override {
        given.reset();
        removeAll();
        EXPECT_TRUE([[ABAddressBook sharedAddressBook] save]);
    }

    static void removeAll() {
        NSArray* names = [NSArray arrayWithObjects:@"Customer", @"Berth", nil];
        (void)[ABPerson removeProperties:names];
        (void)[ABGroup removeProperties:names];
    }

    static ABPerson* openPerson() {
        ABPerson* person = addPerson(@"Anna", @"Smith");
        state.g_person = Retained<ABPerson>::retain(person);
        return person;
    }
    static ABGroup* openGroup() {
        ABGroup* group = addGroup(@"Crew");
        state.g_group = Retained<ABGroup>::retain(group);
        return group;
    }

    static std::string add(const std::string& kind, const std::string& name) {
        return call(Do_KORU_AddCustomField, {kind, name});
    }
    static std::string remove(const std::string& kind, const std::string& name) {
        return call(Do_KORU_RemoveCustomField, {kind, name});
    }
    static std::string set(const std::string& kind, const std::string& name, const std::string& value) {
        return call(Do_KORU_SetCustomField, {kind, name, value});
    }
    static std::string get(const std::string& kind, const std::string& name) {
        return call(Do_KORU_GetCustomField, {kind, name});
    }

    // The call with any number of arguments.
    static std::string callFreely(HandlerFunction handler, std::initializer_list<std::string> arguments) {
        const OwnedExprEnv environment;
        const OwnedData result;
        EXPECT_EQ(handler(kNoFunction, *environment, *vectorOf(arguments), *result), 0);
        NSString* text = stringFromText(result->GetAsText());
        return text == nil ? "" : utf8(text);
    }
};

TEST_F(CustomPropertyTest, ThePropertyIsToldAsOneOfText) {
    for (Class type : {[ABPerson class], [ABGroup class]}) {
        const std::string kind = type == [ABPerson class] ? "PERSON" : "contact";
        const ReplacedMethod adding(object_getClass(type), @selector(addPropertiesAndTypes:), change);
        const ReplacedMethod removing(object_getClass(type), @selector(removeProperties:), change);
        // How many there were; anything but none and a failure is good.
        for (const NSInteger changed : {1, 2, -2}) {
            count = changed;
            EXPECT_EQ(add(kind, "Customer"), "0");
            EXPECT_EQ(asked, type);
            EXPECT_TRUE([given.get() isEqual:[NSDictionary dictionaryWithObject:[NSNumber numberWithInt:1]
                                                                         forKey:@"Customer"]]);
            asked = Nil;
            EXPECT_EQ(remove(kind, "Customer"), "0");
            EXPECT_EQ(asked, type);
            EXPECT_TRUE([given.get() isEqual:[NSArray arrayWithObject:@"Customer"]]);
            EXPECT_EQ(lastErrorText(), "Success");
        }
        count = 0;
        EXPECT_EQ(add(kind, "Customer"), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber() + " " + lastErrorText(), "-8021 No properties added ");
        EXPECT_EQ(remove(kind, "Customer"), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber() + " " + lastErrorText(), "-8023 No properties removed ");
        count = -1;
        EXPECT_EQ(add(kind, "Customer"), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber() + " " + lastErrorText(), "-8020 Unable to create property ");
        EXPECT_EQ(remove(kind, "Customer"), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber() + " " + lastErrorText(), "-8022 Unable to remove property ");
    }
}

TEST_F(CustomPropertyTest, ExceptionsAreTheCallsError) {
    openPerson();
    openGroup();
    for (Class type : {[ABPerson class], [ABGroup class]}) {
        const std::string kind = type == [ABPerson class] ? "person" : "group";
        const ReplacedMethod adding(object_getClass(type), @selector(addPropertiesAndTypes:), raiseChanging);
        const ReplacedMethod removing(object_getClass(type), @selector(removeProperties:), raiseChanging);
        const ReplacedMethod reading(type, @selector(valueForProperty:), raiseReading);
        EXPECT_EQ(add(kind, "Customer"), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber() + " " + lastErrorText(),
                  "-8000 Exception caught in function no more properties");
        EXPECT_EQ(remove(kind, "Customer"), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber() + " " + lastErrorText(),
                  "-8000 Exception caught in function no more properties");
        EXPECT_EQ(get(kind, "Customer"), "!!ERROR!!");
        EXPECT_EQ(utf8(errors.g_sExceptionTxt.get()), "cannot be read");
        EXPECT_EQ(lastErrorNumber() + " " + lastErrorText(),
                  "-8000 Exception caught in function cannot be read");
        EXPECT_EQ(set(kind, "", "x"), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber(), "-8000");
        EXPECT_EQ(set(kind, "", ""), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber(), "-8000");
    }
}

TEST_F(CustomPropertyTest, ARefusedValueIsAnErrorARefusedRemovalIsNot) {
    openPerson();
    openGroup();
    for (Class type : {[ABPerson class], [ABGroup class]}) {
        const std::string kind = type == [ABPerson class] ? "person" : "group";
        const ReplacedMethod setting(type, @selector(setValue:forProperty:), refuseValue);
        const ReplacedMethod removing(type, @selector(removeValueForProperty:), refuseRemoval);
        EXPECT_EQ(set(kind, "Customer", "17"), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber() + " " + lastErrorText(), "-8024 Unable to set custom property ");
        EXPECT_TRUE([given.get() isEqual:([NSArray arrayWithObjects:@"17", @"Customer", nil])]);
        EXPECT_EQ(set(kind, "Customer", ""), "0");
        EXPECT_EQ(lastErrorText(), "Success");
        EXPECT_TRUE([given.get() isEqual:@"Customer"]);
    }
}

TEST_F(CustomPropertyTest, NothingNamedIsAnErrorOfItsCodeAlone) {
    openPerson();
    setError(kRecordReadOnly);
    const auto expectCodeAlone = [](HandlerFunction handler, std::initializer_list<std::string> arguments) {
        EXPECT_EQ(callFreely(handler, arguments), "!!ERROR!!");
        EXPECT_EQ(errors.g_llasterror, kInvalidParameterValue);
        EXPECT_EQ(lastErrorText(), "Success");
        EXPECT_EQ(lastErrorNumber(), "0");
    };
    for (HandlerFunction* handler : {Do_KORU_AddCustomField, Do_KORU_RemoveCustomField}) {
        expectCodeAlone(handler, {});
        expectCodeAlone(handler, {"person"});
        expectCodeAlone(handler, {"group", ""});
        expectCodeAlone(handler, {"", "Customer"});
    }
    for (HandlerFunction* handler : {Do_KORU_SetCustomField, Do_KORU_GetCustomField}) {
        expectCodeAlone(handler, {});
        expectCodeAlone(handler, {""});
        expectCodeAlone(handler, {"", "Customer", "17"});
    }
    EXPECT_EQ([ABPerson typeOfProperty:@"Customer"], 0);
    EXPECT_EQ([ABGroup typeOfProperty:@"Customer"], 0);
}

TEST_F(CustomPropertyTest, MissingArgumentsAreEmptyOnes) {
    ABPerson* person = openPerson();
    EXPECT_EQ(add("person", "Customer"), "0");
    EXPECT_EQ(set("person", "Customer", "17"), "0");
    EXPECT_EQ(callFreely(Do_KORU_SetCustomField, {"person", "Customer"}), "0");
    EXPECT_EQ([person valueForProperty:@"Customer"], nil);
    EXPECT_EQ(callFreely(Do_KORU_GetCustomField, {"group"}), "empty");
    EXPECT_EQ(callFreely(Do_KORU_SetCustomField, {"group"}), "0");
    EXPECT_EQ(callFreely(Do_KORU_GetCustomField, {"person"}), "!!ERROR!!");
    EXPECT_EQ(errors.g_llasterror, kExceptionCaught);
}

TEST_F(CustomPropertyTest, TheStateIsNeitherAskedNorChanged) {
    ABPerson* person = openPerson();
    ABGroup* group = openGroup();
    for (const std::uint32_t type : {kPersonType, kGroupType, 2U}) {
        state.g_currentRecordType = type;
        state.g_lastSearchType = kGroupType;
        state.gCurrentProperty = Retained<NSString>::retain(kABPhoneProperty);
        EXPECT_EQ(add("person", "Customer"), "0");
        EXPECT_EQ(add("group", "Berth"), "0");
        EXPECT_EQ(set("person", "Customer", "17"), "0");
        EXPECT_EQ(set("group", "Berth", "4"), "0");
        EXPECT_EQ(utf8([person valueForProperty:@"Customer"]), "17");
        EXPECT_EQ(utf8([group valueForProperty:@"Berth"]), "4");
        EXPECT_EQ(get("Person", "Customer") + get("group", "Berth"), "174");
        EXPECT_EQ(remove("person", "Customer"), "0");
        EXPECT_EQ(remove("group", "Berth"), "0");
        EXPECT_EQ(get("", "Berth"), "!!ERROR!!");
        EXPECT_EQ(state.g_currentRecordType, type);
        EXPECT_EQ(state.g_lastSearchType, kGroupType);
        EXPECT_EQ(state.g_person.get(), person);
        EXPECT_EQ(state.g_group.get(), group);
        EXPECT_TRUE(state.gCurrentProperty);
    }
}

TEST_F(CustomPropertyTest, AValueThatIsNoTextLeavesTheHandlerAsAnException) {
    ABPerson* person = openPerson();
    [person setValue:[NSDate date] forProperty:kABBirthdayProperty];
    [person setValue:[NSNumber numberWithInt:1] forProperty:kABPersonFlags];
    [person setImageData:[NSData dataWithBytes:"abcd" length:4]];
    for (const std::string name : {"Birthday", "ABPersonFlags", "Creation"}) {
        const OwnedData result = textData("before");
        const int before = host_double::livingObjects();
        const auto calling = [&] {
            const OwnedExprEnv environment;
            (void)Do_KORU_GetCustomField(kNoFunction, *environment, *vectorOf({"person", name}), *result);
        };
        id thrown =
            static_cast<id>(objectThrownBy([](void* work) { (*static_cast<decltype(calling)*>(work))(); },
                                           const_cast<void*>(static_cast<const void*>(&calling))));
        ASSERT_TRUE([thrown isKindOfClass:[NSException class]]) << name;
        EXPECT_EQ(utf8([thrown name]), utf8(NSInvalidArgumentException)) << name;
        EXPECT_EQ(host_double::livingObjects(), before) << name;
        EXPECT_EQ(utf8(stringFromText(result->GetAsText())), "before") << name;
        // It sets no error: the next call begins as after a success.
        EXPECT_EQ(errors.g_llasterror, kSuccess);
        EXPECT_FALSE(errors.g_sExceptionTxt);
        EXPECT_EQ(lastErrorText(), "Success");
    }
    EXPECT_EQ(get("person", "First"), "Anna");
}

} // namespace
