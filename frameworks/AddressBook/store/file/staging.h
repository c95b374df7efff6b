#pragma once

// The temporary folder in which a database is made before it is put in its place.

#include <filesystem>

namespace addressbook {

// A folder that only its owner may enter, on the file system of the database's final place. Deleted with its
// contents by the destructor; folders of killed processes are deleted by the next StagingFolder made in the
// same place, once they are 24 hours old.
class StagingFolder {
  public:
    // Makes a new folder in [folder]. Throws StoreError.
    explicit StagingFolder(const std::filesystem::path& folder);
    ~StagingFolder();
    StagingFolder(const StagingFolder&) = delete;
    StagingFolder& operator=(const StagingFolder&) = delete;

    const std::filesystem::path& folder() const { return folder_; }
    // Returns the path for the database in it, whose name is that of every address book.
    std::filesystem::path file() const;

  private:
    std::filesystem::path folder_;
};

} // namespace addressbook
