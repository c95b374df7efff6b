// Texts that are no proper Unicode go through the functions and the address book unit by unit.

#import "plugin/records/plugin_state.h"
#include "plugin/shell/function_table.h"
#include "tests/plugin/support.h"

namespace {

class UnitsTest : public PluginTest {
  protected:
    static fmx::DataAutoPtr dataOf(const std::u16string& units) {
        fmx::TextAutoPtr text;
        text->AssignUnicodeWithLength(reinterpret_cast<const fmx::uint16*>(units.data()),
                                      static_cast<fmx::uint32>(units.size()));
        fmx::DataAutoPtr data;
        data->SetAsText(*text, data->GetLocale());
        return data;
    }

    // Sets the note.
    static std::string set(const std::u16string& units) {
        const fmx::ExprEnvAutoPtr environment;
        fmx::DataVectAutoPtr arguments;
        arguments->PushBack(*textData("note"));
        arguments->PushBack(*dataOf(units));
        const fmx::DataAutoPtr result;
        EXPECT_EQ(Do_KORU_SetValueForProperty(17, *environment, *arguments, *result), 0);
        return utf8(stringFromText(result->GetAsText()));
    }

    // The note, unit by unit.
    static std::u16string get() {
        const fmx::ExprEnvAutoPtr environment;
        const fmx::DataAutoPtr result;
        EXPECT_EQ(Do_KORU_GetValueForProperty(13, *environment, *vectorOf({"note"}), *result), 0);
        const fmx::Text& text = result->GetAsText();
        std::u16string units(text.GetSize(), u'\0');
        text.GetUnicode(reinterpret_cast<fmx::uint16*>(units.data()), 0, text.GetSize());
        return units;
    }
};

TEST_F(UnitsTest, EveryUnitComesBack) {
    const std::u16string texts[] = {
        {u'a', 0xD800, u'b'}, {0xDC00},       {0xDC00, 0xD800},       {u'a', 0xDBFF},
        {0xD83D, 0xDE00},     {0xFEFF, u'a'}, {0xFFFE, u'a'},         {0xFEFF},
        {u'a', 0xFEFF},       {0xFFFF},       {0xFEFF, 0xD800, u'b'}, {0xFEFF, 0xFEFF, u'a'},
    };
    for (const std::u16string& text : texts) {
        const std::string id = call(Do_KORU_New, {"person"});
        EXPECT_EQ(set(text), "0");
        EXPECT_EQ(get(), text);
        EXPECT_EQ(call(Do_KORU_Save), "0");
        EXPECT_EQ(call(Do_KORU_Open, {id}), "0");
        EXPECT_EQ(get(), text) << "saved";
    }
}

TEST_F(UnitsTest, ATextIsAnsweredUpToItsFirstZero) {
    call(Do_KORU_New, {"person"});
    EXPECT_EQ(set({u'a', 0, u'b'}), "0");
    EXPECT_EQ(get(), u"a");
}

} // namespace
