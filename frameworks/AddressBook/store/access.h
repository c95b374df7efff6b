#pragma once

namespace addressbook {

// Whether a book is opened to be read only, or to be written as well.
enum class Access { readWrite, readOnly };

} // namespace addressbook
