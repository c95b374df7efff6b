#include "host/values/container_file.h"
#include "tests/host/calc/calc_table.h"

namespace host {

namespace {

// One pixel, 42 bytes.
const std::string kGif = "\"R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7\"";

TEST(ContainerFunctionsTest, Base64OfLargeTexts) {
    Session session;
    const std::u16string megabyte(1'000'003, u'z');
    session.setVariable(u"$long", Value::text(megabyte));
    EXPECT_EQ(session.evaluate(u"Base64Decode ( Base64Encode ( $long ) )").asText(), megabyte);
    EXPECT_EQ(session.evaluate(u"Base64Decode ( Base64EncodeRFC ( 4648 ; $long ) )").asText(), megabyte);
}

TEST(ContainerFunctionsTest, DecodingWithANameMakesAContainer) {
    Session session;
    const Value picture = session.evaluate(fromUtf8("Base64Decode ( " + kGif + " ; \"a.png\" )"));
    ASSERT_EQ(picture.type(), ValueType::container);
    EXPECT_EQ(picture.asContainer().fileNames(), u"a.png");
    EXPECT_EQ(picture.asContainer().pictureSize(), std::pair(int16_t{1}, int16_t{1}));
    EXPECT_EQ(picture.asContainer().find(StreamType::of("GIFf")), 2U);
    const Value file = session.evaluate(u"Base64Decode ( \"aGVsbG8=\" ; \"a.gif\" )");
    EXPECT_EQ(file.asContainer(), fileContainer(u"a.gif", {'h', 'e', 'l', 'l', 'o'}));
    EXPECT_EQ(session.evaluate(u"Base64Decode ( \"*\" ; \"a.gif\" )").type(), ValueType::invalid);
    session.setVariable(u"$p", picture);
    EXPECT_EQ(outcome(session, "Base64EncodeRFC ( 4648 ; $p ) = " + kGif), "1");
}

TEST(ContainerFunctionsTest, Attributes) {
    Session session;
    session.evaluate(fromUtf8("Let ( $p = Base64Decode ( " + kGif + " ; \"a.gif\" ) ; \"\" )"));
    expectRows(
        session,
        {
            {"GetContainerAttribute ( $p ; \"filename\" )", "a.gif"},
            {"GetContainerAttribute ( $p ; \"storageType\" )", "Embedded"},
            {"Exact ( GetContainerAttribute ( $p ; \"md5\" ) ; \"D89746888DA2D9510B64A9F031EAECD5\" )", "1"},
            {"GetContainerAttribute ( $p ; \"fileSize\" )", "42"},
            {"GetContainerAttribute ( $p ; \"internalSize\" )", "56"},
            {"GetContainerAttribute ( $p ; \"EXTERNALsize\" )", "0"},
            {"GetContainerAttribute ( $p ; \"width\" )", "1"},
            {"GetContainerAttribute ( $p ; \"height\" )", "1"},
            {"GetContainerAttribute ( $p ; \"artist\" )", ""},
            {"GetContainerAttribute ( $p ; \"\" )", "?"},
            {"GetContainerAttribute ( \"text\" ; \"width\" )", ""},
            {"GetContainerAttribute ( $nothing ; \"md5\" )", ""},
            {"GetContainerAttribute ( Base64Decode ( \"aGk=\" ; \"a\" ) ; \"width\" )", ""},
        });
    Container sized; // what a plug-in may make: no name, no stream but the size
    sized.setPictureSize(-1, 5);
    session.setVariable(u"$p", Value::container(sized));
    expectRows(
        session,
        {
            {"GetContainerAttribute ( $p ; \"filename\" )", ""},
            {"GetContainerAttribute ( $p ; \"md5\" ) & GetContainerAttribute ( $p ; \"fileSize\" )", ""},
            {"GetContainerAttribute ( $p ; \"width\" )", "-1"},
            {"Base64Encode ( $p )", ""},
        });
}

TEST(ContainerFunctionsTest, ContainersAsOtherValues) {
    Session session;
    const auto set = [&](const std::u16string& name, const Container& container) {
        session.setVariable(name, Value::container(container));
    };
    set(u"$a", fileContainer(u"a.txt", {'h', 'i'}));
    set(u"$same", fileContainer(u"a.txt", {'h', 'i'}));
    set(u"$other", fileContainer(u"a.txt", {'h', 'o'}));
    set(u"$b", fileContainer(u"B.txt", {'h', 'i'}));
    set(u"$none", Container());
    expectRows(session, {
                            {"GetAsText ( $a )", "a.txt"},
                            {"$a & \"!\"", "a.txt!"},
                            {"IsEmpty ( $a ) & IsEmpty ( $none )", "01"},
                            {"Length ( $a )", "2"},
                            {"Length ( $none )", "0"},
                            {"$a = $same", "1"},
                            {"$a = $other", "0"},
                            {"$a < $b", "1"},
                            {"$b > $other", "1"},
                            {"Exact ( $a ; $same ) & Exact ( $a ; $other )", "10"},
                            {"$a = \"A.TXT\"", "1"},
                            {"If ( $a ; \"yes\" ; \"no\" ) & If ( $none ; \"yes\" ; \"no\" )", "yesno"},
                            {"GetAsNumber ( $a )", "?"},
                        });
}

} // namespace

} // namespace host
