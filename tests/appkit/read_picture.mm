// read_picture UID FILE: writes the picture of a person in the address book to a file, if the person has one.

#import <AddressBook/AddressBook.h>

int main(int count, char** words) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    if (count != 3) {
        return 2;
    }
    ABAddressBook* book = [ABAddressBook sharedAddressBook];
    id person = [book recordForUniqueId:[NSString stringWithUTF8String:words[1]]];
    if (person == nil) {
        return 1;
    }
    NSData* picture = [person imageData];
    const bool written = picture == nil || [picture writeToFile:[NSString stringWithUTF8String:words[2]]
                                                     atomically:NO];
    [pool release];
    return written ? 0 : 1;
}
