#include "host/calc/calc_error.h"

namespace host {

CalcError::CalcError(ErrorKind kind, CalcCode code, SourcePtr source, size_t offset, std::string message)
    : kind_(kind), code_(code), source_(std::move(source)), offset_(offset), message_(std::move(message)) {}

std::string CalcError::summary() const {
    const Place at = place();
    const std::string file = source_->name().empty() ? "" : source_->name() + ":";
    return file + std::to_string(at.line) + ":" + std::to_string(at.column) + ": " + message_;
}

std::string CalcError::report() const {
    return summary() + "\n" + source_->excerpt(offset_);
}

} // namespace host
