#include "frameworks/AddressBook/carddav/xml_parser.h"

#include "frameworks/AddressBook/carddav/error.h"

#include <libxml/parser.h>

#include <algorithm>
#include <mutex>
#include <new>

namespace addressbook::carddav {
namespace {

constexpr int kMaxDepth = 32;
// libxml2 takes lengths as int, and looks at all of a piece at once.
constexpr std::size_t kPiece = 64UL * 1024;
constexpr std::size_t kFirst = 4; // bytes by which libxml2 knows an encoding
constexpr const char* kEncodings[] = {"UTF-8",    "UTF8",  "UTF-16",     "UTF-16LE",    "UTF-16BE",
                                      "US-ASCII", "ASCII", "ISO-8859-1", "ISO-8859-15", "windows-1252"};

[[noreturn]] void malformed(const std::string& why) {
    throw Error(ErrorKind::malformedAnswer, "the server's answer cannot be read: " + why);
}

[[noreturn]] void otherEncoding(const std::string& name) {
    malformed("its encoding is " + name + ", not UTF-8");
}

void appendName(std::string& to, const xmlChar* space, const xmlChar* local) {
    if (space != nullptr) {
        to += '{';
        to += reinterpret_cast<const char*>(space);
        to += '}';
    }
    to += reinterpret_cast<const char*>(local);
}

} // namespace

// What libxml2 calls. After an exception it is told to stop, and calls nothing more.
struct XmlParser::Callbacks {
    template <class Work>
    static void guarded(void* self, Work work) {
        XmlParser& parser = *static_cast<XmlParser*>(self);
        if (parser.thrown_) {
            return;
        }
        try {
            work(parser);
        } catch (...) {
            parser.thrown_ = std::current_exception();
            xmlStopParser(parser.context_);
        }
    }

    // Of other encodings than UTF-8 and UTF-16, which need not be declared, only those of one byte a character are read:
    // what is read of others depends on the pieces in which it comes. (WebDAV asks for the two alone: RFC 4918, 8.2.)
    static void startDocument(void* self) {
        guarded(self, [](XmlParser& parser) {
            const xmlChar* const declared = parser.context_->input->encoding;
            if (declared == nullptr) {
                return;
            }
            const bool known =
                std::any_of(std::begin(kEncodings), std::end(kEncodings), [&](const char* each) {
                    return xmlStrcasecmp(declared, reinterpret_cast<const xmlChar*>(each)) == 0;
                });
            if (!known) {
                otherEncoding(reinterpret_cast<const char*>(declared));
            }
        });
    }

    // [attributes]: local name, prefix, namespace, begin and end of the value.
    static void startElement(void* self, const xmlChar* local, const xmlChar* /*prefix*/,
                             const xmlChar* space, int, const xmlChar** /*namespaces*/, int count, int,
                             const xmlChar** attributes) {
        guarded(self, [&](XmlParser& parser) {
            if (++parser.depth_ > kMaxDepth) {
                malformed("its elements are nested too deep");
            }
            std::string name;
            appendName(name, space, local);
            parser.handler_.startElement(name);
            for (int at = 0; at < count; ++at) {
                const xmlChar** const attribute = attributes + 5L * at;
                name.clear();
                appendName(name, attribute[2], attribute[0]);
                parser.handler_.attribute(name, {reinterpret_cast<const char*>(attribute[3]),
                                                 static_cast<std::size_t>(attribute[4] - attribute[3])});
            }
        });
    }

    static void endElement(void* self, const xmlChar*, const xmlChar*, const xmlChar*) {
        guarded(self, [](XmlParser& parser) {
            --parser.depth_;
            parser.handler_.endElement();
        });
    }

    static void characters(void* self, const xmlChar* text, int length) {
        guarded(self, [&](XmlParser& parser) {
            parser.handler_.characters(
                {reinterpret_cast<const char*>(text), static_cast<std::size_t>(length)});
        });
    }

    static void documentType(void* self, const xmlChar*, const xmlChar*, const xmlChar*) {
        guarded(self, [](XmlParser&) { malformed("it declares a document type, which may hide anything"); });
    }

    // Errors are asked for after each piece; nothing is printed.
    static void ignore(void*, const char*, ...) {}
};

XmlParser::XmlParser(XmlHandler& handler) : handler_(handler) {
    static std::once_flag once;
    std::call_once(once, xmlInitParser);
    xmlSAXHandler callbacks{};
    callbacks.initialized = XML_SAX2_MAGIC;
    callbacks.startDocument = Callbacks::startDocument;
    callbacks.startElementNs = Callbacks::startElement;
    callbacks.endElementNs = Callbacks::endElement;
    callbacks.characters = callbacks.ignorableWhitespace = callbacks.cdataBlock = Callbacks::characters;
    callbacks.internalSubset = Callbacks::documentType;
    callbacks.warning = callbacks.error = callbacks.fatalError = Callbacks::ignore;
    context_ = xmlCreatePushParserCtxt(&callbacks, this, nullptr, 0, nullptr);
    if (context_ == nullptr) {
        throw std::bad_alloc();
    }
    xmlCtxtUseOptions(context_, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
}

XmlParser::~XmlParser() {
    xmlFreeParserCtxt(context_);
}

void XmlParser::parse(std::string_view bytes, bool last) {
    // Errors of converting an encoding belong to no parser: libxml2 prints them unless somebody else takes them.
    const xmlStructuredErrorFunc before = xmlStructuredError;
    void* const beforeContext = xmlStructuredErrorContext;
    xmlSetStructuredErrorFunc(nullptr, [](void*, xmlErrorPtr) {});
    const int failed = xmlParseChunk(context_, bytes.data(), static_cast<int>(bytes.size()), last ? 1 : 0);
    xmlSetStructuredErrorFunc(beforeContext, before);
    if (thrown_) {
        std::rethrow_exception(thrown_);
    }
    if (failed == XML_ERR_NO_MEMORY) {
        throw std::bad_alloc();
    }
    // A namespace that is a relative address is unusual, but does no harm.
    if (failed != 0 && context_->wellFormed == 0) {
        const xmlError* error = xmlCtxtGetLastError(context_);
        std::string why = error != nullptr && error->message != nullptr ? error->message : "it is no XML";
        why.erase(std::min(why.find_last_not_of(" \n") + 1, why.size()));
        malformed(why + (error != nullptr ? " (line " + std::to_string(error->line) + ")" : ""));
    }
}

void XmlParser::feed(std::string_view bytes) {
    // libxml2 tells UTF-32 by its first character, without a declaration; what it reads of it depends on the pieces.
    if (first_.size() < kFirst) {
        first_ += bytes.substr(0, kFirst - first_.size());
        if (first_.size() == kFirst && std::count(first_.begin(), first_.end(), '\0') == 3) {
            otherEncoding("UTF-32");
        }
    }
    for (std::size_t at = 0; at < bytes.size(); at += kPiece) {
        parse(bytes.substr(at, kPiece), false);
    }
}

void XmlParser::finish() {
    parse({}, true);
}

} // namespace addressbook::carddav
