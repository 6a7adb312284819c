// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/form/TrackScanner.h"

#include <algorithm>
#include <vector>

#include "audio/dsp/Peaks.h"
#include "audio/read/Decoder.h"
#include "audio/tags/TrackInfo.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "widgets/Dispatch.h"

namespace wizard {

namespace {

constexpr std::size_t Columns = 2000;
constexpr std::size_t ChunkFrames = 8192;

}  // namespace

TrackScanner::TrackScanner(QObject* parent) : QObject(parent) {
    pool_.setMaxThreadCount(1);
    pool_.setThreadPriority(QThread::LowestPriority);
}

TrackScanner::~TrackScanner() {
    stop();
}

void TrackScanner::want(const QStringList& paths) {
    constexpr int LengthsFirst = 1;
    for (const QString& path : paths) {
        if (stopped_ || scans_.contains(path)) continue;
        scans_.insert(path, {});
        pool_.start([this, path] { readLength(path); }, LengthsFirst);
        pool_.start([this, path] { readPeaks(path); });
    }
}

void TrackScanner::stop() {
    stopped_ = true;
    pool_.clear();
    pool_.waitForDone();
}

void TrackScanner::readLength(const QString& path) {
    const auto info = audio::tags::readTrackInfo(platform::toPath(path));
    TrackScan scan;
    scan.seconds = static_cast<double>(std::max<std::int64_t>(0, info.durationMs)) / 1000;
    QMetaObject::invokeMethod(this, widgets::guarded([this, path, scan] { keep(path, scan); }));
}

void TrackScanner::readPeaks(const QString& path) try {
    audio::read::Decoder decoder(platform::toPath(path));
    const int channels = decoder.format().channels;
    audio::dsp::PeakMeter meter(decoder.frames(), channels, Columns);
    std::vector<float> samples(ChunkFrames * static_cast<std::size_t>(channels));
    while (const std::size_t read = stopped_ ? 0 : decoder.read(samples.data(), ChunkFrames))
        meter.add(samples.data(), read);
    if (stopped_) return;
    TrackScan scan;
    scan.seconds = static_cast<double>(decoder.frames()) / decoder.format().sampleRate;
    for (const auto& column : meter.peaks().columns)
        scan.peaks << std::max(-column.low, column.high);
    if (!scan.peaks.empty()) scan.peak = *std::ranges::max_element(scan.peaks);
    QMetaObject::invokeMethod(this, widgets::guarded([this, path, scan] { keep(path, scan); }));
} catch (const platform::Error&) {
    // The length is all that is shown of such a file; the run will say what is wrong with it.
}

void TrackScanner::keep(const QString& path, const TrackScan& scan) {
    scans_.insert(path, scan);
    Q_EMIT changed();
}

}  // namespace wizard
