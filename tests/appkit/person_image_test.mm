// Pictures of people: they are kept byte for byte, and other processes see them.

#include "frameworks/AddressBook/objc/record.h"
#include "tests/appkit/support.h"

#import <AddressBook/AddressBook.h>
#include <cstdlib>

namespace {

class PersonImageTest : public PictureTest {
  protected:
    void SetUp() override {
        PictureTest::SetUp();
        ::setenv("ADDRESSBOOK_HOME", folder_.c_str(), 1);
    }

    void TearDown() override {
        [ABAddressBook closeSharedAddressBook];
        PictureTest::TearDown();
    }

    static ABPerson* person(NSString* name) {
        ABAddressBook* book = [ABAddressBook sharedAddressBook];
        ABPerson* person = [[[ABPerson alloc] initWithAddressBook:book] autorelease];
        [person setValue:name forProperty:kABLastNameProperty];
        EXPECT_TRUE([book addRecord:person]);
        return person;
    }

    static void save() { EXPECT_TRUE([[ABAddressBook sharedAddressBook] save]); }

    // The person's picture as another process reads it.
    NSData* seenElsewhere(ABPerson* person) {
        const std::string answer = folder_ / "seen";
        const std::string command =
            READ_PICTURE " " + std::string([[person uniqueId] UTF8String]) + " " + answer;
        EXPECT_EQ(std::system(command.c_str()), 0);
        if (!std::filesystem::exists(answer)) {
            return nil;
        }
        NSData* seen = [NSData dataWithContentsOfFile:[NSString stringWithUTF8String:answer.c_str()]];
        std::filesystem::remove(answer);
        return seen;
    }
};

TEST_F(PersonImageTest, KeepsEveryTypeByteForByte) {
    NSBitmapImageRep* bitmap = bitmapOf(make("png_alpha").file);
    ABPerson* anna = person(@"Anna");
    for (const auto type : {NSBitmapImageFileTypeBMP, NSBitmapImageFileTypeGIF, NSBitmapImageFileTypeJPEG,
                            NSBitmapImageFileTypePNG}) {
        NSData* picture = [bitmap representationUsingType:type properties:nil];
        EXPECT_TRUE([anna setImageData:picture]);
        EXPECT_TRUE([[anna imageData] isEqual:picture]);
        save();
        EXPECT_TRUE([seenElsewhere(anna) isEqual:picture]) << type;
    }
    EXPECT_TRUE([anna setImageData:nil]);
    EXPECT_EQ([anna imageData], nil);
    EXPECT_NE(seenElsewhere(anna), nil); // not saved yet
    save();
    EXPECT_EQ(seenElsewhere(anna), nil);
    EXPECT_TRUE([anna setImageData:nil]);
}

TEST_F(PersonImageTest, KeepsALargeOne) {
    NSData* picture = [bitmapOf(make("jpeg_large").file) representationUsingType:NSBitmapImageFileTypeBMP
                                                                      properties:nil];
    ABPerson* anna = person(@"Anna");
    EXPECT_TRUE([anna setImageData:picture]);
    save();
    EXPECT_TRUE([seenElsewhere(anna) isEqual:picture]);
}

// What it shows is not the address book's business.
TEST_F(PersonImageTest, KeepsWhatIsNoPicture) {
    ABPerson* anna = person(@"Anna");
    NSData* junk = dataOf(std::string("no\0picture", 10));
    EXPECT_TRUE([anna setImageData:junk]);
    save();
    EXPECT_TRUE([seenElsewhere(anna) isEqual:junk]);
    EXPECT_TRUE([anna setImageData:[NSData data]]);
    save();
    EXPECT_EQ([[anna imageData] length], 0U);
    EXPECT_EQ([seenElsewhere(anna) length], 0U);
}

TEST_F(PersonImageTest, NilPersonRefuses) {
    ABPerson* nobody = nil;
    EXPECT_FALSE([nobody setImageData:nil]);
    EXPECT_EQ([nobody imageData], nil);
}

} // namespace
