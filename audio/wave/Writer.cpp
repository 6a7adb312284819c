// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/wave/Writer.h"

#include <algorithm>

#include "audio/wave/Bytes.h"
#include "platform/Error.h"
#include "platform/Paths.h"

namespace audio::wave {
namespace {

constexpr std::uint64_t sizesChunkSize = 28;  // ds64 without a table, EBU Tech 3306
constexpr std::int64_t roomForHeaders = 4'096;
constexpr std::int64_t stretch = std::int64_t{16} << 20;

std::vector<std::byte> number32(std::uint64_t value) {
    std::vector<std::byte> bytes;
    appendLittleEndian<4>(bytes, value);
    return bytes;
}

}  // namespace

Writer::Writer(const std::filesystem::path& file, const Plan& plan) : file_(file), plan_(plan) {
    std::error_code error;
    if (!plan_.model.empty()) {
        model_ = readLayout(plan_.model);
        if (!modelFile_.openForReading(plan_.model, error)) fail(error);
    }
    if (!output_.openForWriting(file_, error)) fail(error);

    const std::int64_t others =
        model_ && plan_.copyChunks ? model_->fileSize - model_->data().size : 0;
    const std::int64_t expected = plan_.dataBytes + others + roomForHeaders;
    rf64_ = (model_ && model_->rf64) || expected > static_cast<std::int64_t>(plan_.riffLimit);
    putHeader(rf64_ ? (model_ && model_->rf64 ? model_->form : "RF64") : "RIFF", 0);
    std::vector<std::byte> wave;
    appendText(wave, "WAVE");
    put(wave);
    if (rf64_ || plan_.dataBytes < 0) putSizesChunk();

    bool hasFmt = false;
    for (std::size_t i = 0; model_ && i < model_->dataIndex; ++i) {
        const Chunk& chunk = model_->chunks[i];
        if (chunk.id == "fmt " && !hasFmt) {
            putFmt();
            hasFmt = true;
        } else if (chunk.id == "fact" && factBody_ < 0 && plan_.repeatFormat) {
            putFact();
        } else if (isOther(chunk)) {
            copyChunk(chunk);
        }
    }
    if (!hasFmt) putFmt();
    if (factBody_ < 0 && plan_.format.tag != formatTagPcm) putFact();
    putHeader("data", 0);
    dataBody_ = at_;
}

void Writer::write(const std::byte* bytes, std::size_t count) {
    put(bytes, count);
    written_ += static_cast<std::int64_t>(count);
}

// The stretches end at round places of the model, so that none cuts a block of the disk in two.
void Writer::copySound(std::int64_t offset, std::int64_t count,
                       const std::function<void(std::int64_t)>& copied) {
    std::int64_t from = model_->data().body + offset;
    const std::int64_t end = from + count;
    while (from < end) {
        const std::int64_t next = std::min(end, (from / stretch + 1) * stretch);
        copyFromModel(from, next);
        written_ += next - from;
        copied(next - from);
        from = next;
    }
}

void Writer::finish() {
    padToEven();
    if (model_ && plan_.copyChunks) {
        for (std::size_t i = model_->dataIndex + 1; i < model_->chunks.size(); ++i)
            if (isOther(model_->chunks[i])) copyChunk(model_->chunks[i]);
        copyFromModel(model_->trailing, model_->fileSize);
    }
    patchSizes(at_);
    output_.close();
    modelFile_.close();
}

bool Writer::isOther(const Chunk& chunk) const {
    return plan_.copyChunks && chunk.id != "fmt " && chunk.id != "data" && chunk.id != "fact" &&
           chunk.id != "ds64";
}

void Writer::put(const std::byte* bytes, std::size_t count) {
    std::error_code error;
    if (!output_.writeAt(at_, {bytes, count}, error)) fail(error);
    at_ += static_cast<std::int64_t>(count);
}

void Writer::putHeader(std::string_view id, std::uint64_t size) {
    std::vector<std::byte> header;
    appendText(header, id);
    appendLittleEndian<4>(header, size);
    put(header);
}

void Writer::putSizesChunk() {
    putHeader(rf64_ ? "ds64" : "JUNK", sizesChunkSize);
    sizesBody_ = at_;
    put(std::vector<std::byte>(sizesChunkSize));
}

void Writer::putFmt() {
    std::vector<std::byte> body = plan_.fmt;
    if (body.empty()) body = model_ && plan_.repeatFormat ? model_->fmt : buildFormat(plan_.format);
    putHeader("fmt ", body.size());
    put(body);
    padToEven();
}

void Writer::putFact() {
    putHeader("fact", 4);
    factBody_ = at_;
    put(number32(0));
}

void Writer::copyChunk(const Chunk& chunk) {
    if (chunk.size > 0xFFFFFFFE)
        throw platform::Error("The file \"" + platform::toUtf8(plan_.model) +
                              "\" has a chunk of more than 4 GB besides its sound.");
    copyFromModel(chunk.offset, chunk.body + chunk.size);
    padToEven();
}

void Writer::copyFromModel(std::int64_t begin, std::int64_t end) {
    if (begin >= end) return;
    std::error_code error;
    if (!output_.copyFrom(modelFile_, begin, end - begin, at_, error)) fail(error);
    at_ += end - begin;
}

void Writer::padToEven() {
    if (at_ % 2 == 1) put(std::vector<std::byte>(1));
}

void Writer::patch(std::int64_t offset, const std::vector<std::byte>& bytes) {
    std::error_code error;
    if (!output_.writeAt(offset, bytes, error)) fail(error);
}

void Writer::patchSizes(std::int64_t fileSize) {
    const std::uint64_t riffSize = static_cast<std::uint64_t>(fileSize) - 8;
    const std::uint64_t frames =
        static_cast<std::uint64_t>(written_ / std::max(1, plan_.format.blockAlign));
    const bool wide = riffSize > plan_.riffLimit;
    if (wide && sizesBody_ < 0)
        throw platform::Error("The file \"" + platform::toUtf8(file_) +
                              "\" became larger than announced.");
    if (wide && !rf64_) {
        std::vector<std::byte> id;
        appendText(id, "RF64");
        patch(0, id);
        id.clear();
        appendText(id, "ds64");
        patch(sizesBody_ - 8, id);
        rf64_ = true;
    }
    if (rf64_) {
        std::vector<std::byte> sizes;
        appendLittleEndian<8>(sizes, riffSize);
        appendLittleEndian<8>(sizes, static_cast<std::uint64_t>(written_));
        appendLittleEndian<8>(sizes, frames);
        appendLittleEndian<4>(sizes, 0);
        patch(sizesBody_, sizes);
    }
    patch(4, number32(rf64_ ? 0xFFFFFFFF : riffSize));
    patch(dataBody_ - 4, number32(rf64_ ? 0xFFFFFFFF : static_cast<std::uint64_t>(written_)));
    if (factBody_ >= 0) patch(factBody_, number32(std::min<std::uint64_t>(frames, 0xFFFFFFFF)));
}

void Writer::fail(const std::error_code& reason) const {
    throw platform::Error("The file \"" + platform::toUtf8(file_) +
                          "\" could not be written: " + reason.message() + ".");
}

}  // namespace audio::wave
