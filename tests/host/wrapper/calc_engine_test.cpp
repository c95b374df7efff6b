#include "tests/host/wrapper/support.h"

#include "host/wrapper/host_hooks.h"

#include <stdexcept>

namespace {

using fmx::DataAutoPtr;

void push(fmx::DataVect& vector, std::u16string_view text) {
    const DataAutoPtr data;
    data->SetAsText(*hostText(text), data->GetLocale());
    vector.PushBack(*data);
}

TEST(WrapperDataVect, HoldsCopiesInOrder) {
    const fmx::DataVectAutoPtr vector;
    EXPECT_TRUE(vector->IsEmpty());
    EXPECT_EQ(vector->PopBack(), nullptr);
    push(*vector, u"12/25/2010");
    push(*vector, u"1:02:03");
    const fmx::Data& first = vector->At(0);
    for (int i = 0; i < 1000; ++i) {
        push(*vector, u"0");
    }
    EXPECT_EQ(&vector->At(0), &first); // values stay where they are
    EXPECT_EQ(vector->Size(), 1002U);
    EXPECT_FALSE(vector->IsEmpty());
    EXPECT_EQ(unitsOf(vector->AtAsText(1)), u"1:02:03");
    EXPECT_EQ(vector->AtAsNumber(1).AsLong(), 10203);
    EXPECT_EQ(vector->AtAsDate(0).GetYear(), 2010);
    EXPECT_EQ(vector->AtAsTime(1).GetSec(), 3);
    EXPECT_EQ(vector->AtAsTimeStamp(0).GetDay(), 25);
    EXPECT_TRUE(vector->AtAsBoolean(1));
    EXPECT_FALSE(vector->AtAsBoolean(2));
    EXPECT_EQ(vector->AtAsBinaryData(0).GetCount(), 0);
    const std::unique_ptr<fmx::Data> last(vector->PopBack());
    vector->PushBack(vector->At(0)); // one of its own
    vector->Clear();
    EXPECT_EQ(vector->Size(), 0U);
    EXPECT_EQ(unitsOf(last->GetAsText()), u"0"); // it outlives the vector's own
}

TEST(WrapperDataVect, RefusesIndexesItDoesNotHave) {
    const fmx::DataVectAutoPtr vector;
    push(*vector, u"0");
    for (const fmx::uint32 index : {1U, 0xFFFFFFFFU}) {
        EXPECT_THROW(vector->At(index), std::exception);
        EXPECT_THROW(vector->AtAsText(index), std::exception);
        EXPECT_THROW(vector->AtAsNumber(index), std::exception);
        EXPECT_THROW(vector->AtAsDate(index), std::exception);
        EXPECT_THROW(vector->AtAsTime(index), std::exception);
        EXPECT_THROW(vector->AtAsTimeStamp(index), std::exception);
        EXPECT_THROW(vector->AtAsBoolean(index), std::exception);
        EXPECT_THROW(vector->AtAsBinaryData(index), std::exception);
    }
}

// What the program was asked.
struct Asked {
    std::u16string name;
    std::u16string prototype;
    fmx::uint32 plugin = 0;
    short id = 0;
    short minArgs = 0;
    short maxArgs = 0;
    fmx::uint32 flags = 0;
    fmx::ExtPluginType function = nullptr;
};

fmx::errcode answer(short /*id*/, const fmx::ExprEnv& /*env*/, const fmx::DataVect& /*args*/,
                    fmx::Data& /*result*/) {
    return 0;
}

class WrapperExprEnv : public testing::Test {
  protected:
    WrapperExprEnv() {
        hooks_.context = &asked_;
        hooks_.registerFunction = [](void* context, const fmx::QuadChar& plugin, short id,
                                     const fmx::Text& name, const fmx::Text& prototype, short minArgs,
                                     short maxArgs, fmx::uint32 flags,
                                     fmx::ExtPluginType function) -> fmx::errcode {
            *static_cast<Asked*>(context) = {
                unitsOf(name), unitsOf(prototype), plugin.GetMacType(), id, minArgs, maxArgs, flags,
                function};
            return 11;
        };
        hooks_.unregisterFunction = [](void* context, const fmx::QuadChar& plugin, short id) -> fmx::errcode {
            static_cast<Asked*>(context)->plugin = plugin.GetMacType();
            static_cast<Asked*>(context)->id = id;
            return 12;
        };
        hooks_.evaluate = [](void* /*context*/, const fmx::ExprEnv& /*env*/, const fmx::Text& expression,
                             fmx::Data& result) -> fmx::errcode {
            if (unitsOf(expression) == u"out of memory") {
                throw std::bad_alloc();
            }
            if (unitsOf(expression) == u"throw") {
                throw 5; // NOLINT: not even a standard exception
            }
            return result.SetAsText(expression, result.GetLocale());
        };
    }
    ~WrapperExprEnv() override { FM_Host_SetHooks(nullptr); }

    fmx::errcode registered() {
        return fmx::ExprEnv::RegisterExternalFunction(*id_, 7, *hostText(u"Name"), *hostText(u"Name ( x )"),
                                                      1, 2, fmx::ExprEnv::kDisplayInAllDialogs, answer);
    }

    Asked asked_;
    host::HostHooks hooks_;
    fmx::QuadCharAutoPtr id_{'T', 'E', 'S', 'T'};
    fmx::ExprEnvAutoPtr environment_;
    DataAutoPtr result_;
};

TEST_F(WrapperExprEnv, RefusesWhenThereIsNoOneToAsk) {
    EXPECT_NE(registered(), 0);
    EXPECT_NE(fmx::ExprEnv::UnRegisterExternalFunction(*id_, 7), 0);
    EXPECT_NE(environment_->Evaluate(*hostText(u"1"), *result_), 0);
    EXPECT_TRUE(result_->IsEmpty());
}

TEST_F(WrapperExprEnv, AsksTheProgram) {
    FM_Host_SetHooks(&hooks_);
    EXPECT_EQ(registered(), 11);
    EXPECT_EQ(asked_.name, u"Name");
    EXPECT_EQ(asked_.prototype, u"Name ( x )");
    EXPECT_EQ(asked_.plugin, 0x54455354U);
    EXPECT_EQ(asked_.id, 7);
    EXPECT_EQ(asked_.minArgs, 1);
    EXPECT_EQ(asked_.maxArgs, 2);
    EXPECT_EQ(asked_.flags, 0xFF00U);
    EXPECT_EQ(asked_.function, &answer);
    EXPECT_EQ(fmx::ExprEnv::UnRegisterExternalFunction(*id_, 9), 12);
    EXPECT_EQ(asked_.id, 9);
    EXPECT_EQ(environment_->Evaluate(*hostText(u"1 + 1"), *result_), 0);
    EXPECT_EQ(unitsOf(result_->GetAsText()), u"1 + 1");
}

TEST_F(WrapperExprEnv, StopsWhatTheProgramThrows) {
    FM_Host_SetHooks(&hooks_);
    EXPECT_THROW(environment_->Evaluate(*hostText(u"out of memory"), *result_), std::bad_alloc);
    EXPECT_THROW(environment_->Evaluate(*hostText(u"throw"), *result_), std::exception);
}

} // namespace
