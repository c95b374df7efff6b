// Prints the last names of the people in the address book: a first program of somebody else.
#import <AddressBook/AddressBook.h>

int main(void) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    for (ABPerson* person in [[ABAddressBook sharedAddressBook] people]) {
        NSString* name = [person valueForProperty:kABLastNameProperty];
        printf("%s\n", name != nil ? [name UTF8String] : "(none)");
    }
    [pool release];
    return 0;
}
