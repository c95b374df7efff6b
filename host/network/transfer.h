#pragma once

// A transfer while its options are read and while it runs.

#include "host/network/network.h"

#include <curl/curl.h>
#include <memory>
#include <string>

namespace host {

struct CurlDeleter {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    void operator()(curl_mime* form) const { curl_mime_free(form); }
};
using EasyHolder = std::unique_ptr<CURL, CurlDeleter>;
using ListHolder = std::unique_ptr<curl_slist, CurlDeleter>;
using FormHolder = std::unique_ptr<curl_mime, CurlDeleter>;

// Bytes for an option that wants the name of a file: a file in memory, which nobody else sees.
class MemoryFile {
  public:
    explicit MemoryFile(const Bytes& contents);
    MemoryFile(MemoryFile&& other) noexcept;
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    MemoryFile& operator=(MemoryFile&&) = delete;
    ~MemoryFile();

    std::string path() const;

  private:
    int descriptor_;
};

struct Transfer {
    const NetworkRequest& request;
    EasyHolder easy;
    std::vector<MemoryFile> files = {}; // that options read
    ListHolder headers = nullptr;
    ListHolder addresses = nullptr; // of --resolve
    ListHolder commands = nullptr;  // of --quote
    FormHolder form = nullptr;
    std::optional<std::string> body = {}; // of --data and its kin
    std::optional<Bytes> upload = {};     // of --upload-file
    size_t uploaded = 0;
    bool sendsBodyInUrl = false; // --get
    bool showsHeaders = false;   // --include
    std::string outputName = {}; // --output
    std::string headerName = {}; // --dump-header
    std::string cookieName = {}; // --cookie-jar
    std::string traceName = {};  // --trace
    long keepsPost = 0;          // --post301 and its kin
    std::string charset = {};    // --FM-text-encoding
    bool isContainer = false;
    Bytes received = {};
    Bytes receivedHeaders = {};
    Bytes trace = {};

    // Adds a line to one of the lists.
    static void add(ListHolder& list, const std::string& line);
    // Makes what the request calls [name], a variable or a file, the file of an option.
    void setFile(CURLoption option, const std::string& name);
    void addData(const std::string& data);
};

// Reads the options of a request and sets them in its transfer. Throws OptionError for one that is not known
// or lacks its value, with what is known.
void applyOptions(Transfer& transfer);

} // namespace host
