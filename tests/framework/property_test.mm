#include "tests/framework/support.h"

#include <cstring>
#include <tuple>

namespace {

class PropertyTest : public AddressBookTest {
  protected:
    static NSDictionary* types(NSString* name, int type) {
        return [NSDictionary dictionaryWithObject:[NSNumber numberWithInt:type] forKey:name];
    }
    static NSInteger add(NSString* name, int type) {
        return [ABPerson addPropertiesAndTypes:types(name, type)];
    }
    static NSInteger remove(NSString* name) {
        return [ABPerson removeProperties:[NSArray arrayWithObject:name]];
    }
};

TEST_F(PropertyTest, KnowsTheTypesOfItsOwn) {
    EXPECT_EQ([ABPerson typeOfProperty:kABFirstNameProperty], kABStringProperty);
    EXPECT_EQ([ABPerson typeOfProperty:kABPhoneProperty], kABMultiStringProperty);
    EXPECT_EQ([ABPerson typeOfProperty:kABBirthdayProperty], kABDateProperty);
    EXPECT_EQ([ABPerson typeOfProperty:kABAddressProperty], kABMultiDictionaryProperty);
    EXPECT_EQ([ABPerson typeOfProperty:kABOtherDatesProperty], kABMultiDateProperty);
    EXPECT_EQ([ABPerson typeOfProperty:kABPersonFlags], kABIntegerProperty);
    EXPECT_EQ([ABPerson typeOfProperty:kABGroupNameProperty], kABErrorInProperty);
    EXPECT_EQ([ABGroup typeOfProperty:kABGroupNameProperty], kABStringProperty);
    EXPECT_EQ([ABGroup typeOfProperty:kABUIDProperty], kABStringProperty);
    EXPECT_EQ([ABGroup typeOfProperty:kABFirstNameProperty], kABErrorInProperty);
    EXPECT_EQ([ABPerson typeOfProperty:@"nonsense"], kABErrorInProperty);
    EXPECT_EQ([ABPerson typeOfProperty:nil], kABErrorInProperty);
}

TEST_F(PropertyTest, ListsThem) {
    NSArray* people = [ABPerson properties];
    EXPECT_TRUE([people containsObject:kABUIDProperty]);
    EXPECT_TRUE([people containsObject:kABNoteProperty]);
    EXPECT_FALSE([people containsObject:kABGroupNameProperty]);
    EXPECT_EQ([[ABGroup properties] count], 4u);
    for (NSUInteger i = 0; i < [people count]; ++i) {
        EXPECT_NE([[people objectAtIndex:i] characterAtIndex:0], '.');
        EXPECT_NE([ABPerson typeOfProperty:[people objectAtIndex:i]], kABErrorInProperty);
    }
}

TEST_F(PropertyTest, AddsThemForOneClass) {
    EXPECT_EQ(add(@"Shoe", kABStringProperty), 1);
    EXPECT_EQ(add(@"Shoe", kABStringProperty), 0);
    EXPECT_EQ(add(kABNoteProperty, kABStringProperty), 0);
    EXPECT_TRUE([book() hasUnsavedChanges]);
    EXPECT_EQ([ABPerson typeOfProperty:@"Shoe"], kABStringProperty);
    EXPECT_EQ([ABGroup typeOfProperty:@"Shoe"], kABErrorInProperty);
    EXPECT_TRUE([[[ABPerson properties] lastObject] isEqual:@"Shoe"]);
    ABPerson* one = person(@"Ann", @"X");
    EXPECT_TRUE([one setValue:@"42" forProperty:@"Shoe"]);
    EXPECT_EQ(found(@"Shoe", @"42", kABEqual), std::vector<std::string>{"Ann"});
    EXPECT_FALSE([group(@"g") setValue:@"42" forProperty:@"Shoe"]);
    NSString* uid = [one uniqueId];
    reopen();
    EXPECT_EQ([ABPerson typeOfProperty:@"Shoe"], kABStringProperty);
    EXPECT_EQ(add(@"Shoe", kABStringProperty), 0);
    EXPECT_EQ(text([[book() recordForUniqueId:uid] valueForProperty:@"Shoe"]), "42");
    EXPECT_EQ(found(@"Shoe", @"42", kABEqual), std::vector<std::string>{"Ann"});
}

TEST_F(PropertyTest, RefusesWhatIsNoProperty) {
    EXPECT_EQ(add(@"", kABStringProperty), -1);
    EXPECT_EQ(add(@".Hidden", kABStringProperty), -1);
    EXPECT_EQ(add(@"Shoe", 0), -1);
    EXPECT_EQ(add(@"Shoe", 9), -1);
    EXPECT_EQ(add(@"Shoe", kABMultiValueMask), -1);
    EXPECT_EQ([ABPerson addPropertiesAndTypes:[NSDictionary dictionaryWithObject:@"1" forKey:@"Shoe"]], -1);
    EXPECT_EQ([ABPerson removeProperties:[NSArray arrayWithObject:number(1)]], -1);
    EXPECT_FALSE([book() hasUnsavedChanges]);
    EXPECT_EQ([ABPerson addPropertiesAndTypes:nil], 0);
}

TEST_F(PropertyTest, RemovesThemWithTheirValues) {
    add(@"Shoe", kABStringProperty);
    ABPerson* one = person(@"Ann", @"X");
    [one setValue:@"42" forProperty:@"Shoe"];
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(remove(kABNoteProperty), 0);
    EXPECT_EQ(remove(@"nonsense"), 0);
    EXPECT_EQ(remove(@"Shoe"), 1);
    EXPECT_EQ(remove(@"Shoe"), 0);
    EXPECT_EQ([ABPerson typeOfProperty:@"Shoe"], kABErrorInProperty);
    EXPECT_EQ([one valueForProperty:@"Shoe"], nil);
    EXPECT_FALSE([one setValue:@"43" forProperty:@"Shoe"]);
    EXPECT_TRUE(found(@"Shoe", @"42", kABEqual).empty());
    EXPECT_EQ(found(@"Shoe", nil, kABNotEqual), std::vector<std::string>{"Ann"});
    NSString* uid = [one uniqueId];
    reopen();
    EXPECT_EQ([ABPerson typeOfProperty:@"Shoe"], kABErrorInProperty);
    EXPECT_EQ(add(@"Shoe", kABStringProperty), 1);
    EXPECT_EQ([[book() recordForUniqueId:uid] valueForProperty:@"Shoe"], nil);
}

TEST_F(PropertyTest, CanComeBackWithAnotherTypeBeforeTheSave) {
    add(@"Shoe", kABStringProperty);
    ABPerson* one = person(@"Ann", @"X");
    [one setValue:@"42" forProperty:@"Shoe"];
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(remove(@"Shoe"), 1);
    EXPECT_EQ(add(@"Shoe", kABIntegerProperty), 1);
    EXPECT_EQ([one valueForProperty:@"Shoe"], nil);
    EXPECT_TRUE([one setValue:[NSNumber numberWithInt:43] forProperty:@"Shoe"]);
    EXPECT_EQ(found(@"Shoe", [NSNumber numberWithInt:43], kABEqual), std::vector<std::string>{"Ann"});
    NSString* uid = [one uniqueId];
    reopen();
    EXPECT_EQ([ABPerson typeOfProperty:@"Shoe"], kABIntegerProperty);
    EXPECT_EQ(text([[book() recordForUniqueId:uid] valueForProperty:@"Shoe"]), "43");
}

TEST_F(PropertyTest, AnUnsavedOneCanBeTakenBack) {
    add(@"Shoe", kABStringProperty);
    ABPerson* one = person(@"Ann", @"X");
    [one setValue:@"42" forProperty:@"Shoe"];
    EXPECT_EQ(remove(@"Shoe"), 1);
    EXPECT_EQ([one valueForProperty:@"Shoe"], nil);
    ASSERT_TRUE([book() save]);
    EXPECT_EQ([ABPerson typeOfProperty:@"Shoe"], kABErrorInProperty);
}

// A library that is unloaded leaves the addresses of its constants to others.
TEST_F(PropertyTest, AConstantMayStandWhereAnotherOneStood) {
    ABPerson* one = person(@"Ann", @"X");
    add(@"Shoe", kABIntegerProperty);
    [one setValue:number(42) forProperty:@"Shoe"];
    struct {
        Class isa;
        const char* bytes;
        std::uint64_t length;
    } place{[NSConstantString class], "", 0};
    static_assert(sizeof place >= sizeof(void*) + sizeof(char*) + sizeof(unsigned));
    NSString* const name = reinterpret_cast<NSString*>(&place);
    const std::tuple<const char*, int, std::string> properties[] = {{"First", kABStringProperty, "Ann"},
                                                                    {"Last", kABStringProperty, "X"},
                                                                    {"Shoe", kABIntegerProperty, "42"},
                                                                    {"Nobody", kABErrorInProperty, "nil"},
                                                                    {"First", kABStringProperty, "Ann"}};
    for (const auto& [bytes, type, value] : properties) {
        place.bytes = bytes;
        place.length = std::strlen(bytes);
        for (int twice = 0; twice < 2; ++twice) {
            EXPECT_EQ([ABPerson typeOfProperty:name], type) << bytes;
            EXPECT_EQ(text([one valueForProperty:name]), value) << bytes;
        }
    }
}

} // namespace
