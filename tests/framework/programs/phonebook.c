/* A small program for macOS in plain C, as people write them: adds a person with an address, a group, and
   prints all people with their phones. Compiled as C against the C interface alone. */

#include <AddressBook/ABAddressBookC.h>
#include <CoreFoundation/CoreFoundation.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void PrintString(CFStringRef string) {
    char buffer[1024];
    if (string != NULL && CFStringGetCString(string, buffer, sizeof(buffer), kCFStringEncodingUTF8))
        fputs(buffer, stdout);
}

static CFStringRef MakeString(const char* text) {
    return CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8);
}

static ABPersonRef CreatePerson(const char* first, const char* last, const char* phone) {
    ABPersonRef person = ABPersonCreate();
    ABMutableMultiValueRef phones = ABMultiValueCreateMutable();
    CFStringRef firstName = MakeString(first), lastName = MakeString(last), number = MakeString(phone);
    CFStringRef identifier = NULL;

    ABRecordSetValue(person, kABFirstNameProperty, firstName);
    ABRecordSetValue(person, kABLastNameProperty, lastName);
    ABMultiValueAdd(phones, number, kABPhoneMobileLabel, &identifier);
    ABMultiValueAdd(phones, CFSTR("555-0199"), kABPhoneWorkLabel, NULL);
    ABMultiValueSetPrimaryIdentifier(phones, identifier);
    ABRecordSetValue(person, kABPhoneProperty, phones);

    CFRelease(identifier);
    CFRelease(phones);
    CFRelease(number);
    CFRelease(lastName);
    CFRelease(firstName);
    return person;
}

static void SetAddress(ABPersonRef person) {
    CFMutableDictionaryRef address = CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    ABMutableMultiValueRef addresses = ABMultiValueCreateMutable();
    CFDictionarySetValue(address, kABAddressStreetKey, CFSTR("12 Elm Street"));
    CFDictionarySetValue(address, kABAddressCityKey, CFSTR("Springfield"));
    CFDictionarySetValue(address, kABAddressZIPKey, CFSTR("01101"));
    CFDictionarySetValue(address, kABAddressCountryCodeKey, CFSTR("us"));
    ABMultiValueAdd(addresses, address, kABAddressHomeLabel, NULL);
    ABRecordSetValue(person, kABAddressProperty, addresses);
    CFRelease(addresses);
    CFRelease(address);
}

static int Add(ABAddressBookRef book, const char* first, const char* last, const char* phone) {
    ABPersonRef person = CreatePerson(first, last, phone);
    ABGroupRef group = ABGroupCreate();
    int ok;
    SetAddress(person);
    ABRecordSetValue(group, kABGroupNameProperty, CFSTR("Friends"));
    ok = ABAddRecord(book, person) && ABAddRecord(book, group) && ABGroupAddMember(group, person) &&
         ABHasUnsavedChanges(book) && ABSave(book) && !ABHasUnsavedChanges(book);
    ABSetMe(book, person);
    ok = ok && ABSave(book);
    CFRelease(group);
    CFRelease(person);
    return ok ? EXIT_SUCCESS : EXIT_FAILURE;
}

static void PrintPerson(ABAddressBookRef book, ABPersonRef person) {
    CFStringRef first = ABRecordCopyValue(person, kABFirstNameProperty);
    CFStringRef last = ABRecordCopyValue(person, kABLastNameProperty);
    ABMultiValueRef phones = ABRecordCopyValue(person, kABPhoneProperty);
    ABMultiValueRef addresses = ABRecordCopyValue(person, kABAddressProperty);
    CFArrayRef groups = ABPersonCopyParentGroups(person);
    CFIndex i;

    PrintString(first);
    putchar(' ');
    PrintString(last);
    putchar('\n');
    for (i = 0; phones != NULL && i < ABMultiValueCount(phones); i++) {
        CFStringRef label = ABMultiValueCopyLabelAtIndex(phones, i);
        CFStringRef shown = ABCopyLocalizedPropertyOrLabel(label);
        CFTypeRef value = ABMultiValueCopyValueAtIndex(phones, i);
        fputs("  ", stdout);
        PrintString(shown);
        fputs(": ", stdout);
        if (CFGetTypeID(value) == CFStringGetTypeID())
            PrintString(value);
        putchar('\n');
        CFRelease(value);
        CFRelease(shown);
        CFRelease(label);
    }
    if (addresses != NULL) {
        CFDictionaryRef address = ABMultiValueCopyValueAtIndex(addresses, 0);
        CFStringRef lines = ABCreateFormattedAddressFromDictionary(book, address);
        PrintString(lines);
        putchar('\n');
        CFRelease(lines);
        CFRelease(address);
        CFRelease(addresses);
    }
    for (i = 0; i < CFArrayGetCount(groups); i++) {
        CFStringRef name =
            ABRecordCopyValue((ABGroupRef)CFArrayGetValueAtIndex(groups, i), kABGroupNameProperty);
        fputs("  in ", stdout);
        PrintString(name);
        putchar('\n');
        CFRelease(name);
    }
    CFRelease(groups);
    if (phones != NULL)
        CFRelease(phones);
    if (last != NULL)
        CFRelease(last);
    if (first != NULL)
        CFRelease(first);
}

static int Compare(const void* one, const void* other) {
    CFStringRef a = ABRecordCopyValue((ABRecordRef) * (ABPersonRef const*)one, kABLastNameProperty);
    CFStringRef b = ABRecordCopyValue((ABRecordRef) * (ABPersonRef const*)other, kABLastNameProperty);
    int result = (int)CFStringCompare(a, b, kCFCompareCaseInsensitive);
    CFRelease(b);
    CFRelease(a);
    return result;
}

static int List(ABAddressBookRef book) {
    CFArrayRef people = ABCopyArrayOfAllPeople(book);
    CFIndex count = CFArrayGetCount(people), i;
    ABPersonRef* sorted = calloc((size_t)count + 1, sizeof(ABPersonRef));
    for (i = 0; i < count; i++)
        sorted[i] = (ABPersonRef)CFRetain(CFArrayGetValueAtIndex(people, i));
    qsort(sorted, (size_t)count, sizeof(ABPersonRef), Compare);
    for (i = 0; i < count; i++) {
        PrintPerson(book, sorted[i]);
        CFRelease(sorted[i]);
    }
    free(sorted);
    CFRelease(people);
    return EXIT_SUCCESS;
}

static int Find(ABAddressBookRef book, const char* text) {
    CFStringRef value = MakeString(text);
    ABSearchElementRef children[2];
    ABSearchElementRef either;
    CFArrayRef list, found;
    CFIndex i;
    children[0] =
        ABPersonCreateSearchElement(kABLastNameProperty, NULL, NULL, value, kABPrefixMatchCaseInsensitive);
    children[1] = ABPersonCreateSearchElement(kABAddressProperty, kABAddressHomeLabel, kABAddressCityKey,
                                              value, kABEqualCaseInsensitive);
    list = CFArrayCreate(kCFAllocatorDefault, (const void**)children, 2, &kCFTypeArrayCallBacks);
    either = ABSearchElementCreateWithConjunction(kABSearchOr, list);
    found = ABCopyArrayOfMatchingRecords(book, either);
    for (i = 0; i < CFArrayGetCount(found); i++) {
        CFStringRef uid = ABRecordCopyUniqueId((ABRecordRef)CFArrayGetValueAtIndex(found, i));
        CFStringRef type = ABCopyRecordTypeFromUniqueId(book, uid);
        PrintString(type);
        putchar('\n');
        CFRelease(type);
        CFRelease(uid);
    }
    printf("%ld found\n", (long)CFArrayGetCount(found));
    CFRelease(found);
    CFRelease(either);
    CFRelease(list);
    CFRelease(children[1]);
    CFRelease(children[0]);
    CFRelease(value);
    return EXIT_SUCCESS;
}

static int Me(ABAddressBookRef book) {
    ABPersonRef me = ABGetMe(book);
    if (me == NULL)
        return EXIT_FAILURE;
    PrintPerson(book, me);
    return EXIT_SUCCESS;
}

int main(int argc, char** argv) {
    ABAddressBookRef book = ABGetSharedAddressBook();
    if (book == NULL) {
        fprintf(stderr, "no address book\n");
        return EXIT_FAILURE;
    }
    if (argc == 5 && strcmp(argv[1], "add") == 0)
        return Add(book, argv[2], argv[3], argv[4]);
    if (argc == 2 && strcmp(argv[1], "list") == 0)
        return List(book);
    if (argc == 3 && strcmp(argv[1], "find") == 0)
        return Find(book, argv[2]);
    if (argc == 2 && strcmp(argv[1], "me") == 0)
        return Me(book);
    fprintf(stderr, "usage: phonebook add FIRST LAST PHONE | list | find TEXT | me\n");
    return 2;
}
