// Failures of the library as a plug-in sees them, and the hook that causes them.
#include "tests/host/wrapper/support.h"

#include "host/wrapper/host_hooks.h"

namespace {

class WrapperFailureTest : public testing::Test {
  protected:
    ~WrapperFailureTest() override { FM_Host_FailNextCall(0); }
};

TEST_F(WrapperFailureTest, BecomesTheExceptionOfItsCode) {
    const auto text = hostText(u"abc");
    FM_Host_FailNextCall(1);
    EXPECT_THROW(text->GetSize(), std::bad_alloc);
    EXPECT_EQ(text->GetSize(), 3U); // one call alone
    FM_Host_FailNextCall(2);
    try {
        text->Uppercase();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::bad_alloc&) {
        ADD_FAILURE() << "a failed allocation was thrown";
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): as expected
    }
    EXPECT_EQ(unitsOf(*text), u"abc"); // a call that fails does nothing
}

TEST_F(WrapperFailureTest, CanHitALaterCall) {
    const auto text = hostText(u"abc");
    FM_Host_FailNextCall(1, 2);
    EXPECT_EQ(text->GetSize(), 3U);
    {
        const fmx::TextUniquePtr made;
    } // made and deleted: the deletion does not count
    EXPECT_THROW(text->GetSize(), std::bad_alloc);
    FM_Host_FailNextCall(1, 1);
    FM_Host_FailNextCall(0);
    EXPECT_EQ(text->GetSize(), 3U);
    EXPECT_EQ(text->GetSize(), 3U);
    FM_Host_FailNextCall(2, -1); // no such call
    EXPECT_EQ(text->GetSize(), 3U);
}

TEST_F(WrapperFailureTest, LeavesNothingBehindWhenAnObjectIsNotMade) {
    FM_Host_FailNextCall(1);
    EXPECT_THROW(fmx::TextUniquePtr(), std::bad_alloc);
    FM_Host_FailNextCall(2);
    EXPECT_THROW(fmx::DataVectUniquePtr(), std::exception);
}

TEST_F(WrapperFailureTest, OfACallThatAnswersAReferenceThrowsToo) {
    const fmx::DataVectUniquePtr vector;
    vector->PushBack(*fmx::DataUniquePtr());
    FM_Host_FailNextCall(1);
    EXPECT_THROW(vector->At(0), std::bad_alloc);
    FM_Host_FailNextCall(1);
    EXPECT_THROW(vector->At(0).GetAsText(), std::bad_alloc);
    FM_Host_FailNextCall(1, 1);
    EXPECT_THROW(vector->At(0).GetAsText(), std::bad_alloc);
    const fmx::QuadCharUniquePtr code;
    FM_Host_FailNextCall(2);
    EXPECT_THROW(static_cast<void>((*code)[0]), std::exception);
}

// A call without an object, for one function of each class and kind of result.
TEST_F(WrapperFailureTest, IsReportedForACallWithoutItsObject) {
    const auto codeOf = [](auto call) {
        fmx::_fmxcpt block;
        call(block);
        return block.code;
    };
    using Block = fmx::_fmxcpt&;
    const fmx::DataUniquePtr data;
    const fmx::DateTimeUniquePtr moment;
    const fmx::FixPtUniquePtr number;
    const fmx::BinaryDataUniquePtr container;
    const fmx::QuadCharUniquePtr code;
    EXPECT_EQ(codeOf([](Block x) { FM_Text_GetSize(nullptr, x); }), 2);
    EXPECT_EQ(codeOf([](Block x) { FM_Text_Uppercase(nullptr, x); }), 2);
    EXPECT_EQ(codeOf([&](Block x) { FM_Locale_operatorAS(nullptr, data->GetLocale(), x); }), 2);
    EXPECT_EQ(codeOf([](Block x) { FM_FixPt_AsLong(nullptr, x); }), 2);
    EXPECT_EQ(codeOf([&](Block x) { FM_FixPt_Divide(nullptr, *number, *number, x); }), 2);
    EXPECT_EQ(codeOf([](Block x) { FM_DateTime_GetYear(nullptr, x); }), 2);
    EXPECT_EQ(codeOf([](Block x) { FM_DateTime_SetNormalizedDate1(nullptr, 1, 1, 1, x); }), 2);
    EXPECT_EQ(codeOf([&](Block x) { FM_DateTime_GetSeconds(nullptr, *number, x); }), 2);
    EXPECT_EQ(codeOf([](Block x) { FM_QuadChar_operatorAR(nullptr, 0, x); }), 2);
    EXPECT_EQ(codeOf([&](Block x) { FM_BinaryData_operatorAS(nullptr, *container, x); }), 2);
    EXPECT_EQ(codeOf([&](Block x) { FM_BinaryData_GetIndex(nullptr, *code, x); }), 2);
    EXPECT_EQ(codeOf([](Block x) { FM_Data_GetAsText(nullptr, x); }), 2);
    EXPECT_EQ(codeOf([](Block x) { FM_Data_IsFindRequest(nullptr, x); }), 2);
    EXPECT_EQ(codeOf([&](Block x) { FM_Data_SetAsTimeStamp(nullptr, *moment, 5, x); }), 2);
    EXPECT_EQ(codeOf([](Block x) { FM_DataVect_At(nullptr, 0, x); }), 2);
    EXPECT_EQ(codeOf([](Block x) { FM_DataVect_PopBack(nullptr, x); }), 2);
    EXPECT_EQ(codeOf([&](Block x) { FM_ExprEnv_Evaluate(nullptr, data->GetAsText(), *data, x); }), 2);
    EXPECT_EQ(codeOf([](Block x) { FM_Data_Delete(nullptr, x); }), 0); // nothing to delete
}

} // namespace
