#include "frameworks/AddressBook/model/live_record.h"

#include <utility>

namespace addressbook {

namespace {

// The number of records that keep their stored row in memory.
constexpr std::size_t kLoadedLimit = 1024;

} // namespace

LiveRecord::~LiveRecord() {
    if (records_ != nullptr) {
        records_->leave(*this);
    }
}

const std::string& LiveRecord::uid() const {
    if (uid_.empty()) {
        uid_ = stored_.text();
    }
    return uid_;
}

LiveRecords::LiveRecords() = default;

LiveRecords::~LiveRecords() {
    for (LiveRecord& record : byUid_.index) {
        record.records_ = nullptr;
    }
    loaded_.clear();
    byRow_.index.clear();
    byUid_.index.clear();
}

void LiveRecords::add(LiveRecord& record) {
    if (const auto other = byUid_.index.find(record.stored_); other != byUid_.index.end()) {
        if (&*other == &record) {
            return;
        }
        leave(*other);
    }
    record.records_ = this;
    byUid_.insert(record);
    if (record.row_ != 0) {
        setRow(record, record.row_);
    }
}

void LiveRecords::setRow(LiveRecord& record, RowId row) {
    if (record.byRow_.is_linked()) {
        byRow_.erase(record);
    }
    record.row_ = row;
    if (record.records_ != this) {
        return;
    }
    if (const auto other = byRow_.index.find(row); other != byRow_.index.end()) {
        byRow_.erase(*other);
    }
    byRow_.insert(record);
}

void LiveRecords::forgetRows() {
    byRow_.index.clear();
}

LiveRecordPtr LiveRecords::find(const StoredUid& uid) const {
    const auto found = byUid_.index.find(uid);
    return found == byUid_.index.end() ? nullptr : const_cast<LiveRecord&>(*found).shared_from_this();
}

LiveRecordPtr LiveRecords::find(RowId row) const {
    const auto found = byRow_.index.find(row);
    return found == byRow_.index.end() ? nullptr : const_cast<LiveRecord&>(*found).shared_from_this();
}

std::vector<LiveRecordPtr> LiveRecords::all() const {
    std::vector<LiveRecordPtr> records;
    records.reserve(byUid_.index.size());
    for (const LiveRecord& record : byUid_.index) {
        records.push_back(const_cast<LiveRecord&>(record).shared_from_this());
    }
    return records;
}

void LiveRecords::keepRow(LiveRecord& record, RecordRow&& row) {
    record.cachedRow = std::move(row);
    if (record.records_ != this) {
        return;
    }
    if (record.loaded_.is_linked()) {
        loaded_.erase(loaded_.iterator_to(record));
    }
    loaded_.push_back(record);
    if (loaded_.size() > kLoadedLimit) {
        loaded_.front().cachedRow.reset();
        loaded_.pop_front();
    }
}

// Takes a record out of all lists.
void LiveRecords::leave(LiveRecord& record) {
    record.records_ = nullptr;
    byUid_.erase(record);
    if (record.byRow_.is_linked()) {
        byRow_.erase(record);
    }
    if (record.loaded_.is_linked()) {
        loaded_.erase(loaded_.iterator_to(record));
    }
}

} // namespace addressbook
