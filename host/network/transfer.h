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

struct Transfer {
    const NetworkRequest& request;
    EasyHolder easy;
    ListHolder headers = nullptr;
    FormHolder form = nullptr;
    std::optional<std::string> body = {}; // of --data and its kin
    std::optional<Bytes> upload = {};     // of --upload-file
    size_t uploaded = 0;
    bool sendsBodyInUrl = false; // --get
    bool showsHeaders = false;   // --include
    std::string outputName = {}; // --output
    std::string headerName = {}; // --dump-header
    std::string charset = {};    // --FM-text-encoding
    bool isContainer = false;
    Bytes received = {};
    Bytes receivedHeaders = {};

    void addHeader(const std::string& line);
    void addData(const std::string& data);
};

// Reads the options of a request and sets them in its transfer. Throws OptionError for one that is not known
// or lacks its value, with what is known.
void applyOptions(Transfer& transfer);

} // namespace host
