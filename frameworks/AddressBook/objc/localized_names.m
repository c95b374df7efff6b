#import <AddressBook/ABGlobals.h>

// The names to show, by stored name. Labels are in lower case.
static const struct {
    NSString* stored;
    NSString* shown;
} kNames[] = {
    // Properties.
    {@"UID", @"Unique ID"},
    {@"Creation", @"Created"},
    {@"Modification", @"Modified"},
    {@"First", @"First Name"},
    {@"Last", @"Last Name"},
    {@"FirstPhonetic", @"Phonetic First Name"},
    {@"LastPhonetic", @"Phonetic Last Name"},
    {@"Middle", @"Middle Name"},
    {@"MiddlePhonetic", @"Phonetic Middle Name"},
    {@"Title", @"Title"},
    {@"Suffix", @"Suffix"},
    {@"Nickname", @"Nickname"},
    {@"MaidenName", @"Maiden Name"},
    {@"Birthday", @"Birthday"},
    {@"BirthdayComponents", @"Birthday"},
    {@"AlternateBirthdayComponents", @"Alternate Birthday"},
    {@"Organization", @"Company"},
    {@"OrganizationPhonetic", @"Phonetic Company Name"},
    {@"JobTitle", @"Job Title"},
    {@"ABDepartment", @"Department"},
    {@"Note", @"Note"},
    {@"HomePage", @"Home Page"},
    {@"URLs", @"URLs"},
    {@"calendarURIs", @"Calendar URIs"},
    {@"Email", @"Email"},
    {@"Phone", @"Phone"},
    {@"ABRelatedNames", @"Related Names"},
    {@"AIMInstant", @"AIM"},
    {@"JabberInstant", @"Jabber"},
    {@"MSNInstant", @"MSN"},
    {@"YahooInstant", @"Yahoo!"},
    {@"ICQInstant", @"ICQ"},
    {@"Address", @"Address"},
    {@"ABDate", @"Dates"},
    {@"ABDateComponents", @"Dates"},
    {@"SocialProfile", @"Social Profile"},
    {@"InstantMessage", @"Instant Message"},
    {@"GroupName", @"Group Name"},
    // Keys of dictionaries, and services whose stored name is not the one to show.
    {@"Street", @"Street"},
    {@"City", @"City"},
    {@"State", @"State"},
    {@"ZIP", @"ZIP"},
    {@"Country", @"Country"},
    {@"CountryCode", @"Country Code"},
    {@"InstantMessageUsername", @"User Name"},
    {@"InstantMessageService", @"Service"},
    {@"url", @"URL"},
    {@"username", @"User Name"},
    {@"userIdentifier", @"User Identifier"},
    {@"serviceName", @"Service"},
    {@"GoogleTalk", @"Google Talk"},
    {@"GaduGadu", @"Gadu-Gadu"},
    {@"twitter", @"Twitter"},
    {@"facebook", @"Facebook"},
    {@"linkedin", @"LinkedIn"},
    {@"flickr", @"Flickr"},
    {@"myspace", @"MySpace"},
    {@"sinaweibo", @"Sina Weibo"},
    {@"tencentweibo", @"Tencent Weibo"},
    {@"yelp", @"Yelp"},
    // Labels.
    {@"_$!<Home>!$_", @"home"},
    {@"_$!<Work>!$_", @"work"},
    {@"_$!<Other>!$_", @"other"},
    {@"_$!<MobileMe>!$_", @"MobileMe"},
    {@"_$!<HomePage>!$_", @"home page"},
    {@"_$!<Mobile>!$_", @"mobile"},
    {@"_$!<Main>!$_", @"main"},
    {@"_$!<HomeFAX>!$_", @"home fax"},
    {@"_$!<WorkFAX>!$_", @"work fax"},
    {@"_$!<OtherFAX>!$_", @"other fax"},
    {@"_$!<Pager>!$_", @"pager"},
    {@"_$!<Anniversary>!$_", @"anniversary"},
    {@"_$!<Father>!$_", @"father"},
    {@"_$!<Mother>!$_", @"mother"},
    {@"_$!<Parent>!$_", @"parent"},
    {@"_$!<Brother>!$_", @"brother"},
    {@"_$!<Sister>!$_", @"sister"},
    {@"_$!<Child>!$_", @"child"},
    {@"_$!<Friend>!$_", @"friend"},
    {@"_$!<Spouse>!$_", @"spouse"},
    {@"_$!<Partner>!$_", @"partner"},
    {@"_$!<Assistant>!$_", @"assistant"},
    {@"_$!<Manager>!$_", @"manager"},
};

NSString* ABLocalizedPropertyOrLabel(NSString* propertyOrLabel) {
    for (size_t i = 0; i < sizeof(kNames) / sizeof(*kNames); ++i) {
        if ([propertyOrLabel isEqualToString:kNames[i].stored]) {
            return kNames[i].shown;
        }
    }
    return propertyOrLabel;
}
