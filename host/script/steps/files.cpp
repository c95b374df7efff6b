// Steps for whole files and folders.
#include "host/script/file_bytes.h"
#include "host/script/script_library.h"
#include "host/script/step_context.h"
#include "host/script/steps/categories.h"
#include "host/values/container_file.h"
#include "host/values/text.h"

namespace host {

namespace {

namespace fs = std::filesystem;

using ContainerMaker = Container (*)(std::u16string_view name, Bytes contents);

enum InsertPlace : size_t { kReference, kInsertTarget, kInsertPath };

template <ContainerMaker make>
void insert(StepContext& step) {
    const fs::path file = step.path(kInsertPath);
    Value contents;
    try {
        contents = Value::container(make(fromUtf8(file.filename().string()), readBytes(file)));
    } catch (const FileError& error) {
        std::error_code unknown;
        step.fail(fs::exists(file, unknown) ? kFileUnreadable : kFileMissing, error.what(), kInsertPath);
    }
    step.trace(contents);
    step.assign(kInsertTarget, std::move(contents));
}

// Makes the missing folders of a file's path, when the flag of the step is set.
void createFolders(StepContext& step, const fs::path& file, size_t flag) {
    std::error_code error;
    if (step.number(flag) != 0) {
        fs::create_directories(file.parent_path(), error);
    }
}

void exportContents(StepContext& step) {
    enum : size_t { kContents, kPath, kOpen, kFolders };
    const Value source = step.value(kContents);
    step.trace(source);
    if (source.type() != ValueType::container) {
        step.fail(kDataMissing, "expected a container to export", kContents);
    }
    const Container::Stream* stream = fileStream(source.asContainer());
    if (stream == nullptr) {
        step.fail(kDataMissing, "the container to export is empty", kContents);
    }
    const fs::path file = step.path(kPath);
    createFolders(step, file, kFolders);
    try {
        writeBytes(file, stream->bytes());
    } catch (const FileError& error) {
        step.fail(kFileUnreadable, error.what(), kPath);
    }
}

// Makes an empty file, also in place of an existing one.
void createDataFile(StepContext& step) {
    const fs::path file = step.path(0);
    createFolders(step, file, 1);
    try {
        writeBytes(file, {});
    } catch (const FileError& error) {
        step.fail(kFileUnreadable, error.what(), 0);
    }
}

void getFileExists(StepContext& step) {
    std::error_code error;
    step.assign(1, Value::number(fs::exists(step.path(0), error) ? 1 : 0));
}

void requireFile(StepContext& step, const fs::path& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error)) {
        step.fail(kFileMissing, "there is no file " + file.string(), 0);
    }
}

void getFileSize(StepContext& step) {
    const fs::path file = step.path(0);
    requireFile(step, file);
    std::error_code error;
    step.assign(1, Value::number(static_cast<int64_t>(fs::file_size(file, error))));
}

void deleteFile(StepContext& step) {
    const fs::path file = step.path(0);
    requireFile(step, file);
    std::error_code error;
    if (!fs::remove(file, error)) {
        step.fail(kFileUnreadable, "can not delete " + file.string() + ": " + error.message(), 0);
    }
}

// Renames a file within its folder; an existing file is not replaced.
void renameFile(StepContext& step) {
    const fs::path file = step.path(0);
    requireFile(step, file);
    const std::string name = toUtf8(step.text(1));
    const fs::path renamed = file.parent_path() / name;
    std::error_code error;
    if (name.empty() || name.find('/') != std::string::npos) {
        step.fail(kFileUnreadable, "expected a name without a folder", 1);
    }
    if (fs::exists(renamed, error)) {
        step.fail(kFileUnreadable, renamed.string() + " is there already", 1);
    }
    fs::rename(file, renamed, error);
    if (error) {
        step.fail(kFileUnreadable, "can not rename " + file.string() + ": " + error.message(), 0);
    }
}

// There is no dialog here: returns the folder that the step proposes, if it exists.
void getFolderPath(StepContext& step) {
    enum : size_t { kCreate, kTarget, kTitle, kPath };
    std::error_code error;
    const fs::path folder = step.isGiven(kPath) ? step.path(kPath) : fs::path();
    if (step.isGiven(kCreate) && !folder.empty()) {
        fs::create_directories(folder, error);
    }
    if (folder.empty() || !fs::is_directory(folder, error)) {
        step.fail(kUserCancelled, "nobody can choose a folder here; expected one that is there", kTarget);
    }
    const std::string path = fs::weakly_canonical(folder, error).string();
    step.assign(kTarget, Value::text(fromUtf8("file:" + path + (path.ends_with('/') ? "" : "/"))));
}

constexpr StepRow kSteps[] = {
    {u"Insert Picture [ {Store only as a reference} ; Target: $variable ; calculation ]",
     insert<pictureContainer>, "Puts the picture in a file into a variable."},
    {u"Insert File [ {Store only as a reference} ; Target: $variable ; calculation ]", insert<fileContainer>,
     "Puts a file into a variable, whatever it is."},
    {u"Insert PDF [ {Store only as a reference} ; Target: $variable ; calculation ]", insert<fileContainer>,
     "Puts a PDF file into a variable."},
    {u"Insert Audio/Video [ {Store only as a reference} ; Target: $variable ; calculation ]",
     insert<fileContainer>, "Puts a sound or a film into a variable."},
    {u"Export Field Contents [ calculation ; calculation ; {Automatically open} ; {Create folders: On/Off} ]",
     exportContents, "Writes the file in a container to a path."},
    {u"Create Data File [ calculation ; {Create folders: On/Off} ]", createDataFile, "Makes an empty file."},
    {u"Get File Exists [ calculation ; Target: $variable ]", getFileExists,
     "Whether there is a file: 1 or 0."},
    {u"Get File Size [ calculation ; Target: $variable ]", getFileSize, "The size of a file in bytes."},
    {u"Delete File [ calculation ]", deleteFile, "Deletes a file."},
    {u"Rename File [ calculation ; New name: calculation ]", renameFile, "Gives a file another name."},
    {u"Get Folder Path [ {Allow Folder Creation} ; $variable ; {calculation} ; {calculation} ]",
     getFolderPath, "The folder that the second calculation proposes, when it is there; else error 1."},
};

} // namespace

std::span<const StepRow> fileSteps() {
    return kSteps;
}

} // namespace host
