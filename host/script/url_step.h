#pragma once

namespace host {

class StepContext;

// The parameters of Insert from URL, in the order of its prototype.
enum InsertFromUrl : unsigned { kUrlSelect, kUrlDialog, kUrlTarget, kUrlAddress, kUrlVerify, kUrlOptions };

// Runs the step: puts what a URL names into a variable, as text when it is text, else as a file. Other URLs
// than those of files need Environment::allowsNetwork.
void insertFromUrl(StepContext& step);

} // namespace host
