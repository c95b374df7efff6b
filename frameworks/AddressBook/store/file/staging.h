#pragma once

// Where a database is made before it is put into its place.

#include <filesystem>

namespace addressbook {

// A folder for its owner only, beside the place where the database will be. Deleted with its contents by the
// destructor; those of killed processes by the next one that is made there, after 24 h.
class StagingFolder {
  public:
    // Makes a new folder in [folder]. Throws StoreError.
    explicit StagingFolder(const std::filesystem::path& folder);
    ~StagingFolder();
    StagingFolder(const StagingFolder&) = delete;
    StagingFolder& operator=(const StagingFolder&) = delete;

    const std::filesystem::path& folder() const { return folder_; }
    // Returns the name of the database in it: the one that every address book has.
    std::filesystem::path file() const;

  private:
    std::filesystem::path folder_;
};

} // namespace addressbook
