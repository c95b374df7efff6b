#pragma once

// The report of `fmhost test`: failures on the terminal as they occur, the summary, and the JUnit report.

#include "host/console/calc_test.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace host {

// One run of one file.
struct TestSuite {
    std::string file;
    int run = 1;
    std::vector<CheckResult> results;

    size_t failures() const;
    double seconds() const;
};

class TestReport {
  public:
    // Prints each failure to [out] when it is added.
    explicit TestReport(std::ostream& out) : out_(out) {}

    // Begins a run of a file; the results added next belong to it. Runs of a file are counted from 1.
    void startSuite(const std::string& file, int run);
    void add(CheckResult result);

    size_t passed() const;
    size_t failed() const;

    // Prints one line of counts. When files were run several times, first prints how many times each failing
    // check failed.
    void printSummary() const;

    // Returns the report in the JUnit format, for continuous integration: a test suite for each run of a
    // file, a test case for each check. XML in UTF-8; control characters that XML cannot have become their
    // symbols.
    std::string junit() const;

  private:
    std::ostream& out_;
    std::vector<TestSuite> suites_;
};

} // namespace host
