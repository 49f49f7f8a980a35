# make run   builds everything and runs the main job (the demo).
# make test  builds everything and runs every test.
# Both first install the Debian packages that are missing.

BUILD_DIR ?= build
SAN_BUILD_DIR ?= build-sanitize
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE_FLAGS ?=

.PHONY: all deps configure build run test sanitize clean format format-check

all: build

deps:
	./scripts/install-deps.sh

configure: deps
	cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS)

build: configure
	cmake --build $(BUILD_DIR) -j $(JOBS)

run: build
	$(BUILD_DIR)/tools/kelvary/kelvary demo $(BUILD_DIR)/demo

test: build
	cd $(BUILD_DIR) && ctest --output-on-failure --no-tests=error -j $(JOBS)

sanitize: deps
	cmake -S . -B $(SAN_BUILD_DIR) -DCMAKE_BUILD_TYPE=Debug -DKELVARY_SANITIZE=ON \
	      -DKELVARY_BUILD_BENCHMARKS=OFF $(CMAKE_FLAGS)
	cmake --build $(SAN_BUILD_DIR) -j $(JOBS)
	cd $(SAN_BUILD_DIR) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
	      ctest --output-on-failure --no-tests=error -j $(JOBS)

format:
	find src tools tests bench examples -name '*.cpp' -o -name '*.h' | xargs clang-format -i

# The tree is laid out by Debian 12's clang-format 14; other versions place a
# few lines differently, so they only report.
format-check:
	./scripts/install-deps.sh clang-format
	@if clang-format --version | grep -q 'version 14\.'; then \
	  find src tools tests bench examples -name '*.cpp' -o -name '*.h' | xargs clang-format --dry-run -Werror; \
	else \
	  echo "format-check: $$(clang-format --version) is not version 14; differences only reported"; \
	  find src tools tests bench examples -name '*.cpp' -o -name '*.h' | xargs clang-format --dry-run 2>&1 | grep -c violations || true; \
	fi

clean:
	rm -rf $(BUILD_DIR) $(SAN_BUILD_DIR)
