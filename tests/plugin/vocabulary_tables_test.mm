// The required contents of the tables of words, written down independently.

#import "plugin/vocabulary/country_codes.h"
#import "plugin/vocabulary/labels.h"
#import "plugin/vocabulary/property_names.h"
#include "tests/plugin/support.h"
#include <set>
#include <sstream>

namespace {

class VocabularyTablesTest : public testing::Test {
    Pool pool_;
};

TEST_F(VocabularyTablesTest, PropertyNames) {
    const std::pair<const char*, NSString*> expected[] = {
        {"id", kABUIDProperty},
        {"creationdate", kABCreationDateProperty},
        {"modifieddate", kABModificationDateProperty},
        {"name", kABGroupNameProperty},
        {"firstname", kABFirstNameProperty},
        {"lastname", kABLastNameProperty},
        {"phoneticfirst", kABFirstNamePhoneticProperty},
        {"phoneticlast", kABLastNamePhoneticProperty},
        {"nickname", kABNicknameProperty},
        {"maidenname", kABMaidenNameProperty},
        {"birthday", kABBirthdayProperty},
        {"companyname", kABOrganizationProperty},
        {"jobtitle", kABJobTitleProperty},
        {"homepage", kABURLsProperty},
        {"webpages", kABURLsProperty},
        {"calendars", kABCalendarURIsProperty},
        {"e-mail", kABEmailProperty},
        {"address", kABAddressProperty},
        {"dates", kABOtherDatesProperty},
        {"relatednames", kABRelatedNamesProperty},
        {"department", kABDepartmentProperty},
        {"personflags", kABPersonFlags},
        {"phone", kABPhoneProperty},
        {"phones", kABPhoneProperty},
        {"note", kABNoteProperty},
        {"middlename", kABMiddleNameProperty},
        {"phoneticmiddle", kABMiddleNamePhoneticProperty},
        {"nameprefix", kABTitleProperty},
        {"namesuffix", kABSuffixProperty},
        {"imaol", kABAIMInstantProperty},
        {"imicq", kABICQInstantProperty},
        {"imjabber", kABJabberInstantProperty},
        {"immsn", kABMSNInstantProperty},
        {"imyahoo", kABYahooInstantProperty},
    };
    EXPECT_EQ(propertyNames().size(), std::size(expected));
    for (const auto& [name, property] : expected) {
        EXPECT_EQ(utf8(toPropertyString(string(name))), utf8(property)) << name;
    }
}

// A word, the label stored for it, and the word that this label is read as: of words with the same label, the
// first.
struct ExpectedLabel {
    const char* word;
    NSString* stored;
    const char* readAs;
};

TEST_F(VocabularyTablesTest, FrameworkLabels) {
    const ExpectedLabel expected[] = {
        {"home", kABHomeLabel, "home"},
        {"work", kABWorkLabel, "work"},
        {"other", kABOtherLabel, "other"},
        {"home page", kABHomePageLabel, "home page"},
        {"work email", kABEmailWorkLabel, "work"},
        {"home email", kABEmailHomeLabel, "home"},
        {"home address", kABAddressHomeLabel, "home"},
        {"work address", kABAddressWorkLabel, "work"},
        {"anniversary", kABAnniversaryLabel, "anniversary"},
        {"father", kABFatherLabel, "father"},
        {"mother", kABMotherLabel, "mother"},
        {"parent", kABParentLabel, "parent"},
        {"brother", kABBrotherLabel, "brother"},
        {"sister", kABSisterLabel, "sister"},
        {"child", kABChildLabel, "child"},
        {"friend", kABFriendLabel, "friend"},
        {"spouse", kABSpouseLabel, "spouse"},
        {"partner", kABPartnerLabel, "partner"},
        {"assistant", kABAssistantLabel, "assistant"},
        {"manager", kABManagerLabel, "manager"},
        {"work phone", kABPhoneWorkLabel, "work"},
        {"home phone", kABPhoneHomeLabel, "home"},
        {"mobile phone", kABPhoneMobileLabel, "mobile phone"},
        {"main phone", kABPhoneMainLabel, "main phone"},
        {"home fax", kABPhoneHomeFAXLabel, "home fax"},
        {"work fax", kABPhoneWorkFAXLabel, "work fax"},
        {"pager", kABPhonePagerLabel, "pager"},
        {"work aim", kABAIMWorkLabel, "work"},
        {"home aim", kABAIMHomeLabel, "home"},
        {"work jabber", kABJabberWorkLabel, "work"},
        {"home jabber", kABJabberHomeLabel, "home"},
        {"work msn", kABMSNWorkLabel, "work"},
        {"home msn", kABMSNHomeLabel, "home"},
        {"work yahoo", kABYahooWorkLabel, "work"},
        {"home yahoo", kABYahooHomeLabel, "home"},
        {"work icq", kABICQWorkLabel, "work"},
        {"home icq", kABICQHomeLabel, "home"},
    };
    EXPECT_EQ(frameworkLabels().size() + messagingLabels().size(), std::size(expected));
    for (const ExpectedLabel& row : expected) {
        EXPECT_EQ(utf8(StringToLabel(string(row.word))), utf8(row.stored)) << row.word;
        EXPECT_EQ(utf8(LabelToString(row.stored)), row.readAs) << row.word;
    }
}

TEST_F(VocabularyTablesTest, ExchangeLabels) {
    // The stored label, the word it is read as, and whether the word is written as this label, too.
    struct Row {
        const char* stored;
        const char* word;
        bool written = true;
    };
    const Row expected[] = {
        {"_$!EX-AssistantPhone>!$_", "assistant phone ex"},
        {"_$!<EX-BusinessFax>!$_", "work fax ex"},
        {"_$!<EX-BusinessPhone>!$_", "work phone ex"},
        {"_$!<EX-BusinessPhone2>!$_", "alt. work phone ex"},
        {"_$!<EX-Callback>!$_", "callback ex"},
        {"_$!<EX-CarPhone>!$_", "car phone ex"},
        {"_$!<EX-CompanyMainPhone>!$_", "main corporate ex"},
        {"_$!<EX-HomeFax>!$_", "home fax ex"},
        {"_$!<EX-HomePhone>!$_", "home ex"},
        {"_$!<EX-HomePhone2>!$_", "alt. home ex"},
        {"_$!<EX-Isdn>!$_", "isdn ex"},
        {"_$!<EX-MobilePhone>!$_", "mobile ex"},
        {"_$!<EX-OtherFax>!$_", "other fax ex"},
        {"_$!<EX-OtherTelephone>!$_", "other ex"},
        {"_$!<EX-Pager>!$_", "pager ex"},
        {"_$!<EX-PrimaryPhone>!$_", "primary ex"},
        {"_$!<EX-RadioPhone>!$_", "radio ex"},
        {"_$!<EX-Telex>!$_", "telex ex"},
        {"_$!<EX-TtyTddPhone>!$_", "tdd/tty ex"},
        {"_$!<EX-EmailAddress1>!$_", "email 1 ex"},
        {"_$!<EX-EmailAddress2>!$_", "email 2 ex"},
        {"_$!<EX-EmailAddress3>!$_", "email 3 ex"},
        {"_$!<EX-SpouseName>!$_", "partner ex"},
        {"_$!<EX-Manager>!$_", "manager ex"},
        {"_$!<EX-AssistantName>!$_", "assistant name ex"},
        {"_$!<EX-ImAddress1>!$_", "messaging 1 ex"},
        {"_$!<EX-ImAddress2>!$_", "messaging 2 ex"},
        {"_$!<EX-ImAddress3>!$_", "messaginb 3 ex"},
        {"_$!<EX-Business>!$_", "work ex"},
        {"_$!<EX-Home>!$_", "home ex", false},
        {"_$!<EX-Other>!$_", "other ex", false},
        {"_$!<EX-Anniversary>!$_", "anniversary ex"},
        {"_$!<EX-Birthday>!$_", "birthday ex"},
        {"_$!<EX-BusinessHomePage>!$_", "work home page ex"},
    };
    EXPECT_EQ(exchangeLabels().size(), std::size(expected));
    for (const Row& row : expected) {
        EXPECT_EQ(utf8(LabelToString(string(row.stored))), row.word) << row.stored;
        EXPECT_EQ(utf8(StringToLabel(string(row.word))) == row.stored, row.written) << row.word;
    }
}

TEST_F(VocabularyTablesTest, CountryCodes) {
    std::istringstream expected("ad ae ag al am ao ar at au az ba bb bd be bf bg bh bi bj bm "
                                "bn bo br bs bt bw by bz ca cd cf cg ch ci cl cm cn co cr cu "
                                "cv cy cz de dk dm do dz ec ee eg er es et fi fj fk fo fr ga "
                                "gb gd ge gl gm gn gq gr gs gt gw gy hk hn hr ht hu id ie il "
                                "im in iq ir is it jm jo jp ke kg kh ki km kp kr kw ky kz la "
                                "lb lc li lk lr ls lt lu lv ly ma mc md me mg mk ml mm mn mo "
                                "mr mt mu mv mw mx my mz na nc ne ng ni nl no np nr nz om pa "
                                "pe pf pg ph pk pl pt py qa ro rs ru rw sa sb sc sd se sg sh "
                                "si sk sl sn so sr st sv sy sz td tg th tj tl tm tn to tr tt "
                                "tv tw tz ua ug us uy uz va vc ve vn vn vu ws ye yu za zm zw ");
    std::set<std::string> accepted;
    std::string code;
    for (std::size_t i = 0; expected >> code; ++i) {
        ASSERT_LT(i, kCountryCodes.size());
        EXPECT_EQ(kCountryCodes[i], code) << i;
        accepted.insert(code);
    }
    EXPECT_EQ(accepted.size() + 1, kCountryCodes.size()) << "one stands twice";
    for (char first = 'a'; first <= 'z'; ++first) {
        for (char second = 'a'; second <= 'z'; ++second) {
            const std::string each{first, second};
            EXPECT_EQ(IsValidCountryCode(string(each)), accepted.count(each) == 1) << each;
        }
    }
}

} // namespace
