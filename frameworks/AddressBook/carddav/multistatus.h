#pragma once

// The answer to PROPFIND and REPORT (RFC 4918, 13; RFC 6578, 6.2), read as it comes: memory holds one resource.

#include "frameworks/AddressBook/carddav/xml_parser.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace addressbook::carddav {

// An element inside a property's value: what resource types, privileges, reports and hrefs are told with.
struct Element {
    std::string name; // "{DAV:}href"
    std::string text; // directly in it, without spaces around
    std::vector<std::pair<std::string, std::string>> attributes;
};

struct Property {
    std::string name;
    int status = 200;            // of its propstat: 404 when the resource has no such property
    std::string text;            // directly in it, as it is
    std::vector<Element> inside; // all elements in it, however deep, in the order of the document
};

// What is told of one resource.
struct Resource {
    std::string href;  // as the server wrote it: see normalHref()
    int status = 0;    // of the resource itself; 0 when only its properties have one
    std::string error; // condition that was not met, as "{DAV:}number-of-matches-within-limits"; else empty
    std::vector<Property> properties;

    // Returns a property that the resource has (status 2xx); null when it has none.
    [[nodiscard]] const Property* find(std::string_view name) const;

    // Returns the text of a property without spaces around it; empty when the resource has none.
    [[nodiscard]] std::string text(std::string_view name) const;

    // Whether a property has an element of this name inside.
    [[nodiscard]] bool has(std::string_view property, std::string_view element) const;
};

// Reads one answer. Throws Error (malformedAnswer) for what is no multistatus, is not complete, is no XML, declares a
// document type, or holds a resource beyond the bounds.
class MultistatusReader : XmlHandler {
  public:
    // [each] is given every resource, and may throw. A property's text may have [maxText] bytes.
    explicit MultistatusReader(std::function<void(Resource&&)> each, std::size_t maxText = kMaxText);
    ~MultistatusReader() override;

    void feed(std::string_view bytes) { parser_.feed(bytes); }
    void finish();

    // Returns the new sync-token; empty when the answer has none.
    [[nodiscard]] const std::string& syncToken() const { return syncToken_; }

    static constexpr std::size_t kMaxText = 64UL * 1024 * 1024;

  private:
    enum class Place {
        multistatus,
        response,
        propstat,
        prop,
        property,
        inside,
        error,
        href,
        status,
        syncToken,
        other
    };

    void startElement(const std::string& name) override;
    void attribute(const std::string& name, std::string_view value) override;
    void characters(std::string_view text) override;
    void endElement() override;

    Place enter(const std::string& name);
    void enterProperty(const std::string& name, bool inside);
    void leavePropstat();

    std::function<void(Resource&&)> each_;
    std::size_t maxText_;
    std::vector<Place> places_;     // of the elements that are open
    std::vector<std::size_t> open_; // of those inside a property: their index in Property::inside
    std::string text_;              // of href, status, sync-token
    std::string syncToken_;
    Resource resource_;
    std::vector<std::string> moreHrefs_; // of the same status, behind the first
    std::size_t propstatBegin_ = 0;      // first property of the propstat that is open
    int propstatStatus_ = 0;
    XmlParser parser_;
};

// A DAV:error document: why a request failed (RFC 4918, 16).
struct Condition {
    std::string name; // of the first condition; empty when [body] is no such document
    std::string href; // in it; empty when there is none
};

// Returns what a DAV:error document says.
Condition readCondition(std::string_view body);

} // namespace addressbook::carddav
