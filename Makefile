# The two commands: `make demo` shows the main job on real input, `make test` runs the tests. CI adds lint.
# Both install what is missing from packages.txt by themselves (Debian 12; root, or sudo).

.PHONY: help demo bench bench-servers test test-asan test-tsan test-long test-leaks test-packages test-interop test-servers coverage fuzz fuzz-keep lint analyze format build mac package release picture setup clean
.DEFAULT_GOAL := help

help: ## this list
	@sed -n 's/^\([a-z-]*\):.*## \(.*\)/  make \1	\2/p' Makefile | expand -t 20

demo: setup ## build, import contacts into a throw-away address book, run the typical calculation
	@scripts/demo

test: setup ## all tests, in the release build and again under the address and undefined-behaviour sanitizers
	@scripts/run-tests release
	@scripts/run-tests asan

test-asan: setup ## the tests under the address and undefined-behaviour sanitizers
	@scripts/run-tests asan

# Only tests that have more than one thread, or a thread beside them in the library.
threaded_targets = foundation_test framework_test store_test plugin_test loader_test velocard_updates fmhost addressbook
threaded_tests = ^foundation_test|^framework_test.*(Change|Process|Threads)|^store_test.Watch|^plugin_test.Notification|^loader_test|^live.updates

test-tsan: setup ## the tests with threads, under the thread sanitizer
	@TARGETS="$(threaded_targets)" scripts/run-tests tsan -R '$(threaded_tests)'

coverage: setup ## the tests with counters: lines and branches that they run, by room, and what they should
	@scripts/install-packages packages-coverage.txt
	@scripts/coverage

test-long: setup ## the tests that gain by time: an hour of hosts on one book (MINUTES=60), 500 killed processes, all points of a kill
	@VELOCARD_KILLS=500 VELOCARD_SECONDS=30 VELOCARD_MINUTES=$(or $(MINUTES),60) scripts/run-tests release -R '^store_test\.(Kill|Processes)|^long\.'

# What the plug-in logs goes into a file.
test-leaks: build ## a million calls of every function (CALLS=1000000), after which the memory in use is what it was; FUNCTIONS="25 26" some of them
	@TMPDIR=/dev/shm VELOCARD_FUNCTIONS="$(FUNCTIONS)" VELOCARD_CALLS=$(or $(CALLS),1000000) build/release/tests/plugin_test --gtest_filter='LeakTest.*' 2> build/leaks.log

fuzz: setup ## look for faults by inputs that find their own way through the code, MINUTES=5 for each door; DOORS="vcard csv" some of them, JOBS=13 side by side
	@scripts/install-packages packages-fuzz.txt
	@scripts/fuzz

fuzz-keep: ## put the fewest inputs that run more code, of what make fuzz found on its way, into fuzz/corpus; DOORS="vcard csv" some of them
	@scripts/fuzz-keep

bench: setup ## measure speed and memory against plain SQLite; PEOPLE=1000000 for the largest books
	@scripts/bench

bench-servers: setup ## measure how fast books come in step with a server, beside vdirsyncer; PEOPLE and LARGE are their sizes
	@scripts/install-packages packages-servers.txt
	@scripts/bench-servers

lint: setup ## clang-format and clang-tidy over all sources
	@scripts/lint

analyze: setup ## clang's static analyzer over all sources; takes three times as long as lint
	@CHECKS='-*,clang-analyzer-core.*,-clang-analyzer-core.BitwiseShift,clang-analyzer-cplusplus.*,-clang-analyzer-cplusplus.NewDeleteLeaks' scripts/lint

format: setup ## lay out all sources with clang-format
	@git ls-files '*.cpp' '*.h' '*.m' '*.mm' | xargs clang-format-19 -i

build: setup ## the release build
	@mkdir -p build/release && cmake --preset release > build/release/configure.log && cmake --build --preset release

mac: setup ## the plug-in for macOS into build/macos, and a check of it; MACOS_SDK is the folder of a macOS SDK
	@scripts/build-mac

package: setup ## Debian packages into build/release/packages
	@scripts/install-packages packages-packaging.txt
	@scripts/build-packages

release: setup ## sources, packages and sums of what is committed into build/dist, built twice and compared; MACOS_SDK adds the Mac
	@scripts/install-packages packages-packaging.txt
	@scripts/release

test-packages: setup ## the packages in a clean Debian 12 root: installed, used, built with, upgraded, purged; needs root
	@scripts/install-packages packages-packaging.txt
	@scripts/test-packages

test-interop: setup ## other address books read what addressbook exports; SAMPLES=FOLDER takes other cards than those here
	@scripts/install-packages packages-interop.txt
	@scripts/test-interop

test-servers: setup ## address books in step with DAViCal on PostgreSQL, set up in build/servers; PEOPLE and SECONDS of the longest test
	@scripts/install-packages packages-servers.txt
	@scripts/test-servers

picture: build ## draw docs/architecture.svg from docs/architecture.dot, and docs/session.svg from a real session
	@scripts/draw-architecture
	@scripts/draw-session

setup: ## install the packages of packages.txt that are missing
	@scripts/install-packages
	@mkdir -p build

clean: ## remove everything that was built
	rm -rf build
