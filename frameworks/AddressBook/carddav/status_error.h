#pragma once

// What an answer means that is no success.

#include "frameworks/AddressBook/carddav/error.h"

#include <string>
#include <string_view>

namespace addressbook::carddav {

// Returns the error that a status other than 2xx stands for. [body] may hold a DAV:error document, which tells the
// condition; [method] and [url] are of the request.
Error errorOfStatus(int status, std::string_view body, const std::string& method, const std::string& url);

} // namespace addressbook::carddav
