#pragma once

// What the tests of `fmhost test` came to: lines on the terminal as they fail, the summary, the JUnit report.

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
    // Each failure is printed to [out] as it comes.
    explicit TestReport(std::ostream& out) : out_(out) {}

    // The results that follow belong to that file, in its run of that number, from 1.
    void startSuite(const std::string& file, int run);
    void add(CheckResult result);

    size_t passed() const;
    size_t failed() const;

    // One line of counts; before it, where several runs were made, how many of them each failing check failed.
    void printSummary() const;

    // The report that continuous integration reads: a test suite for each run of a file, a test case for each
    // check. XML in UTF-8; characters that XML does not have are shown as their symbols.
    std::string junit() const;

  private:
    std::ostream& out_;
    std::vector<TestSuite> suites_;
};

} // namespace host
