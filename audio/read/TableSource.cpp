// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/TableSource.h"

#include <algorithm>

namespace audio::read {
namespace {

constexpr std::size_t preRollPackets = 8;
constexpr std::int64_t preRollFrames = 16'384;
constexpr std::size_t packetsToConfirm = 24;
constexpr int mostStrangers = 64;  // packets after a jump that the table does not know

/// Frames in one frame of WMA 1 or 2, by its sampling rate.
std::int64_t wmaFrameLength(const AVCodecParameters& parameters) {
    const bool first = parameters.codec_id == AV_CODEC_ID_WMAV1;
    if (!first && parameters.codec_id != AV_CODEC_ID_WMAV2) return 0;
    if (parameters.sample_rate <= 16'000) return 512;
    if (parameters.sample_rate <= 22'050) return 1'024;
    if (parameters.sample_rate <= 32'000 && first) return 1'024;
    return 2'048;
}

/// The second flags word of the codec's extra data tells whether frames span packets.
bool usesReservoir(const AVCodecParameters& parameters) {
    const int at = parameters.codec_id == AV_CODEC_ID_WMAV1 ? 2 : 4;
    return parameters.extradata_size > at && (parameters.extradata[at] & 0x02) != 0;
}

}  // namespace

TableSource::TableSource(ffmpeg::Input input)
    : StreamSource(std::move(input)),
      block_(wmaFrameLength(input_.parameters())),
      reservoir_(usesReservoir(input_.parameters())) {
    if (input_.parameters().block_align < 1) block_ = 0;
}

TableSource::Entry TableSource::entryOf(const AVPacket& packet) const {
    return {packet.pts, packet.pos, packet.size, 0};
}

bool TableSource::extendRun() {
    const std::int64_t before = runEnd();
    while (runEnd() == before || next_ <= settled_) {
        const std::size_t size = run_.size();
        const Step step = decodePacket();
        if (step.end) {
            complete_ = complete_ || next_ == table_.size();
            return runEnd() > before;
        }
        if (!takeStep(step, size)) run_.resize(size);
        if (next_ > settled_ && runEnd() > before) return true;
    }
    return true;
}

/// Sets what came out of one packet in its place; false where it is only pre-roll.
bool TableSource::takeStep(const Step& step, std::size_t runSize) {
    const std::size_t number = next_++;
    const Entry entry = drained_ ? Entry{INT64_MAX, -1, 0, 0} : entryOf(*packet_);
    const auto got = static_cast<std::int64_t>(step.result.frames);
    if (number < settled_) return false;
    if (number == settled_ && number > 0 && runSize == 0) runStart_ = startOf(number);
    const bool known = number < table_.size() && table_[number].samePacket(entry);
    if (!known) {
        table_.resize(std::min(number, table_.size()));
        record(entry, got, step.result.damaged);
    }
    const std::int64_t expected = table_[number].end - startOf(number);
    if (expected != got) damaged_ = true;
    if (expected > got && !step.result.damaged)  // what is missing lay before this packet
        run_.insert(run_.begin() + static_cast<std::ptrdiff_t>(runSize),
                    static_cast<std::size_t>(expected - got) * channels(), 0.0F);
    run_.resize(runSize + static_cast<std::size_t>(expected) * channels());
    if (!step.result.damaged && got > 0) usual_ = got;
    return true;
}

/// Adds a packet at the table's end. One that gave nothing because it is damaged counts as long as
/// the last good one.
void TableSource::record(const Entry& entry, std::int64_t got, bool damaged) {
    Entry added = entry;
    added.end = startOf(table_.size()) + (damaged && got < usual_ ? usual_ : got);
    table_.push_back(added);
}

void TableSource::restart() {
    rewindStream();
    next_ = 0;
    settled_ = 0;
}

void TableSource::jumpBefore(std::int64_t frame) {
    if (next_ == 0 && !extendRun()) return;  // the decoder drops its delay before anything else
    if (block_ > 0 && !complete_) build();
    const auto found = std::find_if(table_.begin(), table_.end(),
                                    [frame](const Entry& entry) { return entry.end > frame; });
    const auto number = static_cast<std::size_t>(found - table_.begin());
    const bool shortWay = number >= next_ && number - next_ <= 2 * preRollPackets;
    const bool frontier = next_ == table_.size() && number >= next_;
    const bool behind = frame >= runStart_ && next_ >= settled_;
    if (behind && (shortWay || frontier)) return;

    std::size_t first = number;
    while (first > 0 &&
           (number - first < preRollPackets || startOf(number) - startOf(first) < preRollFrames))
        --first;
    if (first == 0) return restart();
    settled_ = number;
    if (!jumpToPacket(first)) restart();
}

/// Makes packet `first`, or an earlier one, the next to be decoded; false where it is not found.
bool TableSource::jumpToPacket(std::size_t first) {
    const std::size_t goal = settled_;
    for (std::size_t back = 0; back <= 4'096; back = back * 4 + 16) {
        const std::size_t from = first > back ? first - back : 0;
        if (!input_.seek(table_[from].pts)) return false;
        decoder_.flush();
        drained_ = false;
        startRun(0);
        for (int stranger = 0; stranger < mostStrangers && input_.read(*packet_); ++stranger) {
            const Entry seen = entryOf(*packet_);
            const auto known = std::find_if(table_.begin(), table_.end(), [&](const Entry& entry) {
                return entry.samePacket(seen);
            });
            if (known == table_.end()) continue;
            next_ = static_cast<std::size_t>(known - table_.begin());
            if (next_ > first) break;
            settled_ = goal;
            decoder_.decode(packet_.get(), run_);
            startRun(0);
            ++next_;
            return true;
        }
        if (from == 0) break;
    }
    return false;
}

std::int64_t TableSource::countFrames() {
    if (!complete_ && !(block_ > 0 && build())) completeByDecoding();
    return table_.empty() ? 0 : table_.back().end;
}

void TableSource::completeByDecoding() {
    TableSource scan(ffmpeg::Input(input_.file(), input_.part()));
    while (scan.extendRun()) scan.startRun(scan.runEnd());
    table_ = std::move(scan.table_);
    complete_ = true;
}

/// Makes the whole table from what the packets of WMA state; false where decoding disagrees. The
/// decoder drops two of its frames at the start and gives one more at the end.
bool TableSource::build() {
    ffmpeg::Input scan(input_.file(), input_.part());
    std::vector<Entry> built;
    std::int64_t sum = -2 * block_;
    std::int64_t first = 0;
    while (scan.read(*packet_)) {
        Entry entry = entryOf(*packet_);
        if (built.empty()) first = entry.pts;
        sum += lostBefore(entry.pts - first, sum + 2 * block_);
        sum += framesIn(*packet_, built.empty());
        entry.end = std::max<std::int64_t>(0, sum);
        built.push_back(entry);
    }
    if (!confirmedByDecoding(built)) {
        block_ = 0;
        return false;
    }
    if (!built.empty())
        built.push_back({INT64_MAX, -1, 0, std::max<std::int64_t>(0, sum + block_)});
    table_ = std::move(built);
    complete_ = true;
    return true;
}

/// Frames of packets that are missing before one of this time, when so many frames were counted
/// already. A stamp is a millisecond wide where blocks do not span packets, else some blocks.
std::int64_t TableSource::lostBefore(std::int64_t time, std::int64_t counted) const {
    constexpr std::int64_t longest = 60;  // seconds; a stamp further ahead is not believed
    const std::int64_t place =
        av_rescale_q(time, input_.stream().time_base, AVRational{1, format_.sampleRate});
    const std::int64_t lost = (place - counted + block_ / 2) / block_;
    const std::int64_t least = reservoir_ ? 4 : 1;
    const bool believed = lost >= least && lost * block_ <= longest * format_.sampleRate;
    return believed ? lost * block_ : 0;
}

std::int64_t TableSource::framesIn(const AVPacket& packet, bool first) const {
    const int align = input_.parameters().block_align;
    std::int64_t count = 0;
    for (int at = 0; at == 0 || at + align <= packet.size; at += align) {
        const int stated = reservoir_ && packet.size > at ? packet.data[at] & 0x0F : 1;
        const bool afterNothing = reservoir_ && first && at == 0;  // what began before is lost
        count += std::max(0, stated - (afterNothing ? 1 : 0));
    }
    return count * block_;
}

bool TableSource::confirmedByDecoding(const std::vector<Entry>& built) const {
    TableSource check(ffmpeg::Input(input_.file(), input_.part()));
    check.block_ = 0;
    while (check.table_.size() < packetsToConfirm && check.extendRun()) continue;
    if (check.damaged()) return true;  // nothing to compare with; what is stated holds
    const std::size_t count = std::min({check.table_.size(), built.size(), packetsToConfirm});
    return std::equal(built.begin(), built.begin() + static_cast<std::ptrdiff_t>(count),
                      check.table_.begin(),
                      [](const Entry& a, const Entry& b) { return a.end == b.end; });
}

}  // namespace audio::read
