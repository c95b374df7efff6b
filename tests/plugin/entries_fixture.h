#pragma once

#import "plugin/records/plugin_state.h"
#include "plugin/shell/error_state.h"
#include "tests/plugin/person_double.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"

// A test of the functions for entries. The current person is a double, and groups are the current record
// type, so that the tests see which functions make it people.
class EntriesTest : public PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        resetPersonDouble();
        ABAddressBook* book = [ABAddressBook sharedAddressBook];
        state.g_person = Retained<ABPerson>::adopt([[VelocardPersonDouble alloc] initWithAddressBook:book]);
        state.g_group = Retained<ABGroup>::adopt([[ABGroup alloc] initWithAddressBook:book]);
        state.g_currentRecordType = kGroupType;
    }
    void TearDown() override { resetPersonDouble(); }

    // Gives every list property of the person these values, with the identifiers "0", "1", ...
    static void giveList(std::initializer_list<id> values) {
        auto list = Retained<ABMutableMultiValue>::adopt([[VelocardListDouble alloc] init]);
        for (id value : values) {
            [list.get() addValue:value withLabel:@"Cottage"];
        }
        personDouble.values = Retained<NSObject>::retain(list.get());
    }

    // Expects that a call has failed with this message and code.
    static void expectFailure(const std::string& answer, const std::string& text, const std::string& code) {
        EXPECT_EQ(answer, "!!ERROR!!");
        EXPECT_EQ(lastErrorText(), text);
        EXPECT_EQ(lastErrorNumber(), code);
    }

    // Returns a value of the list last written to the person.
    static std::string written(NSUInteger index) {
        return utf8([[personDouble.taken.get() valueAtIndex:index] description]);
    }

    static std::string openProperty() { return utf8(state.gCurrentProperty.get()); }
};

// Gives all properties of people one type for the rest of the block.
template <int Type>
class EveryPropertyHasType {
    static ABPropertyType answer(id /*self*/, SEL /*selector*/, NSString* /*property*/) {
        return static_cast<ABPropertyType>(Type);
    }
    ReplacedMethod method_ { object_getClass([ABPerson class]), @selector(typeOfProperty:), answer };
};
