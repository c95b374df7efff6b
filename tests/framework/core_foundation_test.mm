// The parts of Core Foundation that C programs need.

#include "tests/framework/support.h"

#include <CoreFoundation/CoreFoundation.h>

namespace {

class CoreFoundationTest : public testing::Test {
  protected:
    void TearDown() override {
        for (CFTypeRef object : owned_) {
            CFRelease(object);
        }
    }
    template <typename Ref>
    Ref own(Ref object) {
        EXPECT_NE(object, nullptr);
        owned_.push_back(object);
        return object;
    }
    static std::string bytes(CFStringRef string, CFStringEncoding encoding) {
        char buffer[100];
        return CFStringGetCString(string, buffer, sizeof(buffer), encoding) ? buffer : "refused";
    }
    std::vector<CFTypeRef> owned_;
};

TEST_F(CoreFoundationTest, Strings) {
    CFStringRef zoe = own(CFStringCreateWithCString(nullptr, "Zo\u00eb", kCFStringEncodingUTF8));
    EXPECT_TRUE([(NSString*)zoe isEqual:@"Zo\u00eb"]);
    EXPECT_EQ(CFStringGetLength(zoe), 3);
    EXPECT_EQ(CFStringGetCharacterAtIndex(zoe, 2), 0xEB);
    EXPECT_EQ(bytes(zoe, kCFStringEncodingUTF8), "Zo\u00eb");
    EXPECT_EQ(bytes(zoe, kCFStringEncodingISOLatin1), "Zo\xEB");
    EXPECT_EQ(bytes(zoe, kCFStringEncodingASCII), "refused");
    EXPECT_EQ(bytes(zoe, 0x7777), "refused");
    char small[4];
    EXPECT_FALSE(CFStringGetCString(zoe, small, 4, kCFStringEncodingUTF8));
    EXPECT_TRUE(CFStringGetCString(CFSTR("Zoe"), small, 4, kCFStringEncodingUTF8));
    EXPECT_EQ(CFStringCreateWithCString(nullptr, "\xFF", kCFStringEncodingUTF8), nullptr);
    EXPECT_GE(CFStringGetMaximumSizeForEncoding(3, kCFStringEncodingUTF8), 4);
    CFStringRef made = own(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%d %@ %s"), 7, zoe, "x"));
    EXPECT_EQ(bytes(made, kCFStringEncodingUTF8), "7 Zo\u00eb x");
    CFMutableStringRef text = own(CFStringCreateMutable(nullptr, 0));
    CFStringAppend(text, CFSTR("a"));
    CFStringAppendCString(text, "b", kCFStringEncodingASCII);
    CFStringAppendFormat(text, nullptr, CFSTR("%c"), 'c');
    EXPECT_TRUE(CFEqual(text, CFSTR("abc")));
    EXPECT_EQ(CFStringCompare(CFSTR("a"), CFSTR("B"), kCFCompareCaseInsensitive), kCFCompareLessThan);
    EXPECT_EQ(CFStringCompare(CFSTR("b"), CFSTR("B"), kCFCompareCaseInsensitive), kCFCompareEqualTo);
    EXPECT_EQ(CFStringCompare(CFSTR("b"), CFSTR("B"), 0), kCFCompareGreaterThan);
    EXPECT_EQ(CFStringFind(text, CFSTR("C"), kCFCompareCaseInsensitive).location, 2);
    EXPECT_EQ(CFStringFind(text, CFSTR("C"), 0).location, kCFNotFound);
    EXPECT_TRUE(CFStringHasPrefix(text, CFSTR("ab")) && CFStringHasSuffix(text, CFSTR("bc")));
    EXPECT_TRUE(CFEqual(own(CFStringCreateWithSubstring(nullptr, text, CFRangeMake(1, 1))), CFSTR("b")));
}

TEST_F(CoreFoundationTest, AConstantIsOneObject) {
    EXPECT_EQ(CFSTR("constant"), CFSTR("constant"));
    EXPECT_NE(CFSTR("constant"), CFSTR("another"));
}

CFComparisonResult backwards(const void* one, const void* other, void*) {
    return CFStringCompare((CFStringRef)other, (CFStringRef)one, 0);
}

TEST_F(CoreFoundationTest, ArraysAndDictionariesKeepObjects) {
    CFMutableStringRef empty = CFStringCreateMutable(nullptr, 0);
    const void* values[] = {CFSTR("a"), empty};
    CFArrayRef array = own(CFArrayCreate(nullptr, values, 2, &kCFTypeArrayCallBacks));
    EXPECT_EQ(CFGetRetainCount(empty), 2);
    CFRelease(empty);
    EXPECT_EQ(CFArrayGetCount(array), 2);
    EXPECT_EQ(CFArrayGetFirstIndexOfValue(array, CFRangeMake(0, 2), CFSTR("a")), 0);
    EXPECT_FALSE(CFArrayContainsValue(array, CFRangeMake(1, 1), CFSTR("a")));
    EXPECT_TRUE(raised([&] { CFArrayGetValueAtIndex(array, 2); }));
    EXPECT_TRUE(raised([&] { CFArrayCreate(nullptr, values, 2, nullptr); }));

    CFMutableArrayRef list = own(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    for (CFStringRef word : {CFSTR("x"), CFSTR("b"), CFSTR("c"), CFSTR("d")}) {
        CFArrayAppendValue(list, word);
    }
    CFArraySortValues(list, CFRangeMake(1, 3), backwards, nullptr);
    CFArrayRemoveValueAtIndex(list, 3);
    EXPECT_EQ(text([(NSArray*)list componentsJoinedByString:@","]), "x,d,c");

    CFMutableDictionaryRef fields = own(CFDictionaryCreateMutable(
        nullptr, 0, &kCFCopyStringDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    CFDictionarySetValue(fields, CFSTR("k"), CFSTR("1"));
    CFDictionaryAddValue(fields, CFSTR("k"), CFSTR("2"));
    EXPECT_EQ(CFDictionaryGetValue(fields, CFSTR("k")), CFSTR("1"));
    const void* value = nullptr;
    EXPECT_FALSE(CFDictionaryGetValueIfPresent(fields, CFSTR("none"), &value));
    const void* key = nullptr;
    CFDictionaryGetKeysAndValues(fields, &key, &value);
    EXPECT_TRUE(CFEqual(key, CFSTR("k")) && CFEqual(value, CFSTR("1")));
    CFDictionaryRemoveValue(fields, CFSTR("k"));
    EXPECT_EQ(CFDictionaryGetCount(fields), 0);
    EXPECT_TRUE(raised([&] { CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr); }));
}

TEST_F(CoreFoundationTest, DataDatesAndNumbers) {
    const UInt8 raw[] = {1, 2, 3};
    CFDataRef data = own(CFDataCreate(nullptr, raw, 3));
    UInt8 copied[2] = {};
    CFDataGetBytes(data, CFRangeMake(1, 2), copied);
    EXPECT_EQ(copied[1], 3);
    CFDateRef date = own(CFDateCreate(nullptr, 5));
    EXPECT_EQ(CFDateGetAbsoluteTime(date), 5);
    EXPECT_EQ(CFDateCompare(date, own(CFDateCreate(nullptr, 6)), nullptr), kCFCompareLessThan);
    EXPECT_NEAR(CFAbsoluteTimeGetCurrent() + kCFAbsoluteTimeIntervalSince1970, time(nullptr), 2);
    const int whole = 300;
    CFNumberRef number = own(CFNumberCreate(nullptr, kCFNumberIntType, &whole));
    std::int64_t large = 0;
    EXPECT_TRUE(CFNumberGetValue(number, kCFNumberSInt64Type, &large));
    EXPECT_EQ(large, 300);
    double real = 0;
    EXPECT_TRUE(CFNumberGetValue(number, kCFNumberDoubleType, &real));
    EXPECT_EQ(real, 300);
    std::int8_t tiny = 0;
    EXPECT_FALSE(CFNumberGetValue(number, kCFNumberSInt8Type, &tiny));
    EXPECT_FALSE(CFNumberIsFloatType(number));
    EXPECT_EQ(CFNumberCreate(nullptr, 99, &whole), nullptr);
    EXPECT_EQ(CFGetTypeID(number), CFNumberGetTypeID());
    EXPECT_EQ(CFGetTypeID(date), CFDateGetTypeID());
    EXPECT_EQ(CFGetTypeID(data), CFDataGetTypeID());
    EXPECT_EQ(CFGetTypeID(CFSTR("x")), CFStringGetTypeID());
    EXPECT_NE(CFArrayGetTypeID(), CFDictionaryGetTypeID());
    EXPECT_EQ(CFGetTypeID([[[NSObject alloc] init] autorelease]), 0u);
}

} // namespace
