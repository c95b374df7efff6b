#import "plugin/shell/handler_frame.h"

#include "tests/plugin/host_double.h"
#include "tests/plugin/support.h"
#include "tests/plugin/thrown_object.h"
#include "tests/support/raised.h"

// Notes that it was deallocated.
@interface VelocardWitness : NSObject {
  @public
    bool* gone;
}
@end

@implementation VelocardWitness
- (void)dealloc {
    *gone = true;
    [super dealloc];
}
@end

// Cannot even be described.
@interface VelocardSilentException : NSException
@end
@implementation VelocardSilentException
- (NSString*)description {
    [NSException raise:NSGenericException format:@"no words"];
    return nil;
}
@end

namespace {

// Not in the function table, so that any number of arguments is accepted.
constexpr short kNoFunction = 1000;

class FrameTest : public PluginTest {
  protected:
    template <typename Work>
    std::string run(Work work, const FrameRules& rules = kUsualFrame, short function = kNoFunction) {
        const OwnedDataVect none;
        EXPECT_EQ(runHandler(function, *none, *result_, work, rules), 0);
        NSString* text = stringFromText(result_->GetAsText());
        return text == nil ? "" : utf8(text);
    }

    OwnedData result_;
};

TEST_F(FrameTest, TheWorksTextIsTheResult) {
    EXPECT_EQ(run([]() -> Answer { return @"Grüße 😀"; }), "Grüße 😀");
    EXPECT_EQ(run([]() -> Answer { return @""; }), "");
    EXPECT_EQ(run([]() -> Answer { return nil; }), "");
    const std::string longText(5000, 'x');
    EXPECT_EQ(run([&]() -> Answer { return string(longText); }), longText);
    EXPECT_EQ(errors.g_llasterror, kSuccess);
}

TEST_F(FrameTest, TheResultEndsAtAZeroUnit) {
    const unichar units[] = {'a', 0, 'b'};
    EXPECT_EQ(run([&]() -> Answer { return [NSString stringWithCharacters:units length:3]; }), "a");
}

TEST_F(FrameTest, AFailedCallAnswersTheMarkerWhateverTheWorkAnswered) {
    EXPECT_EQ(run([]() -> Answer {
                  setError(kRecordReadOnly);
                  return @"0";
              }),
              "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Record is read only ");
    EXPECT_EQ(run([]() -> Answer {
                  setErrorCodeOnly(kInvalidParameterValue);
                  return @"0";
              }),
              "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Success");
}

TEST_F(FrameTest, EntryForgetsTheLastCall) {
    errors.globalError = Retained<NSObject>::adopt([[NSObject alloc] init]);
    errors.g_sExceptionTxt = Retained<NSString>::retain(@"old");
    setError(kExceptionCaught, errors.g_sExceptionTxt.get());
    run([]() -> Answer {
        EXPECT_FALSE(errors.globalError);
        EXPECT_FALSE(errors.g_sExceptionTxt);
        EXPECT_EQ(errors.g_llasterror, kSuccess);
        EXPECT_EQ(utf8([errors.error getError]), "Success");
        return nil;
    });
}

TEST_F(FrameTest, TheVersionFunctionLeavesTheExceptionText) {
    errors.g_sExceptionTxt = Retained<NSString>::retain(@"old");
    setError(kExceptionCaught, errors.g_sExceptionTxt.get());
    EXPECT_EQ(call(Do_KORU_Version), "3.0.3.1");
    EXPECT_EQ(utf8(errors.g_sExceptionTxt.get()), "old");
    EXPECT_EQ(errors.g_llasterror, kSuccess);
    EXPECT_EQ(lastErrorText(), "Success");
}

TEST_F(FrameTest, APlatformExceptionIsTheCallsError) {
    EXPECT_EQ(run([]() -> Answer {
                  [NSException raise:NSInvalidArgumentException format:@"no such thing as %d", 42];
                  return @"never";
              }),
              "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Exception caught in function no such thing as 42");
    EXPECT_EQ(lastErrorNumber(), "-8000");
    EXPECT_EQ(run([]() -> Answer { return @"next"; }), "next");
    EXPECT_EQ(lastErrorText(), "Success");
    EXPECT_FALSE(errors.g_sExceptionTxt);
}

TEST_F(FrameTest, AnExceptionUnwindsTheWork) {
    struct Witness {
        bool& released;
        ~Witness() { released = true; }
    };
    bool released = false;
    run([&]() -> Answer {
        const Witness witness{released};
        [NSException raise:NSGenericException format:@"out"];
        return nil;
    });
    EXPECT_TRUE(released);
}

TEST_F(FrameTest, OtherObjectsAndStandardExceptionsPass) {
    const OwnedDataVect none;
    const int before = host_double::livingObjects();
    EXPECT_THROW(runHandler(kNoFunction, *none, *result_, []() -> Answer { throw std::bad_alloc(); }),
                 std::bad_alloc);
    EXPECT_THROW(runHandler(kNoFunction, *none, *result_, []() -> Answer { throw std::exception(); }),
                 std::exception);
    EXPECT_THROW(runHandler(kNoFunction, *none, *result_, []() -> Answer { throw 7; }), int);
    EXPECT_EQ(host_double::livingObjects(), before);
    EXPECT_EQ(lastErrorText(), "Success");
}

// It outlives what the call autoreleased, itself among it.
TEST_F(FrameTest, AnExceptionWhileOneIsDescribedLeavesTheCallWhole) {
    const OwnedDataVect none;
    const int before = host_double::livingObjects();
    NSException* left = raised([&] {
        runHandler(kNoFunction, *none, *result_, []() -> Answer {
            [[VelocardSilentException exceptionWithName:NSGenericException reason:@"x" userInfo:nil] raise];
            return nil;
        });
    });
    EXPECT_EQ(utf8([left reason]), "no words");
    EXPECT_EQ(host_double::livingObjects(), before);
    [left release]; // the frame's reference, which no host releases
}

TEST_F(FrameTest, AThrownObjectThatIsNoExceptionPassesUnchanged) {
    NSString* object = @"no exception";
    const auto calling = [&] {
        const OwnedDataVect none;
        runHandler(kNoFunction, *none, *result_, [&]() -> Answer {
            throwObject(object);
            return nil;
        });
    };
    const int before = host_double::livingObjects();
    EXPECT_EQ(objectThrownBy([](void* work) { (*static_cast<decltype(calling)*>(work))(); },
                             const_cast<void*>(static_cast<const void*>(&calling))),
              static_cast<void*>(object));
    EXPECT_EQ(host_double::livingObjects(), before);
    EXPECT_EQ(lastErrorText(), "Success");
}

TEST_F(FrameTest, WhatTheWorkAutoreleasesGoesWithTheCallAlsoWhenItThrows) {
    bool gone = false;
    const auto leave = [&] {
        VelocardWitness* witness = [[[VelocardWitness alloc] init] autorelease];
        witness->gone = &gone;
    };
    run([&]() -> Answer {
        leave();
        EXPECT_FALSE(gone);
        return nil;
    });
    EXPECT_TRUE(gone);
    gone = false;
    const OwnedDataVect none;
    EXPECT_THROW(runHandler(kNoFunction, *none, *result_,
                            [&]() -> Answer {
                                leave();
                                throw std::bad_alloc();
                            }),
                 std::bad_alloc);
    EXPECT_TRUE(gone);
}

TEST_F(FrameTest, AWrongNumberOfArgumentsIsRefusedByItsCodeAlone) {
    bool ran = false;
    const short open = 7; // takes one argument
    EXPECT_EQ(run(
                  [&]() -> Answer {
                      ran = true;
                      return nil;
                  },
                  kUsualFrame, open),
              "!!ERROR!!");
    EXPECT_FALSE(ran);
    EXPECT_EQ(errors.g_llasterror, kInvalidParameterCount);
    EXPECT_EQ(lastErrorText(), "Success");
    EXPECT_EQ(lastErrorNumber(), "0");
}

TEST_F(FrameTest, TextIsWrittenInTheResultsOwnLocale) {
    constexpr fmx::int32 kSomeLanguage = 20;
    const OwnedLocale locale(kSomeLanguage);
    const OwnedText text;
    result_->SetAsText(*text, *locale);
    const auto expectOwnLocale = [&] {
        EXPECT_EQ(host_double::textLocale(), &result_->GetLocale());
        host_double::reset();
    };
    host_double::reset();
    run([]() -> Answer { return @"x"; });
    expectOwnLocale();
    run([]() -> Answer {
        setError(kNoBitmap);
        return nil;
    });
    expectOwnLocale();
    for (const FrameRules& rules : {kVersionFrame, kLastErrorFrame}) {
        run([]() -> Answer { return @"x"; }, rules);
        expectOwnLocale();
    }
}

TEST_F(FrameTest, AWrittenResultIsLeftAloneEvenWithAnError) {
    EXPECT_EQ(run([&]() -> Answer {
                  const OwnedData other = textData("the work's own");
                  result_->SetAsText(other->GetAsText(), result_->GetLocale());
                  setError(kNoBitmap);
                  return Answer::written();
              }),
              "the work's own");
    EXPECT_EQ(lastErrorNumber(), "-8025");
}

TEST_F(FrameTest, AnEmptyOrMissingArgumentIsNil) {
    const OwnedDataVect arguments = vectorOf({"", "x"});
    EXPECT_EQ(textArgument(*arguments, 0), nil);
    EXPECT_EQ(utf8(textArgument(*arguments, 1)), "x");
    EXPECT_EQ(textArgument(*arguments, 2), nil);
}

TEST_F(FrameTest, AnArgumentKeepsEveryUnit) {
    // A zero, half a pair, and what could be taken for byte-order marks.
    const std::vector<std::vector<fmx::uint16>> texts = {{'a', 0, 'b'}, {'a', 0xD800, 'b'}, {0xDC00},
                                                         {0xFEFF, 'a'}, {0xFFFE, 'a'},      {0xD83D, 0xDE00}};
    for (const std::vector<fmx::uint16>& units : texts) {
        OwnedText text;
        text->AssignUnicodeWithLength(units.data(), static_cast<fmx::uint32>(units.size()));
        NSString* string = stringFromText(*text);
        ASSERT_EQ([string length], units.size());
        for (std::size_t i = 0; i < units.size(); ++i) {
            EXPECT_EQ([string characterAtIndex:i], units[i]);
        }
    }
    const std::string longText(5000, 'y');
    EXPECT_EQ(utf8(textArgument(*vectorOf({longText}), 0)), longText);
}

TEST_F(FrameTest, AnArgumentIsTheTextOfThisCallHoweverManyCameBefore) {
    // Of all lengths around the longest that is kept, and many more than are kept.
    std::vector<std::string> texts;
    for (int i = 0; i < 2000; ++i) {
        texts.push_back(std::to_string(i) + std::string(static_cast<std::size_t>(i % 60), 'x'));
    }
    const auto firstText = [&] { return textArgument(*vectorOf({texts[0]}), 0); };
    {
        const Pool callBefore;
        EXPECT_EQ(utf8(firstText()), texts[0]);
    }
    const Pool pool;
    NSString* first = firstText();
    for (int round = 0; round < 2; ++round) {
        for (const std::string& text : texts) {
            const Pool inner;
            EXPECT_EQ(utf8(textArgument(*vectorOf({text}), 0)), text);
        }
    }
    EXPECT_EQ(utf8(first), texts[0]) << "lives as long as its call";
}

} // namespace
