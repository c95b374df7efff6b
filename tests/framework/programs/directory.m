// A typical small program for macOS: keeps the directory of a club in the address book.
//
//   directory add FIRST LAST EMAIL [PHONE]   adds a person to the group "Club"
//   directory list                           prints the group, by last name
//   directory find TEXT                      prints people with that text in a name or an e-mail address
//   directory card LAST                      prints the vCard of the first person of that last name

#import <AddressBook/AddressBook.h>
#import <Foundation/Foundation.h>

static void print(NSString* line) {
    printf("%s\n", [line UTF8String]);
}

static ABGroup* clubIn(ABAddressBook* book) {
    ABSearchElement* named = [ABGroup searchElementForProperty:kABGroupNameProperty
                                                         label:nil
                                                           key:nil
                                                         value:@"Club"
                                                    comparison:kABEqual];
    NSArray* found = [book recordsMatchingSearchElement:named];
    if ([found count] > 0) {
        return [found objectAtIndex:0];
    }
    ABGroup* club = [[[ABGroup alloc] init] autorelease];
    [club setValue:@"Club" forProperty:kABGroupNameProperty];
    [book addRecord:club];
    return club;
}

static NSString* described(ABPerson* person) {
    NSMutableString* line =
        [NSMutableString stringWithFormat:@"%@, %@", [person valueForKey:kABLastNameProperty],
                                          [person valueForKey:kABFirstNameProperty]];
    ABMultiValue* phones = [person valueForProperty:kABPhoneProperty];
    for (NSUInteger i = 0; i < [phones count]; i++) {
        [line appendFormat:@"; %@: %@", ABLocalizedPropertyOrLabel([phones labelAtIndex:i]),
                           [phones valueAtIndex:i]];
    }
    ABMultiValue* mails = [person valueForProperty:kABEmailProperty];
    [line appendFormat:@"; %@", [mails valueForIdentifier:[mails primaryIdentifier]]];
    return line;
}

static int add(ABAddressBook* book, NSArray* words) {
    ABPerson* person = [[[ABPerson alloc] init] autorelease];
    [person setValue:[words objectAtIndex:0] forProperty:kABFirstNameProperty];
    [person setValue:[words objectAtIndex:1] forProperty:kABLastNameProperty];
    ABMutableMultiValue* mails = [[[ABMutableMultiValue alloc] init] autorelease];
    NSString* identifier = [mails addValue:[words objectAtIndex:2] withLabel:kABEmailHomeLabel];
    [mails setPrimaryIdentifier:identifier];
    [person setValue:mails forProperty:kABEmailProperty];
    if ([words count] > 3) {
        ABMutableMultiValue* phones = [[[ABMutableMultiValue alloc] init] autorelease];
        [phones addValue:[words objectAtIndex:3] withLabel:kABPhoneiPhoneLabel];
        [person setValue:phones forProperty:kABPhoneProperty];
    }
    NSError* error = nil;
    if (![book addRecord:person] || ![clubIn(book) addMember:person] || ![book saveAndReturnError:&error]) {
        fprintf(stderr, "%s\n", [[error localizedDescription] UTF8String]);
        return 1;
    }
    return 0;
}

static int list(ABAddressBook* book) {
    NSSortDescriptor* byName =
        [[[NSSortDescriptor alloc] initWithKey:kABLastNameProperty
                                     ascending:YES
                                      selector:@selector(caseInsensitiveCompare:)] autorelease];
    NSArray* people = [[clubIn(book) members] sortedArrayUsingDescriptors:[NSArray arrayWithObject:byName]];
    NSEnumerator* each = [people objectEnumerator];
    ABPerson* person;
    while ((person = [each nextObject]) != nil) {
        print(described(person));
    }
    return 0;
}

static ABSearchElement* containing(NSString* property, NSString* text) {
    return [ABPerson searchElementForProperty:property
                                        label:nil
                                          key:nil
                                        value:text
                                   comparison:kABContainsSubStringCaseInsensitive];
}

static int find(ABAddressBook* book, NSString* text) {
    NSArray* any = [NSArray arrayWithObjects:containing(kABFirstNameProperty, text),
                                             containing(kABLastNameProperty, text),
                                             containing(kABEmailProperty, text), nil];
    NSArray* found = [book
        recordsMatchingSearchElement:[ABSearchElement searchElementForConjunction:kABSearchOr children:any]];
    for (NSUInteger i = 0; i < [found count]; i++) {
        print(described([found objectAtIndex:i]));
    }
    return [found count] > 0 ? 0 : 1;
}

static int card(ABAddressBook* book, NSString* last) {
    NSPredicate* named = [NSPredicate predicateWithFormat:@"%K == %@", kABLastNameProperty, last];
    NSArray* people = [[book people] filteredArrayUsingPredicate:named];
    if ([people count] == 0) {
        return 1;
    }
    NSData* data = [[people objectAtIndex:0] vCardRepresentation];
    fwrite([data bytes], 1, [data length], stdout);
    return 0;
}

int main(int argc, const char* argv[]) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSMutableArray* words = [NSMutableArray array];
    for (int i = 2; i < argc; i++) {
        [words addObject:[NSString stringWithUTF8String:argv[i]]];
    }
    NSString* verb = argc > 1 ? [NSString stringWithUTF8String:argv[1]] : @"";
    ABAddressBook* book = [ABAddressBook sharedAddressBook];
    int result = 2;
    if (book == nil) {
        result = 1;
    } else if ([verb isEqualToString:@"add"] && [words count] >= 3) {
        result = add(book, words);
    } else if ([verb isEqualToString:@"list"]) {
        result = list(book);
    } else if ([verb isEqualToString:@"find"] && [words count] == 1) {
        result = find(book, [words objectAtIndex:0]);
    } else if ([verb isEqualToString:@"card"] && [words count] == 1) {
        result = card(book, [words objectAtIndex:0]);
    } else {
        fprintf(stderr, "usage: directory add|list|find|card ...\n");
    }
    [pool release];
    return result;
}
