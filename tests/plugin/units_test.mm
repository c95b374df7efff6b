// Texts that are not well-formed pass through the functions and the address book unchanged, unit by unit.

#import "plugin/records/plugin_state.h"
#include "plugin/shell/function_table.h"
#include "tests/plugin/support.h"
#include <vector>

namespace {

class UnitsTest : public PluginTest {
  protected:
    static OwnedData dataOf(const std::u16string& units) {
        OwnedText text;
        text->AssignUnicodeWithLength(reinterpret_cast<const fmx::uint16*>(units.data()),
                                      static_cast<fmx::uint32>(units.size()));
        OwnedData data;
        data->SetAsText(*text, data->GetLocale());
        return data;
    }

    // Calls a function; the result unit by unit.
    static std::u16string answer(HandlerFunction handler, short function,
                                 std::initializer_list<std::u16string> texts) {
        const OwnedExprEnv environment;
        OwnedDataVect arguments;
        for (const std::u16string& text : texts) {
            arguments->PushBack(*dataOf(text));
        }
        const OwnedData result;
        EXPECT_EQ(handler(function, *environment, *arguments, *result), 0);
        const fmx::Text& text = result->GetAsText();
        std::u16string units(text.GetSize(), u'\0');
        text.GetUnicode(reinterpret_cast<fmx::uint16*>(units.data()), 0, text.GetSize());
        return units;
    }

    // Sets and answers the note.
    static std::u16string set(const std::u16string& units) {
        return answer(Do_KORU_SetValueForProperty, 17, {u"note", units});
    }
    static std::u16string get() { return answer(Do_KORU_GetValueForProperty, 13, {u"note"}); }

    // Texts that are odd in one way each.
    static std::vector<std::u16string> oddTexts() {
        return {
            {u'a', 0xD800, u'b'}, {0xDC00},       {0xDC00, 0xD800},       {u'a', 0xDBFF},
            {0xD83D, 0xDE00},     {0xFEFF, u'a'}, {0xFFFE, u'a'},         {0xFEFF},
            {u'a', 0xFEFF},       {0xFFFF},       {0xFEFF, 0xD800, u'b'}, {0xFEFF, 0xFEFF, u'a'},
        };
    }
};

TEST_F(UnitsTest, EveryUnitComesBack) {
    for (const std::u16string& text : oddTexts()) {
        const std::string id = call(Do_KORU_New, {"person"});
        EXPECT_EQ(set(text), u"0");
        EXPECT_EQ(get(), text);
        EXPECT_EQ(call(Do_KORU_Save), "0");
        EXPECT_EQ(call(Do_KORU_Open, {id}), "0");
        EXPECT_EQ(get(), text) << "saved";
    }
}

TEST_F(UnitsTest, ATextIsAnsweredUpToItsFirstZero) {
    call(Do_KORU_New, {"person"});
    EXPECT_EQ(set({u'a', 0, u'b'}), u"0");
    EXPECT_EQ(get(), u"a");
}

TEST_F(UnitsTest, EntriesKeepTheUnitsOfTheirValuesAndLabels) {
    for (const std::u16string& text : oddTexts()) {
        const std::string person = call(Do_KORU_New, {"person"});
        const std::u16string id = answer(Do_KORU_AddMV, 32, {u"phone", u"1", u"home"});
        EXPECT_EQ(answer(Do_KORU_SetValueForUID, 18, {u"phone", id, text}), u"0");
        EXPECT_EQ(answer(Do_KORU_SetLabelForUID, 20, {u"phone", id, text}), u"0");
        const std::u16string added = answer(Do_KORU_AddMV, 32, {u"phone", text, text});
        const std::u16string address =
            answer(Do_KORU_AddAddress, 33, {text, text, u"", u"", u"", u"", u"us"});
        EXPECT_EQ(call(Do_KORU_Save), "0");
        EXPECT_EQ(call(Do_KORU_Open, {person}), "0");
        for (const std::u16string& entry : {id, added}) {
            EXPECT_EQ(answer(Do_KORU_GetValueForUID, 16, {u"phone", entry}), text);
            EXPECT_EQ(answer(Do_KORU_GetLabelForUID, 19, {u"phone", entry}), text);
            EXPECT_EQ(answer(Do_KORU_CompareProperty, 12, {u"phone", text, entry}), u"0");
        }
        EXPECT_EQ(answer(Do_KORU_GetValueForUID, 16, {u"address", address, u"Street"}), text);
        EXPECT_EQ(answer(Do_KORU_GetLabelForUID, 19, {u"address", address}), text);
    }
}

TEST_F(UnitsTest, OddTextsNameNothing) {
    const std::string person = call(Do_KORU_New, {"person"});
    const std::u16string phone = answer(Do_KORU_AddMV, 32, {u"phone", u"1", u"home"});
    const std::u16string address =
        answer(Do_KORU_AddAddress, 33, {u"home", u"1 Quay", u"", u"", u"", u"", u"us"});
    const auto code = [](const std::u16string& answered) {
        EXPECT_EQ(answered, u"!!ERROR!!");
        return lastErrorNumber();
    };
    for (const std::u16string& text : oddTexts()) {
        EXPECT_EQ(code(answer(Do_KORU_OpenFirstMVProperty, 14, {text, text})), "-8010");
        EXPECT_EQ(code(answer(Do_KORU_GetValueForUID, 16, {u"phone", text})), "-8000");
        EXPECT_EQ(code(answer(Do_KORU_GetValueForUID, 16, {u"address", address, text})), "-8008");
        EXPECT_EQ(code(answer(Do_KORU_SetValueForUID, 18, {u"phone", text, u"x"})), "-8007");
        EXPECT_EQ(code(answer(Do_KORU_SetValueForUID, 18, {u"address", address, u"x", text})), "-8008");
        EXPECT_EQ(code(answer(Do_KORU_SetValueForUID, 18, {u"address", address, text, u"CountryCode"})),
                  "-8031");
        EXPECT_EQ(code(answer(Do_KORU_DeleteValueForUID, 23, {u"phone", text})), "-8007");
        EXPECT_EQ(code(answer(Do_KORU_DeleteValueForUID, 23, {u"address", address, text})), "-8008");
        EXPECT_EQ(code(answer(Do_KORU_AddMV, 32, {u"dates", text, u"home"})), "-8016");
        EXPECT_EQ(code(answer(Do_KORU_AddAddress, 33, {u"home", u"x", u"", u"", u"", u"", text})), "-8031");
        EXPECT_EQ(code(answer(Do_KORU_GetListOfValues, 41, {text, text, text})), "-4");
        EXPECT_EQ(answer(Do_KORU_CompareProperty, 12, {u"phone", text, phone}), u"-1");
    }
    EXPECT_EQ(answer(Do_KORU_GetValueForUID, 16, {u"phone", phone}), u"1");
    EXPECT_EQ(answer(Do_KORU_GetValueForUID, 16, {u"address", address, u"Street"}), u"1 Quay");
}

// A text from the host may hold a NUL; its rest reaches the address book, and the answer ends before it.
TEST_F(UnitsTest, ZerosInEntries) {
    const std::u16string text = {u'a', 0, u'b'};
    call(Do_KORU_New, {"person"});
    const std::u16string id = answer(Do_KORU_AddMV, 32, {u"phone", text, text});
    EXPECT_EQ(answer(Do_KORU_GetValueForUID, 16, {u"phone", id}), u"a");
    EXPECT_EQ(answer(Do_KORU_GetLabelForUID, 19, {u"phone", id}), u"a");
    EXPECT_EQ(answer(Do_KORU_CompareProperty, 12, {u"phone", u"a", id}), u"-1");
    EXPECT_EQ(answer(Do_KORU_CompareProperty, 12, {u"phone", text, id}), u"0");
    EXPECT_EQ(answer(Do_KORU_AddMV, 32, {{u'p', u'h', u'o', u'n', u'e', 0}, u"1", u"home"}), u"!!ERROR!!");
}

} // namespace
