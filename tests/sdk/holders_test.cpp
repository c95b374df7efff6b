// The owning holders: both kinds for each class, over the standard pointers, with a constructor for each
// function that makes an object.
#include "host/wrapper/interface.h"

#include <gtest/gtest.h>
#include <type_traits>
#include <utility>

#pragma GCC diagnostic ignored "-Wdeprecated-declarations" // std::auto_ptr

namespace {

using namespace fmx;

#define HOLDERS(name)                                                                                        \
    static_assert(std::is_base_of_v<std::unique_ptr<name>, name##UniquePtr>);                                \
    static_assert(std::is_base_of_v<std::auto_ptr<name>, name##AutoPtr>);                                    \
    static_assert(!std::is_default_constructible_v<name> && !std::is_copy_constructible_v<name>);
HOLDERS(QuadChar)
HOLDERS(Locale)
HOLDERS(Text)
HOLDERS(FixPt)
HOLDERS(DateTime)
HOLDERS(BinaryData)
HOLDERS(Data)
HOLDERS(DataVect)
HOLDERS(RowVect)
HOLDERS(ExprEnv)
HOLDERS(CharacterStyle)
HOLDERS(Color)

// Makes a holder of either kind; true when it holds an object. The object goes when the holder does, or once
// what it was moved to does.
template <class Holder, class... Arguments>
bool holds(Arguments&&... arguments) {
    const Holder holder(std::forward<Arguments>(arguments)...);
    return holder.get() != nullptr;
}
#define EXPECT_BOTH(name, ...)                                                                               \
    EXPECT_TRUE(holds<name##UniquePtr>(__VA_ARGS__));                                                        \
    EXPECT_TRUE(holds<name##AutoPtr>(__VA_ARGS__))

TEST(HoldersTest, OfBothKindsMakeObjects) {
    const QuadCharUniquePtr code('F', 'I', 'L', 'E');
    const LocaleUniquePtr locale;
    const TextUniquePtr text;
    const FixPtUniquePtr number;
    const BinaryDataUniquePtr container;
    const CharacterStyleUniquePtr style;
    const ColorUniquePtr color;
    const uint16 date[] = {u'1', u'/', u'2', u'/', u'3'};
    uint32 context = 0;
    char byte = 'x';

    EXPECT_BOTH(QuadChar);
    EXPECT_BOTH(QuadChar, 'a', 'b', 'c', 'd');
    EXPECT_BOTH(QuadChar, *code);
    EXPECT_BOTH(Locale);
    EXPECT_BOTH(Locale, Locale::kType_DEU);
    EXPECT_BOTH(Locale, *locale);
    EXPECT_BOTH(Text);
    EXPECT_BOTH(FixPt);
    EXPECT_BOTH(FixPt, 5);
    EXPECT_BOTH(FixPt, 5, 3);
    EXPECT_BOTH(FixPt, 5, *number);
    EXPECT_BOTH(DateTime);
    EXPECT_BOTH(DateTime, date, 5U, *locale);
    EXPECT_BOTH(DateTime, *text, *locale);
    EXPECT_BOTH(BinaryData);
    EXPECT_BOTH(BinaryData, *container);
    EXPECT_BOTH(BinaryData, *text, 1U, &byte);
    EXPECT_BOTH(BinaryData, *text, context);
    EXPECT_BOTH(Data);
    EXPECT_BOTH(DataVect);
    EXPECT_BOTH(RowVect);
    EXPECT_BOTH(ExprEnv);
    EXPECT_BOTH(CharacterStyle);
    EXPECT_BOTH(CharacterStyle, FontID{1}, Face{2}, FontSize{3}, *color);
    EXPECT_BOTH(CharacterStyle, *style);
    EXPECT_BOTH(Color);
    EXPECT_BOTH(Color, ColorChannel{1}, ColorChannel{2}, ColorChannel{3}, ColorChannel{4});
    EXPECT_BOTH(Color, *color);
}

TEST(HoldersTest, GiveTheirObjectAway) {
    TextUniquePtr text;
    const Text* const object = text.get();
    const TextUniquePtr owner(std::move(text));
    EXPECT_EQ(owner.get(), object);

    TextAutoPtr older;
    const Text* const other = older.get();
    const TextAutoPtr newer(older);
    EXPECT_EQ(newer.get(), other);
    EXPECT_EQ(older.get(), nullptr);
}

} // namespace
