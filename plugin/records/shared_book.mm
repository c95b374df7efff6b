#import "plugin/records/shared_book.h"

namespace koru {

ABAddressBook* sharedBook() {
    ABAddressBook* book = [ABAddressBook sharedAddressBook];
    if (book == nil) {
        [NSException raise:NSInternalInconsistencyException format:@"The address book cannot be opened."];
    }
    return book;
}

ABRecord* recordWithId(NSString* uniqueId) {
    ABAddressBook* book = sharedBook();
    return uniqueId != nil ? [book recordForUniqueId:uniqueId] : nil;
}

} // namespace koru
