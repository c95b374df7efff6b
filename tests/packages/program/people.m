// Counts the people of the address book: what a first program of somebody else looks like.
#import <AddressBook/AddressBook.h>

int main(void) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    for (ABPerson* person in [[ABAddressBook sharedAddressBook] people]) {
        printf("%s\n", [[person valueForProperty:kABLastNameProperty] UTF8String]);
    }
    [pool release];
    return 0;
}
