#include "frameworks/AddressBook/store/sql/store_error.h"

namespace addressbook {

std::string problemSentence(std::string_view subject, const std::filesystem::path& file,
                            std::string_view what, std::string_view remedy) {
    std::string sentence(subject);
    sentence.append(" ").append(file.string());
    if (!what.empty()) {
        sentence.append(" ").append(what);
    }
    sentence.append(": ").append(remedy).append(".");
    return sentence;
}

StoreError::StoreError(Reason reason, const std::filesystem::path& file, std::string_view what,
                       std::string_view remedy)
    : StoreError(reason, problemSentence("The address book", file, what, remedy)) {}

StoreError replacedError(const std::filesystem::path& file) {
    return {StoreError::Reason::io, file, "was replaced while it was being opened", "try again"};
}

StoreError readOnlyError(const std::filesystem::path& file) {
    return {StoreError::Reason::readOnly, file, "may only be read",
            "make the file, its folder and its disk writable and start this program again"};
}

} // namespace addressbook
