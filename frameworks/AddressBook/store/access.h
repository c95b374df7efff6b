#pragma once

namespace addressbook {

// What a book is opened for.
enum class Access { readWrite, readOnly };

} // namespace addressbook
