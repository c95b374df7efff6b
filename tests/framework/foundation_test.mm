#include "tests/framework/support.h"

#include <cstdlib>

namespace {

TEST(ExceptionTest, DescribesItselfByItsReason) {
    NSException* exception = raised([] { [NSException raise:@"Name" format:@"Nothing in %@", @"here"]; });
    EXPECT_EQ(text(exception), "Nothing in here");
    EXPECT_EQ(text([NSException exceptionWithName:@"Name" reason:nil userInfo:nil]), "Name");
    EXPECT_EQ(text(raised([] { [[NSArray array] objectAtIndex:3]; })).find("0x"), std::string::npos);
}

TEST(DictionaryTest, DescribesItselfInLines) {
    NSArray* list =
        [NSArray arrayWithObjects:@"a", @"b c", [NSDictionary dictionaryWithObject:@"-" forKey:@"v w"], nil];
    NSDictionary* fields =
        [NSDictionary dictionaryWithObjectsAndKeys:@"1 Main St\nFlat \"2\"", @"Street",
                                                   [NSString stringWithUTF8String:"Zürich\a"], @"City",
                                                   @"62701", @"ZIP", list, @"list", [NSDictionary dictionary],
                                                   @"none", [NSData dataWithBytes:"abcdef" length:6], @"data",
                                                   @"", @"empty", [NSNumber numberWithInt:-3], @"number",
                                                   [NSArray array], @"nothing", nil];
    EXPECT_EQ(text(fields), R"({
    City = "Z\U00fcrich\007";
    Street = "1 Main St\nFlat \"2\"";
    ZIP = 62701;
    data = <61626364 6566>;
    empty = "";
    list =     (
        a,
        "b c",
                {
            "v w" = "-";
        }
    );
    none =     {
    };
    nothing =     (
    );
    number = "-3";
})");
    EXPECT_EQ(text([NSMutableDictionary dictionary]), "{\n}");
    EXPECT_EQ(text([NSDictionary dictionaryWithObject:@"x" forKey:[NSNumber numberWithInt:1]]),
              "{\n    1 = x;\n}");
}

TEST(TimeZoneTest, IsThatOfTheEnvironment) {
    ::setenv("TZ", "Asia/Tokyo", 1);
    EXPECT_EQ(text([[NSTimeZone systemTimeZone] name]), "Asia/Tokyo");
    EXPECT_EQ([[NSTimeZone systemTimeZone] secondsFromGMT], 9 * 3600);
    ::setenv("TZ", ":America/New_York", 1);
    EXPECT_EQ(text([[NSTimeZone systemTimeZone] name]), "America/New_York");
    ::setenv("TZ", "Nowhere/AtAll", 1);
    EXPECT_NE([NSTimeZone systemTimeZone], nil);
    ::unsetenv("TZ");
    EXPECT_NE([NSTimeZone systemTimeZone], nil);
}

class DateTest : public testing::Test {
  protected:
    void SetUp() override {
        ::setenv("TZ", "America/New_York", 1);
        ::setenv("LC_ALL", "en_US.UTF-8", 1);
    }
    void TearDown() override { ::unsetenv("TZ"); }
    static NSDate* parse(NSString* string) { return [NSDate dateWithNaturalLanguageString:string]; }
    static double seconds(NSString* string) { return [parse(string) timeIntervalSince1970]; }
};

TEST_F(DateTest, IsInTheSystemTimeZone) {
    EXPECT_EQ(seconds(@"12/25/2010 14:30"), 1293305400); // five hours behind
    EXPECT_EQ(seconds(@"2010-12-25"), 1293296400);
    EXPECT_EQ(seconds(@"July 4, 2010"), 1278259200); // four in summer
    EXPECT_EQ(seconds(@"2010-12-25T14:30:00Z"), 1293287400);
    EXPECT_EQ(seconds(@"2010-12-25T14:30:00+02:00"), 1293280200);
    EXPECT_EQ(seconds(@"3/12/1970"), 6109200);
}

TEST_F(DateTest, FollowsTheLocale) {
    ::setenv("LC_ALL", "", 1);
    ::setenv("LANG", "en_US.UTF-8", 1);
    ::setenv("LC_TIME", "de_DE.UTF-8", 1);
    EXPECT_TRUE([parse(@"3/12/1970") isEqual:parse(@"December 3, 1970")]);
    NSDictionary* american = [NSDictionary dictionaryWithObject:@"MDYH" forKey:@"NSDateTimeOrdering"];
    EXPECT_TRUE([[NSDate dateWithNaturalLanguageString:@"3/12/1970"
                                                locale:american] isEqual:parse(@"March 12, 1970")]);
}

TEST_F(DateTest, CountsWordsFromToday) {
    const double today = seconds(@"today");
    EXPECT_NEAR(today, [[NSDate date] timeIntervalSince1970], 12 * 3600 + 3600);
    EXPECT_NEAR(seconds(@"tomorrow") - today, 86400, 3600);
    EXPECT_NEAR(today - seconds(@"1 week ago"), 7 * 86400, 3600);
}

TEST_F(DateTest, IsNilForWhatIsNoDate) {
    EXPECT_EQ(parse(@"not a date"), nil);
    EXPECT_EQ(parse(@""), nil);
    EXPECT_EQ(parse(nil), nil);
    EXPECT_EQ(parse(@"\u00e9"), nil);
}

} // namespace
