// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/EditList.h"

#include <algorithm>
#include <utility>

namespace audio::edit {
namespace {

Segment part(const Segment& segment, std::int64_t offset, std::int64_t frames) {
    Segment result = segment;
    result.start = segment.silent() ? 0 : segment.start + offset;
    result.frames = frames;
    for (GainSlice& gain : result.gains) gain.offset += offset;
    return result;
}

// Whether the second segment goes on where the first one ends.
bool continues(const Segment& first, const Segment& second) {
    if (first.material != second.material) return false;
    if (first.silent()) return true;
    if (second.start != first.start + first.frames) return false;
    if (first.gains.size() != second.gains.size()) return false;
    return std::equal(first.gains.begin(), first.gains.end(), second.gains.begin(),
                      [&first](const GainSlice& a, const GainSlice& b) {
                          return a.ramp == b.ramp && a.channel == b.channel &&
                                 b.offset == a.offset + first.frames;
                      });
}

}  // namespace

EditList::EditList(Shape shape, std::shared_ptr<const Material> material)
    : shape_(shape), frames_(material->frames()) {
    if (frames_ > 0) segments_.push_back({std::move(material), 0, frames_, {}});
}

EditList EditList::slice(FrameRange range) const {
    EditList result = *this;
    const std::size_t first = result.splitAt(range.start);
    const std::size_t last = result.splitAt(range.end);
    const auto begin = result.segments_.begin();
    result.segments_ = std::vector<Segment>(begin + static_cast<std::ptrdiff_t>(first),
                                            begin + static_cast<std::ptrdiff_t>(last));
    result.frames_ = range.end - range.start;
    return result;
}

void EditList::erase(FrameRange range) {
    EditList result = slice({0, range.start});
    result.append(slice({range.end, frames_}));
    *this = std::move(result);
}

void EditList::insertSilence(std::int64_t at, std::int64_t frames) {
    EditList result = slice({0, at});
    if (frames > 0) result.segments_.push_back({nullptr, 0, frames, {}});
    result.frames_ += frames;
    result.append(slice({at, frames_}));
    *this = std::move(result);
}

void EditList::applyGain(FrameRange range, double first, double last, int channel) {
    if (first == 1.0 && last == 1.0) return;
    EditList middle = slice(range);
    const dsp::GainRamp ramp{first, last, range.end - range.start};
    std::int64_t offset = 0;
    for (Segment& segment : middle.segments_) {
        if (!segment.silent()) segment.gains.push_back({ramp, offset, channel});
        offset += segment.frames;
    }
    replaceBy(range, middle);
}

void EditList::replace(FrameRange range, std::shared_ptr<const Material> material) {
    EditList middle;
    middle.segments_.push_back({std::move(material), 0, range.end - range.start, {}});
    middle.frames_ = range.end - range.start;
    replaceBy(range, middle);
}

void EditList::append(std::shared_ptr<const Material> material, std::int64_t start, double factor) {
    EditList rest = EditList(shape_, std::move(material));
    rest = rest.slice({std::min(start, rest.frames()), rest.frames()});
    rest.applyGain({0, rest.frames()}, factor, factor);
    append(rest);
}

bool EditList::isAllOf(const Material& source) const {
    return frames_ == source.frames() && (frames_ == 0 || segments_.size() == 1) &&
           keepsAnyOf(source) == (frames_ > 0);
}

bool EditList::keepsAnyOf(const Material& source) const {
    return std::any_of(segments_.begin(), segments_.end(),
                       [&source](const Segment& segment) { return segment.untouched(source); });
}

void EditList::replaceBy(FrameRange range, const EditList& middle) {
    EditList result = slice({0, range.start});
    result.append(middle);
    result.append(slice({range.end, frames_}));
    *this = std::move(result);
}

void EditList::append(const EditList& other) {
    for (const Segment& segment : other.segments_) {
        if (!segments_.empty() && continues(segments_.back(), segment))
            segments_.back().frames += segment.frames;
        else
            segments_.push_back(segment);
    }
    frames_ += other.frames_;
}

// The index of the segment that begins at this frame, which may have to be cut out of another.
std::size_t EditList::splitAt(std::int64_t frame) {
    std::int64_t position = 0;
    for (std::size_t i = 0; i < segments_.size(); ++i) {
        if (frame <= position) return i;
        const Segment whole = segments_[i];
        if (frame < position + whole.frames) {
            const std::int64_t offset = frame - position;
            segments_[i] = part(whole, 0, offset);
            segments_.insert(segments_.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                             part(whole, offset, whole.frames - offset));
            return i + 1;
        }
        position += whole.frames;
    }
    return segments_.size();
}

void EditList::closeFiles() const {
    for (const Segment& segment : segments_)
        if (segment.material) segment.material->closeFiles();
}

}  // namespace audio::edit
