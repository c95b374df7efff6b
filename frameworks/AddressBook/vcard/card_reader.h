#pragma once

// The reader of one card, shared by the sources that make it up and by read_card.cpp's readCard(), and included
// by nothing else. read_card.cpp goes through the lines; read_values.cpp has the properties with one value,
// read_entries.cpp the entries of lists, finish_card.cpp what depends on the whole card.

#include "frameworks/AddressBook/vcard/card_lines.h"
#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/origin.h"
#include "frameworks/AddressBook/vcard/preserved_parameters.h"
#include "frameworks/AddressBook/vcard/rules.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

namespace addressbook::vcard {

// Reads the lines of a card into its values. Functions that read a line return whether it is understood; what
// is not becomes one of the card's unknown lines.
class CardReader {
  public:
    // Takes lines apart and changes them; the arguments must outlive the reader.
    // [origins] may be null.
    CardReader(std::vector<ContentLine>& lines, Card& card, std::vector<Origin>* origins)
        : lines_(lines), card_(card), origins_(origins) {}

    // Reads the card. Returns why it is refused; empty when it is not.
    std::string run();

  private:
    // The version of a card: 2.1 has no lists, 4.0 writes unique ids as URIs.
    enum class Version { v21, v3, v4 };

    // A label or country code that belongs to the line of the same group.
    struct LabelInGroup {
        ContentLine* line = nullptr;
        std::string text;
        bool used = false;
    };

    // Going through the lines (read_card.cpp).
    void collectGroups();
    void noteOrigin(const Rule& rule, const ContentLine& line, bool added);
    void leaveOut(const ContentLine& line, const std::string& reason);
    bool decodeText(const Rule& rule, ContentLine& line);
    bool readGroupLine(const Rule& rule, ContentLine& line);
    bool readLine(const Rule& rule, ContentLine& line);
    bool usedLabel(const std::unordered_map<std::string, LabelInGroup>& lines, const ContentLine& line);
    const std::string& text(std::string_view property) const;
    void setText(std::string_view property, std::string text);
    bool isSet(std::string_view property) const;
    void keep(std::string_view property, ContentLine& line, std::string asRead = {});

    // Properties with one value, and ids (read_values.cpp).
    bool hasLists(const ContentLine& line) const;
    std::string listsOf(const ContentLine& line) const;
    std::string componentsOf(const ContentLine& line, std::size_t count = 0) const;
    bool readName(ContentLine& line);
    bool readFullName(ContentLine& line);
    bool readPhoneticName(const ContentLine& line);
    bool readOrganization(ContentLine& line);
    bool readText(const Rule& rule, ContentLine& line);
    bool readDay(const Rule& rule, ContentLine& line);
    static std::string timeOf(const ContentLine& line);
    bool leaveOutUnlessPartial(const ContentLine& line);
    bool readPicture(ContentLine& line);
    bool readNameOrder(const ContentLine& line);
    bool readUid(const Rule& rule, const ContentLine& line);
    void keepOfGroup(const char* name, const ContentLine& line, const std::string& value);
    bool readMember(const ContentLine& line);

    // Entries of lists (read_entries.cpp).
    bool readEntry(const Rule& rule, ContentLine& line);
    Value readAddress(const ContentLine& line);
    void addEntry(std::string_view property, const Rule& rule, Value value, std::string asRead,
                  ContentLine& line);
    std::optional<std::size_t> sameEntry(const Rule& rule, std::string_view property,
                                         const std::vector<Entry>& entries, const std::string& label,
                                         const Value& value, const ContentLine& line);

    // The end: values that depend on the whole card (finish_card.cpp).
    std::string finishGroup();
    std::string finishPerson();
    void finishName();
    bool isSaidElsewhere(const std::string& name) const;
    void finishUid();
    bool isUsedLabel(const ContentLine& line);
    void keepUnknown(std::vector<std::string> lines);

    std::vector<ContentLine>& lines_;
    Card& card_;
    std::vector<Origin>* origins_;
    Version version_ = Version::v3;
    std::unordered_map<std::string, LabelInGroup> labels_, countries_; // by group in upper case
    std::vector<ContentLine*> unknown_;
    std::vector<Addition> additions_;
    std::vector<std::string> groupAdditions_;
    std::vector<std::string> names_; // of N
    std::string fullName_, uid_, abUuid_;
    ContentLine* fullNameLine_ = nullptr;
    std::set<std::string> members_;
    std::set<std::tuple<std::string_view, std::size_t, std::string>> repeated_; // see sameEntry
    std::optional<bool> company_;                                               // set by X-ABShowAs or KIND
    std::int64_t order_ = 0;
    bool keepUid_ = false;
    GroupNames groupNames_; // of the stored lines
};

} // namespace addressbook::vcard
