// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/parallel/Budget.h"

#include <algorithm>
#include <thread>

namespace audio::parallel {
namespace {

constexpr int waiting = 2;  // tasks beyond those that run, so that no core waits for sound

}  // namespace

int threadCount(int asked) {
    constexpr int most = 8;
    const int cores = static_cast<int>(std::thread::hardware_concurrency());
    return std::clamp(asked > 0 ? asked : cores, 1, most);
}

Budget& Budget::ofProgram() {
    static Budget budget;
    return budget;
}

Budget::Budget() : cores_(threadCount()), most_(threadCount() + waiting) {}

bool Budget::allowsMore() const {
    return places_ < most_;
}

Budget::Place::Place() {
    ++ofProgram().places_;
}

Budget::Place::~Place() {
    --ofProgram().places_;
}

Budget::Turn::Turn() {
    ofProgram().cores_.acquire();
}

Budget::Turn::~Turn() {
    ofProgram().cores_.release();
}

}  // namespace audio::parallel
