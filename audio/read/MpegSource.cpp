// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/MpegSource.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "audio/mpeg/read/FrameIndex.h"
#include "audio/parallel/Stop.h"

namespace audio::read {
namespace {

// What a decoder has to hear before its output is that of an uninterrupted run: the largest
// reservoir (511 bytes of main data) and a few frames for the overlap of the two filter banks.
constexpr int reservoirBytes = 512;
constexpr std::size_t overlapFrames = 4;
constexpr int mostFramesLost = 64;  // in one damaged stretch; more than that is something else
constexpr std::size_t framesToJudgeBy = 32;  // whether the bit-rate varies, before all are known

AVCodecID codecOfLayer(int layer) {
    return layer == 1 ? AV_CODEC_ID_MP1 : layer == 2 ? AV_CODEC_ID_MP2 : AV_CODEC_ID_MP3;
}

ffmpeg::StreamDecoder makeDecoder(const mpeg::FrameHeader& header) {
    const ffmpeg::ParametersPtr parameters(avcodec_parameters_alloc());
    if (!parameters) throw std::bad_alloc();
    parameters->codec_type = AVMEDIA_TYPE_AUDIO;
    parameters->codec_id = codecOfLayer(header.layer);
    parameters->sample_rate = header.sampleRate;
    av_channel_layout_default(&parameters->ch_layout, header.channels());
    return ffmpeg::StreamDecoder(*parameters, AVRational{1, header.sampleRate});
}

}  // namespace

MpegSource::MpegSource(const std::filesystem::path& file)
    : file_(file), reader_(file), scanner_(reader_), packet_(ffmpeg::makePacket()) {
    while (table_.size() < framesToJudgeBy && scanOne()) continue;
    if (table_.empty()) throw fileError(file_, "holds no MPEG audio");
    if (header_.freeFormat())
        throw fileError(file_, "is in MPEG free format, for which there is no decoder");
    describe();
    decoder_.emplace(makeDecoder(header_));
}

void MpegSource::describe() {
    format_.container = Container::Mpeg;
    format_.containerName = "mp3";
    format_.codec = header_.layer == 3   ? Codec::Mp3
                    : header_.layer == 2 ? Codec::Mp2
                                         : Codec::Other;
    format_.codecName = avcodec_get_name(codecOfLayer(header_.layer));
    format_.sampleRate = header_.sampleRate;
    format_.channels = header_.channels();

    const std::int64_t soundBytes = reader_.size() - table_.front().offset;
    const std::int64_t shownBytes =
        table_.back().offset + table_.back().size - table_.front().offset;
    estimate_ =
        static_cast<std::int64_t>(static_cast<double>(rawEnd()) * static_cast<double>(soundBytes) /
                                  static_cast<double>(shownBytes));
    if (complete_) {
        settle();
    } else if (info_ && info_->frames) {
        const std::int64_t raw = std::int64_t{*info_->frames} * header_.samples();
        const mpeg::GaplessRange range = mpeg::gaplessRange(header_, &*info_, raw);
        start_ = range.start;
        statedEnd_ = range.start + range.length;
        // A frame has at least 24 bytes: a tag that promises more than the file can hold lies.
        const bool possible = std::int64_t{*info_->frames} * 24 <= soundBytes;
        const bool whole = !info_->bytes || std::int64_t{*info_->bytes} <= soundBytes + 4'096;
        if (possible && whole) estimate_ = range.length;
    } else {
        start_ = mpeg::gaplessRange(header_, info_ ? &*info_ : nullptr, INT64_MAX / 2).start;
    }
    describeBitRate();
}

void MpegSource::describeBitRate() {
    const bool tagSaysSo = info_ && (info_->kind != mpeg::InfoTag::Kind::Info ||
                                     (info_->vbrMethod >= 2 && info_->vbrMethod <= 6));
    format_.variableBitRate = tagSaysSo || lowestBitRate_ != highestBitRate_;
    format_.bitRate = header_.bitRate;
    if (!format_.variableBitRate) return;
    const bool stated = !complete_ && info_ && info_->frames && info_->bytes && *info_->frames > 0;
    const double bytes = stated ? double(*info_->bytes) : double(soundBytes_);
    const double samples = stated ? double(*info_->frames) * header_.samples() : double(rawEnd());
    format_.bitRate = std::llround(bytes * 8 * header_.sampleRate / std::max(1.0, samples));
    const bool byQuality = info_ && info_->vbrMethod >= 3 && info_->vbrMethod <= 6;
    if (byQuality && info_->quality && *info_->quality >= 1 && *info_->quality <= 100)
        format_.quality = std::min(9.999, (100 - double(*info_->quality)) / 10);
}

bool MpegSource::scanOne() {
    if (complete_) return false;
    const std::optional<mpeg::ScannedFrame> frame = scanner_.next();
    if (!frame) {
        complete_ = true;
        settle();
        return false;
    }
    if (frame->junkBefore > 0 && !table_.empty()) bridge(*frame);
    if (table_.empty() && !info_) {
        header_ = frame->header;
        info_ = mpeg::InfoTag::parse(frame->header, scanner_.bytes(*frame));
        if (info_) return true;  // a frame that holds a tag holds no sound
    }
    if (table_.empty()) {
        header_ = frame->header;
        lowestBitRate_ = highestBitRate_ = header_.bitRate;
    }
    table_.push_back({frame->offset, frame->size, rawEnd(), frame->header.samples()});
    lowestBitRate_ = std::min(lowestBitRate_, frame->header.bitRate);
    highestBitRate_ = std::max(highestBitRate_, frame->header.bitRate);
    soundBytes_ += frame->size;
    return true;
}

/// Bytes that are no frames are frames that were damaged: silence of their length takes their
/// place. A tag between two sounds is not, and has no length.
void MpegSource::bridge(const mpeg::ScannedFrame& frame) {
    damaged_ = true;
    const std::span<const std::uint8_t> head = reader_.at(frame.offset - frame.junkBefore, 8);
    const std::string_view text(reinterpret_cast<const char*>(head.data()), head.size());
    if (text.starts_with("ID3") || text.starts_with("TAG") || text.starts_with("APETAGEX")) return;
    const double usual = double(soundBytes_) / double(table_.size());
    const int lost =
        static_cast<int>(std::llround(std::min(1e6, double(frame.junkBefore) / usual)));
    if (lost > mostFramesLost) return;
    for (int i = 0; i < lost; ++i) table_.push_back({0, 0, rawEnd(), frame.header.samples()});
}

void MpegSource::scanAll() {
    while (scanOne()) parallel::throwIfStopped();
}

/// Every frame is known: so is the length.
void MpegSource::settle() {
    const mpeg::GaplessRange range =
        mpeg::gaplessRange(header_, info_ ? &*info_ : nullptr, rawEnd());
    start_ = range.start;
    statedEnd_ = range.start + range.length;
    estimate_ = range.length;
    describeBitRate();
}

std::int64_t MpegSource::rawEnd() const {
    return table_.empty() ? 0 : table_.back().raw + table_.back().samples;
}

bool MpegSource::knows(std::size_t number) {
    while (number >= table_.size() && scanOne()) continue;
    return number < table_.size();
}

std::int64_t MpegSource::frames() {
    scanAll();
    return estimate_;
}

/// Whether a raw place is past the sound's end. The tag's word holds only where no more frames
/// follow than it counts, so all of them are looked for when its end is reached.
bool MpegSource::beyondSound(std::int64_t raw) {
    if (!complete_ && statedEnd_ > 0 && raw >= statedEnd_) scanAll();
    return complete_ && statedEnd_ > 0 && raw >= statedEnd_;
}

bool MpegSource::decodeNext() {
    if (!knows(next_)) return false;
    const Entry entry = table_[next_++];
    pending_.clear();
    pendingRaw_ = entry.raw;
    if (entry.size == 0) {
        pending_.resize(static_cast<std::size_t>(entry.samples) *
                        static_cast<std::size_t>(format_.channels));
        return true;
    }
    ffmpeg::fillPacket(*packet_, reader_.at(entry.offset, static_cast<std::size_t>(entry.size)));
    const ffmpeg::StreamDecoder::Result result = decoder_->decode(packet_.get(), pending_);
    const auto samples = static_cast<std::size_t>(entry.samples);
    pending_.resize(samples * static_cast<std::size_t>(format_.channels));  // silence for the rest
    if (limiter_.apply(pending_, result.damaged || result.frames != samples)) damaged_ = true;
    return true;
}

std::size_t MpegSource::read(float* interleaved, std::size_t frames) {
    const auto channels = static_cast<std::size_t>(format_.channels);
    std::size_t done = 0;
    while (done < frames) {
        const std::int64_t raw = start_ + position_;
        const std::int64_t left =
            pendingRaw_ + static_cast<std::int64_t>(pending_.size() / channels) - raw;
        if (left <= 0 || raw < pendingRaw_) {
            if (beyondSound(raw) || !decodeNext()) break;
            continue;
        }
        if (beyondSound(raw + left - 1)) {
            if (beyondSound(raw)) break;
        }
        const std::int64_t end = complete_ ? std::min(raw + left, statedEnd_) : raw + left;
        const std::size_t count =
            std::min(frames - done, static_cast<std::size_t>(std::max<std::int64_t>(0, end - raw)));
        if (count == 0) break;
        const auto first = static_cast<std::size_t>(raw - pendingRaw_) * channels;
        std::copy_n(pending_.begin() + static_cast<std::ptrdiff_t>(first), count * channels,
                    interleaved + done * channels);
        done += count;
        position_ += static_cast<std::int64_t>(count);
    }
    return done;
}

void MpegSource::seek(std::int64_t frame) {
    frame = std::max<std::int64_t>(0, frame);
    // Only as much of the table as the jump needs.
    while (rawEnd() <= start_ + frame && scanOne()) continue;
    const bool pastTag = statedEnd_ > 0 && start_ + frame >= statedEnd_;
    position_ = complete_ || pastTag ? std::min(frame, frames()) : frame;
    const std::int64_t raw = start_ + position_;
    const auto after =
        std::upper_bound(table_.begin(), table_.end(), raw,
                         [](std::int64_t place, const Entry& entry) { return place < entry.raw; });
    const auto number =
        static_cast<std::size_t>(std::max<std::ptrdiff_t>(after - table_.begin(), 1)) - 1;
    const bool ahead = number >= next_ && number - next_ <= overlapFrames;
    const bool here = !pending_.empty() && raw >= pendingRaw_ && number + 1 == next_;
    // A jump that nothing was read after may have left the decoder before its warm-up.
    if (number < warm_ || (!ahead && !here)) restartBefore(number);
}

void MpegSource::restartBefore(std::size_t number) {
    int bytes = 0;
    std::size_t first = number;
    while (first > 0 && (number - first < overlapFrames || bytes < reservoirBytes)) {
        --first;
        if (number - first > overlapFrames - 2) bytes += table_[first].size - header_.overhead();
    }
    next_ = first;
    warm_ = number;
    pending_.clear();
    pendingRaw_ = table_[first].raw;
    decoder_->flush();
    limiter_.reset();
}

}  // namespace audio::read
