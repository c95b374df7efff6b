// A dictionary describes itself in lines, as on macOS: its keys in order, one below the other, nested ones
// further to the right. GNUstep writes one line.

#import <Foundation/Foundation.h>
#include <ctype.h>

static void append(NSMutableString* text, id value, NSUInteger level);

static void indent(NSMutableString* text, NSUInteger level) {
    for (; level > 0; --level) {
        [text appendString:@"    "];
    }
}

// Letters and digits stand by themselves, all else in quotation marks, with what is not ASCII escaped.
static void appendWord(NSMutableString* text, NSString* word) {
    const NSUInteger length = [word length];
    NSMutableString* escaped = [NSMutableString stringWithCapacity:length + 2];
    BOOL plain = length > 0;
    NSUInteger i = 0;
    for (; i < length; ++i) {
        const unichar unit = [word characterAtIndex:i];
        plain = plain && unit < 0x80 && isalnum(unit);
        if (unit == '\n') {
            [escaped appendString:@"\\n"];
        } else if (unit == '"' || unit == '\\') {
            [escaped appendFormat:@"\\%c", (char)unit];
        } else if (unit == '\t' || (unit >= 0x20 && unit < 0x7F)) {
            [escaped appendFormat:@"%c", (char)unit];
        } else if (unit < 0x80) {
            [escaped appendFormat:@"\\%03o", unit];
        } else {
            [escaped appendFormat:@"\\U%04x", unit];
        }
    }
    [text appendFormat:plain ? @"%@" : @"\"%@\"", escaped];
}

static BOOL areTexts(NSArray* keys) {
    id key = nil;
    for (key in keys) {
        if (![key isKindOfClass:[NSString class]]) {
            return NO;
        }
    }
    return YES;
}

static void appendDictionary(NSMutableString* text, NSDictionary* dictionary, NSUInteger level) {
    NSArray* keys = [dictionary allKeys];
    if (areTexts(keys)) {
        keys = [keys sortedArrayUsingSelector:@selector(compare:)];
    }
    indent(text, level);
    [text appendString:@"{\n"];
    id key = nil;
    for (key in keys) {
        indent(text, level + 1);
        append(text, key, level + 1);
        [text appendString:@" = "];
        append(text, [dictionary objectForKey:key], level + 1);
        [text appendString:@";\n"];
    }
    indent(text, level);
    [text appendString:@"}"];
}

static void appendArray(NSMutableString* text, NSArray* array, NSUInteger level) {
    NSString* separator = @"";
    indent(text, level);
    [text appendString:@"("];
    id value = nil;
    for (value in array) {
        [text appendFormat:@"%@\n", separator];
        indent(text, level + 1);
        append(text, value, level + 1);
        separator = @",";
    }
    [text appendString:@"\n"];
    indent(text, level);
    [text appendString:@")"];
}

static void append(NSMutableString* text, id value, NSUInteger level) {
    if ([value isKindOfClass:[NSDictionary class]]) {
        appendDictionary(text, value, level);
    } else if ([value isKindOfClass:[NSArray class]]) {
        appendArray(text, value, level);
    } else if ([value isKindOfClass:[NSData class]]) {
        [text appendString:[value description]];
    } else {
        appendWord(text, [value description]);
    }
}

@implementation NSDictionary (Description)

- (NSString*)description {
    NSMutableString* text = [NSMutableString string];
    appendDictionary(text, self, 0);
    return text;
}

@end
