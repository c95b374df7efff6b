# The two commands: `make demo` shows the main job on real input, `make test` runs everything CI runs.
# Both install what is missing from packages.txt by themselves (Debian 12; root, or sudo).

.PHONY: help demo test test-asan test-tsan lint format build setup clean
.DEFAULT_GOAL := help

help: ## this list
	@sed -n 's/^\([a-z-]*\):.*## \(.*\)/  make \1	\2/p' Makefile | expand -t 20

demo: setup ## build, import contacts into a throw-away address book, run the typical calculation
	@scripts/demo

test: setup lint ## every check and test: lint, the release build's tests, then the same under the sanitizers
	@scripts/run-tests release
	@scripts/run-tests asan

test-asan: setup ## the tests under the address and undefined-behaviour sanitizers
	@scripts/run-tests asan

test-tsan: setup ## the tests under the thread sanitizer
	@scripts/run-tests tsan

lint: setup ## clang-format and clang-tidy over all sources
	@scripts/lint

format: setup ## lay out all sources with clang-format
	@git ls-files '*.cpp' '*.h' '*.m' '*.mm' | xargs clang-format -i

build: setup ## the release build
	@mkdir -p build/release && cmake --preset release > build/release/configure.log && cmake --build --preset release

setup: ## install the packages of packages.txt that are missing
	@scripts/install-packages
	@mkdir -p build

clean: ## remove everything that was built
	rm -rf build
