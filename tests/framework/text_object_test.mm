// The strings that the framework makes of stored texts do what Foundation's own do.

#include "tests/framework/support.h"

#include <functional>
#include <objc/runtime.h>
#include <vector>

namespace {

class TextObjectTest : public AddressBookTest {
  protected:
    // Returns the text as a value read from the disk.
    NSString* stored(NSString* text) {
        ABPerson* one = [[[ABPerson alloc] initWithAddressBook:book()] autorelease];
        EXPECT_TRUE([one setValue:text forProperty:kABNoteProperty]);
        EXPECT_TRUE([book() addRecord:one]);
        NSString* uid = [one uniqueId];
        reopen();
        return [[book() recordForUniqueId:uid] valueForProperty:kABNoteProperty];
    }
    static std::vector<NSString*> texts() {
        return {@"Ida",     @"Straße", @"Lindström", @"李小龍", @"x\U0001F600y", @"e\u0301",
                @"12.5 kg", @"a,b,,c", @"TRUE",      @"é",      @"\u00a0 ",      @"tab\tline\r\nnext"};
    }
};

bool isRange(NSException* exception) {
    return [[exception name] isEqual:NSRangeException];
}

TEST_F(TextObjectTest, AnswersAsFoundationsStrings) {
    using Question = std::function<id(NSString*)>;
    const std::vector<Question> questions{
        [](NSString* text) { return [NSNumber numberWithUnsignedLong:[text length]]; },
        [](NSString* text) { return [NSNumber numberWithUnsignedLong:[text hash]]; },
        [](NSString* text) { return [NSNumber numberWithDouble:[text doubleValue]]; },
        [](NSString* text) { return [NSNumber numberWithInt:[text intValue]]; },
        [](NSString* text) { return [NSNumber numberWithBool:[text boolValue]]; },
        [](NSString* text) { return [text lowercaseString]; },
        [](NSString* text) { return [text uppercaseString]; },
        [](NSString* text) { return [text capitalizedString]; },
        [](NSString* text) { return [text substringFromIndex:1]; },
        [](NSString* text) { return [text substringToIndex:1]; },
        [](NSString* text) { return [text stringByAppendingString:@"!"]; },
        [](NSString* text) { return [@"!" stringByAppendingString:text]; },
        [](NSString* text) { return [NSString stringWithFormat:@"<%@>", text]; },
        [](NSString* text) { return [NSString stringWithUTF8String:[text UTF8String]]; },
        [](NSString* text) { return [NSString stringWithString:text]; },
        [](NSString* text) { return [text description]; },
        [](NSString* text) { return [text componentsSeparatedByString:@","]; },
        [](NSString* text) {
            return [text stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceAndNewlineCharacterSet]];
        },
        [](NSString* text) { return [text stringByReplacingOccurrencesOfString:@"a" withString:@"ö"]; },
        [](NSString* text) { return [text dataUsingEncoding:NSUTF8StringEncoding]; },
        [](NSString* text) { return [text dataUsingEncoding:NSUnicodeStringEncoding]; },
        [](NSString* text) { return [text dataUsingEncoding:NSISOLatin1StringEncoding]; },
        [](NSString* text) { return [text decomposedStringWithCanonicalMapping]; },
        [](NSString* text) { return [text precomposedStringWithCanonicalMapping]; },
        [](NSString* text) { return [NSNumber numberWithLong:[text compare:@"Lindström"]]; },
        [](NSString* text) { return [NSNumber numberWithLong:[@"Lindström" compare:text]]; },
        [](NSString* text) { return [NSNumber numberWithLong:[text caseInsensitiveCompare:@"é"]]; },
        [](NSString* text) { return [NSNumber numberWithBool:[text hasPrefix:@"x"]]; },
        [](NSString* text) { return [NSNumber numberWithBool:[text hasSuffix:@"c"]]; },
        [](NSString* text) {
            return [NSNumber numberWithUnsignedLong:[text rangeOfString:@"\u0301"].location];
        },
        [](NSString* text) {
            return [NSNumber numberWithUnsignedLong:[@"<Lindström>" rangeOfString:text].location];
        },
        [](NSString* text) {
            return [NSPropertyListSerialization dataWithPropertyList:[NSArray arrayWithObject:text]
                                                              format:NSPropertyListBinaryFormat_v1_0
                                                             options:0
                                                               error:nullptr];
        },
        [](NSString* text) {
            return [NSUnarchiver unarchiveObjectWithData:[NSArchiver archivedDataWithRootObject:text]];
        },
        [](NSString* text) {
            NSMutableString* longer = [[text mutableCopy] autorelease];
            [longer insertString:text atIndex:1];
            return longer;
        },
    };
    for (NSString* expected : texts()) {
        NSString* read = stored(expected);
        ASSERT_FALSE(object_getClass(read) == object_getClass(expected));
        for (std::size_t number = 0; number < questions.size(); ++number) {
            id answer = nil;
            id wanted = nil;
            NSException* failure = raised([&] { answer = questions[number](read); });
            NSException* expectedFailure = raised([&] { wanted = questions[number](expected); });
            EXPECT_EQ(failure == nil, expectedFailure == nil)
                << "question " << number << " about " << text(expected) << ": " << text(failure);
            EXPECT_TRUE(answer == wanted || [answer isEqual:wanted])
                << "question " << number << " about " << text(expected) << ": " << text(answer)
                << " instead of " << text(wanted);
        }
    }
}

TEST_F(TextObjectTest, EqualsFoundationsStringsBothWays) {
    for (NSString* one : texts()) {
        NSString* read = stored(one);
        for (NSString* other : texts()) {
            NSString* made = [NSString stringWithFormat:@"%@", other];
            EXPECT_EQ([read isEqual:made], [one isEqual:other]) << text(one) << ", " << text(other);
            EXPECT_EQ([made isEqual:read], [other isEqual:one]) << text(one) << ", " << text(other);
            EXPECT_EQ([read isEqualToString:made], [one isEqualToString:other]);
        }
        EXPECT_FALSE([read isEqual:nil]);
        EXPECT_FALSE([read isEqual:[NSNull null]]);
        NSDictionary* byMade = [NSDictionary dictionaryWithObject:@"found" forKey:one];
        EXPECT_TRUE([[byMade objectForKey:read] isEqual:@"found"]);
        NSDictionary* byRead = [NSDictionary dictionaryWithObject:@"found" forKey:read];
        EXPECT_TRUE([[byRead objectForKey:one] isEqual:@"found"]);
        EXPECT_TRUE([stored(one) isEqual:read]);
    }
}

TEST_F(TextObjectTest, RefusesWhatIsBeyondIt) {
    unichar units[8];
    for (NSString* expected : {@"Ida", @"Éva"}) {
        NSString* read = stored(expected);
        EXPECT_TRUE(isRange(raised([&] { [read characterAtIndex:3]; })));
        EXPECT_TRUE(isRange(raised([&] { [read getCharacters:units range:NSMakeRange(2, 2)]; })));
        EXPECT_TRUE(isRange(raised([&] { [read getCharacters:units range:NSMakeRange(4, 0)]; })));
        [read getCharacters:units range:NSMakeRange(1, 2)];
        EXPECT_EQ(units[1], 'a');
    }
    EXPECT_TRUE(raisesInvalidArgument([&] { [object_getClass(stored(@"Ida")) alloc]; }));
}

TEST_F(TextObjectTest, LivesAsLongAsItIsHeld) {
    NSString* held = nil;
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        held = [stored(@"Lindström") copy];
        EXPECT_GE([held retainCount], 2u);
        [pool release];
    }
    reopen();
    EXPECT_EQ([held retainCount], 1u);
    EXPECT_TRUE([held isEqual:@"Lindström"]);
    [[held retain] release];
    EXPECT_EQ([held retainCount], 1u);
    [held release];
}

} // namespace
