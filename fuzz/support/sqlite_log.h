#pragma once

#include <string>

namespace fuzz {

// Makes the checksums of SQLite's write-ahead log right for what is in it, so that changed frames are taken over. The log
// gets salts of its own, equal in every run. Does nothing to what is too short for a log.
void renewLogChecksums(std::string& log);

} // namespace fuzz
