// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/form/TrackScanner.h"

#include <algorithm>
#include <cmath>

#include "audio/codec/Decoder.h"
#include "audio/tags/TrackInfo.h"
#include "platform/Error.h"
#include "platform/Paths.h"

namespace wizard {

namespace {

constexpr int SlicesPerSecond = 10;

float highest(const std::vector<float>& samples, std::size_t count) {
    float peak = 0;
    for (std::size_t i = 0; i < count; ++i) peak = std::max(peak, std::abs(samples[i]));
    return peak;
}

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
    QMetaObject::invokeMethod(this, [this, path, scan] { keep(path, scan); });
}

void TrackScanner::readPeaks(const QString& path) try {
    audio::codec::Decoder decoder(platform::toPath(path));
    const auto channels = static_cast<std::size_t>(decoder.format().channels);
    const auto slice = static_cast<std::size_t>(decoder.format().sampleRate / SlicesPerSecond);
    std::vector<float> samples(slice * channels);
    TrackScan scan;
    std::size_t frames = 0;
    while (const std::size_t read = stopped_ ? 0 : decoder.read(samples.data(), slice)) {
        scan.peaks.push_back(highest(samples, read * channels));
        frames += read;
    }
    if (stopped_) return;
    scan.seconds = static_cast<double>(frames) / decoder.format().sampleRate;
    if (!scan.peaks.empty()) scan.peak = *std::ranges::max_element(scan.peaks);
    QMetaObject::invokeMethod(this, [this, path, scan] { keep(path, scan); });
} catch (const platform::Error&) {
    // The length is all that is shown of such a file; the run will say what is wrong with it.
}

void TrackScanner::keep(const QString& path, const TrackScan& scan) {
    scans_.insert(path, scan);
    Q_EMIT changed();
}

}  // namespace wizard
