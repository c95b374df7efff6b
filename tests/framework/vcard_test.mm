#include "tests/framework/support.h"

#include <cstring>

namespace {

class VCardTest : public AddressBookTest {
  protected:
    static ABPerson* read(const char* card) {
        return [[[ABPerson alloc]
            initWithVCardRepresentation:[NSData dataWithBytes:card length:std::strlen(card)]] autorelease];
    }
};

TEST_F(VCardTest, MakesAPerson) {
    ABPerson* one = read("BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Ann;;;\r\nFN:Ann Lee\r\n"
                         "TEL;TYPE=HOME:555\r\nX-UNKNOWN:kept\r\nEND:VCARD\r\n");
    ASSERT_NE(one, nil);
    EXPECT_EQ(text([one valueForProperty:kABFirstNameProperty]), "Ann");
    EXPECT_EQ(text([[one valueForProperty:kABPhoneProperty] valueAtIndex:0]), "555");
    EXPECT_TRUE([[one uniqueId] hasSuffix:@":ABPerson"]);
    EXPECT_EQ([book() recordForUniqueId:[one uniqueId]], nil);
    EXPECT_TRUE([book() addRecord:one]);
    NSString* uid = [one uniqueId];
    reopen();
    EXPECT_EQ(text([[book() recordForUniqueId:uid] valueForProperty:kABLastNameProperty]), "Lee");
}

TEST_F(VCardTest, IsNilForWhatIsNoCardOfAPerson) {
    EXPECT_EQ(read("nonsense"), nil);
    EXPECT_EQ(read(""), nil);
    EXPECT_EQ([[ABPerson alloc] initWithVCardRepresentation:nil], nil);
    EXPECT_EQ(read("BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee"), nil);
    EXPECT_EQ(read("BEGIN:VCARD\r\nVERSION:3.0\r\nN:Friends\r\nFN:Friends\r\n"
                   "X-ADDRESSBOOKSERVER-KIND:group\r\nEND:VCARD\r\n"),
              nil);
}

TEST_F(VCardTest, WritesWhatItReadsBack) {
    ABPerson* one = person(@"Ann", @"Lee\u00e9");
    ABMutableMultiValue* phones = [[[ABMutableMultiValue alloc] init] autorelease];
    [phones addValue:@"1" withLabel:kABPhoneMobileLabel];
    [phones addValue:@"2" withLabel:@"Cottage"];
    [one setValue:phones forProperty:kABPhoneProperty];
    NSData* picture = [NSData dataWithBytes:"GIF89a\0\1\2" length:9];
    [one setImageData:picture];
    for (int i = 0; i < 2; ++i) {
        NSData* card = [one vCardRepresentation];
        ABPerson* same = [[[ABPerson alloc] initWithVCardRepresentation:card] autorelease];
        EXPECT_EQ(text([same valueForProperty:kABLastNameProperty]), text(@"Lee\u00e9"));
        ABMultiValue* read = [same valueForProperty:kABPhoneProperty];
        ASSERT_EQ([read count], 2u);
        EXPECT_EQ(text([read labelAtIndex:0]), text(kABPhoneMobileLabel));
        EXPECT_EQ(text([read labelAtIndex:1]), "Cottage");
        EXPECT_TRUE([[same imageData] isEqual:picture]);
        ASSERT_TRUE([book() save]);
    }
}

TEST_F(VCardTest, KeepsLinesItDoesNotKnow) {
    ABPerson* one = read("BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Ann;;;\r\nFN:Ann Lee\r\n"
                         "X-UNKNOWN;A=b:kept\r\nEND:VCARD\r\n");
    ASSERT_NE(one, nil);
    NSString* card = [[[NSString alloc] initWithData:[one vCardRepresentation]
                                            encoding:NSUTF8StringEncoding] autorelease];
    EXPECT_NE([card rangeOfString:@"X-UNKNOWN;A=b:kept"].location, static_cast<NSUInteger>(NSNotFound));
}

} // namespace
