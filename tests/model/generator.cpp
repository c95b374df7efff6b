#include "tests/model/generator.h"

#include "tests/model/words.h"

#include <algorithm>

namespace model {
namespace {

// How a function is called: how often beside the others, and with what.
struct Use {
    const char* name;
    int weight;
    Arguments (*arguments)(Generator& g);
};

Arguments none(Generator& /*g*/) {
    return {};
}

Arguments optionalType(Generator& g) {
    return g.chance(50) ? Arguments{} : Arguments{g.typeWord()};
}

Arguments anyRecord(Generator& g) {
    return {g.recordId(g.chance(40))};
}

Arguments aPerson(Generator& g) {
    return {g.recordId(g.chance(8))};
}

Arguments aGroup(Generator& g) {
    return {g.recordId(!g.chance(8))};
}

Arguments single(Generator& g) {
    Arguments arguments{g.property(g.chance(10))};
    if (g.chance(40)) {
        arguments.push_back(g.typeWord());
    }
    return arguments;
}

Arguments singleWithValue(Generator& g) {
    const std::string property = g.property(g.chance(10));
    Arguments arguments{property, g.valueFor(property)};
    if (g.chance(30)) {
        arguments.push_back(g.typeWord());
    }
    return arguments;
}

Arguments list(Generator& g) {
    Arguments arguments{g.chance(50) ? g.entry().first : g.property(!g.chance(10))};
    if (g.chance(30)) {
        arguments.push_back(g.typeWord());
    }
    return arguments;
}

Arguments entryThen(Generator& g, std::initializer_list<std::string> more) {
    auto [property, id] = g.entry();
    Arguments arguments{property, id};
    arguments.insert(arguments.end(), more);
    return arguments;
}

Arguments readEntry(Generator& g) {
    Arguments arguments = entryThen(g, {});
    if (g.chance(50)) {
        arguments.push_back(g.key());
    }
    return arguments;
}

Arguments writeEntry(Generator& g) {
    const auto [property, id] = g.entry();
    const bool address = propertyNamed(property) == "Address";
    if (address != g.chance(10)) {
        const std::string key = g.key();
        return {property, id, lower(key) == "countrycode" ? g.pick({"DE", "us", "xx", "", "uk"}) : g.text(),
                key};
    }
    return {property, id, g.valueFor(property)};
}

Arguments labelOfEntry(Generator& g) {
    return entryThen(g, {g.label()});
}

Arguments identified(Generator& g) {
    return entryThen(g, {});
}

Arguments newEntry(Generator& g) {
    const std::string property = g.property(!g.chance(10));
    return {property, g.valueFor(property), g.label()};
}

Arguments address(Generator& g) {
    return {g.label(),
            g.pick({"1 Main St", "", "2 High St"}),
            g.pick({"Springfield", "", "Bristol"}),
            g.pick({"", "", "OR"}),
            g.pick({"", "12345"}),
            g.pick({"", "USA"}),
            g.pick({"us", "US", "de", "Gb", "uk", "", "xx", "vn"})};
}

Arguments compare(Generator& g) {
    if (g.chance(50)) {
        const std::string property = g.property(g.chance(15));
        return {property, g.valueFor(property)};
    }
    const auto [property, id] = g.entry();
    Arguments arguments{property,
                        g.chance(30) ? g.pick({"Springfield", "12345", "us", ""}) : g.valueFor(property), id};
    if (g.chance(40)) {
        arguments.push_back(g.key());
    }
    return arguments;
}

Arguments search(Generator& g) {
    const bool groups = g.chance(30);
    const std::string property = g.chance(15)   ? g.customName()
                                 : groups       ? g.pick({"name", "id", "GroupName"})
                                 : g.chance(60) ? g.property(false)
                                                : g.property(true);
    Arguments arguments{g.chance(85) ? g.odd(groups ? "group" : "person") : g.typeWord(),
                        property,
                        g.chance(75) ? "" : g.label(),
                        g.chance(75) ? "" : g.key(),
                        g.chance(15) ? "" : g.valueFor(property),
                        g.comparison()};
    if (g.chance(30)) {
        arguments.push_back(g.chance(90) ? g.odd(g.pick({"expand", "constrain"})) : g.wrong());
    }
    return arguments;
}

Arguments newRecord(Generator& g) {
    Arguments arguments{g.chance(90) ? g.odd(g.pick({"person", "contact", "group"})) : g.wrong()};
    if (g.chance(50)) {
        arguments.push_back(g.text());
        if (g.chance(20)) {
            arguments.push_back(g.text());
        }
    }
    return arguments;
}

Arguments listOfValues(Generator& g) {
    if (g.chance(50)) {
        return {"group", "members", g.odd("name")};
    }
    return {g.chance(60) ? g.typeWord() : "", g.chance(90) ? g.odd(g.pick({"members", "groups"})) : g.wrong(),
            g.chance(90) ? g.odd(g.pick({"UID", "name"})) : g.wrong()};
}

Arguments clearAll(Generator& g) {
    return {g.chance(75) ? g.recordId(!g.chance(15)) : "",
            g.chance(90) ? g.odd(g.pick({"members", "groups", ""})) : g.wrong(), g.pick({"0", "1", ""})};
}

std::string kind(Generator& g) {
    return g.chance(90) ? g.odd(g.pick({"person", "person", "group", "contact"})) : g.wrong();
}

Arguments customField(Generator& g) {
    return {kind(g), g.customName()};
}

Arguments customValue(Generator& g) {
    return {kind(g), g.customName(), g.text()};
}

constexpr Use kUses[] = {
    {"KORU_Version", 1,
     [](Generator& g) {
         return g.chance(30) ? Arguments{} : Arguments{g.odd(g.pick({"Long", "Long ", "short", ""}))};
     }},
    {"KORU_Delete", 4, anyRecord},
    {"KORU_Search", 12, search},
    {"KORU_OpenFirstRecord", 7, optionalType},
    {"KORU_OpenNextRecord", 6, optionalType},
    {"KORU_Open", 12, anyRecord},
    {"KORU_New", 6, newRecord},
    {"KORU_Save", 9, [](Generator& g) { return g.chance(80) ? Arguments{} : Arguments{g.text()}; }},
    {"KORU_GetFirstParentID", 3, none},
    {"KORU_GetNextParentID", 3, none},
    {"KORU_CompareProperty", 8, compare},
    {"KORU_GetValueForProperty", 9, single},
    {"KORU_OpenFirstMVProperty", 6, list},
    {"KORU_OpenNextMVProperty", 6, none},
    {"KORU_GetValueForUID", 7, readEntry},
    {"KORU_SetValueForProperty", 9, singleWithValue},
    {"KORU_SetValueForUID", 7, writeEntry},
    {"KORU_GetLabelForUID", 4, identified},
    {"KORU_SetLabelForUID", 5, labelOfEntry},
    {"KORU_DeleteValueForProperty", 4, single},
    {"KORU_DeleteValueForUID", 4, readEntry},
    {"KORU_AddPerson", 6, aPerson},
    {"KORU_RemovePerson", 4, aPerson},
    {"KORU_AddSubgroup", 5, aGroup},
    {"KORU_RemoveSubgroup", 4, aGroup},
    {"KORU_GetFirstMemberID", 4, none},
    {"KORU_GetNextMemberID", 3, none},
    {"KORU_GetFirstSubgroupID", 4, none},
    {"KORU_GetNextSubgroupID", 3, none},
    {"KORU_AddMV", 9, newEntry},
    {"KORU_AddAddress", 5, address},
    {"KORU_GetLastError", 2,
     [](Generator& g) {
         return g.chance(30) ? Arguments{} : Arguments{g.odd(g.pick({"TEXT", "NUM", "x", ""}))};
     }},
    {"KORU_AddCustomField", 4, customField},
    {"KORU_RemoveCustomField", 3, customField},
    {"KORU_SetCustomField", 5, customValue},
    {"KORU_GetCustomField", 5, customField},
    {"KORU_GetListOfValues", 5, listOfValues},
    {"KORU_ClearAll", 2, clearAll},
};

const Use& useOf(const char* name) {
    for (const Use& use : kUses) {
        if (std::string(use.name) == name) {
            return use;
        }
    }
    std::abort(); // a function of the model that nothing would ever call
}

} // namespace

Call Generator::callOf(const Function& function) {
    Call call{&function, useOf(function.name).arguments(*this)};
    if (chance(3) && static_cast<int>(call.arguments.size()) < function.maxArguments) {
        call.arguments.push_back(wrong());
    } else if (chance(3) && !call.arguments.empty()) {
        call.arguments[static_cast<std::size_t>(number(static_cast<int>(call.arguments.size())))] =
            chance(50) ? wrong() : recordId(chance(50));
    } else if (chance(1)) {
        call.arguments.resize(static_cast<std::size_t>(number(9)), "x"); // the host would refuse the count
    }
    return call;
}

Call Generator::next() {
    // Each function as often as its weight says.
    static const std::vector<const Function*> urn = [] {
        std::vector<const Function*> all;
        for (const Function& function : functions()) {
            all.insert(all.end(), static_cast<std::size_t>(useOf(function.name).weight), &function);
        }
        return all;
    }();
    return callOf(*urn[static_cast<std::size_t>(number(static_cast<int>(urn.size())))]);
}

std::optional<Call> Generator::preparation() {
    const auto call = [](const char* name, Arguments arguments) {
        return Call{&functionNamed(name), std::move(arguments)};
    };
    if (!preparing_) {
        preparing_ = true;
        if (chance(30)) {
            prepared_.push_back(call("KORU_AddCustomField", {"person", "Customer"}));
        }
        for (int i = number(4); i > 0; --i) {
            prepared_.push_back(call("KORU_New", {"person"}));
            prepared_.push_back(call("KORU_SetValueForProperty", {"firstname", text()}));
            prepared_.push_back(call("KORU_SetValueForProperty", {"lastname", text()}));
            prepared_.push_back(call("KORU_SetValueForProperty",
                                     {pick({"namesuffix", "nameprefix", "middle name", "note"}), text()}));
            for (int entries = number(3); entries > 0; --entries) {
                prepared_.push_back(callOf(functionNamed(chance(70) ? "KORU_AddMV" : "KORU_AddAddress")));
            }
            prepared_.push_back(call("KORU_Save", {}));
        }
        for (int i = number(4); i > 0; --i) {
            prepared_.push_back(call("KORU_New", {"group", text()}));
            if (chance(60)) {
                prepared_.push_back(callOf(functionNamed("KORU_AddPerson")));
                prepared_.push_back(callOf(functionNamed("KORU_AddSubgroup")));
            }
            prepared_.push_back(call("KORU_Save", {}));
        }
        std::reverse(prepared_.begin(), prepared_.end());
    }
    if (prepared_.empty()) {
        return std::nullopt;
    }
    Call next = std::move(prepared_.back());
    prepared_.pop_back();
    if (next.function->id == 24 || next.function->id == 26) {
        next = callOf(*next.function); // now there is somebody to add
    }
    return next;
}

std::string Generator::pick(std::initializer_list<const char*> texts) {
    return texts.begin()[number(static_cast<int>(texts.size()))];
}

std::string Generator::odd(std::string word) {
    if (chance(70)) {
        return word;
    }
    for (char& c : word) {
        if (chance(50)) {
            c = static_cast<char>(c >= 'a' && c <= 'z'   ? c - 'a' + 'A'
                                  : c >= 'A' && c <= 'Z' ? c - 'A' + 'a'
                                                         : c);
        }
    }
    return word;
}

std::string Generator::wrong() {
    return chance(40) ? ""
                      : pick({"company", "nonsense", " ", "0", "-1", "persons", "phone", "UID",
                              "\xC3\xA9t\xC3\xA9"});
}

std::string Generator::typeWord() {
    return chance(85) ? odd(pick({"person", "contact", "group", "group"})) : wrong();
}

std::string Generator::property(bool list) {
    if (chance(4)) {
        return wrong();
    }
    if (list) {
        return odd(pick({"phone", "Phones", "phone", "e-mail", "address", "address", "dates", "Home Page",
                         "web pages", "related names", "imicq", "Calendars"}));
    }
    if (chance(10)) {
        return pick(
            {"First", "ABPersonFlags", "Title", "GroupName", "UID", "HomePage", "email", "First-Name"});
    }
    return chance(20) ? pick({"Person Flags", "name", "Name"})
                      : odd(pick({"firstname", "First Name", "lastname", "nickname", "birthday", "birthday",
                                  "company name", "note", "personflags", "person flags", "id", "name",
                                  "creationdate", "modifieddate", "middle name", "nameprefix", "namesuffix",
                                  "department"}));
}

std::string Generator::text() {
    return pick({"Anne", "anne", "Smith", "Smithson", "Harbour", "555-1234", "", "x", "0", "END", "empty",
                 "Zo\xC3\xAB", "12345", "two words"});
}

std::string Generator::valueFor(const std::string& property) {
    const std::string name = propertyNamed(property).value_or("");
    if (chance(6)) {
        return wrong();
    }
    if (name == "Birthday" || name == "ABDate" || name == "Creation" || name == "Modification") {
        return pick({"1970-03-12", "12/25/2010", "25 December 2010", "12/25/2010 2:30:15 PM",
                     "2001-02-03 04:05", "not a date", ""});
    }
    if (name == "ABPersonFlags") {
        return pick(
            {"ShowAsCompany", "ShowAsPerson", "FirstNameFirst", "LastNameFirst", "33", "1", "showascompany"});
    }
    if (name == "UID" && !ids_.empty()) {
        return ids_[static_cast<std::size_t>(number(static_cast<int>(ids_.size())))];
    }
    return text();
}

std::string Generator::recordId(bool group) {
    std::vector<std::string> fitting;
    for (const RecordPtr& record : model_.book.all(group)) {
        fitting.push_back(record->id);
    }
    if (!fitting.empty() && chance(85)) {
        return fitting[static_cast<std::size_t>(number(static_cast<int>(fitting.size())))];
    }
    if (!ids_.empty() && chance(70)) {
        return ids_[static_cast<std::size_t>(number(static_cast<int>(ids_.size())))]; // deleted, of an entry
    }
    return chance(60) ? pick({"nobody", "00000000-0000-0000-0000-000000000000:ABPerson",
                              "00000000-0000-0000-0000-000000000000:ABGroup"})
                      : wrong();
}

std::string Generator::label() {
    return chance(4) ? wrong()
                     : odd(pick({"home", "work", "mobile", "mobile phone", "work fax", "home ex", "other ex",
                                 "messaginb 3 ex", "messaging 3 ex", "assistant phone ex", "work email",
                                 "Cottage", "pager", "main", "manager", "workfax"}));
}

std::string Generator::key() {
    return chance(8)
               ? wrong()
               : pick({"Street", "street", "City", "CITY", "Zip", "zip", "Zip code", "State", "Country",
                       "Country Code", "CountryCode", "countrycode", "Street 2", "Postcode", "country"});
}

std::string Generator::customName() {
    return pick({"Customer", "Customer", "customer", "Number", "First", "Phone", "Birthday", "UID",
                 "GroupName", "ABPersonFlags", "", "Rating"});
}

std::string Generator::comparison() {
    if (chance(10)) {
        return chance(50) ? "equal" : wrong();
    }
    const auto all = comparisonNames();
    return chance(12) ? "Equal" : all[static_cast<std::size_t>(number(static_cast<int>(all.size())))];
}

std::pair<std::string, std::string> Generator::entry() {
    std::vector<std::pair<std::string, std::string>> known;
    if (model_.state.person) {
        for (const auto& [property, value] : model_.state.person->values) {
            if (const auto* entries = value.as<Entries>()) {
                for (const Entry& entry : *entries) {
                    known.emplace_back(property, entry.id);
                }
            }
        }
    }
    if (known.empty() || chance(15)) {
        const bool some = !ids_.empty() && chance(80);
        return {property(!chance(15)),
                some ? ids_[static_cast<std::size_t>(number(static_cast<int>(ids_.size())))] : wrong()};
    }
    auto [property, id] = known[static_cast<std::size_t>(number(static_cast<int>(known.size())))];
    // As a calculation would write it.
    const std::string word = property == "ABDate"           ? "dates"
                             : property == "Email"          ? "e-mail"
                             : property == "URLs"           ? "webpages"
                             : property == "ABRelatedNames" ? "Related Names"
                             : property == "ICQInstant"     ? "IMICQ"
                             : property == "calendarURIs"   ? "calendars"
                                                            : property;
    return {odd(word), id};
}

} // namespace model
