// Prints as JSON what KContacts sees in the cards of a file. The form is described in ../README.md.

#include "tests/interop/readers/cards.h"

#include <KContacts/Addressee>
#include <KContacts/VCardConverter>

#include <QCryptographicHash>

namespace {

using interop::Json;

std::string textOf(const QString& text) {
    return text.toStdString();
}

std::string dayOf(const QDateTime& day) {
    return textOf(day.date().toString(Qt::ISODate));
}

Json phoneTypes(KContacts::PhoneNumber::Type type) {
    using Number = KContacts::PhoneNumber;
    const std::pair<Number::TypeFlag, const char*> kWords[] = {
        {Number::Cell, "CELL"}, {Number::Fax, "FAX"},     {Number::Home, "HOME"}, {Number::Pager, "PAGER"},
        {Number::Pref, "PREF"}, {Number::Voice, "VOICE"}, {Number::Work, "WORK"},
    };
    Json list = Json::array();
    for (const auto& [flag, word] : kWords) {
        if (type & flag) {
            list.push_back(word);
        }
    }
    return list;
}

// The types of an e-mail or postal address, of which both have these two.
template <typename Kind>
Json placeTypes(const Kind& each) {
    Json list = Json::array();
    if (each.type() & Kind::Home) {
        list.push_back("HOME");
    }
    if (each.type() & Kind::Work) {
        list.push_back("WORK");
    }
    return list;
}

// The data in a "data:" address; none in any other.
QByteArray dataIn(const QString& url) {
    return url.startsWith(QLatin1String("data:"))
               ? QByteArray::fromBase64(url.section(QLatin1Char(','), 1).toLatin1())
               : QByteArray();
}

Json seen(const std::string& text) {
    const KContacts::Addressee card = KContacts::VCardConverter().parseVCard(QByteArray::fromStdString(text));
    if (card.isEmpty()) {
        return {{"error", "no card"}};
    }
    Json phones = Json::array(), emails = Json::array(), addresses = Json::array(), urls = Json::array(),
         messaging = Json::array(), categories = Json::array(), members = Json::array(), org = Json::array();
    for (const auto& number : card.phoneNumbers()) {
        phones.push_back({{"value", textOf(number.number())}, {"types", phoneTypes(number.type())}});
    }
    for (const auto& email : card.emailList()) {
        emails.push_back({{"value", textOf(email.mail())}, {"types", placeTypes(email)}});
    }
    for (const auto& each : card.addresses()) {
        addresses.push_back({{"value",
                              {textOf(each.postOfficeBox()), textOf(each.extended()), textOf(each.street()),
                               textOf(each.locality()), textOf(each.region()), textOf(each.postalCode()),
                               textOf(each.country())}},
                             {"types", placeTypes(each)}});
    }
    for (const auto& each : card.extraUrlList()) {
        urls.push_back(textOf(each.url().toString()));
    }
    for (const auto& each : card.imppList()) {
        messaging.push_back(textOf(each.address().toString()));
    }
    for (const QString& name : card.categories()) {
        categories.push_back(textOf(name));
    }
    for (const QString& member : card.members()) {
        members.push_back(textOf(member));
    }
    org.push_back(textOf(card.organization()));
    if (!card.department().isEmpty()) {
        org.push_back(textOf(card.department()));
    }
    // The library keeps lines with a label of their own (item1.TEL) as they are written.
    for (const auto& each : card.fieldGroupList()) {
        const QString name = each.fieldGroupName().section(QLatin1Char('.'), 1).toUpper();
        const std::string value = textOf(each.value());
        if (name == QLatin1String("TEL")) {
            phones.push_back({{"value", value}, {"types", Json::array()}});
        } else if (name == QLatin1String("EMAIL")) {
            emails.push_back({{"value", value}, {"types", Json::array()}});
        } else if (name == QLatin1String("URL")) {
            urls.push_back(value);
        } else if (name == QLatin1String("IMPP")) {
            messaging.push_back(value);
        }
    }
    std::string nicknames;
    for (const auto& each : card.extraNickNameList()) {
        nicknames += (nicknames.empty() ? "" : ",") + textOf(each.nickname());
    }
    const KContacts::Picture photo = card.photo();
    std::string digest;
    const QByteArray data = photo.isIntern() ? photo.rawData() : dataIn(photo.url());
    if (!data.isEmpty()) {
        digest = QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex().toStdString();
    }
    return {{"uid", textOf(card.uid())},
            {"fullname", textOf(card.formattedName())},
            {"name",
             {textOf(card.familyName()), textOf(card.givenName()), textOf(card.additionalName()),
              textOf(card.prefix()), textOf(card.suffix())}},
            {"nickname", nicknames},
            {"org", org},
            {"title", textOf(card.title())},
            {"note", textOf(card.note())},
            {"birthday", dayOf(card.birthday())},
            {"anniversary", textOf(card.anniversary().toString(Qt::ISODate))},
            {"spouse", textOf(card.spousesName())},
            {"manager", textOf(card.managersName())},
            {"assistant", textOf(card.assistantsName())},
            {"phones", phones},
            {"emails", emails},
            {"addresses", addresses},
            {"urls", urls},
            {"messaging", messaging},
            {"categories", categories},
            {"members", members},
            {"photo", digest}};
}

} // namespace

int main(int count, char** arguments) {
    return interop::printCards(count, arguments, seen);
}
