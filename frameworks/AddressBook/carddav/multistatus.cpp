#include "frameworks/AddressBook/carddav/multistatus.h"

#include "frameworks/AddressBook/carddav/error.h"
#include "frameworks/AddressBook/carddav/names.h"
#include "frameworks/AddressBook/values/text.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace addressbook::carddav {
namespace {

constexpr std::size_t kMaxProperties = 200;    // of one resource
constexpr std::size_t kMaxHrefs = 10000;       // of one response
constexpr std::size_t kMaxInside = 2000;       // elements of one property
constexpr std::size_t kMaxSmall = 16UL * 1024; // an href, a status, a token, an attribute

[[noreturn]] void malformed(const std::string& why) {
    throw Error(ErrorKind::malformedAnswer, "the server's answer cannot be read: " + why);
}

void appendBounded(std::string& to, std::string_view text, std::size_t bound) {
    if (text.size() > bound - std::min(bound, to.size())) {
        malformed("a value in it is too large");
    }
    to += text;
}

// "HTTP/1.1 404 Not Found". A status that cannot be read is no success.
int statusOf(std::string_view line) {
    constexpr int kUnreadable = 500;
    line = trim(line);
    const std::size_t space = line.find(' ');
    if (space == std::string_view::npos) {
        return kUnreadable;
    }
    line = trim(line.substr(space));
    int status = kUnreadable;
    std::from_chars(line.data(), line.data() + line.size(), status);
    return status >= 100 && status <= 999 ? status : kUnreadable;
}

} // namespace

const Property* Resource::find(std::string_view name) const {
    for (const Property& property : properties) {
        if (property.name == name && property.status / 100 == 2) {
            return &property;
        }
    }
    return nullptr;
}

std::string Resource::text(std::string_view name) const {
    const Property* property = find(name);
    return property == nullptr ? std::string() : std::string(trim(property->text));
}

bool Resource::has(std::string_view property, std::string_view element) const {
    const Property* found = find(property);
    return found != nullptr && std::any_of(found->inside.begin(), found->inside.end(),
                                           [&](const Element& inside) { return inside.name == element; });
}

MultistatusReader::MultistatusReader(std::function<void(Resource&&)> each, std::size_t maxText)
    : each_(std::move(each)), maxText_(maxText), parser_(*this) {}

MultistatusReader::~MultistatusReader() = default;

void MultistatusReader::finish() {
    parser_.finish();
}

MultistatusReader::Place MultistatusReader::enter(const std::string& name) {
    if (places_.empty()) {
        if (name != names::kMultistatus) {
            malformed("it is no multistatus, but " + name);
        }
        return Place::multistatus;
    }
    switch (places_.back()) {
    case Place::multistatus:
        if (name == names::kResponse) {
            resource_ = {};
            moreHrefs_.clear();
            return Place::response;
        }
        return name == names::kSyncToken ? Place::syncToken : Place::other;
    case Place::response:
        if (name == names::kPropstat) {
            propstatBegin_ = resource_.properties.size();
            propstatStatus_ = 200;
            return Place::propstat;
        }
        return name == names::kHref     ? Place::href
               : name == names::kStatus ? Place::status
               : name == names::kError  ? Place::error
                                        : Place::other;
    case Place::propstat:
        return name == names::kProp ? Place::prop : name == names::kStatus ? Place::status : Place::other;
    case Place::prop:
        enterProperty(name, false);
        return Place::property;
    case Place::property:
    case Place::inside:
        enterProperty(name, true);
        return Place::inside;
    case Place::error:
        if (resource_.error.empty()) {
            resource_.error = name;
        }
        return Place::other;
    default:
        return Place::other;
    }
}

void MultistatusReader::enterProperty(const std::string& name, bool inside) {
    if (!inside) {
        if (resource_.properties.size() >= kMaxProperties) {
            malformed("a resource in it has too many properties");
        }
        resource_.properties.push_back({name, 200, {}, {}});
        return;
    }
    std::vector<Element>& elements = resource_.properties.back().inside;
    if (elements.size() >= kMaxInside) {
        malformed("a property in it has too many elements");
    }
    open_.push_back(elements.size());
    elements.push_back({name, {}, {}});
}

void MultistatusReader::startElement(const std::string& name) {
    if (name.size() > kMaxSmall) {
        malformed("a name in it is too long");
    }
    const Place place = enter(name);
    places_.push_back(place);
    if (place == Place::href || place == Place::status || place == Place::syncToken) {
        text_.clear();
    }
}

void MultistatusReader::attribute(const std::string& name, std::string_view value) {
    constexpr std::size_t kMaxAttributes = 16;
    if (places_.back() != Place::inside) {
        return;
    }
    Element& element = resource_.properties.back().inside[open_.back()];
    if (element.attributes.size() >= kMaxAttributes || value.size() > kMaxSmall) {
        malformed("an element in it has too many attributes");
    }
    element.attributes.emplace_back(name, value);
}

void MultistatusReader::characters(std::string_view text) {
    if (places_.empty()) {
        return;
    }
    switch (places_.back()) {
    case Place::href:
    case Place::status:
    case Place::syncToken:
        appendBounded(text_, text, kMaxSmall);
        break;
    case Place::property:
        appendBounded(resource_.properties.back().text, text, maxText_);
        break;
    case Place::inside:
        appendBounded(resource_.properties.back().inside[open_.back()].text, text, kMaxSmall);
        break;
    default:
        break;
    }
}

void MultistatusReader::leavePropstat() {
    for (std::size_t at = propstatBegin_; at < resource_.properties.size(); ++at) {
        resource_.properties[at].status = propstatStatus_;
    }
}

void MultistatusReader::endElement() {
    const Place place = places_.back();
    places_.pop_back();
    switch (place) {
    case Place::response:
        for (std::string& href : moreHrefs_) {
            Resource other;
            other.href = std::move(href);
            other.status = resource_.status;
            each_(std::move(other));
        }
        each_(std::move(resource_));
        resource_ = {};
        break;
    case Place::propstat:
        leavePropstat();
        break;
    case Place::href:
        if (resource_.href.empty()) {
            resource_.href = trim(text_);
        } else if (moreHrefs_.size() < kMaxHrefs) {
            moreHrefs_.emplace_back(trim(text_));
        } else {
            malformed("a response in it has too many hrefs");
        }
        break;
    case Place::status:
        (places_.back() == Place::propstat ? propstatStatus_ : resource_.status) = statusOf(text_);
        break;
    case Place::syncToken:
        syncToken_ = trim(text_);
        break;
    case Place::inside: {
        std::string& text = resource_.properties.back().inside[open_.back()].text;
        text = std::string(trim(text));
        open_.pop_back();
        break;
    }
    default:
        break;
    }
}

namespace {

class ConditionReader : public XmlHandler {
  public:
    explicit ConditionReader(Condition& condition) : condition_(condition) {}

    void startElement(const std::string& name) override {
        ++depth_;
        isError_ = depth_ == 1 ? name == names::kError : isError_;
        if (isError_ && depth_ == 2 && condition_.name.empty()) {
            condition_.name = name;
        }
        inHref_ = isError_ && depth_ > 2 && name == names::kHref && condition_.href.empty();
    }
    void attribute(const std::string&, std::string_view) override {}
    void characters(std::string_view text) override {
        if (inHref_) {
            appendBounded(condition_.href, text, kMaxSmall);
        }
    }
    void endElement() override {
        --depth_;
        inHref_ = false;
    }

  private:
    Condition& condition_;
    int depth_ = 0;
    bool isError_ = false, inHref_ = false;
};

} // namespace

Condition readCondition(std::string_view body) {
    Condition condition;
    ConditionReader reader(condition);
    try {
        XmlParser parser(reader);
        parser.feed(body);
        parser.finish();
    } catch (const Error&) {
        return {}; // a page for people, most likely
    }
    condition.href = std::string(trim(condition.href));
    return condition;
}

} // namespace addressbook::carddav
