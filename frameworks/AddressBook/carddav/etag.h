#pragma once

// Etags: by which a server tells one state of a resource from another.

#include <string_view>

namespace addressbook::carddav {

// Whether two etags are of the same contents: some servers leave the quotes out, or mark as weak what they do not in
// another place. An empty etag is like no other.
bool sameEtag(std::string_view one, std::string_view other);

// Whether it is marked as weak: W/"...".
bool isWeakEtag(std::string_view etag);

} // namespace addressbook::carddav
