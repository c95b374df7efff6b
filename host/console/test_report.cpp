#include "host/console/test_report.h"

#include <cstdio>
#include <map>
#include <memory>
#include <numeric>
#include <ostream>
#include <utility>

#include <libxml/xmlwriter.h>

namespace host {

namespace {

std::string place(const TestSuite& suite, int line) {
    return line == 0 ? suite.file : suite.file + ":" + std::to_string(line);
}

// Returns a text without the characters that XML cannot have, not even escaped: control characters other than
// white space become their symbols; U+FFFE and U+FFFF are replaced.
std::string xmlText(const std::string& text) {
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c < ' ' && c != '\t' && c != '\n' && c != '\r') {
            result += "\xE2\x90";
            result += static_cast<char>(0x80 + c); // U+2400 + c
        } else if (text.compare(i, 3, "\xEF\xBF\xBE") == 0 || text.compare(i, 3, "\xEF\xBF\xBF") == 0) {
            result += "\uFFFD";
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

// Writes an XML document into memory. libxml2 does the escaping.
class XmlWriter {
  public:
    XmlWriter()
        : buffer_(xmlBufferCreate(), xmlBufferFree), writer_(xmlNewTextWriterMemory(buffer_.get(), 0)) {
        xmlTextWriterSetIndent(writer_, 1);
        xmlTextWriterStartDocument(writer_, nullptr, "UTF-8", nullptr);
    }
    ~XmlWriter() {
        if (writer_ != nullptr) {
            xmlFreeTextWriter(writer_);
        }
    }
    XmlWriter(const XmlWriter&) = delete;
    XmlWriter& operator=(const XmlWriter&) = delete;

    using Attributes = std::vector<std::pair<const char*, std::string>>;

    void open(const char* name, const Attributes& attributes) {
        xmlTextWriterStartElement(writer_, bytes(name));
        for (const auto& [key, value] : attributes) {
            xmlTextWriterWriteAttribute(writer_, bytes(key), bytes(xmlText(value).c_str()));
        }
    }
    void text(const std::string& content) {
        xmlTextWriterWriteString(writer_, bytes(xmlText(content).c_str()));
    }
    void close() { xmlTextWriterEndElement(writer_); }

    std::string finish() {
        xmlTextWriterEndDocument(writer_);
        xmlFreeTextWriter(writer_);
        writer_ = nullptr;
        return reinterpret_cast<const char*>(xmlBufferContent(buffer_.get()));
    }

  private:
    static const xmlChar* bytes(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

    std::unique_ptr<xmlBuffer, decltype(&xmlBufferFree)> buffer_;
    xmlTextWriterPtr writer_;
};

std::string secondsText(double seconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6f", seconds);
    return text;
}

XmlWriter::Attributes counts(size_t tests, size_t failures, double seconds) {
    return {{"tests", std::to_string(tests)},
            {"failures", std::to_string(failures)},
            {"errors", "0"},
            {"skipped", "0"},
            {"time", secondsText(seconds)}};
}

std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

// Returns the name of a check in lists: its line and its calculation.
std::string caseName(const CheckResult& result) {
    return result.text.empty() ? "line " + std::to_string(result.line)
                               : "line " + std::to_string(result.line) + ": " + result.text;
}

void writeCase(XmlWriter& xml, const TestSuite& suite, const CheckResult& result) {
    xml.open("testcase", {{"name", caseName(result)},
                          {"classname", suite.file},
                          {"file", suite.file},
                          {"line", std::to_string(result.line)},
                          {"time", secondsText(result.seconds)}});
    if (!result.failure.empty()) {
        const size_t start = result.failure.find_first_not_of(' ');
        xml.open("failure", {{"message", firstLine(result.failure.substr(start))}, {"type", "difference"}});
        xml.text(place(suite, result.line) + ": " + result.text + "\n" + result.failure);
        xml.close();
    }
    xml.close();
}

template <class Part>
double total(const std::vector<Part>& parts, double (*of)(const Part&)) {
    return std::accumulate(parts.begin(), parts.end(), 0.0,
                           [of](double sum, const Part& part) { return sum + of(part); });
}

} // namespace

size_t TestSuite::failures() const {
    size_t count = 0;
    for (const CheckResult& result : results) {
        count += result.failure.empty() ? 0 : 1;
    }
    return count;
}

double TestSuite::seconds() const {
    return total<CheckResult>(results, [](const CheckResult& result) { return result.seconds; });
}

void TestReport::startSuite(const std::string& file, int run) {
    suites_.push_back({file, run, {}});
}

void TestReport::add(CheckResult result) {
    const TestSuite& suite = suites_.back();
    if (!result.failure.empty()) {
        out_ << place(suite, result.line) << ": " << result.text << (result.text.empty() ? "" : "\n")
             << result.failure << '\n'
             << std::flush;
    }
    suites_.back().results.push_back(std::move(result));
}

size_t TestReport::passed() const {
    size_t count = 0;
    for (const TestSuite& suite : suites_) {
        count += suite.results.size() - suite.failures();
    }
    return count;
}

size_t TestReport::failed() const {
    size_t count = 0;
    for (const TestSuite& suite : suites_) {
        count += suite.failures();
    }
    return count;
}

void TestReport::printSummary() const {
    std::map<std::string, int> runs;                       // by file
    std::map<std::pair<std::string, int>, int> failuresOf; // by file and line
    for (const TestSuite& suite : suites_) {
        ++runs[suite.file];
        for (const CheckResult& result : suite.results) {
            if (!result.failure.empty()) {
                ++failuresOf[{suite.file, result.line}];
            }
        }
    }
    for (const auto& [where, count] : failuresOf) {
        if (runs[where.first] > 1) {
            out_ << place({where.first, 1, {}}, where.second) << ": failed in " << count << " of "
                 << runs[where.first] << " runs\n";
        }
    }
    out_ << passed() << " passed, " << failed() << " failed" << '\n' << std::flush;
}

std::string TestReport::junit() const {
    const double seconds = total<TestSuite>(suites_, [](const TestSuite& suite) { return suite.seconds(); });
    XmlWriter xml;
    xml.open("testsuites", counts(passed() + failed(), failed(), seconds));
    for (const TestSuite& suite : suites_) {
        const std::string run = suite.run == 1 ? "" : " (run " + std::to_string(suite.run) + ")";
        XmlWriter::Attributes attributes = counts(suite.results.size(), suite.failures(), suite.seconds());
        attributes.insert(attributes.begin(), {"name", suite.file + run});
        xml.open("testsuite", attributes);
        for (const CheckResult& result : suite.results) {
            writeCase(xml, suite, result);
        }
        xml.close();
    }
    return xml.finish();
}

} // namespace host
