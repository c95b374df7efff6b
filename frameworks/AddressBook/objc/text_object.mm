#include "frameworks/AddressBook/objc/text_object.h"

#include "frameworks/AddressBook/values/text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <objc/runtime.h>

using namespace addressbook;

// The characters follow the object in its memory: ASCII as bytes, any other text as UTF-16. The object counts
// its references itself, as that memory is not Foundation's.
@interface ABText : NSString {
  @public
    std::uint32_t _references; // changed atomically
    bool _isWide;
    NSUInteger _length;
}
@end

namespace {

const char* bytesOf(const ABText* text) {
    static const std::size_t size = class_getInstanceSize([ABText class]);
    return reinterpret_cast<const char*>(text) + size;
}

const unichar* unitsOf(const ABText* text) {
    return reinterpret_cast<const unichar*>(bytesOf(text));
}

// Returns a string with a reference and without characters yet, which [bytes] are for.
ABText* make(NSUInteger length, std::size_t bytes, bool isWide) {
    static Class const type = [ABText class];
    static const std::size_t size = class_getInstanceSize(type);
    auto* text = static_cast<ABText*>(std::malloc(size + bytes));
    if (text == nil) {
        [NSException raise:NSMallocException format:@"Out of memory"];
    }
    object_setClass(text, type);
    text->_references = 1;
    text->_isWide = isWide;
    text->_length = length;
    return text;
}

} // namespace

@implementation ABText

// No one else can make these: the class does not know how many characters follow.
+ (id)allocWithZone:(NSZone*)zone {
    (void)zone;
    [self doesNotRecognizeSelector:_cmd];
    return nil;
}

- (id)retain {
    __atomic_add_fetch(&_references, 1, __ATOMIC_RELAXED);
    return self;
}

- (oneway void)release {
    if (__atomic_sub_fetch(&_references, 1, __ATOMIC_ACQ_REL) == 0) {
        std::free(self);
    }
}

- (NSUInteger)retainCount {
    return __atomic_load_n(&_references, __ATOMIC_RELAXED);
}

- (NSUInteger)length {
    return _length;
}

- (unichar)characterAtIndex:(NSUInteger)index {
    if (index >= _length) {
        [NSException raise:NSRangeException format:@"Index %lu beyond the text", (unsigned long)index];
    }
    return _isWide ? unitsOf(self)[index] : static_cast<unsigned char>(bytesOf(self)[index]);
}

- (void)getCharacters:(unichar*)buffer range:(NSRange)range {
    if (range.location > _length || range.length > _length - range.location) {
        [NSException raise:NSRangeException format:@"Range beyond the text"];
    }
    if (_isWide) {
        std::copy_n(unitsOf(self) + range.location, range.length, buffer);
    } else {
        std::copy_n(bytesOf(self) + range.location, range.length, buffer);
    }
}

- (void)getCharacters:(unichar*)buffer {
    [self getCharacters:buffer range:NSMakeRange(0, _length)];
}

- (id)copyWithZone:(NSZone*)zone {
    (void)zone;
    return [self retain];
}

@end

namespace addressbook {

NSString* textObject(std::string_view utf8) {
    ABText* text = nil;
    if (isAscii(utf8)) {
        text = make(utf8.size(), utf8.size(), false);
        std::memcpy(const_cast<char*>(bytesOf(text)), utf8.data(), utf8.size());
    } else {
        text = make(0, utf8.size() * sizeof(unichar), true);
        text->_length = utf16FromUtf8(utf8, reinterpret_cast<char16_t*>(const_cast<unichar*>(unitsOf(text))));
    }
    return [text autorelease];
}

std::optional<std::string> textOf(NSString* string) {
    static Class const type = [ABText class];
    if (string == nil || object_getClass(string) != type) {
        return std::nullopt;
    }
    const auto* text = static_cast<const ABText*>(string);
    if (text->_isWide) {
        return utf8FromUtf16({reinterpret_cast<const char16_t*>(unitsOf(text)), text->_length});
    }
    return std::string(bytesOf(text), text->_length);
}

} // namespace addressbook
