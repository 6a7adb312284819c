// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Jobs.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <map>
#include <mutex>
#include <system_error>

#include "audio/parallel/Launch.h"
#include "platform/Interrupt.h"
#include "platform/Paths.h"

namespace cli {
namespace {

using Turns = std::vector<std::size_t>;

std::filesystem::path identity(const QString& file) {
    const std::filesystem::path path = platform::toPath(file);
    std::error_code unknown;
    const std::filesystem::path found = std::filesystem::weakly_canonical(path, unknown);
    return unknown ? path : found;
}

// The turns of each file that there is, in the order of its first one.
std::vector<Turns> turnsByFile(const QStringList& files) {
    std::vector<Turns> turns;
    std::map<std::filesystem::path, std::size_t> known;
    for (qsizetype number = 0; number < files.size(); ++number) {
        const auto [place, isNew] = known.try_emplace(identity(files[number]), turns.size());
        if (isNew) turns.emplace_back();
        turns[place->second].push_back(static_cast<std::size_t>(number));
    }
    return turns;
}

}  // namespace

std::vector<std::size_t> forEachFile(const QStringList& files, unsigned jobs,
                                     const std::function<void(std::size_t)>& work) {
    const std::vector<Turns> turns = turnsByFile(files);
    std::atomic<std::size_t> next = 0;
    std::mutex mutex;
    std::vector<std::size_t> left;
    const auto takeTurns = [&] {
        for (std::size_t file = next++; file < turns.size(); file = next++) {
            for (const std::size_t number : turns[file]) {
                if (!platform::interrupted()) {
                    work(number);
                    continue;
                }
                const std::lock_guard lock(mutex);
                left.push_back(number);
            }
        }
    };
    {
        std::vector<std::future<void>> threads;
        const std::size_t count =
            std::clamp<std::size_t>(jobs, 1, std::max<std::size_t>(turns.size(), 1));
        for (std::size_t thread = 0; thread < count; ++thread)
            threads.push_back(audio::parallel::launch("file", [&] { takeTurns(); }));
        for (std::future<void>& thread : threads) thread.get();
    }
    std::sort(left.begin(), left.end());
    return left;
}

}  // namespace cli
