#pragma once

// XML in pieces, as it comes from the network: no tree is built. A document type is refused, and with it every entity
// of a document's own; nothing outside of the document is ever read.

#include <exception>
#include <string>
#include <string_view>

struct _xmlParserCtxt; // NOLINT(readability-identifier-naming): a name of libxml2

namespace addressbook::carddav {

// What is told of a document. Names are "{namespace}local", as "{DAV:}href"; prefixes do not matter. What is thrown
// leaves XmlParser::feed() or finish().
class XmlHandler {
  public:
    virtual ~XmlHandler() = default;
    virtual void startElement(const std::string& name) = 0;
    // Follows startElement() once for each attribute; one without a prefix has no namespace: "version".
    virtual void attribute(const std::string& name, std::string_view value) = 0;
    // Text of an element may come in several pieces, in UTF-8.
    virtual void characters(std::string_view text) = 0;
    virtual void endElement() = 0;
};

class XmlParser {
  public:
    // [handler] must live as long as the parser.
    explicit XmlParser(XmlHandler& handler);
    ~XmlParser();
    XmlParser(const XmlParser&) = delete;
    XmlParser& operator=(const XmlParser&) = delete;

    // Parses the next bytes. Throws Error (malformedAnswer) for what is no well-formed XML, declares a document type
    // or is nested more than 32 deep.
    void feed(std::string_view bytes);

    // Ends the document. Throws Error (malformedAnswer) when it is not complete.
    void finish();

  private:
    struct Callbacks;
    void parse(std::string_view bytes, bool last);

    XmlHandler& handler_;
    _xmlParserCtxt* context_;
    std::string first_;         // bytes of the document
    std::exception_ptr thrown_; // by a callback: no exception passes through libxml2
    int depth_ = 0;
};

} // namespace addressbook::carddav
