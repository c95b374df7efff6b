#import "plugin/vocabulary/labels.h"

#include "plugin/support/retained.h"

namespace koru {
namespace {

// Several constants hold the same text ("work", "work email", "work phone"): when reading, the first row
// wins.
const Label kFrameworkLabels[] = {
    {@"home", &kABHomeLabel},
    {@"work", &kABWorkLabel},
    {@"other", &kABOtherLabel},
    {@"home page", &kABHomePageLabel},
    {@"work email", &kABEmailWorkLabel},
    {@"home email", &kABEmailHomeLabel},
    {@"home address", &kABAddressHomeLabel},
    {@"work address", &kABAddressWorkLabel},
    {@"anniversary", &kABAnniversaryLabel},
    {@"father", &kABFatherLabel},
    {@"mother", &kABMotherLabel},
    {@"parent", &kABParentLabel},
    {@"brother", &kABBrotherLabel},
    {@"sister", &kABSisterLabel},
    {@"child", &kABChildLabel},
    {@"friend", &kABFriendLabel},
    {@"spouse", &kABSpouseLabel},
    {@"partner", &kABPartnerLabel},
    {@"assistant", &kABAssistantLabel},
    {@"manager", &kABManagerLabel},
    {@"work phone", &kABPhoneWorkLabel},
    {@"home phone", &kABPhoneHomeLabel},
    {@"mobile phone", &kABPhoneMobileLabel},
    {@"main phone", &kABPhoneMainLabel},
    {@"home fax", &kABPhoneHomeFAXLabel},
    {@"work fax", &kABPhoneWorkFAXLabel},
    {@"pager", &kABPhonePagerLabel},
};

const Label kMessagingLabels[] = {
    {@"work aim", &kABAIMWorkLabel},       {@"home aim", &kABAIMHomeLabel},
    {@"work jabber", &kABJabberWorkLabel}, {@"home jabber", &kABJabberHomeLabel},
    {@"work msn", &kABMSNWorkLabel},       {@"home msn", &kABMSNHomeLabel},
    {@"work yahoo", &kABYahooWorkLabel},   {@"home yahoo", &kABYahooHomeLabel},
    {@"work icq", &kABICQWorkLabel},       {@"home icq", &kABICQHomeLabel},
};

// These oddities are on purpose: the missing "<" of the assistant's phone, the spelling "messaginb 3 ex", and
// the second rows of "home ex" and "other ex", which are found only when reading.
const Label kExchangeLabels[] = {
    {@"assistant phone ex", nullptr, @"_$!EX-AssistantPhone>!$_"},
    {@"work fax ex", nullptr, @"_$!<EX-BusinessFax>!$_"},
    {@"work phone ex", nullptr, @"_$!<EX-BusinessPhone>!$_"},
    {@"alt. work phone ex", nullptr, @"_$!<EX-BusinessPhone2>!$_"},
    {@"callback ex", nullptr, @"_$!<EX-Callback>!$_"},
    {@"car phone ex", nullptr, @"_$!<EX-CarPhone>!$_"},
    {@"main corporate ex", nullptr, @"_$!<EX-CompanyMainPhone>!$_"},
    {@"home fax ex", nullptr, @"_$!<EX-HomeFax>!$_"},
    {@"home ex", nullptr, @"_$!<EX-HomePhone>!$_"},
    {@"alt. home ex", nullptr, @"_$!<EX-HomePhone2>!$_"},
    {@"isdn ex", nullptr, @"_$!<EX-Isdn>!$_"},
    {@"mobile ex", nullptr, @"_$!<EX-MobilePhone>!$_"},
    {@"other fax ex", nullptr, @"_$!<EX-OtherFax>!$_"},
    {@"other ex", nullptr, @"_$!<EX-OtherTelephone>!$_"},
    {@"pager ex", nullptr, @"_$!<EX-Pager>!$_"},
    {@"primary ex", nullptr, @"_$!<EX-PrimaryPhone>!$_"},
    {@"radio ex", nullptr, @"_$!<EX-RadioPhone>!$_"},
    {@"telex ex", nullptr, @"_$!<EX-Telex>!$_"},
    {@"tdd/tty ex", nullptr, @"_$!<EX-TtyTddPhone>!$_"},
    {@"email 1 ex", nullptr, @"_$!<EX-EmailAddress1>!$_"},
    {@"email 2 ex", nullptr, @"_$!<EX-EmailAddress2>!$_"},
    {@"email 3 ex", nullptr, @"_$!<EX-EmailAddress3>!$_"},
    {@"partner ex", nullptr, @"_$!<EX-SpouseName>!$_"},
    {@"manager ex", nullptr, @"_$!<EX-Manager>!$_"},
    {@"assistant name ex", nullptr, @"_$!<EX-AssistantName>!$_"},
    {@"messaging 1 ex", nullptr, @"_$!<EX-ImAddress1>!$_"},
    {@"messaging 2 ex", nullptr, @"_$!<EX-ImAddress2>!$_"},
    {@"messaginb 3 ex", nullptr, @"_$!<EX-ImAddress3>!$_"},
    {@"work ex", nullptr, @"_$!<EX-Business>!$_"},
    {@"home ex", nullptr, @"_$!<EX-Home>!$_"},
    {@"other ex", nullptr, @"_$!<EX-Other>!$_"},
    {@"anniversary ex", nullptr, @"_$!<EX-Anniversary>!$_"},
    {@"birthday ex", nullptr, @"_$!<EX-Birthday>!$_"},
    {@"work home page ex", nullptr, @"_$!<EX-BusinessHomePage>!$_"},
};

} // namespace

std::span<const Label> frameworkLabels() {
    return kFrameworkLabels;
}

std::span<const Label> messagingLabels() {
    return kMessagingLabels;
}

std::span<const Label> exchangeLabels() {
    return kExchangeLabels;
}

NSString* labelToStore(NSString* text) {
    NSString* label = StringToLabel(text);
    return label != nil ? label : text;
}

namespace {

// Returns the user's words by the labels that they stand for, which every label that is read is looked up in.
// Of several words for a label the first one counts. Lives until the process ends.
NSDictionary* wordsByLabel() {
    static NSDictionary* const words = [] {
        auto found = Retained<NSMutableDictionary>::adopt([[NSMutableDictionary alloc] init]);
        for (const auto labels : {frameworkLabels(), exchangeLabels(), messagingLabels()}) {
            for (const Label& row : labels) {
                if (NSString* label = row.stored(); label != nil && [found.get() objectForKey:label] == nil) {
                    // A copy, as GNUstep decodes a constant each time that it is read.
                    [found.get() setObject:[NSString stringWithString:row.word] forKey:label];
                }
            }
        }
        return found.leak();
    }();
    return words;
}

} // namespace

} // namespace koru

using namespace koru;

NSString* StringToLabel(NSString* text) {
    NSString* word = [text lowercaseString];
    for (const auto labels : {frameworkLabels(), messagingLabels(), exchangeLabels()}) {
        for (const Label& label : labels) {
            if ([word isEqualToString:label.word]) {
                return label.stored();
            }
        }
    }
    return nil;
}

NSString* LabelToString(NSString* label) {
    return label != nil ? [wordsByLabel() objectForKey:label] : nil;
}
