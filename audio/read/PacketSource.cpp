// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/PacketSource.h"

#include <algorithm>
#include <utility>

#include "audio/parallel/Stop.h"
#include "audio/read/PacketLengths.h"

namespace audio::read {
namespace {

// A run that was read to its end is dropped; one that was read half is kept up to this size.
constexpr std::size_t longestRunKept = 1 << 18;
constexpr std::size_t packetsToCheck = 24;
constexpr int mostStrangers = 512;              // packets after a jump before the one looked for
constexpr std::int64_t nearAhead = 3 * 16'384;  // frames that are decoded rather than jumped over

/// How many landmarks before the wanted one a decoder begins after a jump: more than it needs to
/// settle.
std::size_t preRollOf(AVCodecID codec) {
    const AVCodecDescriptor* about = avcodec_descriptor_get(codec);
    if (about && (about->props & AV_CODEC_PROP_LOSSY) == 0) return 1;
    return codec == AV_CODEC_ID_OPUS ? 6 : 2;  // Opus predicts from what it decoded long before
}

/// Codecs whose decoders fill bands with noise of their own, which goes on after a flush.
bool makesNoise(AVCodecID codec) {
    return codec == AV_CODEC_ID_AAC || codec == AV_CODEC_ID_AC3 || codec == AV_CODEC_ID_EAC3;
}

}  // namespace

PacketSource::PacketSource(ffmpeg::Input input)
    : file_(input.file()),
      part_(input.part()),
      parameters_(ffmpeg::copyParameters(input.parameters())),
      timeBase_(input.stream().time_base) {
    format_ = input.format();
    contents_ = input.contents();
    estimate_ = input.statedFrames();
    if (format_.channels < 1) throw fileError(file_, "states no number of channels");
    trims_ = PacketLengths(*parameters_).states() || hasEqualPackets(parameters_->codec_id);
    decoder_.emplace(openDecoder());
    reader_ = openPackets(std::move(input));
    place_ = firstPlace();
}

ffmpeg::StreamDecoder PacketSource::openDecoder() const {
    try {
        return ffmpeg::StreamDecoder(
            *parameters_, timeBase_,
            trims_ ? ffmpeg::StreamDecoder::Trims::Left : ffmpeg::StreamDecoder::Trims::Done);
    } catch (const platform::Error& error) {
        throw fileError(file_, std::string("cannot be decoded: ") + error.what());
    }
}

std::unique_ptr<PacketReader> PacketSource::openReader() const {
    return openPackets(ffmpeg::Input(file_, part_));
}

PacketPlace PacketSource::firstPlace() const {
    PacketPlace first;
    first.trimmer = Trimmer(trims_ ? codecDelay(*parameters_) : 0);
    return first;
}

std::int64_t PacketSource::runEnd() const {
    return runStart_ + static_cast<std::int64_t>(run_.size() / channels());
}

void PacketSource::startRun(std::int64_t frame) {
    run_.clear();
    runStart_ = frame;
}

std::size_t PacketSource::read(float* interleaved, std::size_t frames) {
    std::size_t done = 0;
    while (done < frames) {
        const std::int64_t end = frames_ ? std::min(*frames_, runEnd()) : runEnd();
        if (position_ < runStart_ || (frames_ && position_ >= *frames_)) break;
        if (position_ >= end) {
            startRun(runEnd());
            if (!extendRun()) {
                frames_ = runEnd();
                break;
            }
            continue;
        }
        const std::size_t count =
            std::min(frames - done, static_cast<std::size_t>(end - position_));
        const auto from = static_cast<std::size_t>(position_ - runStart_) * channels();
        std::copy_n(run_.begin() + static_cast<std::ptrdiff_t>(from), count * channels(),
                    interleaved + done * channels());
        done += count;
        position_ += static_cast<std::int64_t>(count);
    }
    return done;
}

std::int64_t PacketSource::frames() {
    if (!frames_) {
        complete();
        frames_ = table_.frames();
    }
    return *frames_;
}

void PacketSource::seek(std::int64_t frame) {
    frame = std::max<std::int64_t>(0, frame);
    const std::int64_t estimate = estimatedFrames();
    if (frames_ || estimate < 0 || frame >= estimate) frame = std::min(frame, frames());
    position_ = frame;
    if (frame >= runStart_ && frame <= runEnd() && !run_.empty()) return;
    if (frames_ && frame >= *frames_) return;
    jumpBefore(frame);
    // What lies before the frame is decoded and let go.
    while (runEnd() <= frame) {
        if (run_.size() > longestRunKept) startRun(runEnd());
        if (!extendRun()) {  // the file ends before what it states
            frames_ = runEnd();
            position_ = std::min(frame, *frames_);
            break;
        }
    }
}

/// Decodes on until the run has grown; false at the end of the stream.
bool PacketSource::extendRun() {
    const std::int64_t before = runEnd();
    while (goal_ || runEnd() == before)
        if (!step()) return false;
    return true;
}

/// Decodes the next packet, or at the end what the decoder still holds, onto the run.
bool PacketSource::step() {
    if (drained_) return false;
    if (goal_ && place_.number >= goal_->number) {
        place_ = *std::exchange(goal_, std::nullopt);
        startRun(place_.frame);
    }
    const std::size_t size = run_.size();
    const bool got = std::exchange(packetRead_, false) || reader_->read(packet_);
    const ffmpeg::StreamDecoder::Result result =
        decoder_->decode(got ? packet_.data.get() : nullptr, run_);
    if (!got) {
        drained_ = true;
        packet_ = SoundPacket{};
        goal_.reset();
        place(size, static_cast<std::int64_t>(result.frames));
        table_.finish(place_.frame);
        return result.frames > 0;
    }
    if (goal_) {
        run_.clear();
        ++place_.number;
        return true;
    }
    table_.note(reader_->mark(packet_), place_);
    damaged_ = damaged_ || result.damaged || packet_.damaged;
    place(size, framesGiven(result));
    return true;
}

/// Makes what came out of one packet, from `runSize` on, so many frames; cuts off what is no sound.
void PacketSource::place(std::size_t runSize, std::int64_t frames) {
    run_.resize(runSize + static_cast<std::size_t>(frames) * channels());
    const std::int64_t lost = packet_.lost;
    const Kept kept = place_.pass(packet_, frames, trims_);
    const auto begin = run_.begin() + static_cast<std::ptrdiff_t>(runSize);
    run_.resize(runSize + static_cast<std::size_t>(kept.front + kept.kept) * channels());
    run_.erase(begin, begin + static_cast<std::ptrdiff_t>(kept.front) *
                                  static_cast<std::ptrdiff_t>(channels()));
    run_.insert(run_.begin() + static_cast<std::ptrdiff_t>(runSize),
                static_cast<std::size_t>(lost) * channels(), 0.0F);
}

/// The frames that a packet counts for: those that came out of it, unless it was damaged. Then they
/// are as many as it states, or as many as the last good one gave.
std::int64_t PacketSource::framesGiven(const ffmpeg::StreamDecoder::Result& result) {
    const auto given = static_cast<std::int64_t>(result.frames);
    const bool equal = hasEqualPackets(parameters_->codec_id);
    const std::int64_t stated = equal ? (usual_ > 0 ? usual_ : given) : statedBy(packet_);
    if (trims_ && given != stated && statesLengths()) {
        damaged_ = true;
        return statedBy(packet_);
    }
    if (result.damaged && given < usual_) return usual_;
    if (!result.damaged && given > 0) usual_ = given;
    return given;
}

std::int64_t PacketSource::statedBy(const SoundPacket& packet) const {
    return equal_ > 0 ? equal_ : packet.stated.value_or(0);
}

bool PacketSource::statesLengths() {
    if (!lengthsHold_) lengthsHold_ = trims_ && checkLengths();
    return *lengthsHold_;
}

/// Whether the first packets give what they state; learns the size of equal ones.
bool PacketSource::checkLengths() {
    const bool equal = hasEqualPackets(parameters_->codec_id);
    const std::unique_ptr<PacketReader> reader = openReader();
    ffmpeg::StreamDecoder decoder = openDecoder();
    std::vector<float> sound;
    SoundPacket packet;
    for (std::size_t i = 0; i < packetsToCheck && reader->read(packet); ++i) {
        sound.clear();
        const ffmpeg::StreamDecoder::Result result = decoder.decode(packet.data.get(), sound);
        if (result.damaged) break;  // nothing to compare with; what is stated holds
        const auto given = static_cast<std::int64_t>(result.frames);
        if (equal && i == 0) equal_ = given;
        if (given != statedBy(packet)) return false;
    }
    return !equal || equal_ > 0;
}

/// Fills the table to the end.
void PacketSource::complete() {
    if (table_.frames()) return;
    if (statesLengths())
        scan();
    else
        decodeToEnd();
}

void PacketSource::scan() {
    const std::unique_ptr<PacketReader> reader = openReader();
    PacketTable table;
    PacketPlace place = firstPlace();
    SoundPacket packet;
    while (reader->read(packet)) {
        parallel::throwIfStopped();
        table.note(reader->mark(packet), place);
        place.pass(packet, statedBy(packet), trims_);
    }
    // What the decoder holds back until the end.
    if (place.number > 0) place.pass(SoundPacket{}, wmaBlock(*parameters_), trims_);
    table.finish(place.frame);
    table_ = std::move(table);
}

void PacketSource::decodeToEnd() {
    PacketSource other(ffmpeg::Input(file_, part_));
    other.lengthsHold_ = false;
    while (other.extendRun()) {
        parallel::throwIfStopped();
        other.startRun(other.runEnd());
    }
    table_ = std::move(other.table_);
}

/// Makes the run begin at or before a frame, or the next packet give it.
void PacketSource::jumpBefore(std::int64_t frame) {
    const std::int64_t ahead = frame - place_.frame;
    if (!goal_ && !drained_ && frame >= runStart_ && ahead <= nearAhead) return;
    const bool known = !table_.landmarks().empty() && frame < table_.landmarks().back().place.frame;
    if (!known) complete();

    const std::vector<PacketTable::Landmark>& landmarks = table_.landmarks();
    const std::size_t count = table_.countUpTo(frame);
    const std::size_t settling = preRollOf(parameters_->codec_id);
    if (count <= settling) return restart();
    const PacketTable::Landmark& from = landmarks[count - 1 - settling];
    if (!findPacket(from) && !countTo(from)) return restart();
    if (makesNoise(parameters_->codec_id))
        decoder_.emplace(openDecoder());
    else
        decoder_->flush();
    begin(from.place);
    packetRead_ = true;
    goal_ = landmarks[count - 1].place;
}

/// Begins anew with a packet that the reader gives next, or gave last.
void PacketSource::begin(const PacketPlace& place) {
    place_ = place;
    goal_.reset();
    drained_ = false;
    packetRead_ = false;
    usual_ = 0;
    startRun(place.frame);
}

bool PacketSource::findPacket(const PacketTable::Landmark& landmark) {
    if (!reader_->seek(landmark.mark)) return false;
    for (int stranger = 0; stranger < mostStrangers && reader_->read(packet_); ++stranger) {
        const std::optional<PacketMark> mark = reader_->mark(packet_);
        if (!mark) continue;
        if (*mark == landmark.mark) return true;
        if (mark->offset > landmark.mark.offset && landmark.mark.offset >= 0) return false;
    }
    return false;
}

/// Reads from the first packet to a landmark's.
bool PacketSource::countTo(const PacketTable::Landmark& landmark) {
    reader_->rewind();
    for (std::size_t number = 0; reader_->read(packet_); ++number)
        if (number == landmark.place.number) return true;
    return false;
}

void PacketSource::restart() {
    reader_->rewind();
    decoder_.emplace(openDecoder());  // a flushed one may begin otherwise than a new one
    begin(firstPlace());
}

}  // namespace audio::read
